// What is published for which record, in which order. The order is that of every enumeration, so each list below is
// part of what clients see. Runs when the provider is made, for physical drives also in a pass that finds a new disk.
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
#include "common/KDVUtil.h"
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
#include "provider/KDVSASHBAProvider.h"
#include "records/SasDataLibrary.h"

#include <cstring>

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr std::uint8_t usageMember = 2;
constexpr std::uint8_t usageSpare = 3;
constexpr std::uint8_t noSmartCarrier = 2;

template <class Record>
std::size_t lengthOf(const Record* record)
{
    std::size_t length = 0;
    for (; record; record = record->next.get())
        ++length;
    return length;
}

// About how many objects the records will make; a list that grows by doubling would hold twice the memory.
std::size_t expectedObjects(const SasDataRoot& root)
{
    std::size_t objects = 2;
    for (const auto* hba = root.hbas.get(); hba; hba = hba->next.get())
        objects += 36 + 7 * lengthOf(hba->logicalDrives.get()) + 10 * lengthOf(hba->storageBoxes.get()) +
                   15 * lengthOf(hba->physicalDrives.get());
    return objects;
}

} // namespace

void KDVSASHBAProvider::_cmpiManagedInstanceFactory()
{
    _logger.info("_cmpiManagedInstanceFactory");
    std::memset(&_sasData, 0, sizeof _sasData);
    CreateSasLists(&_sasData);
    if (!_sasData.hbas) return;
    _sasData.initialLoad = 1;
    UpdateSasData(&_sasData);
    _sasData.initialLoad = 0;

    _collection.reserve(expectedObjects(_sasData));
    for (auto* record = _sasData.hbas.get(); record; record = record->next.get()) {
        SasHba& hba = _devices->hbas.emplace_back(_logger, record);
        _hbas.push_back(&hba);
        _populate(hba);
    }
    if (!_hbas.empty()) _createCollectionInstances();
}

// Physical drives come last: they look up the logical drives and boxes of their HBA.
void KDVSASHBAProvider::_populate(SasHba& hba)
{
    _createHbaInstances(hba);
    for (auto* record = hba.record->logicalDrives.get(); record; record = record->next.get()) {
        SasLogicalDrive& logicalDrive = _devices->logicalDrives.emplace_back(_logger, record);
        hba.logicalDrives.push_back(&logicalDrive);
        _createLogDrvInstances(hba, logicalDrive);
    }
    for (auto* record = hba.record->storageBoxes.get(); record; record = record->next.get()) {
        SasStorageBox& box = _devices->storageBoxes.emplace_back(_logger, record);
        hba.storageBoxes.push_back(&box);
        _createEnclosureInstances(hba, box);
    }
    const DriveLookup lookup(hba);
    for (auto* record = hba.record->physicalDrives.get(); record; record = record->next.get()) {
        SasPhysicalDrive& drive = _devices->physicalDrives.emplace_back(_logger, record);
        hba.physicalDrives.push_back(&drive);
        _createPhyDrvInstances(hba, drive, lookup);
    }
}

