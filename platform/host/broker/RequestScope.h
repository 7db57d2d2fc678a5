// One provider call on one thread: owns every object that the call makes and frees what is left at its end. The host
// puts one on the stack around each call of a provider function (factory and cleanup included); scopes of a thread
// nest. Attached provider threads get theirs from the broker. Never shared between threads.
#pragma once

#include "broker/Broker.h"
#include "broker/InstanceObject.h"
#include "broker/NamedValues.h"
#include "broker/SelectExpObject.h"

#include <array>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

namespace KDV::Host {

class RequestScope {
public:
    explicit RequestScope(Broker& broker, std::string_view nameSpace = {}); // the namespace of the request
    ~RequestScope();
    RequestScope(const RequestScope&) = delete;
    RequestScope& operator=(const RequestScope&) = delete;

    Broker& broker() const noexcept { return _broker; }
    // The scope of this thread that objects of the broker go to: the innermost one, for Sfcb the outermost (on a thread
    // without any, one that ends with the thread); null if the thread has none.
    static RequestScope* current(const Broker& broker) noexcept;

    // Objects for the host's own use, mostly parameters: a provider that releases them is reported. They live until the
    // scope ends. A class that the repository does not have gives a path without classInfo.
    PathObject& path(std::string_view nameSpace, std::string_view className);
    ContextObject& context();
    ArgsObject& args();
    InstanceObject& instance(const PathObject& path);
    CMPIString* string(std::string_view text);
    ArrayObject& array(CMPICount size, CMPIType elementType);
    SelectExpObject& selectExp(std::string_view query, std::string_view language,
                               std::shared_ptr<const SelectEvaluator> evaluator);

    // For the objects of this library.
    BlockPool& blocks() noexcept { return _blocks; }
    std::string_view nameSpace() const noexcept { return _nameSpace; }
    const ClassInfo* findClass(std::string_view nameSpace, std::string_view className, bool& nameSpaceKnown);
    bool ownThread() const noexcept { return _thread == std::this_thread::get_id(); }
    void count(ObjectKind kind) noexcept
    {
        const auto index = static_cast<unsigned>(kind);
        ++_made[index];
        if (++_live[index] > _maxLive[index]) _maxLive[index] = _live[index];
        if (++_liveAll > _maxLiveAll) _maxLiveAll = _liveAll;
    }
    void uncount(ObjectKind kind) noexcept
    {
        --_live[static_cast<unsigned>(kind)];
        --_liveAll;
    }
    // Until the scope ends; the result points into the scope.
    const std::shared_ptr<const SelectEvaluator>* keep(std::shared_ptr<const SelectEvaluator> evaluator)
    {
        _evaluators.push_back(std::move(evaluator));
        return &_evaluators.back();
    }

private:
    struct ThreadScopes;
    struct OfThread {};
    RequestScope(Broker& broker, OfThread); // not in the thread's chain
    static ThreadScopes& threadScopes() noexcept;
    static RequestScope* threadScope(Broker& broker);

    Broker& _broker;
    std::shared_ptr<Broker::Counters> _counters; // a thread's own scope may outlive the broker
    RequestScope* _outer = nullptr;              // the thread's scope before this one
    bool _chained = true;
    std::thread::id _thread;
    std::string _nameSpace;
    BlockPool _blocks;
    std::array<std::uint64_t, objectKinds> _made{};
    std::array<std::uint64_t, objectKinds> _live{};
    std::array<std::uint64_t, objectKinds> _maxLive{};
    std::uint64_t _liveAll = 0;
    std::uint64_t _maxLiveAll = 0;
    // The class looked up last: providers make many objects of one class in a row.
    std::string _lastNameSpaceText;
    const Namespace* _lastNameSpace = nullptr;
    const ClassInfo* _lastClass = nullptr;
    std::deque<std::shared_ptr<const SelectEvaluator>> _evaluators;
};

} // namespace KDV::Host
