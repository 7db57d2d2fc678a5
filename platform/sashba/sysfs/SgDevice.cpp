#include "sashba/sysfs/SgDevice.h"

#include "sashba/sysfs/SmartctlRun.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <mutex>
#include <new>
#include <scsi/sg_lib.h>
#include <scsi/sg_pt.h>
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

// All fields, the response code too, are 0 where there is no sense data.
sg_scsi_sense_hdr senseOf(ByteView sense)
{
    const ByteView most = sense.part(0, senseBytes);
    sg_scsi_sense_hdr header{};
    sg_scsi_normalize_sense(reinterpret_cast<const std::uint8_t*>(most.chars().data()), static_cast<int>(most.size()),
                            &header);
    return header;
}

// The library's object for one command. The first one looks up device numbers for all, without a lock of its own.
class Command {
public:
    Command(int fd, const std::uint8_t* bytes, std::size_t count)
    {
        static std::mutex lock;
        const std::lock_guard<std::mutex> guard(lock);
        _command = construct_scsi_pt_obj_with_fd(fd, quiet);
        if (!_command) throw std::bad_alloc();
        set_scsi_pt_cdb(_command, bytes, static_cast<int>(count));
        set_scsi_pt_sense(_command, _sense, sizeof _sense);
    }
    ~Command() { destruct_scsi_pt_obj(_command); }
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;

    void readInto(std::string& data)
    {
        set_scsi_pt_data_in(_command, reinterpret_cast<std::uint8_t*>(data.data()), static_cast<int>(data.size()));
    }

    Reply run(int fd, std::chrono::seconds timeout, std::size_t wanted)
    {
        Reply reply;
        const int outcome = do_scsi_pt(_command, fd, static_cast<int>(timeout.count()), quiet);
        if (outcome != 0) {
            reply.state = replyFor(outcome == SCSI_PT_DO_TIMEOUT ? ETIMEDOUT : -outcome);
            return reply;
        }
        const int hostStatus = get_scsi_pt_transport_err(_command);
        const int status = get_scsi_pt_status_response(_command);
        const int category = get_scsi_pt_result_category(_command);
        const int filled = std::clamp(get_scsi_pt_sense_len(_command), 0, static_cast<int>(sizeof _sense));
        const ByteView sense(_sense, static_cast<std::size_t>(filled));
        const bool driverFailed = category == SCSI_PT_RESULT_TRANSPORT_ERR && hostStatus == 0;
        if (!driverFailed)
            reply.state = judgeReply(static_cast<std::uint8_t>(status), static_cast<std::uint16_t>(hostStatus), sense);
        const auto left = static_cast<std::size_t>(std::max(get_scsi_pt_resid(_command), 0));
        reply.bytes = wanted - std::min(left, wanted);
        reply.again = status == SAM_STAT_CHECK_CONDITION && senseOf(sense).sense_key == SPC_SK_UNIT_ATTENTION;
        return reply;
    }

private:
    static constexpr int quiet = 0; // it would write to the server's standard error

    sg_pt_base* _command = nullptr;
    std::uint8_t _sense[senseBytes] = {};
};

class SgDevice final : public DeviceLink {
public:
    SgDevice(int fd, std::string node, std::chrono::milliseconds deadline)
        : _fd(fd), _node(std::move(node)), _end(std::chrono::steady_clock::now() + deadline)
    {
    }
    ~SgDevice() override { close(_fd); }

    ReadyReply testUnitReady() override
    {
        const std::uint8_t command[6] = {0x00};
        std::string nothing;
        return run(command, sizeof command, nothing).state;
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
        return std::max(left, std::chrono::milliseconds(1));
    }

    std::string page(const std::uint8_t* command, std::size_t commandBytes, std::size_t most)
    {
        std::string bytes(most, '\0');
        const Reply reply = run(command, commandBytes, bytes);
        bytes.resize(reply.state.readiness == Readiness::Ready ? reply.bytes : 0);
        return bytes;
    }

    // The library counts whole seconds; the asking threads watch over the deadline itself.
    Reply run(const std::uint8_t* bytes, std::size_t count, std::string& data)
    {
        Reply reply;
        for (int attempt = 0; attempt < attempts; ++attempt) {
            if (std::chrono::steady_clock::now() >= _end) {
                reply = Reply();
                reply.state.timedOut = true;
                break;
            }
            Command command(_fd, bytes, count);
            if (!data.empty()) command.readInto(data);
            reply = command.run(_fd, std::chrono::ceil<std::chrono::seconds>(timeLeft()), data.size());
            if (!reply.again) break;
        }
        return reply;
    }

    int _fd;
    std::string _node;
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
    const sg_scsi_sense_hdr said = senseOf(sense);
    const bool checked = scsiStatus == SAM_STAT_CHECK_CONDITION && said.response_code != 0;
    reply.failurePredicted = said.asc == 0x5D && said.ascq != 0xFF;
    if (scsiStatus == SAM_STAT_GOOD)
        reply.readiness = Readiness::Ready;
    else if (checked && (said.sense_key == SPC_SK_NO_SENSE || said.sense_key == SPC_SK_RECOVERED_ERROR))
        reply.readiness = Readiness::Ready;
    else if (checked && said.sense_key == SPC_SK_NOT_READY) // 04h/02h: it was stopped on purpose
        reply.readiness = said.asc == 0x04 && said.ascq == 0x02 ? Readiness::Asleep : Readiness::NotReady;
    else if (checked && said.sense_key == SPC_SK_HARDWARE_ERROR)
        reply.readiness = Readiness::NotReady; // at the simplest of all commands
    return reply;
}

std::unique_ptr<DeviceOpener> makeSgOpener() { return std::make_unique<SgOpener>(); }

} // namespace KDV
