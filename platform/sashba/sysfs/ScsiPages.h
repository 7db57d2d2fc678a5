// Pages that SCSI devices answer with: INQUIRY data, vital product data and log pages (SPC-5, SBC-4, SAT-4). Pure
// functions over bytes that may be truncated or nonsense: what is not there, or does not say what page it is, gives
// nothing. Texts come trimmed but as the device wrote them. Throws std::bad_alloc only.
#pragma once

#include "sashba/sysfs/ByteView.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KDV {

struct InquiryData {
    std::uint8_t type = 0x1F;       // 0 disk, 0x0D enclosure services, 0x14 zoned disk, 0x1F none
    bool enclosureServices = false; // EncServ
    std::string vendor;
    std::string product;
    std::string revision;
};

struct AtaIdentity { // from the ATA Information page
    std::string serial;
    std::string model;
    std::string firmware;       // up to 8 characters where INQUIRY has 4
    std::uint16_t rotation = 0; // as in the Block Device Characteristics page
};

struct InformationalExceptions {
    static constexpr std::uint8_t exceeded = 0x5D; // "failure prediction threshold exceeded"

    std::uint8_t asc = 0;
    std::uint8_t ascq = 0;

    // The qualifier FFh marks a test, and 0Bh is a warning.
    bool predictsFailure() const noexcept { return asc == exceeded && ascq != 0xFF; }
    bool warns() const noexcept { return asc == 0x0B; }
};

std::optional<InquiryData> parseInquiry(ByteView data);

std::string parseUnitSerialNumber(ByteView page);              // VPD 80h; empty when there is none
std::optional<std::uint64_t> parseNaaName(ByteView page);      // VPD 83h, 8-byte NAA of the logical unit
std::optional<std::uint16_t> parseRotationRate(ByteView page); // VPD B1h: 0 unknown, 1 solid state, else rpm
std::optional<AtaIdentity> parseAtaInformation(ByteView page); // VPD 89h

std::vector<std::uint8_t> parseSupportedLogPages(ByteView page);                    // log 00h
std::optional<std::uint8_t> parseTemperature(ByteView page);                        // log 0Dh, degrees Celsius
std::optional<std::uint8_t> parseEnduranceUsed(ByteView page);                      // log 11h, percent, may pass 100
std::optional<std::uint32_t> parsePowerOnMinutes(ByteView page);                    // log 15h
std::optional<InformationalExceptions> parseInformationalExceptions(ByteView page); // log 2Fh

} // namespace KDV
