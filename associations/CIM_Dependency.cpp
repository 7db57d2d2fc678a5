#include "associations/CIM_Dependency.h"

using namespace CmpiCpp;
namespace KDV {

CIM_Dependency::CIM_Dependency(const std::string& nameSpace, const std::string& className,
                               const CmpiManagedInstance* antecedent, const CmpiManagedInstance* dependent)
    : CmpiManagedInstanceAssociation(className), _nameSpace(nameSpace), _className(className), _antecedent(antecedent),
      _dependent(dependent)
{
    joins(ends().first, ends().second);
}

CIM_Dependency::~CIM_Dependency() = default;

TwoEnds CIM_Dependency::ends() const { return {{"Antecedent", _antecedent}, {"Dependent", _dependent}}; }

CmpiObjectPath CIM_Dependency::getPath() const { return ends().path(_nameSpace, _className); }

CmpiInstance CIM_Dependency::getInstance() { return ends().rows(*this).instance(); }

CmpiObjectPath CIM_Dependency::getAssociatedPath(const CmpiObjectPath& given) const
{
    return ends().otherFromFirst(given);
}

} // namespace KDV
