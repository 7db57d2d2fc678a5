#include "provider/DriveLookup.h"

#include "records/Records.h"
#include "sasdata/SasLogicalDrive.h"
#include "sasdata/SasStorageBox.h"

#include <algorithm>

namespace KDV {
namespace {

// Copied: the lists are unaligned, and a count may claim more than the record holds.
template <std::size_t capacity>
void index(std::unordered_map<std::uint32_t, SasLogicalDrive*>& drives, SasLogicalDrive* owner, std::uint32_t count,
           const unsigned char* numbers)
{
    const std::size_t held = std::min<std::size_t>(count, capacity);
    for (std::size_t i = 0; i < held; ++i) {
        std::uint32_t number;
        std::memcpy(&number, numbers + i * sizeof number, sizeof number);
        drives.emplace(number, owner); // the first owner stays
    }
}

} // namespace

DriveLookup::DriveLookup(const SasHba& hba)
{
    for (SasLogicalDrive* drive : hba.logicalDrives) {
        const SasLogicalDriveRecord& record = *drive->record;
        const auto* const bytes = reinterpret_cast<const unsigned char*>(&record);
        index<std::size(decltype(record.members){})>(_byMember, drive, record.memberCount,
                                                     bytes + offsetof(SasLogicalDriveRecord, members));
        index<std::size(decltype(record.spares){})>(_bySpare, drive, record.spareCount,
                                                    bytes + offsetof(SasLogicalDriveRecord, spares));
    }
    for (SasStorageBox* box : hba.storageBoxes)
        _boxes.emplace(box->boxNumber, box);
}

} // namespace KDV
