#include "machine/TestMachine.h"

#include <cstring>
#include <new>
#include <string>
#include <sys/mman.h>

namespace KDV::Test {
namespace {

constexpr std::size_t arenaBytes = std::size_t{64} << 20;

unsigned char* newArena()
{
    void* arena = mmap(nullptr, arenaBytes, PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_32BIT, -1, 0);
    if (arena == MAP_FAILED) throw std::bad_alloc();
    return static_cast<unsigned char*>(arena);
}

// Zeroed memory that a four-byte link can name.
template <class Record>
Record* newRecord()
{
    static unsigned char* const arena = newArena();
    static std::size_t used = 0;
    const std::size_t bytes = (sizeof(Record) + 7) / 8 * 8;
    if (used + bytes > arenaBytes) throw std::bad_alloc();
    auto* record = reinterpret_cast<Record*>(arena + used);
    used += bytes;
    return record;
}

template <class Record, class Link>
void append(Link& head, Record* record)
{
    record->next.set(nullptr);
    if (!head) {
        head.set(record);
        return;
    }
    Record* last = head.get();
    while (last->next)
        last = last->next.get();
    last->next.set(record);
}

} // namespace

SasHbaRecord& TestMachine::addHba(std::uint32_t number)
{
    auto* hba = newRecord<SasHbaRecord>();
    hba->hbaNumber = number;
    hba->slotNumber = static_cast<std::uint8_t>(number);
    hba->modelCode = 2;
    hba->arraySystemStatus = 2;
    hba->controllerStatus = 2;
    put(hba->firmwareVersion, "2.10");
    put(hba->name, "Adapter " + std::to_string(number));
    if (!_hbas.empty()) _hbas.back()->next.set(hba);
    _hbas.push_back(hba);
    return *hba;
}

SasLogicalDriveRecord& TestMachine::addVolume(SasHbaRecord& hba, std::uint32_t number,
                                              const std::vector<std::uint32_t>& members,
                                              const std::vector<std::uint32_t>& spares)
{
    auto* volume = newRecord<SasLogicalDriveRecord>();
    volume->hbaNumber = hba.hbaNumber;
    volume->logicalDriveNumber = number;
    volume->size = 1000;
    volume->rebuildingDrive = 0xFFFFFFFF;
    volume->raidLevel = 3;
    volume->status = 2;
    volume->redundancyState = 2;
    put(volume->osName, "/dev/sda");
    volume->memberCount = static_cast<std::uint32_t>(members.size());
    if (!members.empty()) std::memcpy(volume->members, members.data(), members.size() * sizeof(std::uint32_t));
    volume->spareCount = static_cast<std::uint32_t>(spares.size());
    if (!spares.empty()) std::memcpy(volume->spares, spares.data(), spares.size() * sizeof(std::uint32_t));
    append(hba.logicalDrives, volume);
    return *volume;
}

SasStorageBoxRecord& TestMachine::addBox(SasHbaRecord& hba, std::uint8_t number)
{
    auto* box = newRecord<SasStorageBoxRecord>();
    box->hbaNumber = hba.hbaNumber;
    box->boxNumber = number;
    put(box->model, "Box");
    put(box->firmwareVersion, "1.02");
    put(box->manufacturer, "ZT");
    put(box->serialNumber, "BOX" + std::to_string(number));
    put(box->name, "Port 1E Box " + std::to_string(number));
    box->fanStatus = box->status = box->temperatureStatus = box->powerStatus = 2;
    box->driveBays = 12;
    box->locationCode = 3;
    append(hba.storageBoxes, box);
    return *box;
}

SasPhysicalDriveRecord& TestMachine::addDrive(SasHbaRecord& hba, std::uint32_t number, std::uint8_t usage,
                                              std::uint32_t boxNumber)
{
    auto* drive = newRecord<SasPhysicalDriveRecord>();
    drive->hbaNumber = hba.hbaNumber;
    drive->driveNumber = number;
    drive->size = 100;
    drive->status = 2;
    drive->usage = usage;
    drive->interface = 2;
    put(drive->hotPlugLocation, "bay " + std::to_string(number));
    put(drive->location, "Port 1I Box 1 Bay " + std::to_string(number));
    put(drive->inquiry, "ACME    DRIVE 9");
    put(drive->firmwareRevision, "HPD1");
    put(drive->serialNumber, "SN" + std::to_string(hba.hbaNumber) + "-" + std::to_string(number));
    put(drive->name, "Disk");
    drive->carrierAuthStatus = 2;
    drive->boxIdentifier = boxIdentifierBase + boxNumber;
    insert(hba, *drive);
    return *drive;
}

void TestMachine::pull(SasHbaRecord& hba, std::uint32_t driveNumber)
{
    RecordLink<SasPhysicalDriveRecord>* link = &hba.physicalDrives;
    while (*link && link->get()->driveNumber != driveNumber)
        link = &link->get()->next;
    if (*link) link->set(link->get()->next.get());
}

void TestMachine::insert(SasHbaRecord& hba, SasPhysicalDriveRecord& drive) { append(hba.physicalDrives, &drive); }

void TestMachine::clear() { *this = TestMachine(); }

void TestMachine::createLists(SasDataRoot& root)
{
    ++_created;
    root.hbas.set(_hbas.empty() ? nullptr : _hbas.front());
    if (whenCreated) whenCreated(root);
}

void TestMachine::update(SasDataRoot& root)
{
    ++_updated;
    if (whenUpdated) whenUpdated(root);
}

} // namespace KDV::Test
