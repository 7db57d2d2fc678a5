#include "instances/RaidText.h"

#include "instances/Joined.h"

namespace KDV {
namespace {

constexpr CodeMap<const char*, 5> levels{
    {{2, "RAID 0"}, {3, "RAID 1"}, {4, "RAID 0+1"}, {5, "RAID 5"}, {6, "RAID 1+5"}}, "No RAID"};

} // namespace

const char* raidText(std::uint8_t raidLevel) noexcept { return levels[raidLevel]; }

std::string volumeElementText(std::uint32_t logicalDriveNumber)
{
    return joined({"Logical Volume ", logicalDriveNumber});
}

std::string volumeDeviceText(std::uint32_t logicalDriveNumber)
{
    return joined({"StorageVolume:", logicalDriveNumber});
}

} // namespace KDV
