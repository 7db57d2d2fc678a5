// An association between two ends: managed instances that the same collection owns, or, for an end that somebody else
// publishes, a fixed path. Each end has a role, the name of the reference property that names it. The ends are declared
// in the constructor with joins, because the collection finds and disposes of associations by their ends; an
// association never outlives them.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "common/Export.h"

#include <string>

namespace KDV {

class KDV_COMMON_API CmpiManagedInstanceAssociation : public CmpiManagedInstance {
public:
    explicit CmpiManagedInstanceAssociation(const std::string& className);
    ~CmpiManagedInstanceAssociation() override;

    // The path of the other end when given is the path of one end, else the empty path.
    virtual CmpiCpp::CmpiObjectPath getAssociatedPath(const CmpiCpp::CmpiObjectPath& given) const = 0;

    // One end: a role (static text) and either an instance or a path kept by the association.
    struct End {
        const char* role = nullptr;
        const CmpiManagedInstance* instance = nullptr;
        const CmpiCpp::CmpiObjectPath* path = nullptr;
    };
    const End& firstEnd() const noexcept { return _first; }
    const End& secondEnd() const noexcept { return _second; }

protected:
    // For an association whose path has the two roles with the paths of the ends as its only keys. One that has other
    // keys declares no ends; the collection then asks it one by one with those like it, as it does with an association
    // whose end is not in the collection before it.
    void joins(const End& first, const End& second) noexcept;

private:
    End _first;
    End _second;
};

} // namespace KDV
