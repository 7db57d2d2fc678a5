// An array system and the computer that its adapter is in, which somebody else publishes. Made for every HBA; owned
// by the collection, used under the provider's lock.
#pragma once

#include "associations/TwoEnds.h"
#include "cmpicpp/CmpiInstance.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "common/CmpiManagedInstanceAssociation.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASComputerSystemArraySystem final : public CmpiManagedInstanceAssociation {
public:
    KDV_SASComputerSystemArraySystem(const Logger& logger, const std::string& nameSpace,
                                     const CmpiCpp::CmpiObjectPath& computerSystem,
                                     const CmpiManagedInstance* arraySystem);
    ~KDV_SASComputerSystemArraySystem() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;
    CmpiCpp::CmpiObjectPath getAssociatedPath(const CmpiCpp::CmpiObjectPath& given) const override;

private:
    TwoEnds ends() const;

    std::string _nameSpace;
    InstanceLog _log;
    CmpiCpp::CmpiObjectPath _computerSystem; // a copy of ours, returned as it was given
    const CmpiManagedInstance* _arraySystem;
};

} // namespace KDV
