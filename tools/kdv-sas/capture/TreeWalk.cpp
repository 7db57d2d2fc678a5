#include "capture/TreeWalk.h"

#include "capture/Selection.h"
#include "sashba/sysfs/DevicePath.h"
#include "sashba/sysfs/DeviceText.h"
#include "sashba/sysfs/SysfsTree.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace KdvSas {
namespace {

using KDV::lastOf;
using KDV::parentOf;

constexpr unsigned mostDepth = 64;
constexpr std::size_t mostEntries = 2000000;
constexpr std::size_t mostBytes = std::size_t{512} << 20;
constexpr std::size_t mostNames = 65536; // in one folder
constexpr std::size_t mostLink = 4096;
constexpr std::size_t manyLate = 8; // attributes, each after several seconds
constexpr std::size_t mostLate = 32;

std::vector<std::string> namesIn(int folder)
{
    std::vector<std::string> names;
    const int copy = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC); // a place in the list of its own
    DIR* stream = copy >= 0 ? fdopendir(copy) : nullptr;
    if (!stream) {
        if (copy >= 0) close(copy);
        return names;
    }
    while (const dirent* entry = names.size() < mostNames ? readdir(stream) : nullptr) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") names.push_back(name);
    }
    closedir(stream);
    std::sort(names.begin(), names.end(), KDV::naturalLess);
    return names;
}

std::string wordsFor(int error)
{
    char buffer[128];
    return strerror_r(error, buffer, sizeof buffer);
}

mode_t modeOf(int folder, const std::string& name)
{
    struct stat status {};
    return fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 ? status.st_mode : 0;
}

std::string linkText(int folder, const std::string& name)
{
    char buffer[mostLink];
    const ssize_t length = readlinkat(folder, name.c_str(), buffer, sizeof buffer);
    return length > 0 && static_cast<std::size_t>(length) < sizeof buffer
               ? std::string(buffer, static_cast<std::size_t>(length))
               : std::string();
}

// Where a link leads by its text; empty when it is not relative or leaves the tree.
std::string ledTo(const std::string& linkPath, const std::string& text)
{
    if (text.empty() || text.front() == '/') return {};
    std::string at = parentOf(linkPath);
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t end = std::min(text.find('/', begin), text.size());
        const std::string step = text.substr(begin, end - begin);
        begin = end + 1;
        if (step.empty() || step == ".") continue;
        if (step == "..") {
            if (at.empty()) return {};
            at = parentOf(at);
        } else {
            at += (at.empty() ? "" : "/") + step;
        }
    }
    return at;
}

// The SCSI device, or what is between it and its adapter.
std::string deviceOf(const std::string& path)
{
    const KDV::DevicePath split = KDV::splitDevicePath(path);
    if (!split.device.empty()) return split.device;
    return split.endDevice.empty() ? split.expander : split.endDevice;
}

std::string below(const std::string& path, const std::string& name) { return path.empty() ? name : path + "/" + name; }

} // namespace

TreeWalk::TreeWalk(const std::string& root, PatientReader& reader, Captured& to)
    : _root(std::make_shared<const OpenFolder>(::open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))),
      _reader(reader), _to(to)
{
}

// Step by step, since only the last step of a longer path would not be followed if it were a link.
TreeWalk::Folder TreeWalk::open(const std::string& path)
{
    Folder at = _root;
    std::size_t begin = 0;
    while (at->get() >= 0 && begin < path.size()) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        const std::string step = path.substr(begin, end - begin);
        begin = end + 1;
        const int next = openat(at->get(), step.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW);
        if (next < 0) missing(path, wordsFor(errno));
        at = std::make_shared<const OpenFolder>(next);
    }
    return at;
}

bool TreeWalk::take(const std::string& path)
{
    if (!_folders.insert(path).second) return false;
    _to.entries.push_back({CapturedEntry::Kind::Folder, "sys/" + path, {}});
    return true;
}

void TreeWalk::missing(const std::string& path, const std::string& why) { _to.unread.push_back({"sys/" + path, why}); }

bool TreeWalk::full(const std::string& path)
{
    if (_to.entries.size() < mostEntries && _bytes < mostBytes) return false;
    if (!_fullReported) missing(path, "and all after it: the capture is as large as it may be");
    _fullReported = true;
    return true;
}

// Where many devices hang, waiting for each of them would take hours.
bool TreeWalk::isGivenUp(const std::string& path)
{
    if (_silent.count(deviceOf(path)) != 0 || _late >= mostLate) return true;
    return _late >= manyLate && mayAskDevice(path);
}

void TreeWalk::giveUp(const std::string& path)
{
    const std::string device = deviceOf(path);
    if (!device.empty()) _silent.insert(device);
    missing(path, device.empty() ? "does not answer in time"
                                 : "does not answer in time; the rest of this device was not tried");
    if (++_late == manyLate) missing(path, "so many do not answer that no more devices are asked for such attributes");
    if (_late == mostLate) missing(path, "so many do not answer that nothing more was read");
}

