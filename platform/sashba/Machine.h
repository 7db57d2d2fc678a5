// What a source knows about the machine, as plain values: the elements of every HBA in list order, each with an image
// of its record. A source fills it and hands it to the record tree, which copies the images into the real records.
// Links and the bytes that the provider owns are meaningless in an image; the tree leaves them alone.
#pragma once

#include "records/Records.h"

#include <cstdint>
#include <vector>

namespace KDV {

// Names an element among those of its kind on its HBA, for the life of the process: the same number means the same
// record. The occurrence tells apart elements that share a number (0 the first).
struct ElementKey {
    std::uint32_t number = 0;
    std::uint32_t occurrence = 0;
};

template <class Record>
struct Element {
    ElementKey key;
    Record image{};
    bool present = true; // an absent one keeps its place in the order for the day when it comes
};

struct MachineHba {
    Element<SasHbaRecord> hba;
    std::vector<Element<SasPhysicalDriveRecord>> physicalDrives;
    std::vector<Element<SasLogicalDriveRecord>> logicalDrives;
    std::vector<Element<SasStorageBoxRecord>> storageBoxes;
};

using Machine = std::vector<MachineHba>;

} // namespace KDV
