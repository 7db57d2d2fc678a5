// Enumerations that clients read in pieces. The provider runs once, when the enumeration is opened; what it returned
// waits here as finished XML, so that no provider is held between two pulls. Any thread; one pull of a context at a
// time. Contexts end when they are read to the end, closed, or not asked for within their time.
#pragma once

#include "hostserver/Socket.h"
#include "hostserver/SpillStore.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

namespace KDV::Host {

struct PullLimits {
    std::size_t contexts = 100;
    std::uint32_t defaultTimeout = 60;  // seconds
    std::uint32_t longestTimeout = 300; // seconds
    std::uint32_t mostObjects = 10'000; // in one reply; a client that asks for more gets these
    std::size_t memory = 256u << 10;    // of one context; the rest goes into a temporary file
};

enum class PullKind { InstancesWithPath, InstancePaths };

class PullContext {
public:
    PullContext(PullKind ofKind, std::string inNameSpace, std::size_t memory)
        : kind(ofKind), nameSpace(std::move(inNameSpace)), _store(memory)
    {
    }
    const PullKind kind;
    const std::string nameSpace;

    void add(std::string_view element);
    bool atEnd() const noexcept { return _read == _store.size(); }
    bool next(std::string& element); // false at the end

private:
    SpillStore _store; // elements, each behind its length
    std::uint64_t _read = 0;
};

class PullContexts {
public:
    explicit PullContexts(PullLimits limits) : _limits(limits) {}

    const PullLimits& limits() const noexcept { return _limits; }
    // How many seconds a context waits: the client's wish, or the default. CimError 22 if it is not granted.
    std::uint32_t timeout(const std::uint64_t* asked) const;
    // Gives the context a name that cannot be guessed. CimError 27 if there are too many.
    std::string keep(std::unique_ptr<PullContext> context, std::uint32_t timeout);
    // Takes a context out for one pull; nobody else can use it meanwhile. CimError 21 if there is none (any more).
    std::unique_ptr<PullContext> take(const std::string& name, std::uint32_t& timeout);
    void putBack(const std::string& name, std::unique_ptr<PullContext> context, std::uint32_t timeout);
    std::size_t size();

private:
    struct Kept {
        std::unique_ptr<PullContext> context;
        Clock::time_point expires;
        std::uint32_t timeout;
    };
    void expire();

    PullLimits _limits;
    std::mutex _mutex; // guards the rest
    std::unordered_map<std::string, Kept> _kept;
    std::size_t _inUse = 0;
};

} // namespace KDV::Host
