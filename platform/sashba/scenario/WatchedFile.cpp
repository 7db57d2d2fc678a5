#include "sashba/scenario/WatchedFile.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <string_view>
#include <system_error>
#include <time.h>
#include <unistd.h>
#include <utility>

namespace KDV {
namespace {

class OpenFile {
public:
    explicit OpenFile(const std::string& path) : _file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY))
    {
    }
    ~OpenFile()
    {
        if (_file >= 0) close(_file);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    int number() const noexcept { return _file; }

private:
    int _file;
};

std::string errorText(int error) { return std::generic_category().message(error); }

bool sameTime(const timespec& a, const timespec& b) { return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec; }

bool sameStamp(const struct stat& a, const struct stat& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size && sameTime(a.st_mtim, b.st_mtim) &&
           sameTime(a.st_ctim, b.st_ctim);
}

// File systems stamp with the time of the last clock tick, up to 10 ms back; the margin is generous.
bool wasWrittenJustNow(const struct stat& seen)
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    const auto milliseconds = [](const timespec& time) {
        return static_cast<long long>(time.tv_sec) * 1000 + time.tv_nsec / 1000000;
    };
    return std::llabs(milliseconds(now) - milliseconds(seen.st_ctim)) < 50;
}

} // namespace

WatchedFile::WatchedFile(std::string path) : _path(std::move(path)) {}

WatchedFile::Sight WatchedFile::look()
{
    struct stat now {};
    if (stat(_path.c_str(), &now) != 0) return unreadable(errorText(errno));
    if (_settled && _trouble.empty() && sameStamp(now, _seen)) return Sight::Same;
    return readAgain();
}

WatchedFile::Sight WatchedFile::unreadable(const std::string& trouble)
{
    _settled = false;
    _hasContent = false; // whatever comes back is new
    if (trouble == _trouble) return Sight::Same;
    _trouble = trouble;
    return Sight::Unreadable;
}

WatchedFile::Sight WatchedFile::readAgain()
{
    const OpenFile file(_path);
    struct stat now {};
    if (file.number() < 0 || fstat(file.number(), &now) != 0) return unreadable(errorText(errno));
    if (!S_ISREG(now.st_mode)) return unreadable("not a regular file");
    if (static_cast<std::uint64_t>(now.st_size) > mostBytes)
        return unreadable("larger than " + std::to_string(mostBytes >> 20) + " MiB");
    const bool fresh = wasWrittenJustNow(now);
    if (!readAll(file.number(), static_cast<std::size_t>(now.st_size)))
        return unreadable(errno ? errorText(errno) : "grows while it is read");

    _trouble.clear();
    _seen = now;
    _settled = !fresh;
    const std::size_t hash = std::hash<std::string_view>()(_text);
    const bool same = _hasContent && hash == _contentHash;
    _contentHash = hash;
    _hasContent = true;
    if (!same) return Sight::NewText;
    forgetText();
    return Sight::Same;
}

// A file that grows meanwhile is read up to the limit; its new stamp brings the rest at the next look.
bool WatchedFile::readAll(int file, std::size_t expectedBytes)
{
    errno = 0;
    _text.resize(expectedBytes + 1);
    std::size_t filled = 0;
    for (;;) {
        const ssize_t got = read(file, _text.data() + filled, _text.size() - filled);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return false;
        if (got == 0) break;
        filled += static_cast<std::size_t>(got);
        if (filled > mostBytes) {
            errno = 0;
            return false;
        }
        if (filled == _text.size()) _text.resize(filled + filled / 2 + 4096);
    }
    _text.resize(filled);
    return true;
}

} // namespace KDV
