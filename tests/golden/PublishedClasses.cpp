#include "PublishedClasses.h"

#include "instances/KDV_SASArrayController.h"
#include "instances/KDV_SASArraySystem.h"
#include "instances/KDV_SASArraySystemLocation.h"
#include "instances/KDV_SASDAPort.h"
#include "instances/KDV_SASDiskDrive.h"
#include "instances/KDV_SASDiskDriveFirmware.h"
#include "instances/KDV_SASDiskDriveLocation.h"
#include "instances/KDV_SASDiskPhysicalPackage.h"
#include "instances/KDV_SASDriveCage.h"
#include "instances/KDV_SASEnclosureFirmware.h"
#include "instances/KDV_SASFirmware.h"
#include "instances/KDV_SASPhysicalPackage.h"
#include "instances/KDV_SASPortController.h"
#include "instances/KDV_SASPrimordialPool.h"
#include "instances/KDV_SASPrimordialPoolNoRaid.h"
#include "instances/KDV_SASProduct.h"
#include "instances/KDV_SASSCSIProtocolController.h"
#include "instances/KDV_SASSCSIProtocolEndpoint.h"
#include "instances/KDV_SASSmartDriveCarrierAppFirmware.h"
#include "instances/KDV_SASSmartDriveCarrierBootldrFirmware.h"
#include "instances/KDV_SASStorageCapabilities.h"
#include "instances/KDV_SASStorageEnclosure.h"
#include "instances/KDV_SASStorageEnclosureLocation.h"
#include "instances/KDV_SASStorageEnclosureProcessor.h"
#include "instances/KDV_SASStorageExtent.h"
#include "instances/KDV_SASStoragePool.h"
#include "instances/KDV_SASStorageRedundancySet.h"
#include "instances/KDV_SASStorageSetting.h"
#include "instances/KDV_SASStorageSpecificCollection.h"
#include "instances/KDV_SASStorageVolume.h"

namespace KDV::Test {
namespace {

template <class Instance, auto... records>
std::unique_ptr<CmpiManagedInstance> made(const Logger& logger, const GivenRecords& given)
{
    return std::make_unique<Instance>(logger, "root/vnr", given.*records...);
}

} // namespace

const std::vector<PublishedClass>& publishedClasses()
{
    static const std::vector<PublishedClass> classes{
        {"KDV_SASArrayController", &made<KDV_SASArrayController, &GivenRecords::hba>},
        {"KDV_SASArraySystem", &made<KDV_SASArraySystem, &GivenRecords::hba>},
        {"KDV_SASArraySystemLocation", &made<KDV_SASArraySystemLocation, &GivenRecords::hba>},
        {"KDV_SASDAPort", &made<KDV_SASDAPort, &GivenRecords::hba>},
        {"KDV_SASDiskDrive", &made<KDV_SASDiskDrive, &GivenRecords::hba, &GivenRecords::drive>},
        {"KDV_SASDiskDriveFirmware", &made<KDV_SASDiskDriveFirmware, &GivenRecords::drive>},
        {"KDV_SASDiskDriveLocation", &made<KDV_SASDiskDriveLocation, &GivenRecords::drive>},
        {"KDV_SASDiskPhysicalPackage", &made<KDV_SASDiskPhysicalPackage, &GivenRecords::hba, &GivenRecords::drive>},
        {"KDV_SASDriveCage", &made<KDV_SASDriveCage, &GivenRecords::hba, &GivenRecords::box>},
        {"KDV_SASEnclosureFirmware", &made<KDV_SASEnclosureFirmware, &GivenRecords::box>},
        {"KDV_SASFirmware", &made<KDV_SASFirmware, &GivenRecords::hba>},
        {"KDV_SASPhysicalPackage", &made<KDV_SASPhysicalPackage, &GivenRecords::hba>},
        {"KDV_SASPortController", &made<KDV_SASPortController, &GivenRecords::hba>},
        {"KDV_SASPrimordialPool", &made<KDV_SASPrimordialPool, &GivenRecords::hba>},
        {"KDV_SASPrimordialPoolNoRaid", &made<KDV_SASPrimordialPoolNoRaid, &GivenRecords::hba>},
        {"KDV_SASProduct", &made<KDV_SASProduct, &GivenRecords::hba>},
        {"KDV_SASSCSIProtocolController", &made<KDV_SASSCSIProtocolController, &GivenRecords::hba>},
        {"KDV_SASSCSIProtocolEndpoint", &made<KDV_SASSCSIProtocolEndpoint, &GivenRecords::hba>},
        {"KDV_SASSmartDriveCarrierAppFirmware",
         &made<KDV_SASSmartDriveCarrierAppFirmware, &GivenRecords::hba, &GivenRecords::drive>},
        {"KDV_SASSmartDriveCarrierBootldrFirmware",
         &made<KDV_SASSmartDriveCarrierBootldrFirmware, &GivenRecords::hba, &GivenRecords::drive>},
        {"KDV_SASStorageCapabilities", &made<KDV_SASStorageCapabilities, &GivenRecords::hba, &GivenRecords::poolKind>},
        {"KDV_SASStorageEnclosure", &made<KDV_SASStorageEnclosure, &GivenRecords::hba, &GivenRecords::box>},
        {"KDV_SASStorageEnclosureLocation",
         &made<KDV_SASStorageEnclosureLocation, &GivenRecords::hba, &GivenRecords::box>},
        {"KDV_SASStorageEnclosureProcessor",
         &made<KDV_SASStorageEnclosureProcessor, &GivenRecords::hba, &GivenRecords::box>},
        {"KDV_SASStorageExtent", &made<KDV_SASStorageExtent, &GivenRecords::hba, &GivenRecords::driveObject>},
        {"KDV_SASStoragePool", &made<KDV_SASStoragePool, &GivenRecords::hba>},
        {"KDV_SASStorageRedundancySet", &made<KDV_SASStorageRedundancySet, &GivenRecords::volume>},
        {"KDV_SASStorageSetting", &made<KDV_SASStorageSetting, &GivenRecords::hba, &GivenRecords::volume>},
        {"KDV_SASStorageSpecificCollection", &made<KDV_SASStorageSpecificCollection, &GivenRecords::adapters>},
        {"KDV_SASStorageVolume", &made<KDV_SASStorageVolume, &GivenRecords::hba, &GivenRecords::volume>},
    };
    return classes;
}

} // namespace KDV::Test
