#include "common/AutostartDecorator.h"

#include "cmpicpp/CmpiStatus.h"
#include "common/ClassTable.h"
#include "common/PassSchedule.h"

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr std::size_t askedNamesKept = 256; // clients choose the names

std::shared_ptr<CmpiProvider> make(ProviderFactory factory, const CMPIBroker* broker, const Logger& logger)
{
    std::shared_ptr<CmpiProvider> provider(factory(broker, logger));
    if (!provider) throw std::runtime_error("the factory gave no provider");
    return provider;
}

CMPIData property(const CmpiInstance& instance, const char* name)
{
    CMPIStatus status{CMPI_RC_OK, nullptr};
    const CMPIData data = instance.raw()->ft->getProperty(instance.raw(), name, &status);
    throwIfFailed(status, "getProperty");
    if (data.state & (CMPI_nullValue | CMPI_notFound | CMPI_badValue))
        throw std::runtime_error(std::string("the auto-start instance has no value for ") + name);
    return data;
}

std::chrono::seconds secondsOf(const CmpiInstance& instance, const char* name)
{
    const CMPIData data = property(instance, name);
    if (data.type != CMPI_uint16)
        throw std::runtime_error(std::string("the auto-start instance's ") + name + " is no uint16");
    return std::chrono::seconds(data.value.uint16);
}

std::string textOf(const CmpiInstance& instance, const char* name)
{
    const CMPIData data = property(instance, name);
    if (data.type == CMPI_chars && data.value.chars) return data.value.chars;
    CMPIStatus status{CMPI_RC_OK, nullptr};
    const char* const text = data.type == CMPI_string && data.value.string
                                 ? data.value.string->ft->getCharPtr(data.value.string, &status)
                                 : nullptr;
    throwIfFailed(status, "getCharPtr");
    if (!text) throw std::runtime_error(std::string("the auto-start instance's ") + name + " is no text");
    return text;
}

// The schedules that requests reach. Never destroyed: requests may come while the process ends.
struct Schedules {
    std::mutex mutex;
    std::vector<std::weak_ptr<PassSchedule>> list;
};

Schedules& schedules()
{
    static Schedules& all = *new Schedules;
    return all;
}

void registerSchedule(const std::shared_ptr<PassSchedule>& schedule)
{
    Schedules& all = schedules();
    std::lock_guard<std::mutex> lock(all.mutex);
    all.list.erase(std::remove_if(all.list.begin(), all.list.end(), [](const auto& known) { return known.expired(); }),
                   all.list.end());
    all.list.push_back(schedule);
}

} // namespace

AutostartDecorator::AutostartDecorator(const Logger& logger, const CMPIBroker* broker, ProviderFactory factory,
                                       CmpiManagedInstance* autostart, std::shared_ptr<PassClock> clock)
    : AutostartDecorator(logger, broker, make(factory, broker, logger), autostart, std::move(clock))
{
}

AutostartDecorator::AutostartDecorator(const Logger& logger, const CMPIBroker* broker,
                                       std::shared_ptr<CmpiProvider> provider, CmpiManagedInstance* autostart,
                                       std::shared_ptr<PassClock> clock)
    : ProviderForwarder(provider.get()), _logger(logger), _decorated(std::move(provider)), _autostart(autostart)
{
    setBroker(broker);
    _logger.appendLogSource(":AutostartDecorator");
    if (!clock) clock = std::make_shared<MonotonicPassClock>();
    const PropertyList everything(nullptr);
    const CmpiInstance instance = autostart->getInstance();
    const PassSchedule::Timing timing{secondsOf(instance, "WorkerPollInterval"),
                                      secondsOf(instance, "WorkerPollIntervalStagger")};
    _schedule = std::make_shared<PassSchedule>(_logger, timing, std::move(clock));
    WorkerTarget& target = _schedule->target();
    target.broker = broker;
    target.nameSpace = textOf(instance, "WorkerMethodNameSpace");
    target.className = autostart->getClassName();
    target.providerName = textOf(instance, "ProviderName");
    target.provider = _decorated;
    registerSchedule(_schedule);
}

AutostartDecorator::~AutostartDecorator() { _schedule->stop(); }

