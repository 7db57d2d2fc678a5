#include "alerts/StatusCheck.h"

using namespace CmpiCpp;

namespace KDV {
namespace {

constexpr std::uint32_t threshold = 2; // a status above it is a fault at first sight

} // namespace

StatusCheck::StatusCheck(const Logger& logger, const std::string& nameSpace, const std::vector<SasHba*>& hbas)
    : _logger(logger), _nameSpace(nameSpace), _hbas(hbas)
{
}

void StatusCheck::_checkSasIndications(const CmpiContext& context) const
{
    _logger.info("_checkSasIndications");
    _checkHbaIndications(context);
    _checkLogDrvIndications(context);
    _checkPhyDrvIndications(context);
    _checkStorageBoxIndications(context);
}

void StatusCheck::_checkHbaIndications(const CmpiContext& context) const
{
    for (const SasHba* hba : _hbas) {
        SasHbaRecord* const record = hba->record;
        const std::uint8_t status = record->controllerStatus;
        if (_isStatusChanged(record->oldControllerStatus, status, threshold)) {
            const std::uint32_t number = record->hbaNumber;
            _logger.info("Send indication: HBA %d: old status %d, new status %d", static_cast<int>(number),
                         record->oldControllerStatus, status);
            KDV_SASIndication(_logger, _nameSpace).sendControllerIndication(*hba, context);
        }
        record->oldControllerStatus = status;
    }
}

void StatusCheck::_checkLogDrvIndications(const CmpiContext& context) const
{
    _logger.info("_checkLogDrvIndications");
    for (const SasHba* hba : _hbas) {
        for (const SasLogicalDrive* drive : hba->logicalDrives) {
            SasLogicalDriveRecord* const record = drive->record;
            const std::uint8_t state = record->redundancyState;
            if (_isStatusChanged(record->oldRedundancyState, state, threshold)) {
                const std::uint32_t hbaNumber = record->hbaNumber;
                const std::uint32_t number = record->logicalDriveNumber;
                _logger.info("Send indication: HBA %d Log Drv %d: old status %d, new Status %d",
                             static_cast<int>(hbaNumber), static_cast<int>(number), record->oldRedundancyState, state);
                KDV_SASIndication(_logger, _nameSpace).sendLogicalDriveIndication(*drive, context);
            }
            record->oldRedundancyState = state;
        }
    }
}

void StatusCheck::_checkPhyDrvIndications(const CmpiContext& context) const
{
    _logger.info("_checkPhyDrvIndications");
    for (const SasHba* hba : _hbas) {
        for (const SasPhysicalDrive* drive : hba->physicalDrives) {
            SasPhysicalDriveRecord* const record = drive->record;
            const std::uint8_t status = record->status;
            if (_isStatusChanged(record->oldStatus, status, threshold)) {
                const std::uint32_t hbaNumber = record->hbaNumber;
                const std::uint32_t number = record->driveNumber;
                _logger.info("Send indication: HBA %d Phy Drv %d: old status %d, new status %d",
                             static_cast<int>(hbaNumber), static_cast<int>(number), record->oldStatus, status);
                KDV_SASIndication(_logger, _nameSpace).sendPhysicalDriveIndication(*drive, context);
            }
            record->oldStatus = status;
            record->acknowledged = 0;
        }
    }
}

void StatusCheck::_checkStorageBoxIndications(const CmpiContext& context) const
{
    for (const SasHba* hba : _hbas) {
        for (const SasStorageBox* box : hba->storageBoxes) {
            SasStorageBoxRecord* const record = box->record;
            checkBoxElement(*box, StorageBoxElement::PowerSupply, record->oldPowerStatus, record->powerStatus, context);
            checkBoxElement(*box, StorageBoxElement::Fan, record->oldFanStatus, record->fanStatus, context);
            checkBoxElement(*box, StorageBoxElement::TemperatureSensor, record->oldTemperatureStatus,
                            record->temperatureStatus, context);
        }
    }
}

void StatusCheck::checkBoxElement(const SasStorageBox& box, StorageBoxElement element, std::uint8_t& oldStatus,
                                  std::uint8_t newStatus, const CmpiContext& context) const
{
    if (_isStatusChanged(oldStatus, newStatus, threshold)) {
        const std::uint32_t hbaNumber = box.record->hbaNumber;
        const int hba = static_cast<int>(hbaNumber);
        const int number = box.record->boxNumber;
        switch (element) {
        case StorageBoxElement::PowerSupply:
            _logger.info("Send indication: HBA %d box %d: old power status %d, new status %d", hba, number, oldStatus,
                         newStatus);
            break;
        case StorageBoxElement::Fan:
            _logger.info("Send indication: HBA %d box %d: old fan status %d, new status %d", hba, number, oldStatus,
                         newStatus);
            break;
        case StorageBoxElement::TemperatureSensor:
            _logger.info("Send indication: HBA %d box %d: old temp sensor status %d, new status %d", hba, number,
                         oldStatus, newStatus);
            break;
        }
        KDV_SASIndication(_logger, _nameSpace).sendStorageBoxIndication(box, context, static_cast<int>(element));
    }
    oldStatus = newStatus;
}

} // namespace KDV
