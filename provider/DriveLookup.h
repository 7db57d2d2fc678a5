// Finds what a physical drive belongs to: the logical drive that names it as a member or as a spare, and its storage
// box. Holds what scans over an HBA's device objects would find, the first match in order, as the records are at the
// moment when it is made, so that looking up all drives of an HBA costs one walk instead of one per drive. Short-lived:
// made under the provider's lock and dropped before the records are refreshed.
#pragma once

#include "sasdata/SasHba.h"

#include <cstdint>
#include <unordered_map>

namespace KDV {

class DriveLookup {
public:
    explicit DriveLookup(const SasHba& hba);

    // Null when nothing matches.
    SasLogicalDrive* byMember(std::uint32_t driveNumber) const { return find(_byMember, driveNumber); }
    SasLogicalDrive* bySpare(std::uint32_t driveNumber) const { return find(_bySpare, driveNumber); }
    SasStorageBox* box(std::uint32_t boxNumber) const { return find(_boxes, boxNumber); }

private:
    template <class Object>
    using ByNumber = std::unordered_map<std::uint32_t, Object*>;

    template <class Object>
    static Object* find(const ByNumber<Object>& objects, std::uint32_t number)
    {
        const auto found = objects.find(number);
        return found == objects.end() ? nullptr : found->second;
    }

    ByNumber<SasLogicalDrive> _byMember;
    ByNumber<SasLogicalDrive> _bySpare;
    ByNumber<SasStorageBox> _boxes;
};

} // namespace KDV
