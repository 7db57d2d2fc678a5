// The CIM operations by name, as the service finds them. Each writes its result into the call's reply and throws
// CimError otherwise; what the table lacks is answered with 7 (not supported). Filled at start, then constant; the
// operations run on the connections' threads.
#pragma once

#include "hostserver/Call.h"
#include "hostserver/Router.h"

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace KDV::Host {

class PullContexts;

class OperationTable {
public:
    using Operation = std::function<void(Call&)>;

    void add(std::string_view name, Operation operation) { _byName[std::string(name)] = std::move(operation); }
    const Operation* find(const std::string& name) const
    {
        const auto found = _byName.find(name);
        return found == _byName.end() ? nullptr : &found->second;
    }

private:
    // Operation names are those of DSP0200 in any case, as other names of CIM are.
    std::unordered_map<std::string, Operation, NameHash, NameEqual> _byName;
};

void addInstanceOperations(OperationTable& table, Router& router);
void addClassOperations(OperationTable& table);
void addAssociationOperations(OperationTable& table, Router& router);
void addPullOperations(OperationTable& table, Router& router, PullContexts& contexts);

// The one extrinsic operation.
void invokeMethod(Router& router, Call& call);

} // namespace KDV::Host
