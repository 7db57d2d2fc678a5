#include "GivenRecords.h"

#include <functional>
#include <map>
#include <sstream>
#include <stdexcept>

namespace KDV::Test {
namespace {

constexpr unsigned char garbage = 0xA5;

// A field of a record as bytes.
struct Field {
    unsigned char* bytes;
    std::size_t size;
    bool isText;
};

using Fields = std::map<std::string, std::function<Field(GivenRecords&)>>;

template <class Record, class Type>
Field fieldOf(Record* record, std::size_t offset, bool isText)
{
    return {reinterpret_cast<unsigned char*>(record) + offset, sizeof(Type), isText};
}

#define KDV_FIELD(object, Record, name)                                                                                \
    {                                                                                                                  \
#object "." #name, [](GivenRecords& given) {                                                                      \
         using Type = decltype(Record::name);                                                                          \
         return fieldOf<Record, Type>(given.object, offsetof(Record, name), std::is_array_v<Type>);                    \
     }    \
    }

const Fields& fields()
{
    static const Fields table{
        KDV_FIELD(hba, SasHbaRecord, hbaNumber),
        KDV_FIELD(hba, SasHbaRecord, slotNumber),
        KDV_FIELD(hba, SasHbaRecord, modelCode),
        KDV_FIELD(hba, SasHbaRecord, arraySystemStatus),
        KDV_FIELD(hba, SasHbaRecord, controllerStatus),
        KDV_FIELD(hba, SasHbaRecord, firmwareVersion),
        KDV_FIELD(hba, SasHbaRecord, name),
        KDV_FIELD(volume, SasLogicalDriveRecord, hbaNumber),
        KDV_FIELD(volume, SasLogicalDriveRecord, logicalDriveNumber),
        KDV_FIELD(volume, SasLogicalDriveRecord, size),
        KDV_FIELD(volume, SasLogicalDriveRecord, raidLevel),
        KDV_FIELD(volume, SasLogicalDriveRecord, status),
        KDV_FIELD(volume, SasLogicalDriveRecord, redundancyState),
        KDV_FIELD(volume, SasLogicalDriveRecord, osName),
        KDV_FIELD(box, SasStorageBoxRecord, boxNumber),
        KDV_FIELD(box, SasStorageBoxRecord, model),
        KDV_FIELD(box, SasStorageBoxRecord, firmwareVersion),
        KDV_FIELD(box, SasStorageBoxRecord, manufacturer),
        KDV_FIELD(box, SasStorageBoxRecord, fanStatus),
        KDV_FIELD(box, SasStorageBoxRecord, status),
        KDV_FIELD(box, SasStorageBoxRecord, temperatureStatus),
        KDV_FIELD(box, SasStorageBoxRecord, powerStatus),
        KDV_FIELD(box, SasStorageBoxRecord, driveBays),
        KDV_FIELD(box, SasStorageBoxRecord, locationCode),
        KDV_FIELD(box, SasStorageBoxRecord, duplexCode),
        KDV_FIELD(box, SasStorageBoxRecord, serialNumber),
        KDV_FIELD(box, SasStorageBoxRecord, hbaNumber),
        KDV_FIELD(box, SasStorageBoxRecord, backplaneSpeed),
        KDV_FIELD(box, SasStorageBoxRecord, name),
        KDV_FIELD(drive, SasPhysicalDriveRecord, hbaNumber),
        KDV_FIELD(drive, SasPhysicalDriveRecord, driveNumber),
        KDV_FIELD(drive, SasPhysicalDriveRecord, status),
        KDV_FIELD(drive, SasPhysicalDriveRecord, usage),
        KDV_FIELD(drive, SasPhysicalDriveRecord, rotationalSpeed),
        KDV_FIELD(drive, SasPhysicalDriveRecord, placement),
        KDV_FIELD(drive, SasPhysicalDriveRecord, hotPlug),
        KDV_FIELD(drive, SasPhysicalDriveRecord, interface),
        KDV_FIELD(drive, SasPhysicalDriveRecord, location),
        KDV_FIELD(drive, SasPhysicalDriveRecord, inquiry),
        KDV_FIELD(drive, SasPhysicalDriveRecord, firmwareRevision),
        KDV_FIELD(drive, SasPhysicalDriveRecord, serialNumber),
        KDV_FIELD(drive, SasPhysicalDriveRecord, osName),
        KDV_FIELD(drive, SasPhysicalDriveRecord, name),
        KDV_FIELD(drive, SasPhysicalDriveRecord, blockSize),
        KDV_FIELD(drive, SasPhysicalDriveRecord, blockCount),
        KDV_FIELD(drive, SasPhysicalDriveRecord, mediaType),
        KDV_FIELD(drive, SasPhysicalDriveRecord, ssdWearStatus),
        KDV_FIELD(drive, SasPhysicalDriveRecord, ssdPowerOnHours),
        KDV_FIELD(drive, SasPhysicalDriveRecord, ssdEnduranceUsed),
        KDV_FIELD(drive, SasPhysicalDriveRecord, ssdLifeRemaining),
        KDV_FIELD(drive, SasPhysicalDriveRecord, carrierAppVersion),
        KDV_FIELD(drive, SasPhysicalDriveRecord, carrierBootldrVersion),
        KDV_FIELD(drive, SasPhysicalDriveRecord, carrierAuthStatus),
    };
    return table;
}

#undef KDV_FIELD

// All but the links at the head of the record.
template <class Record>
void litter(Record& record, std::size_t from)
{
    std::memset(reinterpret_cast<unsigned char*>(&record) + from, garbage, sizeof record - from);
}

std::string unquoted(const GoldenSetting& setting)
{
    const std::string& value = setting.value;
    if (value.size() < 2 || value.front() != '"' || value.back() != '"')
        throw std::runtime_error(setting.field + ": a text is quoted");
    std::string text;
    for (std::size_t i = 1; i + 1 < value.size(); ++i) {
        if (value[i] == '\\') ++i;
        text += value[i];
    }
    return text;
}

// The rest of the field keeps its garbage: what follows the NUL is nobody's.
void setText(const Field& field, const GoldenSetting& setting)
{
    const std::string text = unquoted(setting);
    if (text.size() > field.size) throw std::runtime_error(setting.field + ": the text does not fit");
    std::memcpy(field.bytes, text.data(), text.size());
    if (text.size() < field.size) field.bytes[text.size()] = 0;
}

void setNumber(const Field& field, const GoldenSetting& setting)
{
    const long long number = std::stoll(setting.value);
    const long long most = (1ll << 8 * field.size) - 1;
    if (number < -most / 2 - 1 || number > most) throw std::runtime_error(setting.field + ": the number does not fit");
    for (std::size_t i = 0; i < field.size; ++i)
        field.bytes[i] = static_cast<unsigned char>(number >> 8 * i);
}

template <class Each>
void forEachItem(const std::string& list, Each&& each)
{
    std::istringstream items(list == "none" ? "" : list);
    for (std::string item; std::getline(items, item, ',');)
        each(item);
}

} // namespace

