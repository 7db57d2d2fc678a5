// What goes to a device node and what is made of its answers. The program stands in for the kernel: its ioctl is found
// before that of the C library, so the node may be any.
#include "sashba/sysfs/SgDevice.h"

#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <fcntl.h>
#include <scsi/sg.h>
#include <string>
#include <sys/ioctl.h>
#include <vector>

#include <gtest/gtest.h>

namespace {

struct Answer {
    int failure = 0; // errno of the call itself
    unsigned char status = 0;
    unsigned short host = 0, driver = 0;
    std::string sense, data;
    int residue = 0; // taken from the length of the data where it is 0
};

struct Asked {
    std::string command;
    unsigned timeout = 0, length = 0;
    int direction = 0, openedWith = 0;
};

std::vector<Answer> answers; // one a command, the last one for all further ones
std::vector<Asked> asked;

int answerRequest(int fd, sg_io_hdr_t& request)
{
    asked.push_back({std::string(reinterpret_cast<const char*>(request.cmdp), request.cmd_len), request.timeout,
                     request.dxfer_len, request.dxfer_direction, fcntl(fd, F_GETFL)});
    const Answer& answer = answers.at(std::min(asked.size(), answers.size()) - 1);
    if (answer.failure != 0) {
        errno = answer.failure;
        return -1;
    }
    request.status = answer.status;
    request.host_status = answer.host;
    request.driver_status = answer.driver;
    request.sb_len_wr =
        static_cast<unsigned char>(std::min<std::size_t>(answer.sense.size(), std::size_t{request.mx_sb_len}));
    std::memcpy(request.sbp, answer.sense.data(), request.sb_len_wr);
    const std::size_t filled = std::min<std::size_t>(answer.data.size(), request.dxfer_len);
    if (filled > 0) std::memcpy(request.dxferp, answer.data.data(), filled);
    request.resid = answer.residue != 0 ? answer.residue : static_cast<int>(request.dxfer_len - filled);
    return 0;
}

} // namespace

extern "C" __attribute__((visibility("default"))) int ioctl(int fd, unsigned long request, ...) noexcept
{
    va_list rest;
    va_start(rest, request);
    void* argument = va_arg(rest, void*);
    va_end(rest);
    if (request == SG_IO) return answerRequest(fd, *static_cast<sg_io_hdr_t*>(argument));
    errno = ENOTTY;
    return -1;
}

