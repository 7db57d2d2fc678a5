// The records that the data library fills and the provider reads: byte-packed, little-endian, linked into one list of
// HBAs with three lists each. The library owns every record for the life of the process; the provider writes only the
// old-status bytes, the acknowledgement flag of a drive and the root's initial-load byte. Gaps are named by their
// offset and belong to the library. Both sides touch records only under the provider's mutex.
//
// Texts end at their NUL or with their field, whichever comes first: read them through textOf. Never bind a reference
// to a packed multi-byte field: copy it.
#pragma once

#include "records/RecordLink.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace KDV {

#pragma pack(push, 1)

struct SasPhysicalDriveRecord {
    RecordLink<SasPhysicalDriveRecord> next;
    std::uint32_t hbaNumber;
    std::uint32_t driveNumber; // the key of members, spares, hot-plug and lookups
    std::uint32_t size;        // MiB; summed into the pools' managed space as it stands
    std::uint8_t gap16[4];
    std::uint8_t oldStatus; // written by the provider only; 0 never checked
    std::uint8_t gap21;
    std::uint8_t status; // 2 OK, 3 and 10 predictive failure, 4 to 9 error, 12 degraded
    std::uint8_t gap23[2];
    std::uint8_t usage;           // 2 member of a volume, 3 spare, 4 not configured for RAID
    std::uint8_t rotationalSpeed; // 2 7200, 3 10000, 4 15000 revolutions per minute
    std::uint8_t placement;       // 2 internal, 3 external
    std::uint8_t hotPlug;         // 2 hot-swappable
    std::uint8_t gap29;
    std::uint8_t interface;    // 1 SATA, 2 SAS
    char hotPlugLocation[128]; // appears only in the log line of a hot add
    char location[81];         // "Port 1I Box 1 Bay 3" or "Port 1I Device 4"
    char inquiry[41];          // vendor, blanks, model
    char firmwareRevision[9];
    char serialNumber[41];
    char osName[12]; // empty when the system has no device for the disk
    char name[17];
    std::uint32_t blockSize;  // bytes; 0 unknown
    std::uint32_t blockCount; // 0 unknown
    std::uint8_t mediaType;   // 3 solid-state
    std::int8_t ssdWearStatus;
    std::uint32_t ssdPowerOnHours;
    std::uint32_t ssdEnduranceUsed; // percent
    std::uint32_t ssdLifeRemaining;
    std::uint8_t gap382[9];
    std::uint8_t carrierAppVersion;     // smart carrier firmware, application image
    std::uint8_t carrierBootldrVersion; // smart carrier firmware, boot loader image
    std::uint8_t carrierAuthStatus;     // 2 no smart drive carrier
    std::uint8_t gap394[16];
    std::uint32_t boxIdentifier; // box number plus 0x10000000
    std::uint8_t gap414[4];
    std::uint8_t acknowledged; // the provider writes 0 after every status check
    std::uint8_t gap419[5];
};

struct SasLogicalDriveRecord {
    RecordLink<SasLogicalDriveRecord> next;
    std::uint32_t hbaNumber;
    std::uint32_t logicalDriveNumber;
    std::uint32_t size; // MiB in the space figures, see the volume classes
    std::uint8_t gap16[4];
    std::uint32_t rebuildingDrive; // number of the drive being rebuilt; 0xFFFFFFFF none
    std::uint8_t gap24;
    std::uint8_t raidLevel;          // 2 RAID 0, 3 RAID 1, 4 RAID 0+1, 5 RAID 5, 6 RAID 1+5
    std::uint8_t status;             // 2 OK, 3 degraded, 4 failed
    std::uint8_t oldRedundancyState; // written by the provider only; 0 never checked
    std::uint8_t gap28[128];
    char osName[13];
    std::uint8_t redundancyState; // 2 OK, 3 redundancy lost, 4 rebuilding, 5 and 6 failed
    std::uint32_t memberCount;
    std::uint32_t members[16]; // drive numbers
    std::uint32_t spareCount;  // 0 means no redundancy set
    std::uint32_t spares[16];  // drive numbers
};

struct SasStorageBoxRecord {
    RecordLink<SasStorageBoxRecord> next;
    std::uint8_t gap4[11];
    std::uint8_t boxNumber;
    std::uint8_t gap16;
    char model[17];
    char firmwareVersion[8];
    char manufacturer[9];
    std::uint8_t fanStatus;         // 2 OK; 3, 5
    std::uint8_t status;            // 2 OK, 3 degraded, 4 error
    std::uint8_t temperatureStatus; // 2 OK; 3, 4
    std::uint8_t gap54;
    std::uint8_t powerStatus; // 2 OK; 3, 5
    std::uint8_t gap56;
    std::uint8_t driveBays;
    std::uint8_t locationCode; // 2 internal, 3 external
    std::uint8_t duplexCode;
    std::uint8_t gap60;
    char serialNumber[29];
    std::uint32_t hbaNumber;
    std::uint8_t gap94[129];
    std::uint8_t backplaneSpeed; // code 1, 2 or 3
    std::uint8_t gap224[7];
    std::uint8_t oldFanStatus; // the three old bytes: written by the provider only
    std::uint8_t oldTemperatureStatus;
    std::uint8_t oldPowerStatus;
    std::uint8_t physicalPosition;
    std::uint8_t gap235[3];
    char name[82]; // "Port 1E Box 1"
};

