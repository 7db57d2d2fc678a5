// The RAID setting of a volume. Made for every logical drive; owned by the collection, used under the provider's
// lock.
#pragma once

#include "associations/TwoEnds.h"
#include "cmpicpp/CmpiInstance.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "common/CmpiManagedInstanceAssociation.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASStorageVolumeStorageSetting final : public CmpiManagedInstanceAssociation {
public:
    KDV_SASStorageVolumeStorageSetting(const Logger& logger, const std::string& nameSpace,
                                       const CmpiManagedInstance* volume, const CmpiManagedInstance* setting);
    ~KDV_SASStorageVolumeStorageSetting() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;
    CmpiCpp::CmpiObjectPath getAssociatedPath(const CmpiCpp::CmpiObjectPath& given) const override;

private:
    TwoEnds ends() const;

    std::string _nameSpace;
    InstanceLog _log;
    const CmpiManagedInstance* _volume;
    const CmpiManagedInstance* _setting;
};

} // namespace KDV