GivenRecords::GivenRecords(const Logger& logger)
{
    hba = &_machine.addHba(0);
    volume = &_machine.addVolume(*hba, 0, {});
    box = &_machine.addBox(*hba, 0);
    drive = &_machine.addDrive(*hba, 0, memberUsage);
    litter(*hba, offsetof(SasHbaRecord, gap20));
    litter(*volume, offsetof(SasLogicalDriveRecord, hbaNumber));
    litter(*box, offsetof(SasStorageBoxRecord, gap4));
    litter(*drive, offsetof(SasPhysicalDriveRecord, hbaNumber));
    _driveObject = std::make_unique<SasPhysicalDrive>(logger, drive);
    driveObject = _driveObject.get();
}

void GivenRecords::set(const GoldenSetting& setting)
{
    if (setting.field == "rebuilding")
        driveObject->rebuilding = std::stoi(setting.value) != 0;
    else if (setting.field == "poolKind")
        poolKind = static_cast<std::uint32_t>(std::stoul(setting.value));
    else if (setting.field == "drives")
        setDrives(setting.value);
    else if (setting.field == "adapters")
        setAdapters(setting.value);
    else {
        const auto found = fields().find(setting.field);
        if (found == fields().end()) throw std::runtime_error("no field " + setting.field);
        const Field field = found->second(*this);
        (field.isText ? setText : setNumber)(field, setting);
    }
}

void GivenRecords::setDrives(const std::string& list)
{
    hba->physicalDrives.set(nullptr);
    forEachItem(list, [this](const std::string& item) {
        const std::size_t colon = item.find(':');
        SasPhysicalDriveRecord& added = _machine.addDrive(*hba, 0, static_cast<std::uint8_t>(std::stoul(item)));
        added.size = static_cast<std::uint32_t>(std::stoul(item.substr(colon + 1)));
    });
}

void GivenRecords::setAdapters(const std::string& list)
{
    adapters = nullptr;
    SasHbaRecord* last = nullptr;
    forEachItem(list, [&](const std::string& item) {
        SasHbaRecord& added = _machine.addHba(0);
        litter(added, offsetof(SasHbaRecord, gap20));
        added.arraySystemStatus = static_cast<std::uint8_t>(std::stoul(item));
        added.next.set(nullptr);
        if (last)
            last->next.set(&added);
        else
            adapters = &added;
        last = &added;
    });
}

} // namespace KDV::Test
