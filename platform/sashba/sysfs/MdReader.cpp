#include "sashba/sysfs/MdReader.h"

#include "sashba/sysfs/DevicePath.h"

namespace KDV {
namespace {

constexpr std::size_t mostMembers = 4096;

// The number of "rd0"; md gives every active place such a link, and "slot" the same number or "none".
MdMember readMember(const SysfsTree& tree, const std::string& folder)
{
    MdMember member;
    member.slot = tree.number(folder + "/slot");
    member.state = tree.text(folder + "/state");
    member.device = splitDevicePath(tree.target(folder + "/block")).device; // of a disk or of a partition on it
    return member;
}

} // namespace

std::vector<MdArray> readMdArrays(const SysfsTree& tree)
{
    std::vector<MdArray> arrays;
    for (const std::string& name : tree.names("block")) {
        if (name.compare(0, 2, "md") != 0) continue;
        const std::string block = tree.target("block/" + name);
        const std::string md = block + "/md";
        if (block.empty() || tree.identity(md) == 0) continue;
        MdArray array;
        array.name = name;
        array.level = tree.text(md + "/level");
        array.arrayState = tree.text(md + "/array_state");
        array.syncAction = tree.text(md + "/sync_action");
        array.disks = tree.number(md + "/raid_disks");
        array.degraded = tree.number(md + "/degraded");
        array.sectors = tree.number(block + "/size").value_or(0);
        for (const std::string& entry : tree.names(md)) {
            if (entry.compare(0, 4, "dev-") == 0 && array.members.size() < mostMembers)
                array.members.push_back(readMember(tree, md + "/" + entry));
        }
        arrays.push_back(std::move(array));
    }
    return arrays;
}

} // namespace KDV
