#include "sashba/RecordTree.h"

#include "sashba/KeptBytes.h"

#include <utility>

namespace KDV {
namespace {

template <class Record>
RecordLink<Record> linkTo(const Record* record)
{
    RecordLink<Record> link{};
    link.set(record);
    return link;
}

// Strings the linked records of a list together and returns the first one.
template <class Record>
Record* chain(const std::vector<StoredRecord<Record>*>& list)
{
    Record* next = nullptr;
    for (auto it = list.rbegin(); it != list.rend(); ++it) {
        if (!(*it)->linked) continue;
        (*it)->record->next = linkTo(next);
        next = (*it)->record;
    }
    return next;
}

template <class Record>
void unlink(StoredRecord<Record>& stored)
{
    stored.linked = false;
    stored.record->next = linkTo<Record>(nullptr);
}

template <class Record>
void link(StoredRecord<Record>& stored, const Record& image)
{
    if (!stored.linked) std::memset(stored.record, 0, sizeof(Record));
    copyKeeping(*stored.record, image);
    stored.linked = true;
}

template <class Record>
StoredRecord<Record>* takeElement(RecordStore<Record>& store, ElementKey hba, const Element<Record>& element,
                                  std::uint64_t machineNumber)
{
    StoredRecord<Record>& stored = store.at({hba, element.key});
    if (element.present)
        link(stored, element.image);
    else if (stored.linked)
        unlink(stored);
    stored.lastTakenBy = machineNumber;
    return &stored;
}

// Who still holds the record of a part that is gone must not read that it is well. Drives are let go by all.
void forgetHealth(SasPhysicalDriveRecord&) {}

void forgetHealth(SasLogicalDriveRecord& volume)
{
    volume.status = 0;
    volume.redundancyState = 0;
}

void forgetHealth(SasStorageBoxRecord& box)
{
    box.status = 0;
    box.fanStatus = 0;
    box.powerStatus = 0;
    box.temperatureStatus = 0;
}

template <class Record>
void unlinkUntaken(const std::vector<StoredRecord<Record>*>& list, std::uint64_t machineNumber)
{
    for (StoredRecord<Record>* stored : list) {
        if (!stored->linked || stored->lastTakenBy == machineNumber) continue;
        unlink(*stored);
        forgetHealth(*stored->record);
    }
}

} // namespace

RecordTree::RecordTree() = default;

void RecordTree::take(const Machine& machine)
{
    ++_taken;
    std::vector<HbaNode> nodes;
    nodes.reserve(machine.size());
    for (const MachineHba& source : machine)
        nodes.push_back(takeHba(source));
    std::swap(_nodes, nodes);
    dropWhatWasNotTaken(nodes);

    std::vector<StoredRecord<SasHbaRecord>*> hbas;
    hbas.reserve(_nodes.size());
    for (HbaNode& node : _nodes) {
        linkChildren(node);
        hbas.push_back(node.hba);
    }
    _head = chain(hbas);
}

RecordTree::HbaNode RecordTree::takeHba(const MachineHba& source)
{
    const ElementKey key = source.hba.key;
    HbaNode node;
    node.hba = takeElement(_hbas, key, source.hba, _taken);
    node.physicalDrives.reserve(source.physicalDrives.size());
    for (const auto& drive : source.physicalDrives)
        node.physicalDrives.push_back(takeElement(_physicalDrives, key, drive, _taken));
    for (const auto& volume : source.logicalDrives)
        node.logicalDrives.push_back(takeElement(_logicalDrives, key, volume, _taken));
    for (const auto& box : source.storageBoxes)
        node.storageBoxes.push_back(takeElement(_storageBoxes, key, box, _taken));
    return node;
}

// An HBA that vanished keeps its record with empty lists: what was behind it is gone as well.
void RecordTree::dropWhatWasNotTaken(const std::vector<HbaNode>& before)
{
    for (const HbaNode& node : before) {
        unlinkUntaken(node.physicalDrives, _taken);
        unlinkUntaken(node.logicalDrives, _taken);
        unlinkUntaken(node.storageBoxes, _taken);
        if (node.hba->lastTakenBy != _taken) {
            unlink(*node.hba);
            node.hba->record->physicalDrives = linkTo<SasPhysicalDriveRecord>(nullptr);
            node.hba->record->logicalDrives = linkTo<SasLogicalDriveRecord>(nullptr);
            node.hba->record->storageBoxes = linkTo<SasStorageBoxRecord>(nullptr);
        }
    }
}

void RecordTree::linkChildren(HbaNode& node)
{
    node.hba->record->physicalDrives = linkTo(chain(node.physicalDrives));
    node.hba->record->logicalDrives = linkTo(chain(node.logicalDrives));
    node.hba->record->storageBoxes = linkTo(chain(node.storageBoxes));
}

void RecordTree::write(const ElementPosition& position, const RecordPatch& patch)
{
    const HbaNode& node = _nodes[position.hba];
    switch (position.kind) {
    case ElementKind::Hba:
        return applyPatch(*node.hba->record, patch);
    case ElementKind::PhysicalDrive:
        if (node.physicalDrives[position.element]->linked) // a pulled drive stays as it was last
            applyPatch(*node.physicalDrives[position.element]->record, patch);
        return;
    case ElementKind::LogicalDrive:
        return applyPatch(*node.logicalDrives[position.element]->record, patch);
    case ElementKind::StorageBox:
        return applyPatch(*node.storageBoxes[position.element]->record, patch);
    }
}

void RecordTree::pullDrive(const ElementPosition& position)
{
    HbaNode& node = _nodes[position.hba];
    StoredRecord<SasPhysicalDriveRecord>& drive = *node.physicalDrives[position.element];
    if (!drive.linked) return;
    unlink(drive);
    node.hba->record->physicalDrives = linkTo(chain(node.physicalDrives));
}

void RecordTree::insertDrive(const ElementPosition& position, const SasPhysicalDriveRecord& image)
{
    HbaNode& node = _nodes[position.hba];
    StoredRecord<SasPhysicalDriveRecord>& drive = *node.physicalDrives[position.element];
    if (drive.linked) return;
    link(drive, image);
    node.hba->record->physicalDrives = linkTo(chain(node.physicalDrives));
}

} // namespace KDV
