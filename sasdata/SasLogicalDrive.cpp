#include "sasdata/SasLogicalDrive.h"

#include <cstring>
#include <iterator>

namespace KDV {
namespace {

// Entry of a list of drive numbers, which starts at an odd offset: copied, because no reference may bind to it.
std::uint32_t entry(const SasLogicalDriveRecord& record, std::size_t listOffset, std::size_t index) noexcept
{
    std::uint32_t number;
    std::memcpy(&number, reinterpret_cast<const unsigned char*>(&record) + listOffset + index * sizeof number,
                sizeof number);
    return number;
}

constexpr std::size_t memberCapacity = std::size(decltype(SasLogicalDriveRecord::members){});
constexpr std::size_t spareCapacity = std::size(decltype(SasLogicalDriveRecord::spares){});

} // namespace

SasLogicalDrive::SasLogicalDrive(const Logger& creator, SasLogicalDriveRecord* logicalDriveRecord)
    : logicalDriveNumber(logicalDriveRecord->logicalDriveNumber), record(logicalDriveRecord), logger(creator)
{
    logger.appendLogSource(":");
    logger.appendLogSource("SASLogicalDrives");
    logger.info("cxtor()");
}

SasLogicalDrive::~SasLogicalDrive() { logger.info("dxtor()"); }

bool SasLogicalDrive::hasMember(std::uint32_t driveNumber) const noexcept
{
    for (std::size_t i = 0; i < memberCapacity && i < record->memberCount; ++i)
        if (entry(*record, offsetof(SasLogicalDriveRecord, members), i) == driveNumber) return true;
    return false;
}

bool SasLogicalDrive::hasSpare(std::uint32_t driveNumber) const noexcept
{
    for (std::size_t i = 0; i < spareCapacity && i < record->spareCount; ++i)
        if (entry(*record, offsetof(SasLogicalDriveRecord, spares), i) == driveNumber) return true;
    return false;
}

} // namespace KDV
