#include "sasdata/SasPhysicalDrive.h"

namespace KDV {
namespace {
constexpr std::uint8_t notConfiguredForRaid = 4;
}

SasPhysicalDrive::SasPhysicalDrive(const Logger& creator, SasPhysicalDriveRecord* physicalDriveRecord)
    : driveNumber(physicalDriveRecord->driveNumber), record(physicalDriveRecord),
      hotPlugTracked(physicalDriveRecord->usage == notConfiguredForRaid), logger(creator)
{
    logger.appendLogSource(":");
    logger.appendLogSource("KDV_SASPhyscialDisk"); // spelt so on purpose: log filters know it by this name
    logger.info("cxtor()");
}

SasPhysicalDrive::~SasPhysicalDrive() { logger.info("dxtor()"); }

} // namespace KDV
