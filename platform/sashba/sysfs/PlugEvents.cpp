#include "sashba/sysfs/PlugEvents.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <fcntl.h>
#include <linux/netlink.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

namespace KDV {
namespace {

constexpr int quietMilliseconds = 100; // a pull is a dozen messages
constexpr int mostBursts = 5;          // but in a storm of them somebody is told from time to time

int openSocket()
{
    const int fd = socket(AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_KOBJECT_UEVENT);
    if (fd < 0) return -1;
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = 1; // the kernel's own messages
    if (bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return fd;
    close(fd);
    return -1;
}

// Reads what there is. True when some of it tells of a plug, or when messages were lost.
bool drain(int fd)
{
    bool plug = false;
    for (;;) {
        char buffer[8192];
        sockaddr_nl sender{};
        socklen_t length = sizeof sender;
        const ssize_t got = recvfrom(fd, buffer, sizeof buffer, 0, reinterpret_cast<sockaddr*>(&sender), &length);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return plug || errno == ENOBUFS;
        if (sender.nl_pid == 0) // any process may send here; only the kernel is believed
            plug = plug || tellsOfPlug({buffer, static_cast<std::size_t>(got)});
    }
}

} // namespace

bool tellsOfPlug(std::string_view message)
{
    bool comesOrGoes = false;
    bool changes = false;
    std::string_view subsystem;
    std::string_view name;
    while (!message.empty()) {
        const std::size_t end = std::min(message.find('\0'), message.size());
        const std::string_view entry = message.substr(0, end);
        message.remove_prefix(std::min(end + 1, message.size()));
        if (entry == "ACTION=add" || entry == "ACTION=remove")
            comesOrGoes = true;
        else if (entry == "ACTION=change" || entry == "ACTION=offline" || entry == "ACTION=online")
            changes = true;
        else if (entry.substr(0, 10) == "SUBSYSTEM=")
            subsystem = entry.substr(10);
        else if (entry.substr(0, 8) == "DEVNAME=")
            name = entry.substr(8);
    }
    const bool ofStorage = subsystem == "scsi" || subsystem == "scsi_disk" || subsystem == "scsi_host" ||
                           subsystem == "enclosure" || subsystem == "sas_end_device" || subsystem == "block";
    if (subsystem == "block" && name.substr(0, 2) != "sd" && name.substr(0, 2) != "md") return false;
    return ofStorage && (comesOrGoes || (changes && (name.substr(0, 2) == "md" || subsystem == "scsi")));
}

PlugEvents::PlugEvents(std::function<void()> plugged) : _plugged(std::move(plugged))
{
    if (pipe2(_end, O_CLOEXEC) != 0) {
        _end[0] = _end[1] = -1;
        return;
    }
    _socket = openSocket();
    if (_socket < 0) return;
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
        _thread = std::thread([this] { listen(); });
    } catch (const std::exception&) {
        close(_socket);
        _socket = -1;
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

PlugEvents::~PlugEvents()
{
    if (_end[1] >= 0) close(_end[1]); // the thread sees it and ends
    if (_thread.joinable()) _thread.join();
    if (_end[0] >= 0) close(_end[0]);
    if (_socket >= 0) close(_socket);
}

void PlugEvents::listen()
{
    int bursts = 0; // that came since the last call
    for (;;) {
        pollfd waiting[2] = {{_socket, POLLIN, 0}, {_end[0], POLLIN, 0}};
        const int ready = poll(waiting, 2, bursts > 0 ? quietMilliseconds : -1);
        if (ready > 0 && waiting[1].revents != 0) return;
        if (ready > 0 && drain(_socket)) ++bursts;
        if (bursts > 0 && (ready == 0 || bursts >= mostBursts)) {
            bursts = 0;
            _plugged();
        }
    }
}

} // namespace KDV
