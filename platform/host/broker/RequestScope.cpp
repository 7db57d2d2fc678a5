#include "broker/RequestScope.h"

#include "broker/Counters.h"
#include "broker/ObjectMaking.h"

#include <algorithm>
#include <vector>

namespace KDV::Host {

// The scopes of one thread. `own` are the scopes that Sfcb gives to threads without a request; they end with the
// thread.
struct RequestScope::ThreadScopes {
    RequestScope* innermost = nullptr;
    std::vector<std::unique_ptr<RequestScope>> own;
};

RequestScope::ThreadScopes& RequestScope::threadScopes() noexcept
{
    thread_local ThreadScopes scopes;
    return scopes;
}

RequestScope::RequestScope(Broker& broker, std::string_view nameSpace)
    : _broker(broker), _counters(broker.sharedCounters()), _outer(threadScopes().innermost),
      _thread(std::this_thread::get_id()), _nameSpace(nameSpace)
{
    threadScopes().innermost = this;
}

RequestScope::RequestScope(Broker& broker, OfThread)
    : _broker(broker), _counters(broker.sharedCounters()), _chained(false), _thread(std::this_thread::get_id())
{
}

RequestScope::~RequestScope()
{
    if (_chained && ownThread()) {
        // Scopes of attached threads need not end in the order they began.
        RequestScope** link = &threadScopes().innermost;
        while (*link && *link != this)
            link = &(*link)->_outer;
        if (*link) *link = _outer;
    }
    Broker::Counters& counters = *_counters;
    const std::lock_guard lock(counters.mutex);
    BrokerStatistics& sums = counters.sums;
    for (unsigned i = 0; i < objectKinds; ++i) {
        sums.made[i] += _made[i];
        sums.left[i] += _live[i];
        sums.leftToScope += _live[i];
        sums.maxLive[i] = std::max(sums.maxLive[i], _maxLive[i]);
    }
    sums.maxLiveAll = std::max(sums.maxLiveAll, _maxLiveAll);
    sums.maxScopeBytes = std::max<std::uint64_t>(sums.maxScopeBytes, _blocks.bytes());
}

RequestScope* RequestScope::threadScope(Broker& broker)
{
    ThreadScopes& scopes = threadScopes();
    for (const auto& scope : scopes.own)
        if (scope->_counters == broker.sharedCounters()) return scope.get();
    scopes.own.push_back(std::unique_ptr<RequestScope>(new RequestScope(broker, OfThread{})));
    return scopes.own.back().get();
}

RequestScope* RequestScope::current(const Broker& broker) noexcept
{
    RequestScope* found = nullptr;
    const bool outermost = broker.profile() == Profile::Sfcb;
    for (RequestScope* scope = threadScopes().innermost; scope; scope = scope->_outer)
        if (&scope->_broker == &broker) {
            found = scope;
            if (!outermost) break;
        }
    if (found || !outermost) return found;
    try {
        return threadScope(const_cast<Broker&>(broker));
    } catch (...) {
        return nullptr;
    }
}

const ClassInfo* RequestScope::findClass(std::string_view nameSpace, std::string_view className, bool& nameSpaceKnown)
{
    if (nameSpace.empty()) nameSpace = _nameSpace;
    if (!_lastNameSpace || nameSpace != _lastNameSpaceText) {
        _lastNameSpace = _broker.repository().findNamespace(nameSpace);
        _lastNameSpaceText = nameSpace;
        _lastClass = nullptr;
    }
    nameSpaceKnown = _lastNameSpace != nullptr;
    if (!_lastNameSpace) return nullptr;
    if (!_lastClass || _lastClass->name() != className) _lastClass = _lastNameSpace->find(className);
    return _lastClass;
}

PathObject& RequestScope::path(std::string_view nameSpace, std::string_view className)
{
    bool known = false;
    const ClassInfo* info = findClass(nameSpace, className, known);
    const Placement at{Memory::create(&_blocks, ownPathSize), &_broker, this, ObjectState::Lent};
    return *makePath(at, info, nameSpace, className);
}

ContextObject& RequestScope::context()
{
    const Placement at{Memory::create(&_blocks, ownListSize), &_broker, this, ObjectState::Lent};
    return *makeContext(at);
}

ArgsObject& RequestScope::args()
{
    const Placement at{Memory::create(&_blocks, ownListSize), &_broker, this, ObjectState::Lent};
    return *makeArgs(at);
}

InstanceObject& RequestScope::instance(const PathObject& path)
{
    const Placement at{Memory::create(&_blocks, ownInstanceSize), &_broker, this, ObjectState::Lent};
    return *makeInstance(at, path);
}

CMPIString* RequestScope::string(std::string_view text)
{
    const Placement at{Memory::create(&_blocks, sizeof(StringObject) + text.size() + 1), &_broker, this,
                       ObjectState::Lent};
    return makeString(at, text);
}

ArrayObject& RequestScope::array(CMPICount size, CMPIType elementType)
{
    const Placement at{Memory::create(&_blocks, ownArraySize + size * sizeof(CMPIData)), &_broker, this,
                       ObjectState::Lent};
    return *makeArray(at, size, elementType, false);
}

SelectExpObject& RequestScope::selectExp(std::string_view query, std::string_view language,
                                         std::shared_ptr<const SelectEvaluator> evaluator)
{
    const Placement at{Memory::create(&_blocks, ownListSize), &_broker, this, ObjectState::Lent};
    return *makeSelectExp(at, query, language, evaluator ? keep(std::move(evaluator)) : nullptr);
}

} // namespace KDV::Host
