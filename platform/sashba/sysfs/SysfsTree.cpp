#include "sashba/sysfs/SysfsTree.h"

#include "sashba/sysfs/DeviceText.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace KDV {
namespace {

constexpr std::size_t mostBytes = 8192; // an attribute is at most a page; VPD pages and captures may be a little longer
constexpr std::size_t wholePage = 4096;
constexpr std::size_t mostNames = 16384;
constexpr std::size_t mostPath = 4096;

class OpenFile {
public:
    explicit OpenFile(int fd) : _fd(fd) {}
    ~OpenFile()
    {
        if (_fd >= 0) close(_fd);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    explicit operator bool() const noexcept { return _fd >= 0; }
    int get() const noexcept { return _fd; }
    int release() noexcept { return std::exchange(_fd, -1); }

private:
    int _fd;
};

// Walks "a/../b" by its text. Empty when it leaves the tree.
std::string walk(std::string base, const std::string& link)
{
    std::size_t at = 0;
    while (at < link.size()) {
        const std::size_t end = std::min(link.find('/', at), link.size());
        const std::string step = link.substr(at, end - at);
        at = end + 1;
        if (step.empty() || step == ".") continue;
        if (step == "..") {
            if (base.empty()) return {};
            base = parentOf(base);
        } else {
            base += (base.empty() ? "" : "/") + step;
        }
    }
    return base.size() < mostPath ? base : std::string();
}

} // namespace

std::string lastOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string parentOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

SysfsTree::SysfsTree(std::string root)
    : _root(std::move(root)), _rootFd(open(_root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
}

SysfsTree::SysfsTree(const SysfsTree& whole, const std::string& path)
    : _root(whole._root + "/" + path),
      _rootFd(openat(whole._rootFd, path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW))
{
}

SysfsTree::~SysfsTree()
{
    if (_rootFd >= 0) close(_rootFd);
}

std::optional<std::string> SysfsTree::bytes(const std::string& path) const
{
    const OpenFile file(openat(_rootFd, path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (!file || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    char buffer[mostBytes];
    std::size_t filled = 0;
    while (filled < sizeof buffer) {
        const ssize_t got = read(file.get(), buffer + filled, sizeof buffer - filled);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return std::nullopt; // a driver says that it has no such value, or the device has just gone
        filled += static_cast<std::size_t>(got);
        if (got == 0 || filled < wholePage) // the kernel gives an attribute of less than a page at once
            break;
    }
    return std::string(buffer, filled);
}

std::string SysfsTree::text(const std::string& path) const
{
    const std::optional<std::string> whole = bytes(path);
    return whole ? std::string(trimmed(*whole)) : std::string();
}

std::optional<std::uint64_t> SysfsTree::number(const std::string& path) const { return wholeNumber(text(path)); }

std::vector<TreeEntry> SysfsTree::entries(const std::string& path) const
{
    std::vector<TreeEntry> found;
    OpenFile folder(
        openat(_rootFd, path.empty() ? "." : path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW));
    DIR* stream = folder ? fdopendir(folder.get()) : nullptr;
    if (!stream) return found;
    folder.release(); // now the stream's
    while (const dirent* entry = readdir(stream)) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") found.push_back({std::string(name), entry->d_ino});
        if (found.size() == mostNames) break;
    }
    closedir(stream);
    return found;
}

std::vector<std::string> SysfsTree::names(const std::string& path) const
{
    std::vector<std::string> found;
    for (TreeEntry& entry : entries(path))
        found.push_back(std::move(entry.name));
    std::sort(found.begin(), found.end(), naturalLess);
    return found;
}

std::string SysfsTree::target(const std::string& path) const
{
    char buffer[mostPath];
    const ssize_t length = readlinkat(_rootFd, path.c_str(), buffer, sizeof buffer);
    if (length < 0) {
        struct stat status {};
        const bool folder =
            fstatat(_rootFd, path.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
        return folder ? path : std::string();
    }
    const std::string link(buffer, static_cast<std::size_t>(length));
    if (link.empty() || link.front() == '/' || link.size() == sizeof buffer) return {};
    return walk(parentOf(path), link);
}

std::uint64_t SysfsTree::identity(const std::string& path) const
{
    struct stat status {};
    const char* const place = path.empty() ? "." : path.c_str();
    if (fstatat(_rootFd, place, &status, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISDIR(status.st_mode)) return 0;
    return static_cast<std::uint64_t>(status.st_ino) * 2 + 1;
}

} // namespace KDV
