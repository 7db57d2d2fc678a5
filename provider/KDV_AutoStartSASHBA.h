// Tells the auto-start machinery which provider to drive, in which namespace and how often. One per process, made with
// the provider's wrappers and kept until the process ends; it is in no collection. It never changes, so any thread may
// ask it. Failures of the broker pass through as CmpiStatus.
#pragma once

#include "cmpicpp/CmpiInstance.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "common/CmpiManagedInstance.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_AutoStartSASHBA final : public CmpiManagedInstance {
public:
    KDV_AutoStartSASHBA(const Logger& logger, const std::string& nameSpace);
    ~KDV_AutoStartSASHBA() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;

private:
    std::string _nameSpace;
    InstanceLog _log;
};

} // namespace KDV
