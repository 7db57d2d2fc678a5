// A query given to a provider: its text, and an evaluator if the host can compile it. Made by the host for the
// indication functions (RequestScope::selectExp) or by a provider; the scope keeps the evaluator alive.
#pragma once

#include "broker/Upcalls.h"
#include "broker/Values.h"

#include <memory>

namespace KDV::Host {

struct SelectExpObject : CMPISelectExp {
    ObjectHead head;
    Memory* memory;
    StringObject* query;
    StringObject* language;
    const std::shared_ptr<const SelectEvaluator>* evaluator; // null: the query cannot be evaluated

    static const SelectExpObject& of(const CMPISelectExp* expression) noexcept
    {
        return *static_cast<const SelectExpObject*>(expression);
    }
};

} // namespace KDV::Host