namespace KDV {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

std::string senseBytes(unsigned char key, unsigned char asc, unsigned char ascq)
{
    std::string sense(18, '\0');
    sense[0] = 0x70;
    sense[2] = static_cast<char>(key);
    sense[7] = 10;
    sense[12] = static_cast<char>(asc);
    sense[13] = static_cast<char>(ascq);
    return sense;
}

Answer checked(unsigned char key, unsigned char asc, unsigned char ascq)
{
    return {0, 0x02, 0, 0, senseBytes(key, asc, ascq), "", 0};
}

std::unique_ptr<DeviceLink> openDevice(std::vector<Answer> given, milliseconds deadline = seconds(20))
{
    answers = std::move(given);
    asked.clear();
    AskedDevice device;
    device.node = "/dev/null";
    ReadyReply reply;
    return makeSgOpener()->open(device, deadline, reply);
}

TEST(SgDevice, AsksForPagesAsTheStandardsLayThemOut)
{
    const auto device = openDevice({Answer{}});
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(device->testUnitReady().readiness, Readiness::Ready);
    device->logPage(0x2F);
    device->enclosurePage(0x0A);
    ASSERT_EQ(asked.size(), 3U);
    EXPECT_EQ(asked[0].command, std::string(6, '\0'));
    EXPECT_EQ(asked[0].direction, SG_DXFER_NONE);
    EXPECT_EQ(asked[1].command, std::string("\x4D\0\x6F\0\0\0\0\x10\0\0", 10)) << "cumulative values, 4096 bytes";
    EXPECT_EQ(asked[1].length, 4096U);
    EXPECT_EQ(asked[1].direction, SG_DXFER_FROM_DEV);
    EXPECT_EQ(asked[2].command, std::string("\x1C\x01\x0A\x80\0\0", 6));
    EXPECT_EQ(asked[2].length, 32768U);
    for (const Asked& one : asked) {
        EXPECT_GT(one.timeout, 0U);
        EXPECT_LE(one.timeout, 20000U) << "milliseconds, not longer than the deadline";
        EXPECT_NE(one.openedWith & O_NONBLOCK, 0);
        EXPECT_EQ(one.openedWith & O_ACCMODE, O_RDONLY) << "no node of a generic device";
    }
}

TEST(SgDevice, CountsWholeSecondsUpwardsAndAsksNothingWhenTimeIsUp)
{
    openDevice({Answer{}}, milliseconds(3599001))->testUnitReady();
    EXPECT_EQ(asked.at(0).timeout % 1000, 0U);
    EXPECT_GT(asked.at(0).timeout, 1800000U);
    EXPECT_LE(asked.at(0).timeout, 3600000U);
    const auto late = openDevice({Answer{}}, milliseconds(0));
    EXPECT_TRUE(late->testUnitReady().timedOut);
    EXPECT_EQ(late->logPage(0x2F), "");
    EXPECT_TRUE(asked.empty());
}

TEST(SgDevice, TakesAsManyBytesAsCame)
{
    EXPECT_EQ(openDevice({{0, 0, 0, 0, "", "page", 0}})->logPage(0x2F), "page");
    EXPECT_EQ(openDevice({{0, 0, 0, 0, "", "page", 1 << 30}})->logPage(0x2F), "") << "more left than was asked for";
    EXPECT_EQ(openDevice({{0, 0, 0, 0, "", "page", -5}})->logPage(0x2F).size(), 4096U) << "no more than was asked for";
    EXPECT_EQ(openDevice({checked(5, 0x24, 0)})->logPage(0x2F), "") << "it has no such page";
    EXPECT_EQ(openDevice({{EIO, 0, 0, 0, "", "page", 0}})->logPage(0x2F), "");
}

TEST(SgDevice, AsksAgainAfterAUnitAttentionButNotForever)
{
    const Answer attention = checked(6, 0x29, 0);
    EXPECT_EQ(openDevice({attention, attention, Answer{}})->testUnitReady().readiness, Readiness::Ready);
    EXPECT_EQ(asked.size(), 3U);
    EXPECT_EQ(openDevice({attention})->testUnitReady().readiness, Readiness::Unknown);
    EXPECT_EQ(asked.size(), 3U);
    EXPECT_EQ(openDevice({checked(2, 4, 1), Answer{}})->testUnitReady().readiness, Readiness::NotReady);
    EXPECT_EQ(asked.size(), 1U) << "waiting for it would delay the others";
}

TEST(SgDevice, TellsEveryWayOfFailingFromTheOthers)
{
    struct {
        Answer answer;
        Readiness readiness;
        bool denied, timedOut;
    } const cases[] = {
        {{0, 0, 0x01, 0, "", "", 0}, Readiness::NoConnect, false, false},
        {{0, 0, 0x03, 0, "", "", 0}, Readiness::Unknown, false, true},
        {{0, 0, 0x07, 0, "", "", 0}, Readiness::Unknown, false, false},
        {{0, 0, 0, 0x06, "", "", 0}, Readiness::Unknown, false, false}, // the driver gave up
        {{0, 0x18, 0, 0, "", "", 0}, Readiness::Unknown, false, false}, // reserved for another
        {{0, 0x02, 0, 0, "", "", 0}, Readiness::Unknown, false, false}, // complains without saying of what
        {{ENXIO, 0, 0, 0, "", "", 0}, Readiness::NoConnect, false, false},
        {{ENODEV, 0, 0, 0, "", "", 0}, Readiness::NoConnect, false, false},
        {{EPERM, 0, 0, 0, "", "", 0}, Readiness::Unknown, true, false},
        {{ETIMEDOUT, 0, 0, 0, "", "", 0}, Readiness::Unknown, false, true},
        {{EINTR, 0, 0, 0, "", "", 0}, Readiness::Unknown, false, false},
        {checked(2, 4, 2), Readiness::Asleep, false, false},
        {checked(4, 0x44, 0), Readiness::NotReady, false, false},
        {{0, 0x02, 0, 0x08, senseBytes(1, 0x17, 1), "", 0}, Readiness::Ready, false, false},
    };
    for (const auto& one : cases) {
        const ReadyReply reply = openDevice({one.answer})->testUnitReady();
        const std::string which = "of case " + std::to_string(&one - cases);
        EXPECT_EQ(reply.readiness, one.readiness) << which;
        EXPECT_EQ(reply.denied, one.denied) << which;
        EXPECT_EQ(reply.timedOut, one.timedOut) << which;
    }
}

} // namespace
} // namespace KDV
