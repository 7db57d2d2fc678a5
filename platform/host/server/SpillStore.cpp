#include "hostserver/SpillStore.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace KDV::Host {

namespace {
[[noreturn]] void throwErrno(const char* what) { throw std::system_error(errno, std::generic_category(), what); }
} // namespace

SpillStore::~SpillStore()
{
    if (_file >= 0) ::close(_file);
}

void SpillStore::openFile()
{
    const char* chosen = std::getenv("TMPDIR");
    const std::string directory = chosen && *chosen ? chosen : "/var/tmp";
    _file = ::open(directory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (_file >= 0) return;
    // Not every file system knows files without a name.
    std::string name = directory + "/kdv-cimhost.XXXXXX";
    _file = ::mkostemp(name.data(), O_CLOEXEC);
    if (_file < 0) throwErrno("cannot make a temporary file");
    ::unlink(name.c_str());
}

void SpillStore::append(std::string_view bytes)
{
    if (_fileSize == 0) {
        const std::string_view part = bytes.substr(0, std::min(bytes.size(), _limit - _memory.size()));
        _memory.append(part);
        bytes.remove_prefix(part.size());
    }
    if (!bytes.empty() && _file < 0) openFile();
    while (!bytes.empty()) {
        const ssize_t written = ::pwrite(_file, bytes.data(), bytes.size(), static_cast<off_t>(_fileSize));
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) throwErrno("cannot write a temporary file");
        _fileSize += static_cast<std::uint64_t>(written);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

std::size_t SpillStore::read(std::uint64_t offset, char* to, std::size_t size) const
{
    std::size_t got = 0;
    if (offset < _memory.size()) {
        got = std::min(size, _memory.size() - static_cast<std::size_t>(offset));
        std::memcpy(to, _memory.data() + offset, got);
    }
    while (got < size && offset + got < this->size()) {
        const std::uint64_t inFile = offset + got - _memory.size();
        const ssize_t count = ::pread(_file, to + got, size - got, static_cast<off_t>(inFile));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) throwErrno("cannot read a temporary file");
        got += static_cast<std::size_t>(count);
    }
    return got;
}

} // namespace KDV::Host
