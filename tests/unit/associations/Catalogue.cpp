#include "Catalogue.h"

#include "associations/KDV_SASArraySystemArrayController.h"
#include "associations/KDV_SASArraySystemDAPort.h"
#include "associations/KDV_SASArraySystemDiskDrive.h"
#include "associations/KDV_SASArraySystemFirmware.h"
#include "associations/KDV_SASArraySystemPortController.h"
#include "associations/KDV_SASArraySystemPrimordialPool.h"
#include "associations/KDV_SASArraySystemPrimordialPoolNoRaid.h"
#include "associations/KDV_SASArraySystemSCSIProtocolController.h"
#include "associations/KDV_SASArraySystemStorageEnclosureProcessor.h"
#include "associations/KDV_SASArraySystemStorageExtent.h"
#include "associations/KDV_SASArraySystemStoragePool.h"
#include "associations/KDV_SASArraySystemStorageVolume.h"
#include "associations/KDV_SASComputerSystemArraySystem.h"
#include "associations/KDV_SASDAPortSCSIProtocolEndpoint.h"
#include "associations/KDV_SASDiskDriveDiskDriveFirmware.h"
#include "associations/KDV_SASDiskPhysicalPackageDiskDrive.h"
#include "associations/KDV_SASDiskPhysicalPackageDiskDriveLocation.h"
#include "associations/KDV_SASDriveCageDiskPhysicalPackage.h"
#include "associations/KDV_SASFirmwareArraySystem.h"
#include "associations/KDV_SASPhysicalPackageArraySystem.h"
#include "associations/KDV_SASPhysicalPackageArraySystemLocation.h"
#include "associations/KDV_SASPrimordialPoolNoRaidStorageCapabilities.h"
#include "associations/KDV_SASPrimordialPoolNoRaidStorageExtent.h"
#include "associations/KDV_SASPrimordialPoolStorageCapabilities.h"
#include "associations/KDV_SASPrimordialPoolStorageExtent.h"
#include "associations/KDV_SASPrimordialPoolStoragePool.h"
#include "associations/KDV_SASProductPhysicalPackage.h"
#include "associations/KDV_SASSCSIProtocolControllerStorageVolume.h"
#include "associations/KDV_SASSCSIProtocolEndpointSCSIProtocolController.h"
#include "associations/KDV_SASSmartDrvCarrierAppElementFirmwareIdentity.h"
#include "associations/KDV_SASSmartDrvCarrierAppInstalledFirmwareIdentity.h"
#include "associations/KDV_SASSmartDrvCarrierBootldrElementFirmwareIdentity.h"
#include "associations/KDV_SASSmartDrvCarrierBootldrInstalledFirmwareIdentity.h"
#include "associations/KDV_SASSpareExtentStorageRedundancySet.h"
#include "associations/KDV_SASStorageEnclosureDriveCage.h"
#include "associations/KDV_SASStorageEnclosureEnclosureLocation.h"
#include "associations/KDV_SASStorageEnclosureProcessorEnclosureFirmware.h"
#include "associations/KDV_SASStorageEnclosureStorageEnclosureProcessor.h"
#include "associations/KDV_SASStorageExtentStorageVolume.h"
#include "associations/KDV_SASStorageGroupHostedCollection.h"
#include "associations/KDV_SASStoragePoolStorageCapabilities.h"
#include "associations/KDV_SASStoragePoolStorageExtent.h"
#include "associations/KDV_SASStoragePoolStorageVolume.h"
#include "associations/KDV_SASStorageRedundancySetStorageExtent.h"
#include "associations/KDV_SASStorageSpecificCollectionArraySystem.h"
#include "associations/KDV_SASStorageVolumeStorageSetting.h"

