#include "sasdata/RebuildMarking.h"

#include "sasdata/SasPhysicalDrive.h"

namespace KDV {
namespace {
constexpr std::uint8_t redundancyRebuilding = 4;
constexpr std::uint32_t noRebuildingDrive = 0xFFFFFFFF;
} // namespace

void markRebuildingDrives(const std::vector<SasHba*>& hbas) noexcept
{
    for (const SasHba* hba : hbas) {
        for (SasPhysicalDrive* drive : hba->physicalDrives)
            drive->rebuilding = false;
        // The record list, not the device objects: a logical drive made later counts too.
        for (const auto* record = hba->record->logicalDrives.get(); record; record = record->next.get()) {
            if (record->redundancyState != redundancyRebuilding || record->rebuildingDrive == noRebuildingDrive)
                continue;
            if (SasPhysicalDrive* drive = hba->physicalDriveByNumber(record->rebuildingDrive)) drive->rebuilding = true;
        }
    }
}

} // namespace KDV
