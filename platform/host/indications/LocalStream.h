// A Unix-domain socket on which everybody on this machine who may open it follows the indications, a line each.
// publish() never waits: every follower has a bounded buffer, and one that does not read is dropped when its buffer is
// full. What followers send is ignored. One thread serves all of them; publish() and followers() may be called from
// any.
#pragma once

#include "logger/Logger.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <poll.h>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <thread>
#include <vector>

namespace KDV::Host {

struct StreamOptions {
    std::string path;   // of the socket
    mode_t mode = 0660; // who may connect
    unsigned followers = 16;
    std::size_t bufferedBytes = 256u << 10; // for each follower
};

class LocalStream {
public:
    // Called on the stream's own thread, when the first follower has come and when the last has gone.
    using Watch = std::function<void(bool followed)>;

    // Listens at once; a socket that nobody serves any more is replaced. std::system_error if that cannot be.
    LocalStream(StreamOptions options, Watch watch, Logger log);
    ~LocalStream(); // sends what still fits without waiting, and removes the socket
    LocalStream(const LocalStream&) = delete;
    LocalStream& operator=(const LocalStream&) = delete;

    void publish(std::string_view line); // without its line feed
    unsigned followers() const;
    unsigned dropped() const noexcept { return _dropped.load(); } // followers that did not read

private:
    struct Follower {
        explicit Follower(int number) noexcept : socket(number) {}
        ~Follower();
        Follower(const Follower&) = delete;
        Follower& operator=(const Follower&) = delete;
        int socket;
        std::string pending;
        bool gone = false;
    };

    void listen();
    void run();
    void accept();
    void serve(Follower& follower, short events);
    static void flush(Follower& follower);
    bool removeGone(); // whether any are left
    void wake() const noexcept;

    StreamOptions _options;
    Watch _watch;
    Logger _log;
    int _listener = -1;
    int _wake = -1;
    std::atomic<bool> _stopping{false};
    std::atomic<unsigned> _dropped{0};
    mutable std::mutex _mutex; // guards _followers and what is in them
    std::list<Follower> _followers;
    std::thread _thread;
};

} // namespace KDV::Host