bool AutostartDecorator::cleanup(const CmpiContext& context, bool terminating)
{
    if (!terminating) return false;
    _schedule->stop();
    return ProviderForwarder::cleanup(context, terminating);
}

bool AutostartDecorator::unloadOK(const CmpiContext& context)
{
    return isFinished() && ProviderForwarder::unloadOK(context);
}

bool AutostartDecorator::isFinished() const { return _schedule->isStopped(); }

void AutostartDecorator::entering(const CmpiContext& context) { _schedule->offer(context.raw()); }

void AutostartDecorator::requestPass() noexcept
{
    Schedules& all = schedules();
    std::lock_guard<std::mutex> lock(all.mutex);
    for (const auto& known : all.list)
        if (const std::shared_ptr<PassSchedule> schedule = known.lock()) schedule->request();
}

// Is the class asked for the auto-start instance's own or one above it? Each name is asked of the broker once.
AutostartDecorator::Ask AutostartDecorator::kindOf(const CmpiName& className)
{
    if (className == CmpiName(_autostart->getClassName())) return Ask::own;
    std::string name = smallLetters(className.c_str());
    {
        std::lock_guard<std::mutex> lock(_askedMutex);
        const auto found = _asked.find(name);
        if (found != _asked.end()) return found->second ? Ask::above : Ask::other;
    }
    bool known = false;
    const bool isAbove =
        askIsA(getBroker(), _autostart->getPath().getNameSpace(), _autostart->getClassName(), className, known);
    if (known) {
        std::lock_guard<std::mutex> lock(_askedMutex);
        if (_asked.size() >= askedNamesKept) _asked.clear();
        _asked.emplace(std::move(name), isAbove);
    }
    return isAbove ? Ask::above : Ask::other;
}

// A broker says no also when it does not know the class yet; what it denied is asked again once a pass.
void AutostartDecorator::askAgain()
{
    std::lock_guard<std::mutex> lock(_askedMutex);
    for (auto asked = _asked.begin(); asked != _asked.end();)
        asked = asked->second ? std::next(asked) : _asked.erase(asked);
}

void AutostartDecorator::enumInstanceNames(const CmpiContext& context, const CmpiObjectPath& classPath,
                                           const CmpiObjectPathResult& result)
{
    const Ask ask = kindOf(classPath.getClassName());
    if (ask != Ask::other) result.returnObjectPath(_autostart->getPath());
    if (ask != Ask::own)
        ProviderForwarder::enumInstanceNames(context, classPath, result);
    else
        entering(context);
}

void AutostartDecorator::enumInstances(const CmpiContext& context, const CmpiObjectPath& classPath,
                                       const char* const* properties, const CmpiInstanceResult& result)
{
    const Ask ask = kindOf(classPath.getClassName());
    if (ask != Ask::other) {
        const PropertyList wanted(properties);
        result.returnInstance(_autostart->getInstance());
    }
    if (ask != Ask::own)
        ProviderForwarder::enumInstances(context, classPath, properties, result);
    else
        entering(context);
}

void AutostartDecorator::getInstance(const CmpiContext& context, const CmpiObjectPath& path,
                                     const char* const* properties, const CmpiInstanceResult& result)
{
    if (CmpiName(path.getClassName()) != CmpiName(_autostart->getClassName())) {
        ProviderForwarder::getInstance(context, path, properties, result);
        return;
    }
    entering(context);
    if (path != _autostart->getPath()) throw CmpiStatus(CMPI_RC_ERR_NOT_FOUND, "there is no such auto-start instance");
    const PropertyList wanted(properties);
    result.returnInstance(_autostart->getInstance());
}

void AutostartDecorator::invokeMethod(const CmpiContext& context, const CmpiObjectPath& path, const CmpiName& method,
                                      const CmpiArgs& arguments, const CmpiMethodResult& result)
{
    if (method == CmpiName(workerMethod)) {
        ++_schedule->target().callsSeen;
        askAgain();
    }
    ProviderForwarder::invokeMethod(context, path, method, arguments, result);
}

} // namespace KDV

// For a data library that hears of a plugged disk and does not link this one: it finds the name when it is loaded.
extern "C" KDV_COMMON_API void kdvRequestPass() noexcept { KDV::AutostartDecorator::requestPass(); }
