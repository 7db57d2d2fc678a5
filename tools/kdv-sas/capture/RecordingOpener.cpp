#include "capture/RecordingOpener.h"

#include "sashba/sysfs/SysfsTree.h"

#include <utility>

namespace KdvSas {

class RecordingOpener::Notebook {
public:
    void write(const std::string& device, const std::string& name, const std::string& bytes)
    {
        if (bytes.empty()) return; // not to be had is no file
        const std::lock_guard<std::mutex> guard(_lock);
        _pages[device][name] = bytes;
    }

    DevicePages pages() const
    {
        const std::lock_guard<std::mutex> guard(_lock);
        return _pages;
    }

private:
    mutable std::mutex _lock; // guards the pages
    DevicePages _pages;
};

namespace {

std::string wordsFor(const KDV::ReadyReply& reply)
{
    std::string words = "unknown";
    if (reply.timedOut)
        words = "hung";
    else if (reply.denied)
        words = "denied";
    else if (reply.readiness == KDV::Readiness::Ready)
        words = "ready";
    else if (reply.readiness == KDV::Readiness::Asleep)
        words = "asleep";
    else if (reply.readiness == KDV::Readiness::NotReady)
        words = "not ready";
    else if (reply.readiness == KDV::Readiness::NoConnect)
        words = "no connect";
    return words + (reply.failurePredicted ? "\nfailure predicted\n" : "\n");
}

std::string pageName(const char* kind, std::uint8_t code)
{
    static constexpr char digits[] = "0123456789abcdef";
    return std::string(kind) + "_" + digits[code >> 4] + digits[code & 15];
}

class RecordingLink final : public KDV::DeviceLink {
public:
    RecordingLink(std::unique_ptr<KDV::DeviceLink> asked, std::shared_ptr<RecordingOpener::Notebook> notebook,
                  std::string device)
        : _asked(std::move(asked)), _notebook(std::move(notebook)), _device(std::move(device))
    {
    }

    KDV::ReadyReply testUnitReady() override
    {
        const KDV::ReadyReply reply = _asked->testUnitReady();
        _notebook->write(_device, "ready", wordsFor(reply));
        return reply;
    }
    std::string logPage(std::uint8_t code) override { return keep(pageName("log", code), _asked->logPage(code)); }
    std::string enclosurePage(std::uint8_t code) override
    {
        return keep(pageName("ses", code), _asked->enclosurePage(code));
    }
    std::string smartctlOutput() override { return keep("smartctl.json", _asked->smartctlOutput()); }

private:
    std::string keep(const std::string& name, std::string bytes)
    {
        _notebook->write(_device, name, bytes);
        return bytes;
    }

    std::unique_ptr<KDV::DeviceLink> _asked;
    std::shared_ptr<RecordingOpener::Notebook> _notebook;
    std::string _device;
};

} // namespace

RecordingOpener::RecordingOpener(std::shared_ptr<KDV::DeviceOpener> asked)
    : _asked(std::move(asked)), _notebook(std::make_shared<Notebook>())
{
}

RecordingOpener::~RecordingOpener() = default;

std::unique_ptr<KDV::DeviceLink> RecordingOpener::open(const KDV::AskedDevice& device,
                                                       std::chrono::milliseconds deadline, KDV::ReadyReply& reply)
{
    const std::string name = KDV::lastOf(device.path);
    std::unique_ptr<KDV::DeviceLink> link = _asked->open(device, deadline, reply);
    if (link) return std::make_unique<RecordingLink>(std::move(link), _notebook, name);
    _notebook->write(name, "ready", wordsFor(reply));
    return nullptr;
}

DevicePages RecordingOpener::pages() const { return _notebook->pages(); }

} // namespace KdvSas
