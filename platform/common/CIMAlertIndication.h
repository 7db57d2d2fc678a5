// An alert indication under construction, the part that CIM_AlertIndication declares. Made for one alert on the thread
// that delivers it; each setter adds its property at once, so that the order of the calls is the order of the
// properties. The constructor adds what every alert carries: identifier (unique), time, the system's name, severity.
#pragma once

#include "cmpicpp/CmpiInstance.h"
#include "common/Export.h"
#include "logger/Logger.h"

#include <cstdint>
#include <string>
#include <vector>

namespace KDV {

class KDV_COMMON_API CIMAlertIndication {
public:
    CIMAlertIndication(const Logger& logger, const std::string& className, const std::string& nameSpace,
                       int perceivedSeverity);
    CIMAlertIndication(const CIMAlertIndication&) = delete;
    CIMAlertIndication& operator=(const CIMAlertIndication&) = delete;
    virtual ~CIMAlertIndication();

    void setDescription(const std::string& text);
    void setAlertingManagedElement(const std::string& path);
    void setAlertingElementFormat(int format); // 2: a CIM object path
    void setAlertType(int type);
    void setEventID(const std::string& id);
    void setProviderName(const std::string& name);
    void setRecommendedActions(const std::string& actions); // one text: the array's one element
    void setSystemCreationClassName(const std::string& name);
    void setProbableCause(std::uint16_t cause);
    void setProbableCauseDescription(const std::string& text);

    // The message of a registry that says the same, and what to put into its places.
    void setMessage(const std::string& owningEntity, const std::string& messageId,
                    const std::vector<std::string>& arguments);

    // The instance, to add more to and to deliver; may be taken once.
    CmpiCpp::CmpiInstance getInstance();

protected:
    void add(const char* name, const std::string& text);
    void add(const char* name, std::uint16_t value);

    Logger _logger;

private:
    CmpiCpp::CmpiInstance _instance;
};

} // namespace KDV
