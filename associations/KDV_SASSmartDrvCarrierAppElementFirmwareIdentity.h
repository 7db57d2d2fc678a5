// A disk drive and the application firmware of the smart carrier that it sits in. Made for every physical drive in a
// smart carrier; owned by the collection, used under the provider's lock. It adds no log line of its own to a
// request.
#pragma once

#include "associations/TwoEnds.h"
#include "cmpicpp/CmpiInstance.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "common/CmpiManagedInstanceAssociation.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"

#include <string>

namespace KDV {

class KDV_SASSmartDrvCarrierAppElementFirmwareIdentity final : public CmpiManagedInstanceAssociation {
public:
    KDV_SASSmartDrvCarrierAppElementFirmwareIdentity(const Logger& logger, const std::string& nameSpace,
                                                     const CmpiManagedInstance* diskDrive,
                                                     const CmpiManagedInstance* firmware);
    ~KDV_SASSmartDrvCarrierAppElementFirmwareIdentity() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;
    CmpiCpp::CmpiObjectPath getAssociatedPath(const CmpiCpp::CmpiObjectPath& given) const override;

private:
    TwoEnds ends() const;

    std::string _nameSpace;
    InstanceLog _log;
    const CmpiManagedInstance* _firmware;
    const CmpiManagedInstance* _diskDrive;
};

} // namespace KDV
