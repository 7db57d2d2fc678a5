// The maker's alert: a CIM_AlertIndication with a summary, an event category, the host's network address and facts of
// the hardware that it is about. See CIMAlertIndication.h for life, order and threads.
#pragma once

#include "cmpicpp/CmpiContext.h"
#include "common/CIMAlertIndication.h"
#include "common/Export.h"

#include <string>

namespace KDV {

class KDV_COMMON_API ZTAlertIndication : public CIMAlertIndication {
public:
    ZTAlertIndication(const Logger& logger, const std::string& className, const std::string& nameSpace,
                      int perceivedSeverity);
    ~ZTAlertIndication() override;

    void setSummary(const std::string& text);
    void setEventCategory(int category);
    void setNetworkIPAddress(const CmpiCpp::CmpiContext& context); // the host's first global address, else loopback
    void setHWFirmwareVersion(const std::string& version);
    void setHWLogicalLocation(const std::string& location);
    void setHWManufacturer(const std::string& manufacturer);
    void setHWSerialNumber(const std::string& serialNumber);
    void setDeviceModel(const std::string& model);
};

} // namespace KDV
