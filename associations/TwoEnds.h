// The two ends of an association, in the order in which its class declares their roles, and the answers that every
// association builds from them. A short-lived view: it points at the ends and owns nothing.
// An end is an instance of the same collection or, where somebody else publishes it, a path that the association keeps.
// Failures of the broker pass through as CmpiStatus. Used under the provider's lock.
#pragma once

#include "cmpicpp/CmpiObjectPath.h"
#include "common/CmpiManagedInstanceAssociation.h"
#include "instances/Rows.h"

#include <string>

namespace KDV {

struct TwoEnds {
    CmpiManagedInstanceAssociation::End first;
    CmpiManagedInstanceAssociation::End second;

    // The association's own path: the two roles are its keys.
    CmpiCpp::CmpiObjectPath path(const std::string& nameSpace, const std::string& className) const;

    // An instance on the association's path, with the two roles as its first properties.
    PropertyRows rows(const CmpiManagedInstance& association) const;

    // The path of the other end when given is the path of one, else the empty path. Both ends are asked for their paths
    // every time; the two differ in which end is asked before the other.
    CmpiCpp::CmpiObjectPath other(const CmpiCpp::CmpiObjectPath& given) const;          // the second end first
    CmpiCpp::CmpiObjectPath otherFromFirst(const CmpiCpp::CmpiObjectPath& given) const; // the first end first
};

} // namespace KDV
