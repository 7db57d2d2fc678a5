#include "sashba/sysfs/DeviceAnswer.h"

#include <algorithm>
#include <tuple>

namespace KDV {
namespace {

Readiness withoutSleep(Readiness readiness) { return readiness == Readiness::Asleep ? Readiness::Ready : readiness; }

bool same(const SlotHealth& one, const SlotHealth& other)
{
    return one.slot == other.slot && one.failed == other.failed && one.failurePredicted == other.failurePredicted &&
           one.sasAddresses == other.sasAddresses;
}

bool same(const EnclosureState& one, const EnclosureState& other)
{
    const auto of = [](const EnclosureState& state) {
        return std::tuple(state.status, state.fans, state.power, state.temperature, state.bays);
    };
    return of(one) == of(other) &&
           std::equal(one.slots.begin(), one.slots.end(), other.slots.begin(), other.slots.end(),
                      [](const SlotHealth& a, const SlotHealth& b) { return same(a, b); });
}

bool same(const std::optional<EnclosureState>& one, const std::optional<EnclosureState>& other)
{
    return one && other ? same(*one, *other) : one.has_value() == other.has_value();
}

bool same(const std::map<std::string, SlotState>& one, const std::map<std::string, SlotState>& other)
{
    return std::equal(one.begin(), one.end(), other.begin(), other.end(), [](const auto& a, const auto& b) {
        return a.first == b.first && a.second.status == b.second.status && a.second.fault == b.second.fault;
    });
}

} // namespace

DeviceAnswer asleepAfter(const DeviceAnswer& before)
{
    DeviceAnswer answer = before.hung ? DeviceAnswer() : before;
    answer.readiness = Readiness::Asleep;
    return answer;
}

bool differsInState(const DeviceAnswer& one, const DeviceAnswer& other)
{
    const auto of = [](const DeviceAnswer& answer) {
        return std::tuple(withoutSleep(answer.readiness), answer.hung, answer.denied, answer.failurePredicted,
                          answer.warned, answer.enduranceUsed, answer.raidLevel, answer.raidState);
    };
    return of(one) != of(other) || !same(one.enclosure, other.enclosure) || !same(one.slots, other.slots);
}

} // namespace KDV
