// A provider that logs every call at info level, with what it was asked and how it ended, and forwards it to another,
// which it is given as its CmpiProvider and does not own. Operations of an interface that the other does not have are
// refused as not supported. Thread-safe as far as the other is.
#pragma once

#include "cmpicpp/CmpiAssociationProvider.h"
#include "cmpicpp/CmpiIndicationProvider.h"
#include "cmpicpp/CmpiInstanceProvider.h"
#include "cmpicpp/CmpiMethodProvider.h"
#include "common/Export.h"
#include "common/ProviderForwarder.h"
#include "logger/Logger.h"

namespace KDV {

class KDV_COMMON_API LoggedProvider : public ProviderForwarder {
public:
    LoggedProvider(const Logger& logger, CmpiCpp::CmpiProvider* provider);
    ~LoggedProvider() override;

    // overrides of every operation: see LoggedProvider.cpp
    bool cleanup(const CmpiCpp::CmpiContext& context, bool terminating) override;

private:
    Logger _logger;
};

} // namespace KDV
