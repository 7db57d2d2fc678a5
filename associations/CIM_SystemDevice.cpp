#include "associations/CIM_SystemDevice.h"

using namespace CmpiCpp;
namespace KDV {

CIM_SystemDevice::CIM_SystemDevice(const std::string& nameSpace, const std::string& className,
                                   const CmpiManagedInstance* groupComponent, const CmpiManagedInstance* partComponent)
    : CmpiManagedInstanceAssociation(className), _nameSpace(nameSpace), _className(className),
      _groupComponent(groupComponent), _partComponent(partComponent)
{
    joins(ends().first, ends().second);
}

CIM_SystemDevice::~CIM_SystemDevice() = default;

TwoEnds CIM_SystemDevice::ends() const
{
    return {{"GroupComponent", _groupComponent}, {"PartComponent", _partComponent}};
}

CmpiObjectPath CIM_SystemDevice::getPath() const { return ends().path(_nameSpace, _className); }

CmpiInstance CIM_SystemDevice::getInstance() { return ends().rows(*this).instance(); }

CmpiObjectPath CIM_SystemDevice::getAssociatedPath(const CmpiObjectPath& given) const
{
    return ends().otherFromFirst(given);
}

} // namespace KDV
