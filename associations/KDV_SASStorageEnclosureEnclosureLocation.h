// Where a storage enclosure is attached. Made for every storage box; owned by the collection, used under the
// provider's lock.
#pragma once

#include "associations/TwoEnds.h"
#include "cmpicpp/CmpiInstance.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "common/CmpiManagedInstanceAssociation.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASStorageEnclosureEnclosureLocation final : public CmpiManagedInstanceAssociation {
public:
    KDV_SASStorageEnclosureEnclosureLocation(const Logger& logger, const std::string& nameSpace,
                                             const CmpiManagedInstance* enclosure, const CmpiManagedInstance* location);
    ~KDV_SASStorageEnclosureEnclosureLocation() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;
    CmpiCpp::CmpiObjectPath getAssociatedPath(const CmpiCpp::CmpiObjectPath& given) const override;

private:
    TwoEnds ends() const;

    std::string _nameSpace;
    InstanceLog _log;
    const CmpiManagedInstance* _enclosure;
    const CmpiManagedInstance* _location;
};

} // namespace KDV
