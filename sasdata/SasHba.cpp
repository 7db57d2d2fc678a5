#include "sasdata/SasHba.h"

#include "sasdata/SasLogicalDrive.h"
#include "sasdata/SasPhysicalDrive.h"
#include "sasdata/SasStorageBox.h"

#include <algorithm>

namespace KDV {
namespace {

template <class Object, class Predicate>
Object* firstOf(const std::vector<Object*>& objects, Predicate matches) noexcept
{
    const auto found = std::find_if(objects.begin(), objects.end(), matches);
    return found == objects.end() ? nullptr : *found;
}

} // namespace

SasHba::SasHba(const Logger& creator, SasHbaRecord* hbaRecord)
    : hbaNumber(hbaRecord->hbaNumber), record(hbaRecord), logger(creator)
{
    logger.appendLogSource(":");
    logger.appendLogSource("SASHBA");
    logger.info("cxtor()");
}

SasHba::~SasHba() { logger.info("dxtor()"); }

SasPhysicalDrive* SasHba::physicalDriveByNumber(std::uint32_t number) const noexcept
{
    return firstOf(physicalDrives, [=](const SasPhysicalDrive* drive) { return drive->driveNumber == number; });
}

SasStorageBox* SasHba::storageBoxByNumber(std::uint32_t number) const noexcept
{
    return firstOf(storageBoxes, [=](const SasStorageBox* box) { return box->boxNumber == number; });
}

SasLogicalDrive* SasHba::logicalDriveByMember(std::uint32_t driveNumber) const noexcept
{
    return firstOf(logicalDrives, [=](const SasLogicalDrive* drive) { return drive->hasMember(driveNumber); });
}

SasLogicalDrive* SasHba::logicalDriveBySpare(std::uint32_t driveNumber) const noexcept
{
    return firstOf(logicalDrives, [=](const SasLogicalDrive* drive) { return drive->hasSpare(driveNumber); });
}

} // namespace KDV
