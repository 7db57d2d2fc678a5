#include "alerts/KDV_SASIndication.h"

#include "cmpicpp/CmpiMBService.h"
#include "common/KDVUtil.h"
#include "common/TextArray.h"
#include "common/ZTAlertIndication.h"
#include "instances/DriveText.h"
#include "instances/HbaText.h"

using namespace CmpiCpp;

namespace KDV {
namespace {

constexpr char className[] = "KDV_SASIndication";
constexpr char systemClassName[] = "KDV_ComputerSystem";

constexpr int noEvent = -1;

// Status to event. A return to healthy has an event of its own kind; the numbering differs between the elements of a
// box on purpose, clients know the events by these numbers.
int controllerEvent(std::uint8_t status)
{
    switch (status) {
    case 2:
        return 1;
    case 3:
        return 2;
    default:
        return noEvent;
    }
}

int logicalDriveEvent(std::uint8_t redundancyState)
{
    switch (redundancyState) {
    case 2:
        return 101;
    case 5:
    case 6:
        return 102;
    case 3: // redundancy lost and rebuilding are one event
    case 4:
        return 103;
    default:
        return noEvent;
    }
}

int physicalDriveEvent(std::uint8_t status)
{
    switch (status) {
    case 2:
        return 201;
    case 4:
    case 5:
    case 6:
    case 7:
    case 8:
    case 9:
        return 202;
    case 3:
        return 204; // nothing raises 203
    case 10:
        return 401;
    case 12:
        return 402;
    default:
        return noEvent;
    }
}

int powerSupplyEvent(std::uint8_t status)
{
    switch (status) {
    case 5:
        return 301;
    case 2:
        return 302;
    case 3:
        return 303;
    default:
        return noEvent;
    }
}

int fanEvent(std::uint8_t status)
{
    switch (status) {
    case 2:
        return 304;
    case 5:
        return 305;
    case 3:
        return 306;
    default:
        return noEvent;
    }
}

int temperatureEvent(std::uint8_t status)
{
    switch (status) {
    case 2:
        return 307;
    case 3:
        return 308;
    case 4:
        return 309;
    default:
        return noEvent;
    }
}

void addVariables(CmpiInstance& instance, const AlertVariables& vars)
{
    instance.addProperty("VariableNames", textArray(vars.names));
    CmpiArray types = makeCmpiArray(KDVUtil::getBroker(), static_cast<CMPICount>(vars.types.size()), CMPI_uint16);
    for (std::size_t i = 0; i < vars.types.size(); ++i)
        types.setElementAt(static_cast<CMPICount>(i), vars.types[i]);
    instance.addProperty("VariableTypes", types);
    instance.addProperty("VariableValues", textArray(vars.values));
}

void setHardware(ZTAlertIndication& alert, const AlertHardwareInfo& hw)
{
    alert.setHWFirmwareVersion(hw.firmwareVersion);
    alert.setHWLogicalLocation(hw.logicalLocation);
    alert.setHWManufacturer(hw.manufacturer);
    alert.setHWSerialNumber(hw.serialNumber);
    alert.setDeviceModel(hw.deviceModel);
}

} // namespace

KDV_SASIndication::KDV_SASIndication(const Logger& logger, const std::string& nameSpace)
    : _nameSpace(nameSpace), _logger(logger)
{
    _logger.appendLogSource(":");
    _logger.appendLogSource(className);
    _logger.info("cxtor");
    _indicationDb = std::make_unique<IndicationDB>(_logger, className);
}

KDV_SASIndication::~KDV_SASIndication() { _logger.info("dxtor"); }

void KDV_SASIndication::sendControllerIndication(const SasHba& hba, const CmpiContext& context)
{
    const SasHbaRecord& record = *hba.record;
    const int event = controllerEvent(record.controllerStatus);
    if (event == noEvent || !hba.arrayController) return;
    const AlertHardwareInfo hw{std::string(textOf(record.firmwareVersion)), std::string(textOf(record.logicalLocation)),
                               "ZT", std::string(textOf(record.name)), controllerModelText(record.modelCode)};
    _logger.info("Sent controller indication: %d", event); // "Sent", before it is
    sendIndication(event, *hba.arrayController, &hw, nullptr, context);
}

void KDV_SASIndication::sendLogicalDriveIndication(const SasLogicalDrive& drive, const CmpiContext& context)
{
    const std::uint8_t state = drive.record->redundancyState;
    const int event = logicalDriveEvent(state);
    if (event == noEvent) {
        _logger.info("unsupport logical drive indication: status %d", state);
        return;
    }
    if (!drive.storageVolume) return;
    _logger.info("Send logical drive indication: %d", event);
    sendIndication(event, *drive.storageVolume, nullptr, nullptr, context);
}

void KDV_SASIndication::sendPhysicalDriveIndication(const SasPhysicalDrive& drive, const CmpiContext& context)
{
    const SasPhysicalDriveRecord& record = *drive.record;
    const int event = physicalDriveEvent(record.status);
    if (event == noEvent) {
        _logger.info("unsupported physical drive indication: status %d", record.status);
        return;
    }
    if (!drive.diskDrive) return;
    const VendorModel product = splitVendorModel(textOf(record.inquiry));
    const AlertHardwareInfo hw{std::string(textOf(record.firmwareRevision)), std::string(textOf(record.location)),
                               std::string(product.vendor), std::string(textOf(record.serialNumber)),
                               std::string(product.model)};
    sendIndication(event, *drive.diskDrive, &hw, nullptr, context);
}

void KDV_SASIndication::sendStorageBoxIndication(const SasStorageBox& box, const CmpiContext& context, int element)
{
    const SasStorageBoxRecord& record = *box.record;
    int event = noEvent;
    switch (static_cast<StorageBoxElement>(element)) {
    case StorageBoxElement::PowerSupply:
        event = powerSupplyEvent(record.powerStatus);
        if (event == noEvent)
            _logger.info("unsupported enclosure power supply indication: status %d", record.powerStatus);
        break;
    case StorageBoxElement::Fan:
        event = fanEvent(record.fanStatus);
        if (event == noEvent) _logger.info("unsupported enclosure fan indication: status %d", record.fanStatus);
        break;
    case StorageBoxElement::TemperatureSensor:
        event = temperatureEvent(record.temperatureStatus);
        if (event == noEvent)
            _logger.info("unsupported enclosure temp sensor indication: status %d", record.temperatureStatus);
        break;
    default:
        _logger.info("unsupported enclosure indicationt type: %d", element);
        break;
    }
    if (event == noEvent || !box.enclosureProcessor) return;
    const AlertHardwareInfo hw{"", std::string(textOf(record.name)), "", std::string(textOf(record.serialNumber)),
                               std::string(textOf(record.model))};
    _logger.info("Send storage enclosure indication: %d", event);
    sendIndication(event, *box.enclosureProcessor, &hw, nullptr, context);
}

void KDV_SASIndication::sendIndication(int eventId, const CmpiManagedInstance& element, const AlertHardwareInfo* hw,
                                       const AlertVariables* vars, const CmpiContext& context)
{
    IndDBRec record;
    if (_indicationDb->getRecord(eventId, record) != 0) {
        _logger.info("No DB record for EventID: %d", eventId);
        return;
    }
    const std::string elementPath = element.getPath().str();
    ZTAlertIndication alert(_logger, className, _nameSpace, record.perceivedSeverity);
    alert.setDescription(record.description);
    alert.setAlertingManagedElement(elementPath);
    alert.setAlertingElementFormat(2);
    alert.setAlertType(record.alertType);
    alert.setEventID(record.eventId);
    alert.setProviderName(record.providerName);
    alert.setRecommendedActions(record.recommendedActions);
    alert.setSystemCreationClassName(systemClassName);
    alert.setSummary(record.summary);
    alert.setEventCategory(record.eventCategory);
    alert.setProbableCause(record.probableCause);
    alert.setProbableCauseDescription(record.probableCauseDescription);
    alert.setNetworkIPAddress(context);
    if (hw) setHardware(alert, *hw);
    alert.setMessage(record.owningEntity, record.messageId, {elementPath, hw ? hw->logicalLocation : std::string()});
    CmpiInstance instance = alert.getInstance();
    if (vars) addVariables(instance, *vars);
    const CmpiStatus status =
        CmpiMBService(KDVUtil::getBroker(), _logger).deliverIndication(context, _nameSpace, instance);
    if (status.code() != CMPI_RC_OK)
        _logger.error("indication send failure: %d", status.code());
    else
        _logger.info("indication sent with success");
}

} // namespace KDV