namespace KDV::Test {
namespace {

using Made = std::unique_ptr<CmpiManagedInstanceAssociation>;

template <class Association>
Made between(const Logger& logger, const Given& ends)
{
    return std::make_unique<Association>(logger, "root/vnr", ends.first, ends.second);
}

// The second end is of a class that the association asks for more than its path.
template <class Association, class Second>
Made knowing(const Logger& logger, const Given& ends)
{
    return std::make_unique<Association>(logger, "root/vnr", ends.first, dynamic_cast<const Second*>(ends.second));
}

template <class Association>
Made hosted(const Logger& logger, const Given& ends)
{
    return std::make_unique<Association>(logger, "root/vnr", *ends.computerSystem, ends.second);
}

} // namespace

// clang-format off
const std::vector<Entry>& catalogue()
{
    static const std::vector<Entry> entries{
        {"KDV_SASArraySystemSCSIProtocolController", "KDV_SASArraySystem", "KDV_SASSCSIProtocolController",
         "GroupComponent", true, "PartComponent", true, Says::Nothing,
         {}, &between<KDV_SASArraySystemSCSIProtocolController>},
        {"KDV_SASArraySystemPortController", "KDV_SASArraySystem", "KDV_SASPortController",
         "SameElement", true, "SystemElement", false, Says::Everything,
         {}, &between<KDV_SASArraySystemPortController>},
        {"KDV_SASArraySystemDAPort", "KDV_SASArraySystem", "KDV_SASDAPort",
         "GroupComponent", true, "PartComponent", true, Says::Nothing,
         {}, &between<KDV_SASArraySystemDAPort>},
        {"KDV_SASArraySystemPrimordialPool", "KDV_SASArraySystem", "KDV_SASPrimordialPool",
         "GroupComponent", true, "PartComponent", true, Says::Nothing,
         {}, &between<KDV_SASArraySystemPrimordialPool>},
        {"KDV_SASArraySystemPrimordialPoolNoRaid", "KDV_SASArraySystem", "KDV_SASPrimordialPoolNoRaid",
         "GroupComponent", true, "PartComponent", true, Says::Nothing,
         {}, &between<KDV_SASArraySystemPrimordialPoolNoRaid>},
        {"KDV_SASArraySystemStoragePool", "KDV_SASArraySystem", "KDV_SASStoragePool",
         "GroupComponent", true, "PartComponent", true, Says::Nothing,
         {}, &between<KDV_SASArraySystemStoragePool>},
        {"KDV_SASPrimordialPoolStoragePool", "KDV_SASPrimordialPool", "KDV_SASStoragePool",
         "Antecedent", true, "Dependent", true, Says::OnlyGetInstance,
         {"uint64 SpaceConsumed 300"}, &knowing<KDV_SASPrimordialPoolStoragePool, KDV_SASStoragePool>},
        {"KDV_SASComputerSystemArraySystem", computerSystem, "KDV_SASArraySystem",
         "GroupComponent", true, "PartComponent", false, Says::Everything,
         {}, &hosted<KDV_SASComputerSystemArraySystem>},
        {"KDV_SASArraySystemArrayController", "KDV_SASArraySystem", "KDV_SASArrayController",
         "GroupComponent", true, "PartComponent", true, Says::Nothing,
         {}, &between<KDV_SASArraySystemArrayController>},
        {"KDV_SASProductPhysicalPackage", "KDV_SASProduct", "KDV_SASPhysicalPackage",
         "GroupComponent", true, "PartComponent", true, Says::Nothing,
         {}, &between<KDV_SASProductPhysicalPackage>},
        {"KDV_SASArraySystemFirmware", "KDV_SASArraySystem", "KDV_SASFirmware",
         "InstalledSoftware", false, "System", false, Says::Everything,
         {}, &between<KDV_SASArraySystemFirmware>},
        {"KDV_SASFirmwareArraySystem", "KDV_SASFirmware", "KDV_SASArraySystem",
         "Antecedent", true, "Dependent", true, Says::OnlyGetInstance,
         {"uint16[] ElementSoftwareStatus {2, 6}"}, &between<KDV_SASFirmwareArraySystem>},
        {"KDV_SASDAPortSCSIProtocolEndpoint", "KDV_SASDAPort", "KDV_SASSCSIProtocolEndpoint",
         "Antecedent", true, "Dependent", true, Says::Nothing,
         {}, &between<KDV_SASDAPortSCSIProtocolEndpoint>},
        {"KDV_SASPhysicalPackageArraySystem", "KDV_SASPhysicalPackage", "KDV_SASArraySystem",
         "Antecedent", true, "Dependent", true, Says::Nothing,
         {}, &between<KDV_SASPhysicalPackageArraySystem>},
        {"KDV_SASPhysicalPackageArraySystemLocation", "KDV_SASPhysicalPackage", "KDV_SASArraySystemLocation",
         "PhysicalLocation", false, "Element", false, Says::Everything,
         {}, &between<KDV_SASPhysicalPackageArraySystemLocation>},
        {"KDV_SASSCSIProtocolEndpointSCSIProtocolController",
         "KDV_SASSCSIProtocolEndpoint", "KDV_SASSCSIProtocolController",
         "AvailableSAP", true, "ManagedElement", false, Says::Everything,
         {}, &between<KDV_SASSCSIProtocolEndpointSCSIProtocolController>},
        {"KDV_SASPrimordialPoolStorageCapabilities", "KDV_SASStorageCapabilities", "KDV_SASPrimordialPool",
         "Capabilities", true, "ManagedElement", false, Says::Everything,
         {}, &between<KDV_SASPrimordialPoolStorageCapabilities>},
        {"KDV_SASPrimordialPoolNoRaidStorageCapabilities", "KDV_SASStorageCapabilities", "KDV_SASPrimordialPoolNoRaid",
         "Capabilities", true, "ManagedElement", false, Says::Everything,
         {}, &between<KDV_SASPrimordialPoolNoRaidStorageCapabilities>},
        {"KDV_SASStoragePoolStorageCapabilities", "KDV_SASStorageCapabilities", "KDV_SASStoragePool",
         "Capabilities", true, "ManagedElement", false, Says::Everything,
         {}, &between<KDV_SASStoragePoolStorageCapabilities>},
        {"KDV_SASArraySystemStorageEnclosureProcessor", "KDV_SASArraySystem", "KDV_SASStorageEnclosureProcessor",
         "GroupComponent", true, "PartComponent", true, Says::Nothing,
         {}, &between<KDV_SASArraySystemStorageEnclosureProcessor>},
        {"KDV_SASStorageEnclosureDriveCage", "KDV_SASStorageEnclosure", "KDV_SASDriveCage",
         "GroupComponent", true, "PartComponent", true, Says::Nothing,
         {}, &between<KDV_SASStorageEnclosureDriveCage>},
        {"KDV_SASStorageEnclosureEnclosureLocation", "KDV_SASStorageEnclosure", "KDV_SASStorageEnclosureLocation",
         "PhysicalLocation", false, "Element", false, Says::Everything,
         {}, &between<KDV_SASStorageEnclosureEnclosureLocation>},
        {"KDV_SASStorageEnclosureProcessorEnclosureFirmware",
         "KDV_SASEnclosureFirmware", "KDV_SASStorageEnclosureProcessor",
         "Antecedent", true, "Dependent", true, Says::OnlyGetInstance,
         {"uint16[] ElementSoftwareStatus {2, 6}"}, &between<KDV_SASStorageEnclosureProcessorEnclosureFirmware>},
        {"KDV_SASStorageEnclosureStorageEnclosureProcessor",
         "KDV_SASStorageEnclosure", "KDV_SASStorageEnclosureProcessor",
         "Antecedent", true, "Dependent", true, Says::Nothing,
         {}, &between<KDV_SASStorageEnclosureStorageEnclosureProcessor>},
        {"KDV_SASStorageVolumeStorageSetting", "KDV_SASStorageVolume", "KDV_SASStorageSetting",
         "ManagedElement", true, "SettingData", false, Says::Everything,
         {"uint16 IsCurrent 1", "uint16 IsDefault 1"}, &between<KDV_SASStorageVolumeStorageSetting>},
        {"KDV_SASArraySystemStorageVolume", "KDV_SASArraySystem", "KDV_SASStorageVolume",
         "GroupComponent", true, "PartComponent", true, Says::Nothing,
         {}, &between<KDV_SASArraySystemStorageVolume>},
        {"KDV_SASSCSIProtocolControllerStorageVolume", "KDV_SASSCSIProtocolController", "KDV_SASStorageVolume",
         "Antecedent", true, "Dependent", true, Says::Nothing,
         {"string DeviceNumber \"7\"", "uint16 DeviceAccess 2"},
         &knowing<KDV_SASSCSIProtocolControllerStorageVolume, KDV_SASStorageVolume>},
        {"KDV_SASStoragePoolStorageVolume", "KDV_SASStoragePool", "KDV_SASStorageVolume",
         "Antecedent", true, "Dependent", true, Says::OnlyGetInstance,
         {"uint64 SpaceConsumed 1048576000"}, &knowing<KDV_SASStoragePoolStorageVolume, KDV_SASStorageVolume>},
        {"KDV_SASArraySystemDiskDrive", "KDV_SASArraySystem", "KDV_SASDiskDrive",
         "GroupComponent", true, "PartComponent", true, Says::Nothing,
         {}, &between<KDV_SASArraySystemDiskDrive>},
        {"KDV_SASArraySystemStorageExtent", "KDV_SASArraySystem", "KDV_SASStorageExtent",
         "GroupComponent", true, "PartComponent", true, Says::Nothing,
         {}, &between<KDV_SASArraySystemStorageExtent>},
        {"KDV_SASDiskDriveDiskDriveFirmware", "KDV_SASDiskDriveFirmware", "KDV_SASDiskDrive",
         "Antecedent", true, "Dependent", true, Says::OnlyGetInstance,
         {"uint16[] ElementSoftwareStatus {2, 6}"}, &between<KDV_SASDiskDriveDiskDriveFirmware>},
        {"KDV_SASDiskPhysicalPackageDiskDrive", "KDV_SASDiskPhysicalPackage", "KDV_SASDiskDrive",
         "Antecedent", true, "Dependent", true, Says::Nothing,
         {}, &between<KDV_SASDiskPhysicalPackageDiskDrive>},
        {"KDV_SASDiskPhysicalPackageDiskDriveLocation", "KDV_SASDiskPhysicalPackage", "KDV_SASDiskDriveLocation",
         "PhysicalLocation", false, "Element", false, Says::Everything,
         {}, &between<KDV_SASDiskPhysicalPackageDiskDriveLocation>},
        {"KDV_SASPrimordialPoolNoRaidStorageExtent", "KDV_SASPrimordialPoolNoRaid", "KDV_SASStorageExtent",
         "GroupComponent", true, "PartComponent", true, Says::Nothing,
         {}, &between<KDV_SASPrimordialPoolNoRaidStorageExtent>},
        {"KDV_SASStoragePoolStorageExtent", "KDV_SASStoragePool", "KDV_SASStorageExtent",
         "GroupComponent", true, "PartComponent", true, Says::Nothing,
         {}, &between<KDV_SASStoragePoolStorageExtent>},
        {"KDV_SASPrimordialPoolStorageExtent", "KDV_SASPrimordialPool", "KDV_SASStorageExtent",
         "GroupComponent", true, "PartComponent", true, Says::Nothing,
         {}, &between<KDV_SASPrimordialPoolStorageExtent>},
        {"KDV_SASStorageExtentStorageVolume", "KDV_SASStorageExtent", "KDV_SASStorageVolume",
         "Antecedent", true, "Dependent", true, Says::Nothing,
         {}, &between<KDV_SASStorageExtentStorageVolume>},
        {"KDV_SASStorageRedundancySetStorageExtent", "KDV_SASStorageRedundancySet", "KDV_SASStorageExtent",
         "Collection", true, "Member", false, Says::Everything,
         {}, &between<KDV_SASStorageRedundancySetStorageExtent>},
        {"KDV_SASSpareExtentStorageRedundancySet", "KDV_SASStorageExtent", "KDV_SASStorageRedundancySet",
         "Antecedent", true, "Dependent", true, Says::Nothing,
         {}, &between<KDV_SASSpareExtentStorageRedundancySet>},
        {"KDV_SASDriveCageDiskPhysicalPackage", "KDV_SASDriveCage", "KDV_SASDiskPhysicalPackage",
         "GroupComponent", true, "PartComponent", true, Says::Nothing,
         {}, &between<KDV_SASDriveCageDiskPhysicalPackage>},
        {"KDV_SASSmartDrvCarrierAppElementFirmwareIdentity", "KDV_SASDiskDrive", "KDV_SASSmartDriveCarrierAppFirmware",
         "Dependent", true, "Antecedent", true, Says::Nothing,
         {"uint16[] ElementSoftwareStatus {2, 6}", "uint16 UpgradeCondition 3"},
         &between<KDV_SASSmartDrvCarrierAppElementFirmwareIdentity>},
        {"KDV_SASSmartDrvCarrierAppInstalledFirmwareIdentity",
         "KDV_SASArraySystem", "KDV_SASSmartDriveCarrierAppFirmware",
         "System", true, "InstalledSoftware", false, Says::Nothing,
         {}, &between<KDV_SASSmartDrvCarrierAppInstalledFirmwareIdentity>},
        {"KDV_SASSmartDrvCarrierBootldrElementFirmwareIdentity",
         "KDV_SASDiskDrive", "KDV_SASSmartDriveCarrierBootldrFirmware",
         "Dependent", true, "Antecedent", true, Says::Nothing,
         {"uint16[] ElementSoftwareStatus {2, 6}", "uint16 UpgradeCondition 3"},
         &between<KDV_SASSmartDrvCarrierBootldrElementFirmwareIdentity>},
        {"KDV_SASSmartDrvCarrierBootldrInstalledFirmwareIdentity",
         "KDV_SASArraySystem", "KDV_SASSmartDriveCarrierBootldrFirmware",
         "System", true, "InstalledSoftware", false, Says::Nothing,
         {}, &between<KDV_SASSmartDrvCarrierBootldrInstalledFirmwareIdentity>},
        {"KDV_SASStorageSpecificCollectionArraySystem", "KDV_SASArraySystem", "KDV_SASStorageSpecificCollection",
         "Member", true, "Collection", true, Says::Nothing,
         {}, &between<KDV_SASStorageSpecificCollectionArraySystem>},
        {"KDV_SASStorageGroupHostedCollection", computerSystem, "KDV_SASStorageSpecificCollection",
         "Antecedent", true, "Dependent", false, Says::Everything,
         {}, &hosted<KDV_SASStorageGroupHostedCollection>},
    };
    return entries;
}
// clang-format on

} // namespace KDV::Test
