// The records of one root and the lists between them. A source hands over a whole machine, or changes single elements
// by their position in the machine that it handed over last; the tree sees to it that
//   - a record keeps its address, and an element that goes is unlinked but stays readable as it was last;
//   - an element that comes, or comes back, starts with all bytes zero before it is filled;
//   - a record that stays keeps the bytes that belong to the provider (old status, acknowledgement);
//   - lists run in the order of the machine: an element that comes back takes its old place.
// The caller holds the provider's mutex. Throws std::bad_alloc only.
#pragma once

#include "sashba/RecordStore.h"

#include <cstdint>
#include <vector>

namespace KDV {

// Some bytes of a record to write: the image holds them at their offsets.
struct RecordPatch {
    struct Range {
        std::uint32_t offset;
        std::uint32_t bytes;
    };
    std::vector<unsigned char> image;
    std::vector<Range> ranges;
};

enum class ElementKind : std::uint8_t { Hba, PhysicalDrive, LogicalDrive, StorageBox };

struct ElementPosition {
    ElementKind kind = ElementKind::Hba;
    std::uint32_t hba = 0;     // index in the machine
    std::uint32_t element = 0; // index among those of the kind; unused for an HBA
};

class RecordTree {
public:
    RecordTree();
    RecordTree(const RecordTree&) = delete;
    RecordTree& operator=(const RecordTree&) = delete;

    SasHbaRecord* head() const noexcept { return _head; }

    void take(const Machine& machine);

    void write(const ElementPosition& position, const RecordPatch& patch);
    void pullDrive(const ElementPosition& position);
    void insertDrive(const ElementPosition& position, const SasPhysicalDriveRecord& image);

private:
    template <class Record>
    using List = std::vector<StoredRecord<Record>*>;

    struct HbaNode {
        StoredRecord<SasHbaRecord>* hba = nullptr;
        List<SasPhysicalDriveRecord> physicalDrives;
        List<SasLogicalDriveRecord> logicalDrives;
        List<SasStorageBoxRecord> storageBoxes;
    };

    HbaNode takeHba(const MachineHba& source);
    void dropWhatWasNotTaken(const std::vector<HbaNode>& before);
    static void linkChildren(HbaNode& node);

    LowMemory _memory;
    RecordStore<SasHbaRecord> _hbas{_memory};
    RecordStore<SasPhysicalDriveRecord> _physicalDrives{_memory};
    RecordStore<SasLogicalDriveRecord> _logicalDrives{_memory};
    RecordStore<SasStorageBoxRecord> _storageBoxes{_memory};
    std::vector<HbaNode> _nodes;
    SasHbaRecord* _head = nullptr;
    std::uint64_t _taken = 0;
};

} // namespace KDV
