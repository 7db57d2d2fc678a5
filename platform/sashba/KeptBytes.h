// Which bytes of a record the data library never writes over while the record is in its list: the links, which the
// tree sets, and the bytes that belong to the provider. Everything here is plain copying; the caller locks.
#pragma once

#include "sashba/RecordTree.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace KDV {

struct ByteRange {
    std::size_t offset;
    std::size_t bytes;
};

// In ascending order of offset.
template <class Record>
struct KeptBytes;

template <>
struct KeptBytes<SasHbaRecord> {
    static constexpr ByteRange ranges[] = {{offsetof(SasHbaRecord, next), 4},
                                           {offsetof(SasHbaRecord, physicalDrives), 12}, // the three list heads
                                           {offsetof(SasHbaRecord, oldControllerStatus), 1}};
};

template <>
struct KeptBytes<SasPhysicalDriveRecord> {
    static constexpr ByteRange ranges[] = {{offsetof(SasPhysicalDriveRecord, next), 4},
                                           {offsetof(SasPhysicalDriveRecord, oldStatus), 1},
                                           {offsetof(SasPhysicalDriveRecord, acknowledged), 1}};
};

template <>
struct KeptBytes<SasLogicalDriveRecord> {
    static constexpr ByteRange ranges[] = {{offsetof(SasLogicalDriveRecord, next), 4},
                                           {offsetof(SasLogicalDriveRecord, oldRedundancyState), 1}};
};

template <>
struct KeptBytes<SasStorageBoxRecord> {
    static constexpr ByteRange ranges[] = {{offsetof(SasStorageBoxRecord, next), 4},
                                           {offsetof(SasStorageBoxRecord, oldFanStatus), 3}}; // fan, temperature, power
};

// Copies everything but the kept bytes.
template <class Record>
void copyKeeping(Record& to, const Record& from)
{
    auto* target = reinterpret_cast<unsigned char*>(&to);
    const auto* source = reinterpret_cast<const unsigned char*>(&from);
    std::size_t at = 0;
    for (const ByteRange& kept : KeptBytes<Record>::ranges) {
        std::memcpy(target + at, source + at, kept.offset - at);
        at = kept.offset + kept.bytes;
    }
    std::memcpy(target + at, source + at, sizeof(Record) - at);
}

// Copies the ranges of a patch. A patch is made from the table of fields, which names no kept byte.
template <class Record>
void applyPatch(Record& to, const RecordPatch& patch)
{
    auto* target = reinterpret_cast<unsigned char*>(&to);
    for (const RecordPatch::Range& range : patch.ranges)
        std::memcpy(target + range.offset, patch.image.data() + range.offset, range.bytes);
}

} // namespace KDV