void KDVSASHBAProvider::_createHbaInstances(SasHba& hba)
{
    const SasHbaRecord* record = hba.record;
    _logger.info("_createHbaInstances: HBA index %d, model %d", static_cast<int>(record->hbaNumber),
                 int{record->modelCode});

    auto* arraySystem = publish<KDV_SASArraySystem>(record);
    auto* arrayController = publish<KDV_SASArrayController>(record);
    auto* package = publish<KDV_SASPhysicalPackage>(record);
    auto* portController = publish<KDV_SASPortController>(record);
    auto* port = publish<KDV_SASDAPort>(record);
    auto* firmware = publish<KDV_SASFirmware>(record);
    auto* primordialPool = publish<KDV_SASPrimordialPool>(record);
    auto* primordialCapabilities = publish<KDV_SASStorageCapabilities>(record, 0u);
    auto* noRaidPool = publish<KDV_SASPrimordialPoolNoRaid>(record);
    auto* noRaidCapabilities = publish<KDV_SASStorageCapabilities>(record, 1u);
    auto* storagePool = publish<KDV_SASStoragePool>(record);
    auto* storageCapabilities = publish<KDV_SASStorageCapabilities>(record, 2u);
    auto* endpoint = publish<KDV_SASSCSIProtocolEndpoint>(record);
    auto* protocolController = publish<KDV_SASSCSIProtocolController>(record);
    auto* location = publish<KDV_SASArraySystemLocation>(record);
    auto* product = publish<KDV_SASProduct>(record);

    hba.arraySystem = arraySystem;
    hba.arrayController = arrayController;
    hba.scsiProtocolController = protocolController;
    hba.primordialPool = primordialPool;
    hba.primordialPoolNoRaid = noRaidPool;
    hba.storagePool = storagePool;

    publish<KDV_SASArraySystemSCSIProtocolController>(arraySystem, protocolController);
    publish<KDV_SASArraySystemPortController>(arraySystem, portController);
    publish<KDV_SASArraySystemDAPort>(arraySystem, port);
    publish<KDV_SASArraySystemPrimordialPool>(arraySystem, primordialPool);
    publish<KDV_SASArraySystemPrimordialPoolNoRaid>(arraySystem, noRaidPool);
    publish<KDV_SASArraySystemStoragePool>(arraySystem, storagePool);
    publish<KDV_SASPrimordialPoolStoragePool>(primordialPool, storagePool);
    publish<KDV_SASComputerSystemArraySystem>(KDVUtil::getComputerSystemPath(), arraySystem);
    publish<KDV_SASArraySystemArrayController>(arraySystem, arrayController);
    publish<KDV_SASProductPhysicalPackage>(product, package);
    publish<KDV_SASArraySystemFirmware>(arraySystem, firmware); // and the other way round: clients ask for either
    publish<KDV_SASFirmwareArraySystem>(firmware, arraySystem);
    publish<KDV_SASDAPortSCSIProtocolEndpoint>(port, endpoint);
    publish<KDV_SASPhysicalPackageArraySystem>(package, arraySystem);
    publish<KDV_SASPhysicalPackageArraySystemLocation>(package, location);
    publish<KDV_SASSCSIProtocolEndpointSCSIProtocolController>(endpoint, protocolController);
    publish<KDV_SASPrimordialPoolStorageCapabilities>(primordialCapabilities, primordialPool);
    publish<KDV_SASPrimordialPoolNoRaidStorageCapabilities>(noRaidCapabilities, noRaidPool);
    publish<KDV_SASStoragePoolStorageCapabilities>(storageCapabilities, storagePool);
}

void KDVSASHBAProvider::_createLogDrvInstances(SasHba& hba, SasLogicalDrive& logicalDrive)
{
    const SasLogicalDriveRecord* record = logicalDrive.record;
    _logger.info("_createLogDrvInstances: HBA index %d, Log Drv index %d", static_cast<int>(hba.record->hbaNumber),
                 static_cast<int>(record->logicalDriveNumber));

    auto* volume = publish<KDV_SASStorageVolume>(hba.record, record);
    logicalDrive.storageVolume = volume;
    auto* setting = publish<KDV_SASStorageSetting>(hba.record, record);
    const int number = static_cast<int>(logicalDrive.logicalDriveNumber);
    if (record->spareCount != 0) {
        logicalDrive.redundancySet = publish<KDV_SASStorageRedundancySet>(record);
        _logger.info("log drive %d created a redundancy set instance...", number);
    } else {
        logicalDrive.redundancySet = nullptr;
        _logger.info("log drive %d doesn't have spare, NO redundancy set instance...", number);
    }

    publish<KDV_SASStorageVolumeStorageSetting>(volume, setting);
    publish<KDV_SASArraySystemStorageVolume>(hba.arraySystem, volume);
    publish<KDV_SASSCSIProtocolControllerStorageVolume>(hba.scsiProtocolController, volume);
    publish<KDV_SASStoragePoolStorageVolume>(hba.storagePool, volume);
}

void KDVSASHBAProvider::_createEnclosureInstances(SasHba& hba, SasStorageBox& box)
{
    _logger.info("_createEnclosureInstances: HBA index %d, Storage Box index %d", static_cast<int>(hba.hbaNumber),
                 static_cast<int>(box.boxNumber));

    auto* driveCage = publish<KDV_SASDriveCage>(hba.record, box.record);
    box.driveCage = driveCage;
    auto* firmware = publish<KDV_SASEnclosureFirmware>(box.record);
    auto* enclosure = publish<KDV_SASStorageEnclosure>(hba.record, box.record);
    auto* processor = publish<KDV_SASStorageEnclosureProcessor>(hba.record, box.record);
    box.enclosureProcessor = processor;
    auto* location = publish<KDV_SASStorageEnclosureLocation>(hba.record, box.record);

    publish<KDV_SASArraySystemStorageEnclosureProcessor>(hba.arraySystem, processor);
    publish<KDV_SASStorageEnclosureDriveCage>(enclosure, driveCage);
    publish<KDV_SASStorageEnclosureEnclosureLocation>(enclosure, location);
    publish<KDV_SASStorageEnclosureProcessorEnclosureFirmware>(firmware, processor);
    publish<KDV_SASStorageEnclosureStorageEnclosureProcessor>(enclosure, processor);
}