struct SasHbaRecord {
    RecordLink<SasHbaRecord> next;
    std::uint8_t gap4[4];
    RecordLink<SasPhysicalDriveRecord> physicalDrives;
    RecordLink<SasLogicalDriveRecord> logicalDrives;
    RecordLink<SasStorageBoxRecord> storageBoxes;
    std::uint8_t gap20[8];
    std::uint32_t hbaNumber; // also the first field of the controller information block
    char logicalLocation[128];
    std::uint8_t slotNumber; // 0 embedded, 255 unknown
    std::uint8_t modelCode;  // 2 generic SAS HBA, 3 to 13 adapter models
    std::uint8_t gap162;
    std::uint8_t arraySystemStatus;   // 2 OK, 3 degraded, 4 failed
    std::uint8_t controllerStatus;    // 2 OK, 3 failed; the alerted status
    std::uint8_t oldControllerStatus; // written by the provider only; 0 never checked
    std::uint8_t gap166;
    char firmwareVersion[34];
    char name[87]; // adapter name and serial number: unique
};

// Owned by the provider. The head is a link like any other; bytes 4 to 17 are the library's.
struct SasDataRoot {
    RecordLink<SasHbaRecord> hbas;
    std::uint8_t gap4[14];
    std::uint8_t initialLoad; // 1 during the first refresh after the lists were made
    std::uint8_t gap19[2];
};

#pragma pack(pop)

