#include "common/ZTAlertIndication.h"

#include "common/HostAddress.h"

namespace KDV {

ZTAlertIndication::ZTAlertIndication(const Logger& logger, const std::string& className, const std::string& nameSpace,
                                     int perceivedSeverity)
    : CIMAlertIndication(logger, className, nameSpace, perceivedSeverity)
{
}

ZTAlertIndication::~ZTAlertIndication() = default;

void ZTAlertIndication::setSummary(const std::string& text) { add("Summary", text); }

void ZTAlertIndication::setEventCategory(int category) { add("EventCategory", static_cast<std::uint16_t>(category)); }

void ZTAlertIndication::setNetworkIPAddress(const CmpiCpp::CmpiContext&) { add("NetworkIPAddress", hostAddress()); }

void ZTAlertIndication::setHWFirmwareVersion(const std::string& version) { add("HWFirmwareVersion", version); }

void ZTAlertIndication::setHWLogicalLocation(const std::string& location) { add("HWLogicalLocation", location); }

void ZTAlertIndication::setHWManufacturer(const std::string& manufacturer) { add("HWManufacturer", manufacturer); }

void ZTAlertIndication::setHWSerialNumber(const std::string& serialNumber) { add("HWSerialNumber", serialNumber); }

void ZTAlertIndication::setDeviceModel(const std::string& model) { add("DeviceModel", model); }

} // namespace KDV