void KDVSASHBAProvider::_createPhyDrvInstances(SasHba& hba, SasPhysicalDrive& drive, const DriveLookup& lookup)
{
    const SasPhysicalDriveRecord* record = drive.record;
    const std::uint32_t boxNumber = record->boxIdentifier - boxIdentifierBase;
    _logger.info("_createPhyDrvInstances: HBA index %d, Phy Drv index %d, Box index %d",
                 static_cast<int>(hba.record->hbaNumber), static_cast<int>(record->driveNumber),
                 static_cast<int>(boxNumber));

    auto* diskDrive = publishFor<KDV_SASDiskDrive>(drive, hba.record, record);
    drive.diskDrive = diskDrive;
    auto* extent = publishFor<KDV_SASStorageExtent>(drive, hba.record, &drive);
    auto* firmware = publishFor<KDV_SASDiskDriveFirmware>(drive, record);
    auto* package = publishFor<KDV_SASDiskPhysicalPackage>(drive, hba.record, record);
    auto* location = publishFor<KDV_SASDiskDriveLocation>(drive, record);
    publishFor<KDV_SASArraySystemDiskDrive>(drive, hba.arraySystem, diskDrive);
    publishFor<KDV_SASArraySystemStorageExtent>(drive, hba.arraySystem, extent);
    publishFor<KDV_SASDiskDriveDiskDriveFirmware>(drive, firmware, diskDrive);
    publishFor<KDV_SASDiskPhysicalPackageDiskDrive>(drive, package, diskDrive);
    publishFor<KDV_SASDiskPhysicalPackageDiskDriveLocation>(drive, package, location);

    if (drive.hotPlugTracked)
        publishFor<KDV_SASPrimordialPoolNoRaidStorageExtent>(drive, hba.primordialPoolNoRaid, extent);
    else
        _createPoolAndVolumeLinks(hba, *record, extent, lookup);
    if (const SasStorageBox* box = lookup.box(boxNumber))
        publishFor<KDV_SASDriveCageDiskPhysicalPackage>(drive, box->driveCage, package);
    if (record->carrierAuthStatus != noSmartCarrier) // stays when the disk is pulled from its carrier
        _createSmartCarrierInstances(hba, drive);
}

void KDVSASHBAProvider::_createPoolAndVolumeLinks(SasHba& hba, const SasPhysicalDriveRecord& record,
                                                  KDV_SASStorageExtent* extent, const DriveLookup& lookup)
{
    publish<KDV_SASStoragePoolStorageExtent>(hba.storagePool, extent);
    publish<KDV_SASPrimordialPoolStorageExtent>(hba.primordialPool, extent);
    if (record.usage == usageMember) {
        const SasLogicalDrive* logicalDrive = lookup.byMember(record.driveNumber);
        if (!logicalDrive) return;
        publish<KDV_SASStorageExtentStorageVolume>(extent, logicalDrive->storageVolume);
        if (logicalDrive->redundancySet) {
            publish<KDV_SASStorageRedundancySetStorageExtent>(logicalDrive->redundancySet, extent);
            _logger.info("log drive %d created an KDV_SASStorageRedundancySetStorageExtent instance",
                         static_cast<int>(logicalDrive->logicalDriveNumber));
        }
    } else if (record.usage == usageSpare) {
        const SasLogicalDrive* logicalDrive = lookup.bySpare(record.driveNumber);
        if (logicalDrive && logicalDrive->redundancySet) {
            publish<KDV_SASSpareExtentStorageRedundancySet>(extent, logicalDrive->redundancySet);
            _logger.info("log drive %d created an KDV_SASSpareExtentStorageRedundancySet instance",
                         static_cast<int>(logicalDrive->logicalDriveNumber));
        }
    }
}

void KDVSASHBAProvider::_createSmartCarrierInstances(SasHba& hba, SasPhysicalDrive& drive)
{
    auto* application = publish<KDV_SASSmartDriveCarrierAppFirmware>(hba.record, drive.record);
    auto* bootLoader = publish<KDV_SASSmartDriveCarrierBootldrFirmware>(hba.record, drive.record);
    publish<KDV_SASSmartDrvCarrierAppElementFirmwareIdentity>(drive.diskDrive, application);
    publish<KDV_SASSmartDrvCarrierAppInstalledFirmwareIdentity>(hba.arraySystem, application);
    publish<KDV_SASSmartDrvCarrierBootldrElementFirmwareIdentity>(drive.diskDrive, bootLoader);
    publish<KDV_SASSmartDrvCarrierBootldrInstalledFirmwareIdentity>(hba.arraySystem, bootLoader);
}

void KDVSASHBAProvider::_createCollectionInstances()
{
    auto* collection = publish<KDV_SASStorageSpecificCollection>(_sasData.hbas.get());
    for (SasHba* hba : _hbas)
        publish<KDV_SASStorageSpecificCollectionArraySystem>(hba->arraySystem, collection);
    publish<KDV_SASStorageGroupHostedCollection>(KDVUtil::getComputerSystemPath(), collection);
}

} // namespace KDV
