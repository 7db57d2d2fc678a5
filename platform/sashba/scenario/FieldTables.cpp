#include "sashba/scenario/FieldTables.h"

#include <algorithm>

namespace KDV {
namespace {

template <std::size_t count>
constexpr Span<CodeWord> spanOf(const CodeWord (&words)[count])
{
    return {words, count};
}

constexpr CodeWord slotWords[] = {{"embedded", 0}, {"unknown", 255}};
constexpr CodeWord modelWords[] = {{"unknown", 0}, {"generic", 2}};
constexpr CodeWord controllerWords[] = {{"unknown", 0}, {"ok", 2}, {"failed", 3}};
constexpr CodeWord healthWords[] = {{"unknown", 0}, {"ok", 2}, {"degraded", 3}, {"failed", 4}};

// 5 to 9 are failures too; a raw code tells them apart.
constexpr CodeWord driveStatusWords[] = {
    {"unknown", 0}, {"ok", 2}, {"predictiveFailure", 3}, {"failed", 4}, {"predictiveFailure2", 10}, {"degraded", 12}};
constexpr CodeWord usageWords[] = {{"unknown", 0}, {"member", 2}, {"spare", 3}, {"unassigned", 4}};
constexpr CodeWord speedWords[] = {{"unknown", 0}, {"7200", 2}, {"10000", 3}, {"15000", 4}};
constexpr CodeWord placeWords[] = {{"unknown", 0}, {"internal", 2}, {"external", 3}};
constexpr CodeWord hotPlugWords[] = {{"unknown", 0}, {"hotSwappable", 2}};
constexpr CodeWord interfaceWords[] = {{"unknown", 0}, {"SATA", 1}, {"SAS", 2}};
constexpr CodeWord mediaWords[] = {{"unknown", 0}, {"solidState", 3}};
constexpr CodeWord carrierWords[] = {{"noCarrier", 2}};

constexpr CodeWord raidWords[] = {{"none", 0},     {"RAID 0", 2}, {"RAID 1", 3},
                                  {"RAID 0+1", 4}, {"RAID 5", 5}, {"RAID 1+5", 6}};
constexpr CodeWord redundancyWords[] = {
    {"unknown", 0}, {"ok", 2}, {"redundancyLost", 3}, {"rebuilding", 4}, {"failed", 5}};

// A temperature sensor fails with 4, a fan and a power supply with 5.
constexpr CodeWord fanAndPowerWords[] = {{"unknown", 0}, {"ok", 2}, {"degraded", 3}, {"failed", 5}};
constexpr CodeWord temperatureWords[] = {{"unknown", 0}, {"ok", 2}, {"degraded", 3}, {"failed", 4}};

constexpr std::uint32_t ok = 2;
constexpr std::uint32_t unassigned = 4;
constexpr std::uint32_t noCarrier = 2;
constexpr std::uint32_t noDrive = 0xFFFFFFFF;

} // namespace

// One row of a table; Record is the record of the table it stands in. The size is that of the field itself.
#define KDV_ROW(field, form, words, otherwise)                                                                         \
    FieldRow { #field, FieldForm::form, offsetof(Record, field), sizeof(Record::field), words, otherwise }
#define KDV_TEXT(field)                   KDV_ROW(field, Text, {}, 0)
#define KDV_NUMBER(field)                 KDV_ROW(field, Number, {}, 0)
#define KDV_CODE(field, words, otherwise) KDV_ROW(field, Code, spanOf(words), otherwise)

namespace {

struct HbaFields {
    using Record = SasHbaRecord;
    static constexpr FieldRow rows[] = {
        KDV_NUMBER(hbaNumber),
        KDV_TEXT(logicalLocation),
        KDV_CODE(slotNumber, slotWords, 255),
        KDV_CODE(modelCode, modelWords, 2),
        KDV_CODE(arraySystemStatus, healthWords, ok),
        KDV_CODE(controllerStatus, controllerWords, ok),
        KDV_TEXT(firmwareVersion),
        KDV_TEXT(name),
    };
};

struct PhysicalDriveFields {
    using Record = SasPhysicalDriveRecord;
    static constexpr FieldRow rows[] = {
        KDV_NUMBER(hbaNumber),
        KDV_NUMBER(driveNumber),
        KDV_NUMBER(size),
        KDV_CODE(status, driveStatusWords, ok),
        KDV_CODE(usage, usageWords, unassigned),
        KDV_CODE(rotationalSpeed, speedWords, 0),
        KDV_CODE(placement, placeWords, 0),
        KDV_CODE(hotPlug, hotPlugWords, 0),
        KDV_CODE(interface, interfaceWords, 0),
        KDV_TEXT(hotPlugLocation),
        KDV_TEXT(location),
        KDV_TEXT(inquiry),
        KDV_TEXT(firmwareRevision),
        KDV_TEXT(serialNumber),
        KDV_TEXT(osName),
        KDV_TEXT(name),
        KDV_NUMBER(blockSize),
        KDV_NUMBER(blockCount),
        KDV_CODE(mediaType, mediaWords, 0),
        KDV_ROW(ssdWearStatus, SignedNumber, {}, 0),
        KDV_NUMBER(ssdPowerOnHours),
        KDV_NUMBER(ssdEnduranceUsed),
        KDV_NUMBER(ssdLifeRemaining),
        KDV_NUMBER(carrierAppVersion),
        KDV_NUMBER(carrierBootldrVersion),
        KDV_CODE(carrierAuthStatus, carrierWords, noCarrier),
        KDV_NUMBER(boxIdentifier),
    };
};

struct LogicalDriveFields {
    using Record = SasLogicalDriveRecord;
    static constexpr FieldRow rows[] = {
        KDV_NUMBER(hbaNumber),
        KDV_NUMBER(logicalDriveNumber),
        KDV_NUMBER(size),
        KDV_ROW(rebuildingDrive, DriveNumber, {}, noDrive),
        KDV_CODE(raidLevel, raidWords, 0),
        KDV_CODE(status, healthWords, ok),
        KDV_TEXT(osName),
        KDV_CODE(redundancyState, redundancyWords, ok),
        KDV_NUMBER(memberCount),
        KDV_ROW(members, DriveNumbers, {}, 0),
        KDV_NUMBER(spareCount),
        KDV_ROW(spares, DriveNumbers, {}, 0),
    };
};

struct StorageBoxFields {
    using Record = SasStorageBoxRecord;
    static constexpr FieldRow rows[] = {
        KDV_NUMBER(boxNumber),
        KDV_TEXT(model),
        KDV_TEXT(firmwareVersion),
        KDV_TEXT(manufacturer),
        KDV_CODE(fanStatus, fanAndPowerWords, ok),
        KDV_CODE(status, healthWords, ok),
        KDV_CODE(temperatureStatus, temperatureWords, ok),
        KDV_CODE(powerStatus, fanAndPowerWords, ok),
        KDV_NUMBER(driveBays),
        KDV_CODE(locationCode, placeWords, 0),
        KDV_NUMBER(duplexCode),
        KDV_TEXT(serialNumber),
        KDV_NUMBER(hbaNumber),
        KDV_NUMBER(backplaneSpeed),
        KDV_NUMBER(physicalPosition),
        KDV_TEXT(name),
    };
};

template <std::size_t count>
constexpr Span<FieldRow> spanOf(const FieldRow (&rows)[count])
{
    return {rows, count};
}

} // namespace

#undef KDV_CODE
#undef KDV_NUMBER
#undef KDV_TEXT
#undef KDV_ROW

Span<FieldRow> fieldsOf(ElementKind kind)
{
    switch (kind) {
    case ElementKind::Hba:
        return spanOf(HbaFields::rows);
    case ElementKind::PhysicalDrive:
        return spanOf(PhysicalDriveFields::rows);
    case ElementKind::LogicalDrive:
        return spanOf(LogicalDriveFields::rows);
    case ElementKind::StorageBox:
        return spanOf(StorageBoxFields::rows);
    }
    return {};
}

std::size_t recordBytes(ElementKind kind)
{
    switch (kind) {
    case ElementKind::Hba:
        return sizeof(SasHbaRecord);
    case ElementKind::PhysicalDrive:
        return sizeof(SasPhysicalDriveRecord);
    case ElementKind::LogicalDrive:
        return sizeof(SasLogicalDriveRecord);
    case ElementKind::StorageBox:
        return sizeof(SasStorageBoxRecord);
    }
    return 0;
}

const FieldRow* fieldNamed(ElementKind kind, std::string_view name)
{
    const Span<FieldRow> rows = fieldsOf(kind);
    const FieldRow* found =
        std::find_if(rows.begin(), rows.end(), [name](const FieldRow& row) { return row.name == name; });
    return found == rows.end() ? nullptr : found;
}

std::string_view numberField(ElementKind kind)
{
    switch (kind) {
    case ElementKind::Hba:
        return "hbaNumber";
    case ElementKind::PhysicalDrive:
        return "driveNumber";
    case ElementKind::LogicalDrive:
        return "logicalDriveNumber";
    case ElementKind::StorageBox:
        return "boxNumber";
    }
    return {};
}

} // namespace KDV