void TreeWalk::takeFile(const Folder& folder, const std::string& path)
{
    if (full(path) || isGivenUp(path)) return;
    FileRead got = _reader(folder, lastOf(path));
    switch (got.end) {
    case FileRead::End::Failed:
        return missing(path, wordsFor(got.error));
    case FileRead::End::Late:
        return giveUp(path);
    case FileRead::End::Cut:
        missing(path, "only the first " + std::to_string(got.bytes.size()) + " bytes");
        break;
    case FileRead::End::Whole:
        break;
    }
    _bytes += got.bytes.size() + path.size();
    _to.entries.push_back({CapturedEntry::Kind::File, "sys/" + path, std::move(got.bytes)});
}

void TreeWalk::takeLink(const Folder& folder, const std::string& path)
{
    if (full(path)) return;
    std::string text = linkText(folder->get(), lastOf(path));
    if (ledTo(path, text).empty()) return missing(path, "a link that leads out of the tree");
    _bytes += text.size() + path.size();
    _to.entries.push_back({CapturedEntry::Kind::Link, "sys/" + path, std::move(text)});
}

void TreeWalk::walk(const Folder& folder, const std::string& path, unsigned depth)
{
    if (folder->get() < 0 || full(path) || !take(path)) return;
    if (depth == mostDepth) return missing(path, "deeper than any device is");
    for (const std::string& name : namesIn(folder->get())) {
        const std::string at = below(path, name);
        const mode_t mode = modeOf(folder->get(), name);
        if (S_ISDIR(mode) && takesFolder(path, name)) {
            const int next = openat(folder->get(), name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW);
            if (next < 0) missing(at, wordsFor(errno));
            walk(std::make_shared<const OpenFolder>(next), at, depth + 1);
        } else if (S_ISLNK(mode) && KdvSas::takesLink(name)) {
            takeLink(folder, at);
        } else if (S_ISREG(mode) && (mode & 0444) != 0 && KdvSas::takesFile(name)) {
            takeFile(folder, at);
        } else if (mode != 0 && !S_ISDIR(mode) && !S_ISLNK(mode) && !S_ISREG(mode)) {
            missing(at, "no file, folder or link");
        }
    }
}

bool TreeWalk::takeFiles(const std::string& path, const std::vector<std::string>& names)
{
    const Folder folder = open(path);
    if (folder->get() < 0 || !take(path)) return false;
    for (const std::string& name : names) {
        if (S_ISREG(modeOf(folder->get(), name))) takeFile(folder, below(path, name));
    }
    return true;
}

// The device of the host, of whatever bus, and the bridges above it.
void TreeWalk::takeFunctions(const std::string& hostPath)
{
    const std::string device = parentOf(hostPath);
    for (std::string path = device; !path.empty(); path = parentOf(path)) {
        if (path != device && !KDV::isPciFunction(lastOf(path))) continue;
        if (!takeFiles(path, functionFiles())) continue;
        const Folder folder = open(path);
        if (S_ISLNK(modeOf(folder->get(), "driver"))) takeLink(folder, below(path, "driver"));
    }
}

void TreeWalk::takeHost(const std::string& path)
{
    takeFunctions(path);
    walk(open(path), path, 0);
}

void TreeWalk::takeHostAttributes(const std::string& path)
{
    takeFunctions(path);
    const std::string attributes = below(path, "scsi_host");
    walk(open(attributes), attributes, 0);
}

// Between an array and its disks there may be others of the kernel's own making, for encryption or for two paths.
void TreeWalk::takeArray(const std::string& blockPath)
{
    std::size_t at = _to.entries.size();
    walk(open(blockPath), blockPath, 0);
    for (; at < _to.entries.size(); ++at) {
        if (_to.entries[at].kind != CapturedEntry::Kind::Link) continue;
        const std::string path = _to.entries[at].path.substr(sizeof "sys/" - 1);
        if (lastOf(path) != "block" && lastOf(parentOf(path)) != "slaves") continue;
        const std::string lower = ledTo(path, _to.entries[at].content);
        if (parentOf(lower) == "devices/virtual/block") walk(open(lower), lower, 0);
    }
}

void TreeWalk::takePciSlots()
{
    const std::string path = "bus/pci/slots";
    if (!S_ISDIR(modeOf(_root->get(), path))) return;
    for (const std::string& name : namesIn(open(path)->get())) {
        const Folder slot = open(below(path, name));
        if (slot->get() >= 0 && take(below(path, name))) takeFile(slot, below(below(path, name), "address"));
    }
}

void TreeWalk::takeMaker()
{
    const std::string path = "devices/virtual/dmi/id";
    if (S_ISDIR(modeOf(_root->get(), path))) takeFiles(path, makerFiles());
}

void TreeWalk::takeModule(const std::string& driver)
{
    const bool isName = !driver.empty() && std::all_of(driver.begin(), driver.end(), [](unsigned char letter) {
        return std::isalnum(letter) != 0 || letter == '_' || letter == '-';
    });
    const std::string path = "module/" + driver;
    if (isName && S_ISDIR(modeOf(_root->get(), path))) takeFiles(path, moduleFiles());
}

void TreeWalk::takeLists()
{
    for (const std::string& path : linkFolders()) {
        if (!S_ISDIR(modeOf(_root->get(), path))) continue;
        const Folder folder = open(path);
        take(path);
        for (const std::string& name : namesIn(folder->get())) {
            const std::string at = below(path, name);
            if (!S_ISLNK(modeOf(folder->get(), name))) continue;
            if (_folders.count(ledTo(at, linkText(folder->get(), name))) != 0) takeLink(folder, at);
        }
    }
}

} // namespace KdvSas
