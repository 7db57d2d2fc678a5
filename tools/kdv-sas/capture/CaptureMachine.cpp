#include "capture/CaptureMachine.h"

#include "capture/RecordingOpener.h"
#include "capture/TreeWalk.h"
#include "sashba/sysfs/DevicePath.h"
#include "sashba/sysfs/SysfsScan.h"
#include "sashba/sysfs/SysfsSource.h"
#include "sashba/sysfs/SysfsTree.h"

#include <algorithm>
#include <future>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>

namespace KdvSas {
namespace {

constexpr std::size_t mostFileBytes = 131072; // of an attribute; the largest pages have half of that
constexpr int attributesOfAScan = 6;          // that may be slow, before something hangs
constexpr std::chrono::minutes longestAsking{10};

// Some attributes that a scan reads cost a command on some adapters, so that it may hang like any other reading.
std::optional<KDV::LiveMachine> scanInTime(const std::shared_ptr<const KDV::SysfsTree>& tree,
                                           std::chrono::milliseconds patience)
{
    auto scan =
        std::make_shared<std::packaged_task<KDV::LiveMachine()>>([tree] { return KDV::SysfsScan(*tree).scan(); });
    std::future<KDV::LiveMachine> found = scan->get_future();
    std::thread([scan] { (*scan)(); }).detach();
    if (found.wait_for(patience) != std::future_status::ready) return std::nullopt;
    return found.get();
}

void takeArrays(const KDV::SysfsTree& tree, TreeWalk& walk)
{
    for (const std::string list : {"block/", "class/block/"}) {
        for (const std::string& name : tree.names(list.substr(0, list.size() - 1))) {
            const std::string block = tree.target(list + name);
            if (!block.empty() && tree.identity(block + "/md") != 0) walk.takeArray(block);
        }
    }
}

void walkTree(const CaptureSettings& settings, const KDV::SysfsTree& tree, const std::optional<KDV::LiveMachine>& live,
              Captured& to)
{
    const PatientReader::Read fromFile = [](int folder, const std::string& name) {
        return readFile(folder, name, mostFileBytes);
    };
    PatientReader reader(settings.patience, settings.read ? settings.read : fromFile);
    TreeWalk walk(settings.root, reader, to);
    std::set<std::string> adapters;
    if (live) {
        for (const KDV::LiveHba& hba : live->hbas) {
            adapters.insert(hba.path);
            walk.takeModule(hba.driver);
        }
    }
    for (const std::string& adapter : adapters)
        walk.takeHost(adapter);
    for (const std::string& name : tree.names("class/scsi_host")) {
        const std::string host = KDV::splitDevicePath(tree.target("class/scsi_host/" + name)).host;
        if (host.empty() || adapters.count(host) != 0) continue;
        if (adapters.empty()) // an adapter that is not recognised is worth a report too
            walk.takeHost(host);
        else
            walk.takeHostAttributes(host);
    }
    takeArrays(tree, walk);
    walk.takeMaker();
    walk.takePciSlots();
    walk.takeLists();
}

void askDevices(const CaptureSettings& settings, const std::shared_ptr<const KDV::SysfsTree>& tree,
                const std::vector<KDV::AskedDevice>& devices, Captured& to)
{
    const auto recorder = std::make_shared<RecordingOpener>(settings.opener);
    KDV::AskingSettings once = settings.asking;
    once.diskInterval = once.boxInterval = std::chrono::hours(24);
    KDV::AskingThreads threads(tree, recorder, once, settings.tell, settings.tell);
    threads.setDevices(devices);
    const auto rounds = static_cast<int>(1 + devices.size() / std::max<std::size_t>(once.threads, 1));
    threads.waitForAll(std::min<std::chrono::milliseconds>(once.deadline * rounds + settings.patience, longestAsking));
    const KDV::DeviceAnswers answers = threads.answers();
    DevicePages pages = recorder->pages();
    for (const KDV::AskedDevice& device : devices) {
        const std::string name = KDV::lastOf(device.path);
        const auto answer = answers.find(device.key);
        if (answer != answers.end() && !answer->second->hung) {
            if (answer->second->denied) to.unread.push_back({"pages/" + name, "no permission to ask the device"});
            continue;
        }
        if (device.kind != KDV::AskedKind::FirmwareVolume) pages[name]["ready"] = "hung\n";
        to.unread.push_back({"pages/" + name, "the device does not answer in time"});
    }
    for (auto& [device, files] : pages) {
        for (auto& [name, bytes] : files)
            to.entries.push_back({CapturedEntry::Kind::File, "pages/" + device + "/" + name, std::move(bytes)});
    }
}

} // namespace

MachineCapture captureMachine(const CaptureSettings& settings)
{
    MachineCapture made;
    const auto tree = std::make_shared<const KDV::SysfsTree>(settings.root);
    const std::optional<KDV::LiveMachine> live = scanInTime(tree, settings.patience * attributesOfAScan);
    if (!live) made.captured.unread.push_back({"pages", "looking for the adapters took too long; no device was asked"});
    walkTree(settings, *tree, live, made.captured);
    if (!live) return made;
    made.adapters = live->hbas.size();
    const std::vector<KDV::AskedDevice> devices = KDV::devicesToAsk(*live);
    made.devices = devices.size();
    if (!devices.empty()) askDevices(settings, tree, devices, made.captured);
    return made;
}

} // namespace KdvSas
