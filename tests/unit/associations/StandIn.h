// An end for an association under test: an instance of a real class with a path of all the class's keys, that logs when
// it is asked for it.
#pragma once

#include "common/CmpiManagedInstance.h"
#include "common/KDVUtil.h"
#include "harness/Schema.h"
#include "instances/InstanceLog.h"

#include <string>
#include <string_view>

namespace KDV::Test {

class StandIn final : public CmpiManagedInstance {
public:
    StandIn(const Logger& logger, const std::string& className, std::string value = "it is \"quoted\"")
        : CmpiManagedInstance(className), _log(logger, className), _value(std::move(value))
    {
    }

    CmpiCpp::CmpiObjectPath getPath() const override
    {
        _log.info("getPath()");
        CmpiCpp::CmpiObjectPath path = CmpiCpp::makeCmpiObjectPath(KDVUtil::getBroker(), "root/vnr", getClassName());
        path.setHost(KDVUtil::getHostName());
        const Host::ClassInfo& declared = *schema().find("root/vnr", getClassName());
        for (const auto index : declared.keys())
            path.addKey(std::string(declared.properties()[static_cast<std::size_t>(index)].name), _value);
        return path;
    }

    CmpiCpp::CmpiInstance getInstance() override { return CmpiCpp::makeCmpiInstance(KDVUtil::getBroker(), getPath()); }

private:
    InstanceLog _log;
    std::string _value;
};

} // namespace KDV::Test
