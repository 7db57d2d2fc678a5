#include "sashba/sysfs/AskingThreads.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <map>
#include <mutex>
#include <pthread.h>
#include <signal.h>
#include <thread>
#include <utility>

namespace KDV {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t mostWrittenOff = 64; // threads that hang in devices

struct Asked {
    AskedDevice device;
    Clock::time_point due = Clock::now();
    Clock::time_point begun;
    std::uint64_t ticket = 0; // of the worker that asks it now; 0 none
    bool writtenOff = false;  // that worker has passed the deadline
    bool hangReported = false;
    bool again = false; // what is being asked now may be out of date when it comes
    std::shared_ptr<const DeviceAnswer> answer;
};

} // namespace

struct AskingThreads::State {
    std::shared_ptr<const SysfsTree> tree;
    std::shared_ptr<DeviceOpener> opener;
    AskingSettings settings;
    Report reportError;
    Report reportInfo;

    mutable std::mutex lock; // guards all below
    mutable std::condition_variable changed;
    std::map<std::string, std::shared_ptr<Asked>> devices;
    std::uint64_t lastTicket = 0;
    std::size_t workers = 0; // at work and in time
    std::size_t writtenOff = 0;
    std::function<void()> tellOfNews; // empty: nobody wants to know
    bool hasToTell = false;
    bool deniedReported = false;
    bool ending = false;

    std::shared_ptr<Asked> takeDue();
    void finish(const std::shared_ptr<Asked>& asked, std::uint64_t ticket, DeviceAnswer answer);
    void writeOff(Asked& asked);
    void takeAnswer(Asked& asked, DeviceAnswer answer);
    bool tell(std::unique_lock<std::mutex>& guard);
    void reportOn(Asked& asked);
    void askBoxes();
    Clock::time_point lookAround(std::size_t& wanted);
};

