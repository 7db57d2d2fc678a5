#include "sashba/sysfs/SgDevice.h"

#include "sashba/sysfs/SmartctlRun.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <scsi/sg.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace KDV {
namespace {

constexpr std::size_t senseBytes = 64;
constexpr std::size_t pageBytes = 32768;
constexpr int attempts = 3; // a device reports each unit attention once

struct Reply {
    ReadyReply state;
    std::size_t bytes = 0;
    bool again = false;
};

ReadyReply replyFor(int error)
{
    ReadyReply reply;
    if (error == ENXIO || error == ENODEV)
        reply.readiness = Readiness::NoConnect;
    else if (error == EACCES || error == EPERM ||
             error == ENOENT) // no node, as in a container, is no permission either
        reply.denied = true;
    else if (error == ETIMEDOUT)
        reply.timedOut = true;
    return reply;
}

std::uint8_t senseKeyOf(ByteView sense)
{
    return (sense.u8(0) & 0x7F) >= 0x72 ? sense.u8(1) & 0x0F : sense.u8(2) & 0x0F;
}

class SgDevice final : public DeviceLink {
public:
    SgDevice(int fd, std::string node, std::chrono::milliseconds deadline)
        : _fd(fd), _node(std::move(node)), _deadline(deadline), _end(std::chrono::steady_clock::now() + deadline)
    {
    }
    ~SgDevice() override { close(_fd); }

    ReadyReply testUnitReady() override
    {
        const std::uint8_t command[6] = {0x00};
        return run(command, sizeof command, nullptr, 0).state;
    }

    std::string logPage(std::uint8_t code) override
    {
        const std::uint8_t cumulative = 0x40;
        const std::uint8_t command[10] = {0x4D, 0, static_cast<std::uint8_t>(cumulative | code), 0, 0, 0, 0, 0x10,
                                          0,    0};
        return page(command, sizeof command, 0x1000);
    }

    std::string enclosurePage(std::uint8_t code) override
    {
        const std::uint8_t command[6] = {0x1C, 0x01, code, static_cast<std::uint8_t>(pageBytes >> 8), 0, 0};
        return page(command, sizeof command, pageBytes);
    }

    std::string smartctlOutput() override { return runSmartctl(_node, timeLeft()); }

private:
    std::chrono::milliseconds timeLeft() const
    {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(_end - std::chrono::steady_clock::now());
        return std::clamp(left, std::chrono::milliseconds(1), _deadline);
    }

    std::string page(const std::uint8_t* command, std::size_t commandBytes, std::size_t most)
    {
        std::string bytes(most, '\0');
        const Reply reply = run(command, commandBytes, bytes.data(), bytes.size());
        bytes.resize(reply.state.readiness == Readiness::Ready ? reply.bytes : 0);
        return bytes;
    }

    Reply run(const std::uint8_t* command, std::size_t commandBytes, char* data, std::size_t dataBytes)
    {
        Reply reply;
        for (int attempt = 0; attempt < attempts; ++attempt) {
            reply = runOnce(command, commandBytes, data, dataBytes);
            if (!reply.again) break;
        }
        return reply;
    }

    Reply runOnce(const std::uint8_t* command, std::size_t commandBytes, char* data, std::size_t dataBytes)
    {
        std::uint8_t commandCopy[16] = {};
        std::memcpy(commandCopy, command, commandBytes);
        std::uint8_t sense[senseBytes] = {};
        sg_io_hdr_t request{};
        request.interface_id = 'S';
        request.dxfer_direction = data ? SG_DXFER_FROM_DEV : SG_DXFER_NONE;
        request.cmd_len = static_cast<unsigned char>(commandBytes);
        request.mx_sb_len = sizeof sense;
        request.dxfer_len = static_cast<unsigned>(dataBytes);
        request.dxferp = data;
        request.cmdp = commandCopy;
        request.sbp = sense;
        request.timeout = static_cast<unsigned>(timeLeft().count());
        Reply reply;
        if (ioctl(_fd, SG_IO, &request) != 0) {
            reply.state = replyFor(errno);
            return reply;
        }
        const ByteView senseData(sense, std::min<std::size_t>(request.sb_len_wr, sizeof sense));
        reply.state = judgeReply(request.status, request.host_status, senseData);
        const auto left = static_cast<std::size_t>(std::max(request.resid, 0));
        reply.bytes = dataBytes - std::min(left, dataBytes);
        reply.again = request.status == 0x02 && senseKeyOf(senseData) == 0x06;
        return reply;
    }

    int _fd;
    std::string _node;
    std::chrono::milliseconds _deadline;
    std::chrono::steady_clock::time_point _end;
};

class SgOpener final : public DeviceOpener {
public:
    std::unique_ptr<DeviceLink> open(const AskedDevice& device, std::chrono::milliseconds deadline,
                                     ReadyReply& reply) override
    {
        if (device.node.empty()) {
            reply.denied = true;
            return nullptr;
        }
        // A block device that is closed after it was open for writing makes udev look at it anew, each time.
        const int access = device.node.compare(0, 7, "/dev/sg") == 0 ? O_RDWR : O_RDONLY;
        const int fd = ::open(device.node.c_str(), access | O_NONBLOCK | O_CLOEXEC);
        if (fd < 0) {
            reply = replyFor(errno);
            return nullptr;
        }
        return std::make_unique<SgDevice>(fd, device.node, deadline);
    }
};

} // namespace

ReadyReply judgeReply(std::uint8_t scsiStatus, std::uint16_t hostStatus, ByteView sense)
{
    // As in the kernel: no connection, bus busy, time out, ... failed fast because the way is gone.
    constexpr std::uint16_t noConnect = 0x01;
    constexpr std::uint16_t timeOut = 0x03;
    constexpr std::uint16_t wayDisrupted = 0x0E;
    constexpr std::uint16_t wayFailed = 0x0F;
    ReadyReply reply;
    if (hostStatus == noConnect || hostStatus == wayDisrupted || hostStatus == wayFailed) {
        reply.readiness = Readiness::NoConnect;
        return reply;
    }
    if (hostStatus == timeOut) reply.timedOut = true;
    if (hostStatus != 0) return reply;
    const bool descriptors = (sense.u8(0) & 0x7F) >= 0x72;
    const std::uint8_t asc = sense.u8(descriptors ? 2 : 12);
    const std::uint8_t ascq = sense.u8(descriptors ? 3 : 13);
    const std::uint8_t key = senseKeyOf(sense);
    reply.failurePredicted = asc == 0x5D && ascq != 0xFF;
    if (scsiStatus == 0x00 || (scsiStatus == 0x02 && (key == 0x00 || key == 0x01)))
        reply.readiness = Readiness::Ready; // good, or recovered
    else if (scsiStatus == 0x02 && key == 0x02)
        reply.readiness = asc == 0x04 && ascq == 0x02 ? Readiness::Asleep : Readiness::NotReady; // stopped on purpose
    else if (scsiStatus == 0x02 && key == 0x04)
        reply.readiness = Readiness::NotReady; // a hardware error at the simplest of all commands
    return reply;
}

std::unique_ptr<DeviceOpener> makeSgOpener() { return std::make_unique<SgOpener>(); }

} // namespace KDV
