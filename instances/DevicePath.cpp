#include "instances/DevicePath.h"

#include "common/KDVUtil.h"
#include "instances/CimValues.h"

using namespace CmpiCpp;
namespace KDV {

CmpiObjectPath hostPath(const std::string& nameSpace, const std::string& className)
{
    CmpiObjectPath path = makeCmpiObjectPath(KDVUtil::getBroker(), nameSpace, className);
    path.setHost(KDVUtil::getHostName());
    return path;
}

CmpiObjectPath devicePath(const std::string& nameSpace, const std::string& className, const FieldText& deviceId,
                          const FieldText& systemName)
{
    CmpiObjectPath path = hostPath(nameSpace, className);
    path.addKey("CreationClassName", className);
    path.addKey("DeviceID", deviceId.c_str());
    path.addKey("SystemCreationClassName", arraySystemClass);
    path.addKey("SystemName", systemName.c_str());
    return path;
}

} // namespace KDV