// Offsets are the contract: one assertion for every field that either side reads or writes.
#define KDV_FIELD_AT(record, field, offset)                                                                            \
    static_assert(offsetof(record, field) == (offset), #record "." #field " does not lie at " #offset)

static_assert(sizeof(SasDataRoot) == 21);
static_assert(std::is_trivially_copyable_v<SasHbaRecord> && alignof(SasHbaRecord) == 1);
static_assert(std::is_trivially_copyable_v<SasPhysicalDriveRecord> && alignof(SasPhysicalDriveRecord) == 1);
static_assert(std::is_trivially_copyable_v<SasLogicalDriveRecord> && alignof(SasLogicalDriveRecord) == 1);
static_assert(std::is_trivially_copyable_v<SasStorageBoxRecord> && alignof(SasStorageBoxRecord) == 1);

KDV_FIELD_AT(SasDataRoot, hbas, 0);
KDV_FIELD_AT(SasDataRoot, initialLoad, 18);

KDV_FIELD_AT(SasHbaRecord, next, 0);
KDV_FIELD_AT(SasHbaRecord, physicalDrives, 8);
KDV_FIELD_AT(SasHbaRecord, logicalDrives, 12);
KDV_FIELD_AT(SasHbaRecord, storageBoxes, 16);
KDV_FIELD_AT(SasHbaRecord, hbaNumber, 28);
KDV_FIELD_AT(SasHbaRecord, logicalLocation, 32);
KDV_FIELD_AT(SasHbaRecord, slotNumber, 160);
KDV_FIELD_AT(SasHbaRecord, modelCode, 161);
KDV_FIELD_AT(SasHbaRecord, arraySystemStatus, 163);
KDV_FIELD_AT(SasHbaRecord, controllerStatus, 164);
KDV_FIELD_AT(SasHbaRecord, oldControllerStatus, 165);
KDV_FIELD_AT(SasHbaRecord, firmwareVersion, 167);
KDV_FIELD_AT(SasHbaRecord, name, 201);

KDV_FIELD_AT(SasPhysicalDriveRecord, next, 0);
KDV_FIELD_AT(SasPhysicalDriveRecord, hbaNumber, 4);
KDV_FIELD_AT(SasPhysicalDriveRecord, driveNumber, 8);
KDV_FIELD_AT(SasPhysicalDriveRecord, size, 12);
KDV_FIELD_AT(SasPhysicalDriveRecord, oldStatus, 20);
KDV_FIELD_AT(SasPhysicalDriveRecord, status, 22);
KDV_FIELD_AT(SasPhysicalDriveRecord, usage, 25);
KDV_FIELD_AT(SasPhysicalDriveRecord, rotationalSpeed, 26);
KDV_FIELD_AT(SasPhysicalDriveRecord, placement, 27);
KDV_FIELD_AT(SasPhysicalDriveRecord, hotPlug, 28);
KDV_FIELD_AT(SasPhysicalDriveRecord, interface, 30);
KDV_FIELD_AT(SasPhysicalDriveRecord, hotPlugLocation, 31);
KDV_FIELD_AT(SasPhysicalDriveRecord, location, 159);
KDV_FIELD_AT(SasPhysicalDriveRecord, inquiry, 240);
KDV_FIELD_AT(SasPhysicalDriveRecord, firmwareRevision, 281);
KDV_FIELD_AT(SasPhysicalDriveRecord, serialNumber, 290);
KDV_FIELD_AT(SasPhysicalDriveRecord, osName, 331);
KDV_FIELD_AT(SasPhysicalDriveRecord, name, 343);
KDV_FIELD_AT(SasPhysicalDriveRecord, blockSize, 360);
KDV_FIELD_AT(SasPhysicalDriveRecord, blockCount, 364);
KDV_FIELD_AT(SasPhysicalDriveRecord, mediaType, 368);
KDV_FIELD_AT(SasPhysicalDriveRecord, ssdWearStatus, 369);
KDV_FIELD_AT(SasPhysicalDriveRecord, ssdPowerOnHours, 370);
KDV_FIELD_AT(SasPhysicalDriveRecord, ssdEnduranceUsed, 374);
KDV_FIELD_AT(SasPhysicalDriveRecord, ssdLifeRemaining, 378);
KDV_FIELD_AT(SasPhysicalDriveRecord, carrierAppVersion, 391);
KDV_FIELD_AT(SasPhysicalDriveRecord, carrierBootldrVersion, 392);
KDV_FIELD_AT(SasPhysicalDriveRecord, carrierAuthStatus, 393);
KDV_FIELD_AT(SasPhysicalDriveRecord, boxIdentifier, 410);
KDV_FIELD_AT(SasPhysicalDriveRecord, acknowledged, 418);

KDV_FIELD_AT(SasLogicalDriveRecord, next, 0);
KDV_FIELD_AT(SasLogicalDriveRecord, hbaNumber, 4);
KDV_FIELD_AT(SasLogicalDriveRecord, logicalDriveNumber, 8);
KDV_FIELD_AT(SasLogicalDriveRecord, size, 12);
KDV_FIELD_AT(SasLogicalDriveRecord, rebuildingDrive, 20);
KDV_FIELD_AT(SasLogicalDriveRecord, raidLevel, 25);
KDV_FIELD_AT(SasLogicalDriveRecord, status, 26);
KDV_FIELD_AT(SasLogicalDriveRecord, oldRedundancyState, 27);
KDV_FIELD_AT(SasLogicalDriveRecord, osName, 156);
KDV_FIELD_AT(SasLogicalDriveRecord, redundancyState, 169);
KDV_FIELD_AT(SasLogicalDriveRecord, memberCount, 170);
KDV_FIELD_AT(SasLogicalDriveRecord, members, 174);
KDV_FIELD_AT(SasLogicalDriveRecord, spareCount, 238);
KDV_FIELD_AT(SasLogicalDriveRecord, spares, 242);

KDV_FIELD_AT(SasStorageBoxRecord, next, 0);
KDV_FIELD_AT(SasStorageBoxRecord, boxNumber, 15);
KDV_FIELD_AT(SasStorageBoxRecord, model, 17);
KDV_FIELD_AT(SasStorageBoxRecord, firmwareVersion, 34);
KDV_FIELD_AT(SasStorageBoxRecord, manufacturer, 42);
KDV_FIELD_AT(SasStorageBoxRecord, fanStatus, 51);
KDV_FIELD_AT(SasStorageBoxRecord, status, 52);
KDV_FIELD_AT(SasStorageBoxRecord, temperatureStatus, 53);
KDV_FIELD_AT(SasStorageBoxRecord, powerStatus, 55);
KDV_FIELD_AT(SasStorageBoxRecord, driveBays, 57);
KDV_FIELD_AT(SasStorageBoxRecord, locationCode, 58);
KDV_FIELD_AT(SasStorageBoxRecord, duplexCode, 59);
KDV_FIELD_AT(SasStorageBoxRecord, serialNumber, 61);
KDV_FIELD_AT(SasStorageBoxRecord, hbaNumber, 90);
KDV_FIELD_AT(SasStorageBoxRecord, backplaneSpeed, 223);
KDV_FIELD_AT(SasStorageBoxRecord, oldFanStatus, 231);
KDV_FIELD_AT(SasStorageBoxRecord, oldTemperatureStatus, 232);
KDV_FIELD_AT(SasStorageBoxRecord, oldPowerStatus, 233);
KDV_FIELD_AT(SasStorageBoxRecord, physicalPosition, 234);
KDV_FIELD_AT(SasStorageBoxRecord, name, 238);

#undef KDV_FIELD_AT

// The text of a field: up to its NUL, never past the field.
template <std::size_t capacity>
std::string_view textOf(const char (&field)[capacity]) noexcept
{
    return {field, ::strnlen(field, capacity)};
}

// The box number that a drive's box identifier names.
constexpr std::uint32_t boxIdentifierBase = 0x10000000;

} // namespace KDV