namespace {

using State = AskingThreads::State;

// Signals are the business of the threads that the process made itself.
bool startThread(void (*run)(std::shared_ptr<State>), const std::shared_ptr<State>& state)
{
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    bool started = true;
    try {
        std::thread(run, state).detach();
    } catch (const std::exception&) {
        started = false; // no thread to be had now; the keeper tries again
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return started;
}

void work(std::shared_ptr<State> state) // NOLINT(performance-unnecessary-value-param): the thread's own share
{
    std::unique_lock<std::mutex> guard(state->lock);
    while (!state->ending) {
        const std::shared_ptr<Asked> asked = state->takeDue();
        if (!asked) break;
        const std::uint64_t ticket = asked->ticket;
        const AskedDevice device = asked->device;
        guard.unlock();
        DeviceAnswer answer;
        try {
            answer = askDevice(device, *state->opener, *state->tree, state->settings.deadline);
        } catch (const std::exception&) {
            answer = DeviceAnswer(); // no memory: nothing is known
        }
        guard.lock();
        const bool tooLate = asked->ticket == ticket && asked->writtenOff;
        state->finish(asked, ticket, std::move(answer));
        state->tell(guard);
        if (tooLate) return; // another one works in its place
    }
    --state->workers;
    state->changed.notify_all();
}

void keep(std::shared_ptr<State> state) // NOLINT(performance-unnecessary-value-param): likewise
{
    std::unique_lock<std::mutex> guard(state->lock);
    while (!state->ending) {
        std::size_t wanted = 0;
        Clock::time_point next = state->lookAround(wanted);
        if (state->tell(guard)) continue; // what was seen may have changed meanwhile
        for (; wanted > 0 && state->workers < state->settings.threads; --wanted) {
            if (!startThread(work, state)) {
                next = std::min(next, Clock::now() + std::chrono::seconds(1));
                break;
            }
            ++state->workers;
        }
        state->changed.wait_until(guard, next);
    }
}

} // namespace

std::shared_ptr<Asked> AskingThreads::State::takeDue()
{
    const Clock::time_point now = Clock::now();
    std::shared_ptr<Asked> first;
    for (const auto& [key, asked] : devices) {
        if (asked->ticket == 0 && asked->due <= now && (!first || asked->due < first->due)) first = asked;
    }
    if (first) {
        first->ticket = ++lastTicket;
        first->begun = now;
        changed.notify_all(); // the keeper has a deadline more to look at
    }
    return first;
}

void AskingThreads::State::finish(const std::shared_ptr<Asked>& asked, std::uint64_t ticket, DeviceAnswer answer)
{
    if (ending || asked->ticket != ticket) return; // who reports are made to may be gone
    if (asked->writtenOff) --writtenOff;
    asked->ticket = 0;
    asked->writtenOff = false;
    const bool slow = asked->device.kind == AskedKind::Disk;
    asked->due = Clock::now();
    if (!asked->again) asked->due += slow ? settings.diskInterval : settings.boxInterval;
    asked->again = false;
    takeAnswer(*asked, std::move(answer));
}

void AskingThreads::State::writeOff(Asked& asked)
{
    DeviceAnswer hung;
    hung.hung = true;
    asked.writtenOff = true;
    ++writtenOff;
    --workers;
    takeAnswer(asked, std::move(hung));
}

void AskingThreads::State::takeAnswer(Asked& asked, DeviceAnswer answer)
{
    const bool first = !asked.answer;
    if (!first && answer.readiness == Readiness::Asleep) answer = asleepAfter(*asked.answer);
    const bool otherState = !first && differsInState(*asked.answer, answer);
    asked.answer = std::make_shared<const DeviceAnswer>(std::move(answer));
    reportOn(asked);
    changed.notify_all();
    if (!tellOfNews || (!first && !otherState)) return;
    hasToTell = hasToTell || otherState || std::all_of(devices.begin(), devices.end(), [](const auto& entry) {
                    return entry.second->answer != nullptr;
                });
}

// Gives up the lock meanwhile where it returns true.
bool AskingThreads::State::tell(std::unique_lock<std::mutex>& guard)
{
    if (!hasToTell || ending) return false;
    hasToTell = false;
    const std::function<void()> tellThem = tellOfNews;
    guard.unlock();
    tellThem();
    guard.lock();
    return true;
}

// Once when it begins, and once when it is over.
void AskingThreads::State::reportOn(Asked& asked)
{
    const std::string name = asked.device.node.empty() ? asked.device.path : asked.device.node;
    if (asked.answer->hung != asked.hangReported) {
        asked.hangReported = asked.answer->hung;
        if (asked.answer->hung)
            reportError(name + " (" + lastOf(asked.device.path) + ") does not answer in time; its status is unknown");
        else
            reportInfo(name + " (" + lastOf(asked.device.path) + ") answers again");
    }
    if (asked.answer->denied && !deniedReported) {
        deniedReported = true;
        reportInfo("no permission to ask devices (first " + name +
                   "): whether disks are ready and healthy, and the fans, "
                   "power supplies and temperatures of boxes, stay unknown; run with CAP_SYS_RAWIO and access to the "
                   "device nodes to learn them");
    }
}

// Where a new disk is, a box may be the only one to know.
void AskingThreads::State::askBoxes()
{
    for (const auto& [key, asked] : devices) {
        if (asked->device.kind != AskedKind::Enclosure) continue;
        asked->again = asked->ticket != 0;
        asked->due = std::min(asked->due, Clock::now());
    }
}

// Calls late workers hung, counts what is due, and says when to look again.
Clock::time_point AskingThreads::State::lookAround(std::size_t& wanted)
{
    const Clock::time_point now = Clock::now();
    Clock::time_point next = now + std::chrono::hours(1);
    for (const auto& [key, asked] : devices) {
        if (asked->ticket != 0 && !asked->writtenOff) {
            const Clock::time_point late = asked->begun + settings.deadline;
            if (late <= now && writtenOff < mostWrittenOff)
                writeOff(*asked);
            else if (late > now)
                next = std::min(next, late);
        } else if (asked->ticket == 0) {
            if (asked->due <= now)
                ++wanted;
            else
                next = std::min(next, asked->due);
        }
    }
    return next;
}

AskingThreads::AskingThreads(std::shared_ptr<const SysfsTree> tree, std::shared_ptr<DeviceOpener> opener,
                             AskingSettings settings, Report reportError, Report reportInfo)
    : _state(std::make_shared<State>())
{
    _state->tree = std::move(tree);
    _state->opener = std::move(opener);
    _state->settings = settings;
    _state->reportError = std::move(reportError);
    _state->reportInfo = std::move(reportInfo);
    if (!startThread(keep, _state)) _state->reportError("no thread to ask devices with: their statuses stay unknown");
}

AskingThreads::~AskingThreads()
{
    const std::lock_guard<std::mutex> guard(_state->lock);
    _state->ending = true;
    _state->changed.notify_all();
}

void AskingThreads::setDevices(std::vector<AskedDevice> devices)
{
    const std::lock_guard<std::mutex> guard(_state->lock);
    std::map<std::string, std::shared_ptr<Asked>> next;
    bool news = false;
    bool newDisk = false;
    for (AskedDevice& device : devices) {
        const auto known = _state->devices.find(device.key);
        std::shared_ptr<Asked> asked = known == _state->devices.end() ? nullptr : known->second;
        if (!asked) {
            asked = std::make_shared<Asked>();
            news = true;
            newDisk = newDisk || device.kind == AskedKind::Disk;
        }
        std::string key = device.key;
        asked->device = std::move(device);
        next.emplace(std::move(key), std::move(asked));
    }
    for (const auto& [key, asked] : _state->devices) {
        if (asked->ticket != 0 && !asked->writtenOff && next.count(key) == 0)
            next.emplace(key, asked); // until its worker is back or late
    }
    _state->devices = std::move(next);
    if (newDisk) _state->askBoxes();
    if (news) _state->changed.notify_all();
}

void AskingThreads::tellOfNews(std::function<void()> tell)
{
    const std::lock_guard<std::mutex> guard(_state->lock);
    _state->tellOfNews = std::move(tell);
}

DeviceAnswers AskingThreads::answers() const
{
    const std::lock_guard<std::mutex> guard(_state->lock);
    DeviceAnswers answers;
    for (const auto& [key, asked] : _state->devices) {
        if (asked->answer) answers.emplace(key, asked->answer);
    }
    return answers;
}

bool AskingThreads::waitForAll(std::chrono::milliseconds atMost) const
{
    std::unique_lock<std::mutex> guard(_state->lock);
    return _state->changed.wait_for(guard, atMost, [this] {
        for (const auto& [key, asked] : _state->devices) {
            if (!asked->answer) return false;
        }
        return true;
    });
}

} // namespace KDV
