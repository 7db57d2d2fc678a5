#include "sashba/sysfs/MdReader.h"

#include "sashba/sysfs/DevicePath.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace KDV {
namespace {

constexpr std::size_t mostMembers = 4096;

// Path of the SCSI device that a block device is, or is a part of, or is a way to: the device mapper stands between an
// array and disks with two paths, or with encryption. A few looks are enough for those.
std::string deviceBelow(const SysfsTree& tree, const std::string& block, int& looks)
{
    std::string device = splitDevicePath(block).device;
    if (!device.empty() || lastOf(block).compare(0, 3, "dm-") != 0) return device;
    for (const std::string& name : tree.names(block + "/slaves")) {
        if (!device.empty() || --looks < 0) break;
        device = deviceBelow(tree, tree.target(block + "/slaves/" + name), looks);
    }
    return device;
}

std::string deviceBelow(const SysfsTree& tree, const std::string& block)
{
    int looks = 16;
    return deviceBelow(tree, block, looks);
}

std::string deviceNamed(const SysfsTree& tree, const std::string& block)
{
    for (const char* list : {"class/block/", "block/"}) {
        std::string device = deviceBelow(tree, tree.target(list + block));
        if (!device.empty()) return device;
    }
    return {};
}

// "slot" is the number of the place in the array, "none", or "journal".
MdMember readMember(const SysfsTree& tree, const std::string& folder)
{
    MdMember member;
    member.slot = tree.number(folder + "/slot");
    member.state = tree.text(folder + "/state");
    member.device = deviceBelow(tree, tree.target(folder + "/block"));
    if (member.device.empty()) member.device = deviceNamed(tree, lastOf(folder).substr(4));
    return member;
}

// A set of disks with a maker's metadata is no array: its arrays stand beside it, and their metadata names it
// ("external:/md127/0", with a '-' while they are taken apart).
bool isContainer(const std::string& metadata)
{
    constexpr std::string_view external = "external:";
    if (metadata.compare(0, external.size(), external) != 0) return false;
    const std::string name = metadata.substr(external.size());
    return !name.empty() && name.front() != '/' && name.front() != '-';
}

std::optional<MdArray> readArray(const SysfsTree& tree, const std::string& name, const std::string& block)
{
    const std::string md = block + "/md";
    if (tree.identity(md) == 0 || isContainer(tree.text(md + "/metadata_version"))) return std::nullopt;
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
    std::stable_sort(array.members.begin(), array.members.end(), [](const MdMember& left, const MdMember& right) {
        return left.slot.value_or(mostMembers) < right.slot.value_or(mostMembers);
    });
    return array;
}

} // namespace

std::vector<MdArray> readMdArrays(const SysfsTree& tree)
{
    std::vector<MdArray> arrays;
    std::string list = "block";
    std::vector<std::string> names = tree.names(list);
    if (names.empty()) names = tree.names(list = "class/block"); // the same and the partitions
    for (const std::string& name : names) {
        if (name.compare(0, 2, "md") != 0) continue;
        const std::string block = tree.target(list + "/" + name);
        if (block.empty()) continue;
        if (std::optional<MdArray> array = readArray(tree, name, block)) arrays.push_back(std::move(*array));
    }
    return arrays;
}

} // namespace KDV
