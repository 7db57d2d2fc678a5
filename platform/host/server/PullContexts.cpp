#include "hostserver/PullContexts.h"

#include "hostserver/CimError.h"

#include <cstring>
#include <random>

namespace KDV::Host {

void PullContext::add(std::string_view element)
{
    const auto length = static_cast<std::uint32_t>(element.size());
    char head[sizeof length];
    std::memcpy(head, &length, sizeof length);
    _store.append({head, sizeof head});
    _store.append(element);
}

bool PullContext::next(std::string& element)
{
    std::uint32_t length = 0;
    char head[sizeof length];
    if (_store.read(_read, head, sizeof head) != sizeof head) return false;
    std::memcpy(&length, head, sizeof length);
    element.resize(length);
    _store.read(_read + sizeof head, element.data(), length);
    _read += sizeof head + length;
    return true;
}

std::uint32_t PullContexts::timeout(const std::uint64_t* asked) const
{
    if (!asked) return _limits.defaultTimeout;
    // 0 would mean for ever.
    if (*asked == 0 || *asked > _limits.longestTimeout)
        throw CimError(invalidOperationTimeout,
                       "OperationTimeout must be 1 to " + std::to_string(_limits.longestTimeout) + " seconds");
    return static_cast<std::uint32_t>(*asked);
}

void PullContexts::expire()
{
    const auto now = Clock::now();
    for (auto at = _kept.begin(); at != _kept.end();)
        at = at->second.expires <= now ? _kept.erase(at) : std::next(at);
}

std::string PullContexts::keep(std::unique_ptr<PullContext> context, std::uint32_t timeout)
{
    const std::lock_guard lock(_mutex);
    expire();
    if (_kept.size() + _inUse >= _limits.contexts)
        throw CimError(serverLimitsExceeded, "too many enumerations are open");
    std::random_device random;
    std::string name;
    do
        name = std::to_string(random()) + "-" + std::to_string(random()) + "-" + std::to_string(random());
    while (_kept.count(name));
    _kept[name] = {std::move(context), Clock::now() + std::chrono::seconds(timeout), timeout};
    return name;
}

std::unique_ptr<PullContext> PullContexts::take(const std::string& name, std::uint32_t& timeout)
{
    const std::lock_guard lock(_mutex);
    expire();
    const auto found = _kept.find(name);
    if (found == _kept.end())
        throw CimError(invalidEnumerationContext, "there is no such enumeration context (any more)");
    auto context = std::move(found->second.context);
    timeout = found->second.timeout;
    _kept.erase(found);
    ++_inUse;
    return context;
}

void PullContexts::putBack(const std::string& name, std::unique_ptr<PullContext> context, std::uint32_t timeout)
{
    const std::lock_guard lock(_mutex);
    --_inUse;
    if (context) _kept[name] = {std::move(context), Clock::now() + std::chrono::seconds(timeout), timeout};
}

std::size_t PullContexts::size()
{
    const std::lock_guard lock(_mutex);
    expire();
    return _kept.size() + _inUse;
}

} // namespace KDV::Host
