#include "sashba/sysfs/AdapterMemory.h"

#include <algorithm>
#include <cstring>
#include <set>

namespace KDV {
namespace {

constexpr std::size_t mostKept = 256; // of adapters that come and go under ever new names

template <class Record>
void giveNumber(std::vector<Element<Record>>& elements, std::uint32_t hba)
{
    for (Element<Record>& element : elements)
        element.image.hbaNumber = hba;
}

void renumber(MachineHba& hba, std::uint32_t number)
{
    hba.hba.key.number = number;
    hba.hba.image.hbaNumber = number;
    giveNumber(hba.physicalDrives, number);
    giveNumber(hba.logicalDrives, number);
    giveNumber(hba.storageBoxes, number);
}

bool sameName(const SasHbaRecord& left, const SasHbaRecord& right)
{
    return std::memcmp(left.name, right.name, sizeof left.name) == 0;
}

} // namespace

void AdapterMemory::complete(Machine& machine)
{
    std::set<std::uint32_t> present;
    for (const MachineHba& hba : machine)
        present.insert(hba.hba.key.number);
    for (MachineHba& hba : machine) {
        const auto known = std::find_if(_known.begin(), _known.end(),
                                        [&hba](const auto& entry) { return sameName(entry.second, hba.hba.image); });
        if (known == _known.end() || !present.insert(known->first).second) continue;
        present.erase(hba.hba.key.number);
        renumber(hba, known->first);
    }
    for (const MachineHba& hba : machine)
        _known[hba.hba.key.number] = hba.hba.image;
    for (auto& [number, image] : _known) {
        if (present.count(number) != 0) continue;
        machine.emplace_back();
        machine.back().hba.key.number = number;
        image.controllerStatus = 3; // failed
        image.arraySystemStatus = 4;
        machine.back().hba.image = image;
    }
    while (_known.size() > mostKept)
        _known.erase(std::prev(_known.end()));
}

} // namespace KDV
