// The threads that ask devices. One keeper looks what is due and lets short-lived workers do it, a few at once; each
// device has one deadline for all its questions. A device that passes it is called hung, with an error once; its worker
// is written off (it ends whenever the device lets it go) and another one takes its place, so that no device waits for
// another. Answers are handed over as shared values that never change.
//
// All members may be called from any thread and never wait for a device. The destructor does not either: threads that
// are in a device hold what they need themselves.
#pragma once

#include "sashba/sysfs/AskDevice.h"
#include "sashba/sysfs/DeviceAnswer.h"
#include "sashba/sysfs/DeviceLink.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace KDV {

struct AskingSettings {
    std::chrono::milliseconds diskInterval = std::chrono::seconds(60);
    std::chrono::milliseconds boxInterval = std::chrono::seconds(15);
    std::chrono::milliseconds deadline = std::chrono::seconds(20);
    std::size_t threads = 8;
};

class AskingThreads {
public:
    using Report = std::function<void(const std::string&)>;

    AskingThreads(std::shared_ptr<const SysfsTree> tree, std::shared_ptr<DeviceOpener> opener, AskingSettings settings,
                  Report reportError, Report reportInfo);
    ~AskingThreads();
    AskingThreads(const AskingThreads&) = delete;
    AskingThreads& operator=(const AskingThreads&) = delete;

    // What there is to ask from now on. New ones are asked at once, and with a new disk all boxes, since one of them
    // may be the only one to know its bay; answers of those that went are forgotten.
    void setDevices(std::vector<AskedDevice> devices);

    DeviceAnswers answers() const;

    // From now on, tells when devices have answered for the first time, or have failed to, and none is left that has
    // not: once for all that came together. Tells also when a device's answer speaks of another state than the one
    // before (differsInState). Called on any thread without a lock, also just after the object's end: it owns what it
    // needs.
    void tellOfNews(std::function<void()> tell);

    // Waits until every device has an answer, be it that it hung, but not longer than given. For the first filling.
    bool waitForAll(std::chrono::milliseconds atMost) const;

    struct State; // shared with the threads

private:
    std::shared_ptr<State> _state;
};

} // namespace KDV
