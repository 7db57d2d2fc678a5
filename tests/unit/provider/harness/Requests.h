// Calls a provider's function tables as a server does: each call in a request scope of its own, answers as plain
// values. May be used from several threads at once.
#pragma once

#include "broker/Broker.h"
#include "broker/CollectingSink.h"
#include "broker/RequestScope.h"
#include "cmpi/ProviderTables.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace KDV::Test {

struct Reply {
    CMPIrc rc = CMPI_RC_OK;
    std::string message;
    std::vector<Host::CollectedInstance> instances;
    std::vector<std::string> paths;
    std::vector<std::string> values;
};

// The name of an instance as a client gives it: class and text keys.
struct ObjectName {
    std::string className;
    std::vector<std::pair<std::string, std::string>> keys;
    std::string nameSpace = "root/vnr";
};

struct Filters {
    const char* associationClass = nullptr;
    const char* resultClass = nullptr;
    const char* role = nullptr;
    const char* resultRole = nullptr;
};

struct Tables {
    CMPIInstanceMI* instance = nullptr;
    CMPIAssociationMI* association = nullptr;
    CMPIMethodMI* method = nullptr;
    CMPIIndicationMI* indication = nullptr;
};

class Requests {
public:
    Requests(Host::Broker& broker, Tables tables) : _broker(broker), _tables(tables) {}

    Reply instanceNames(const char* className) const;
    Reply instances(const char* className, std::vector<const char*> properties = {}) const;
    Reply get(const ObjectName& name, std::vector<const char*> properties = {}) const;
    Reply create(const ObjectName& name) const;
    Reply modify(const ObjectName& name) const;
    Reply remove(const ObjectName& name) const;
    Reply query() const;

    Reply associators(const ObjectName& name, const Filters& filters = {}) const;
    Reply associatorNames(const ObjectName& name, const Filters& filters = {}) const;
    Reply references(const ObjectName& name, const Filters& filters = {}) const;
    Reply referenceNames(const ObjectName& name, const Filters& filters = {}) const;

    Reply invoke(const char* method, const char* className = "KDV_AutoStartSASHBA") const;
    Reply pass() const { return invoke("PerformWork"); }

    Reply authorizeFilter() const;
    Reply mustPoll() const;
    Reply activateFilter() const;
    Reply deactivateFilter() const;
    Reply enableIndications() const;
    Reply disableIndications() const;

private:
    using Call = std::function<CMPIStatus(Host::RequestScope&, Host::ContextObject&, const CMPIResult*)>;
    Reply run(const Call& call) const;

    Host::Broker& _broker;
    Tables _tables;
};

} // namespace KDV::Test
