// Pages of SCSI Enclosure Services (SES-3): configuration (01h), enclosure status (02h), element descriptors (07h) and
// additional element status (0Ah), and what they say of an enclosure together. Pure functions over bytes that may be
// truncated or nonsense. Throws std::bad_alloc only.
#pragma once

#include "sashba/sysfs/ByteView.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KDV {

namespace SesElement {
constexpr std::uint8_t deviceSlot = 0x01;
constexpr std::uint8_t powerSupply = 0x02;
constexpr std::uint8_t cooling = 0x03;
constexpr std::uint8_t temperatureSensor = 0x04;
constexpr std::uint8_t arrayDeviceSlot = 0x17;
} // namespace SesElement

namespace SesCode {
constexpr std::uint8_t unsupported = 0;
constexpr std::uint8_t ok = 1;
constexpr std::uint8_t critical = 2;
constexpr std::uint8_t nonCritical = 3;
constexpr std::uint8_t unrecoverable = 4;
constexpr std::uint8_t notInstalled = 5;
constexpr std::uint8_t unknown = 6;
constexpr std::uint8_t notAvailable = 7;
constexpr std::uint8_t noAccessAllowed = 8;
} // namespace SesCode

struct SesElementType {
    std::uint8_t type = 0;
    std::uint8_t elements = 0;
};

struct SesConfiguration {
    std::uint32_t generation = 0;
    std::uint64_t logicalId = 0; // of the primary subenclosure, like the texts
    std::string vendor, product, revision;
    std::vector<SesElementType> types;
};

struct SesElementStatus {
    std::uint8_t type = 0;
    std::uint8_t code = 0;
    std::uint8_t bytes[3] = {};    // after the one with the code
    bool predictedFailure = false; // PRDFAIL
};

struct SesStatus {
    std::uint8_t flags = 0; // INVOP 10h, NON-CRIT 04h, CRIT 02h, UNRECOV 01h
    std::uint32_t generation = 0;
    std::vector<SesElementStatus> elements; // single ones in order, without the overall ones
};

struct SesSlotAddress {
    std::optional<std::size_t> element; // index among the single elements; absent when the page does not tell
    std::uint8_t slot = 0;
    bool hasSlot = false;
    std::vector<std::uint64_t> sasAddresses;
};

std::optional<SesConfiguration> parseSesConfiguration(ByteView page);
std::optional<SesStatus> parseSesStatus(ByteView page, const SesConfiguration& configuration);
std::vector<std::string> parseSesDescriptors(ByteView page, const SesConfiguration& configuration);
std::vector<SesSlotAddress> parseSesAdditionalStatus(ByteView page, const SesConfiguration& configuration);

// The pages together, in the codes of the records.
struct SlotHealth {
    std::optional<std::uint8_t> slot;
    std::size_t order = 0; // among the bays
    std::string name;      // as the enclosure writes it
    bool failed = false;
    bool failurePredicted = false;
    std::vector<std::uint64_t> sasAddresses;
};

struct EnclosureState {
    std::uint64_t logicalId = 0;
    std::string vendor, product, revision;
    std::uint8_t status = 0;      // 0 unknown, 2 OK, 3 degraded, 4 failed
    std::uint8_t fans = 0;        // 0 unknown, 2 OK, 3 degraded, 5 failed
    std::uint8_t power = 0;       // likewise
    std::uint8_t temperature = 0; // 0 unknown, 2 OK, 3 degraded, 4 failed
    std::size_t bays = 0;
    std::vector<SlotHealth> slots;
};

// Nothing without a configuration page. Pages of another generation than the configuration's are left out: the
// elements moved meanwhile, and the next round reads them anew.
std::optional<EnclosureState> enclosureState(ByteView configuration, ByteView status, ByteView descriptors,
                                             ByteView additional);

} // namespace KDV
