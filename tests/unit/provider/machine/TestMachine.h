// A machine for tests: records that a test builds and changes by hand, given to the provider by the two functions of
// the data library (DataLibrary.cpp). Records lie below 4 GiB, keep their address and live as long as the process.
// Not locked: change it while no pass runs, or from whenUpdated, which runs inside the pass.
#pragma once

#include "records/Records.h"

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace KDV::Test {

inline constexpr std::uint8_t memberUsage = 2;
inline constexpr std::uint8_t spareUsage = 3;
inline constexpr std::uint8_t unassignedUsage = 4;

class TestMachine {
public:
    // Healthy records, appended to their list. Names and serial numbers follow from the numbers.
    SasHbaRecord& addHba(std::uint32_t number);
    SasLogicalDriveRecord& addVolume(SasHbaRecord& hba, std::uint32_t number, const std::vector<std::uint32_t>& members,
                                     const std::vector<std::uint32_t>& spares = {});
    SasStorageBoxRecord& addBox(SasHbaRecord& hba, std::uint8_t number);
    SasPhysicalDriveRecord& addDrive(SasHbaRecord& hba, std::uint32_t number, std::uint8_t usage,
                                     std::uint32_t boxNumber = 1);

    void pull(SasHbaRecord& hba, std::uint32_t driveNumber);
    void insert(SasHbaRecord& hba, SasPhysicalDriveRecord& drive); // at the end of the list
    void clear();                                                  // no HBA, no calls counted, no hooks

    // Run inside the library's functions, after their own work; they may change records and may throw.
    std::function<void(SasDataRoot&)> whenCreated;
    std::function<void(SasDataRoot&)> whenUpdated;

    unsigned created() const { return _created; }
    unsigned updated() const { return _updated; }

    // The two functions of the data library.
    void createLists(SasDataRoot& root);
    void update(SasDataRoot& root);

private:
    std::vector<SasHbaRecord*> _hbas;
    unsigned _created = 0;
    unsigned _updated = 0;
};

// Writes a text into a field of a record, cut to fit.
template <std::size_t capacity>
void put(char (&field)[capacity], std::string_view text)
{
    std::memset(field, 0, capacity);
    std::memcpy(field, text.data(), text.size() < capacity ? text.size() : capacity - 1);
}

} // namespace KDV::Test

// The one machine of the process, by an unmangled name so that a test finds it in a library that it loads.
extern "C" KDV::Test::TestMachine* kdvTestMachine();
