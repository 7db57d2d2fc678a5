// Devices that answer at once, but for those that are told to hang until they are let go. The devices are shared by the
// test and by the threads that ask; their lock guards all of them.
#pragma once

#include "sashba/sysfs/DeviceLink.h"

#include <algorithm>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>

namespace KDV {

struct FakeDevices {
    std::mutex lock;
    std::condition_variable changed;
    std::set<std::string> hanging; // nodes; "" stands for all
    bool hangAtPages = false;      // not at the first question but at a later one
    std::set<std::thread::id> openedOn;
    std::size_t opened = 0, closed = 0;
    std::size_t inside = 0, mostInside = 0; // threads that wait for a device
    ReadyReply reply{Readiness::Ready, false, false, false};
    std::string smartctl;

    void release()
    {
        const std::lock_guard<std::mutex> guard(lock);
        hanging.clear();
        changed.notify_all();
    }

    // Waits until it holds, called under the lock.
    template <class Condition>
    bool reach(Condition condition)
    {
        std::unique_lock<std::mutex> guard(lock);
        return changed.wait_for(guard, std::chrono::seconds(60), condition);
    }

    void hang(std::unique_lock<std::mutex>& guard, const std::string& node)
    {
        mostInside = std::max(mostInside, ++inside);
        changed.notify_all();
        changed.wait(guard, [&] { return hanging.count(node) == 0 && hanging.count("") == 0; });
        --inside;
    }
};

class FakeLink final : public DeviceLink {
public:
    FakeLink(std::shared_ptr<FakeDevices> devices, std::string node)
        : _devices(std::move(devices)), _node(std::move(node))
    {
    }
    ~FakeLink() override
    {
        const std::lock_guard<std::mutex> guard(_devices->lock);
        ++_devices->closed;
        _devices->changed.notify_all();
    }
    ReadyReply testUnitReady() override
    {
        std::unique_lock<std::mutex> guard(_devices->lock);
        if (!_devices->hangAtPages) _devices->hang(guard, _node);
        return _devices->reply;
    }
    std::string logPage(std::uint8_t) override
    {
        std::unique_lock<std::mutex> guard(_devices->lock);
        if (_devices->hangAtPages) _devices->hang(guard, _node);
        return {};
    }
    std::string enclosurePage(std::uint8_t) override { return {}; }
    std::string smartctlOutput() override
    {
        const std::lock_guard<std::mutex> guard(_devices->lock);
        return _devices->smartctl;
    }

private:
    std::shared_ptr<FakeDevices> _devices;
    std::string _node;
};

class FakeOpener final : public DeviceOpener {
public:
    explicit FakeOpener(std::shared_ptr<FakeDevices> devices) : _devices(std::move(devices)) {}
    std::unique_ptr<DeviceLink> open(const AskedDevice& device, std::chrono::milliseconds, ReadyReply&) override
    {
        const std::lock_guard<std::mutex> guard(_devices->lock);
        _devices->openedOn.insert(std::this_thread::get_id());
        ++_devices->opened;
        _devices->changed.notify_all();
        return std::make_unique<FakeLink>(_devices, device.node);
    }

private:
    std::shared_ptr<FakeDevices> _devices;
};

} // namespace KDV
