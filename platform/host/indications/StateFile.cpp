#include "indications/StateFile.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace KDV::Host {

namespace {

[[noreturn]] void fail(const std::string& what, const std::filesystem::path& file)
{
    const int code = errno;
    throw std::system_error(code, std::generic_category(), what + ' ' + file.string());
}

class Descriptor {
public:
    explicit Descriptor(int number) noexcept : _number(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor()
    {
        if (_number >= 0) ::close(_number);
    }
    int number() const noexcept { return _number; }

private:
    int _number;
};

void writeAll(int descriptor, std::string_view content, const std::filesystem::path& file)
{
    while (!content.empty()) {
        const ssize_t written = ::write(descriptor, content.data(), content.size());
        if (written >= 0)
            content.remove_prefix(static_cast<std::size_t>(written));
        else if (errno != EINTR)
            fail("cannot write", file);
    }
}

// The new name counts only when the directory itself is on disk.
void syncDirectory(const std::filesystem::path& directory)
{
    const Descriptor opened(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.number() < 0 || ::fsync(opened.number()) != 0) fail("cannot bring to disk", directory);
}

} // namespace

std::optional<std::string> StateFile::read() const
{
    const Descriptor opened(::open(_file.c_str(), O_RDONLY | O_CLOEXEC));
    if (opened.number() < 0) {
        if (errno == ENOENT) return std::nullopt;
        fail("cannot read", _file);
    }
    std::string content;
    char block[16384];
    for (;;) {
        const ssize_t count = ::read(opened.number(), block, sizeof block);
        if (count == 0) return content;
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) fail("cannot read", _file);
        content.append(block, static_cast<std::size_t>(count));
        if (content.size() > maxSize)
            throw std::runtime_error(_file.string() + ": larger than " + std::to_string(maxSize) + " bytes");
    }
}

void StateFile::write(std::string_view content) const
{
    const std::filesystem::path temporary = _file.string() + ".new";
    {
        const Descriptor opened(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600));
        if (opened.number() < 0) fail("cannot write", temporary);
        writeAll(opened.number(), content, temporary);
        if (::fsync(opened.number()) != 0) fail("cannot bring to disk", temporary);
    }
    if (_beforeRename) _beforeRename();
    if (::rename(temporary.c_str(), _file.c_str()) != 0) fail("cannot replace", _file);
    syncDirectory(_file.parent_path());
}

std::filesystem::path StateFile::putAside() const
{
    for (unsigned number = 1;; ++number) {
        const std::filesystem::path aside = _file.string() + ".broken-" + std::to_string(number);
        if (::link(_file.c_str(), aside.c_str()) == 0) {
            if (::unlink(_file.c_str()) != 0) fail("cannot put aside", _file);
            return aside;
        }
        if (errno != EEXIST) fail("cannot put aside", _file);
    }
}

} // namespace KDV::Host
