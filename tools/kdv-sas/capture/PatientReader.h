// Reads files that may never answer: for some attributes the kernel asks a device first. Each read is done by a thread
// that is left behind when it is late, and another one takes its place. One thread at a time uses a reader; what it
// gave up on holds nothing of it. Throws std::bad_alloc, and std::system_error when there is no thread to be had.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace KdvSas {

class OpenFolder {
public:
    explicit OpenFolder(int fd) : _fd(fd) {}
    ~OpenFolder();
    OpenFolder(const OpenFolder&) = delete;
    OpenFolder& operator=(const OpenFolder&) = delete;
    int get() const noexcept { return _fd; }

private:
    int _fd;
};

struct FileRead {
    enum class End : std::uint8_t { Whole, Cut, Failed, Late };

    End end = End::Failed;
    int error = 0; // errno when it failed
    std::string bytes;
};

// A regular file to its end, but not more than the most; anything else fails. Never waits to open a pipe.
FileRead readFile(int folder, const std::string& name, std::size_t most);

class PatientReader {
public:
    using Read = std::function<FileRead(int folder, const std::string& name)>;

    PatientReader(std::chrono::milliseconds patience, Read read);
    ~PatientReader();
    PatientReader(const PatientReader&) = delete;
    PatientReader& operator=(const PatientReader&) = delete;

    FileRead operator()(const std::shared_ptr<const OpenFolder>& folder, const std::string& name);

    struct Desk; // shared with the thread

private:
    std::chrono::milliseconds _patience;
    Read _read;
    std::shared_ptr<Desk> _desk;
};

} // namespace KdvSas
