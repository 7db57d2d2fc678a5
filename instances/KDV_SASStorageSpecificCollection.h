// The status of all host bus adapters in one: the only instance of its class. It follows the list of HBA records at
// each call, so that it sees refreshed states. Made by population and owned by the collection; used under the
// provider's lock.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "instances/InstanceLog.h"
#include "logger/Logger.h"
#include "records/Records.h"

#include <string>

namespace KDV {

class KDV_SASStorageSpecificCollection final : public CmpiManagedInstance {
public:
    KDV_SASStorageSpecificCollection(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hbas);
    ~KDV_SASStorageSpecificCollection() override;

    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;

private:
    std::string _nameSpace;
    InstanceLog _log;
    const SasHbaRecord* _hbas; // the first of the list; null when there is none
};

} // namespace KDV
