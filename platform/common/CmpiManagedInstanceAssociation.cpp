#include "common/CmpiManagedInstanceAssociation.h"

namespace KDV {

CmpiManagedInstanceAssociation::CmpiManagedInstanceAssociation(const std::string& className)
    : CmpiManagedInstance(className)
{
}

CmpiManagedInstanceAssociation::~CmpiManagedInstanceAssociation() = default;

void CmpiManagedInstanceAssociation::joins(const End& first, const End& second) noexcept
{
    _first = first;
    _second = second;
}

} // namespace KDV
