#include "capture/PatientReader.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace KdvSas {

OpenFolder::~OpenFolder()
{
    if (_fd >= 0) close(_fd);
}

struct PatientReader::Desk {
    Read read;

    std::mutex lock; // guards all below
    std::condition_variable changed;
    std::shared_ptr<const OpenFolder> folder;
    std::string name;
    bool asked = false;
    bool answered = false;
    bool left = false; // nobody asks any more
    FileRead answer;
};

namespace {

void serve(std::shared_ptr<PatientReader::Desk> desk) // NOLINT(performance-unnecessary-value-param): its own share
{
    std::unique_lock<std::mutex> guard(desk->lock);
    for (;;) {
        desk->changed.wait(guard, [&desk] { return desk->asked || desk->left; });
        if (desk->left) return;
        desk->asked = false;
        const std::shared_ptr<const OpenFolder> folder = desk->folder;
        const std::string name = desk->name;
        guard.unlock();
        FileRead answer;
        try {
            answer = desk->read(folder->get(), name);
        } catch (const std::exception&) {
            answer.error = ENOMEM;
        }
        guard.lock();
        desk->answer = std::move(answer);
        desk->answered = true;
        desk->changed.notify_all();
    }
}

void leave(PatientReader::Desk& desk)
{
    const std::lock_guard<std::mutex> guard(desk.lock);
    desk.left = true;
    desk.changed.notify_all();
}

} // namespace

FileRead readFile(int folder, const std::string& name, std::size_t most)
{
    FileRead result;
    const OpenFolder file(openat(folder, name.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (file.get() < 0 || fstat(file.get(), &status) != 0) {
        result.error = errno;
        return result;
    }
    if (!S_ISREG(status.st_mode)) {
        result.error = EINVAL;
        return result;
    }
    std::string chunk(std::min<std::size_t>(most + 1, 65536), '\0'); // the kernel shows attributes with a wrong size
    while (result.bytes.size() <= most) {
        const ssize_t got = read(file.get(), chunk.data(), chunk.size());
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) {
            result.error = errno;
            return result;
        }
        if (got == 0) break;
        result.bytes.append(chunk, 0, static_cast<std::size_t>(got));
    }
    result.end = result.bytes.size() > most ? FileRead::End::Cut : FileRead::End::Whole;
    result.bytes.resize(std::min(result.bytes.size(), most));
    return result;
}

PatientReader::PatientReader(std::chrono::milliseconds patience, Read read)
    : _patience(patience), _read(std::move(read))
{
}

PatientReader::~PatientReader()
{
    if (_desk) leave(*_desk);
}

FileRead PatientReader::operator()(const std::shared_ptr<const OpenFolder>& folder, const std::string& name)
{
    if (!_desk) {
        _desk = std::make_shared<Desk>();
        _desk->read = _read;
        std::thread(serve, _desk).detach();
    }
    std::unique_lock<std::mutex> guard(_desk->lock);
    _desk->folder = folder;
    _desk->name = name;
    _desk->asked = true;
    _desk->answered = false;
    _desk->changed.notify_all();
    if (_desk->changed.wait_for(guard, _patience, [this] { return _desk->answered; })) return std::move(_desk->answer);
    _desk->left = true; // its thread ends when the kernel lets it go
    guard.unlock();
    _desk.reset();
    FileRead late;
    late.end = FileRead::End::Late;
    return late;
}

} // namespace KdvSas
