// The function table of select expressions. Conditions taken apart (getDOC, getCOD) are not offered: 7.
#include "broker/Calls.h"

namespace KDV::Host {

// The evaluator of a clone outlives the scope that compiled it, so a clone has a handle of its own.
SelectExpObject* copyOf(const Placement& at, const SelectExpObject& from)
{
    const std::shared_ptr<const SelectEvaluator>* evaluator = from.evaluator;
    if (evaluator && !at.scope)
        evaluator = new (at.memory->allocate(sizeof(std::shared_ptr<const SelectEvaluator>)))
            std::shared_ptr<const SelectEvaluator>(*from.evaluator);
    return makeSelectExp(at, from.query->text(), from.language->text(), evaluator);
}

namespace {

using EvaluatorHandle = std::shared_ptr<const SelectEvaluator>;

CMPIStatus releaseSelectExp(CMPISelectExp* self)
{
    if (!self || !self->hdl) return failed(CMPI_RC_ERR_INVALID_HANDLE);
    auto& expression = *static_cast<SelectExpObject*>(self);
    if (expression.head.state == ObjectState::Clone && expression.evaluator) {
        const_cast<EvaluatorHandle*>(expression.evaluator)->~EvaluatorHandle();
        expression.evaluator = nullptr;
    }
    return releaseObject(expression.head, expression.memory);
}

template <class Test>
CMPIBoolean evaluateWith(const CMPISelectExp* self, CMPIStatus* status, Test&& test)
{
    return answer<SelectExpObject, CMPIBoolean>(self, status, 0, [&](SelectExpObject& expression, CMPIStatus& outcome) {
        if (!expression.evaluator) {
            outcome = failed(CMPI_RC_ERR_NOT_SUPPORTED);
            return CMPIBoolean{0};
        }
        return static_cast<CMPIBoolean>(test(**expression.evaluator, outcome));
    });
}

CMPIBoolean evaluate(const CMPISelectExp* self, const CMPIInstance* inst, CMPIStatus* status)
{
    return evaluateWith(self, status, [&](const SelectEvaluator& evaluator, CMPIStatus& outcome) {
        const InstanceObject* instance = argument<InstanceObject>(inst);
        if (!instance) outcome = failed(CMPI_RC_ERR_INVALID_PARAMETER);
        return instance && evaluator.matches(*instance);
    });
}

CMPIBoolean evaluateUsingAccessor(const CMPISelectExp* self, CMPIAccessor* accessor, void* parm, CMPIStatus* status)
{
    return evaluateWith(self, status, [&](const SelectEvaluator& evaluator, CMPIStatus& outcome) {
        if (!accessor) outcome = failed(CMPI_RC_ERR_INVALID_PARAMETER);
        return accessor && evaluator.matches(accessor, parm);
    });
}

CMPIString* getString(const CMPISelectExp* self, CMPIStatus* status)
{
    return answer<SelectExpObject, CMPIString*>(
        self, status, nullptr, [](SelectExpObject& expression, CMPIStatus&) { return expression.query; });
}

CMPISelectCond* noCondition(const CMPISelectExp*, CMPIStatus* status)
{
    tell(status, failed(CMPI_RC_ERR_NOT_SUPPORTED));
    return nullptr;
}

} // namespace

CMPISelectExpFT selectExpTable(Profile profile)
{
    return {objectTableVersion(profile),
            releaseSelectExp,
            cloneObject<SelectExpObject, CMPISelectExp>,
            evaluate,
            getString,
            noCondition,
            noCondition,
            evaluateUsingAccessor};
}

} // namespace KDV::Host
