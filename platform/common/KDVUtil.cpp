#include "common/KDVUtil.h"

#include "common/ComputerSystemSettings.h"

#include <atomic>
#include <cstdlib>
#include <ctime>
#include <unistd.h>

using namespace CmpiCpp;
namespace KDV {
namespace {

std::atomic<const CMPIBroker*> theBroker{nullptr};

int rank(operationalStatus status) noexcept
{
    switch (status) {
    case OperationalStatusOK:
        return 0;
    case OperationalStatusPredictiveFailure:
        return 2;
    case OperationalStatusDegraded:
        return 3;
    case OperationalStatusError:
        return 4;
    case OperationalStatusUnknown:
        break;
    }
    return 1; // a value that has no name here counts as Unknown
}

// Takes digits off the front of text; false unless there are some and they fit 16 bits.
bool takeNumber(std::string_view& text, std::uint16_t& number) noexcept
{
    std::uint32_t value = 0;
    std::size_t digits = 0;
    for (; digits < text.size() && text[digits] >= '0' && text[digits] <= '9'; ++digits) {
        value = value * 10 + static_cast<std::uint32_t>(text[digits] - '0');
        if (value > 0xffff) return false;
    }
    text.remove_prefix(digits);
    number = static_cast<std::uint16_t>(value);
    return digits > 0;
}

bool readVersion(std::string_view text, std::uint16_t& major, std::uint16_t& minor) noexcept
{
    if (!takeNumber(text, major)) return false;
    for (unsigned part = 1; !text.empty() || part == 1; ++part) {
        std::uint16_t further = 0;
        if (text.empty() || text.front() != '.') return false;
        text.remove_prefix(1);
        if (!takeNumber(text, part == 1 ? minor : further)) return false;
    }
    return true;
}

std::string askedHostName()
{
    char name[256]; // HOST_NAME_MAX is 64; POSIX allows 255
    if (gethostname(name, sizeof name) != 0) return "localhost";
    name[sizeof name - 1] = '\0';
    return name;
}

} // namespace

void KDVUtil::setBroker(const CMPIBroker* broker) noexcept { theBroker.store(broker, std::memory_order_release); }

const CMPIBroker* KDVUtil::getBroker() noexcept { return theBroker.load(std::memory_order_acquire); }

std::string KDVUtil::getHostName()
{
    // Every path carries the name, and a system call for each would be a tenth of an enumeration: within one tick of
    // the kernel's coarse clock (a few milliseconds) a thread does not ask again.
    struct Asked {
        timespec tick{-1, -1};
        std::string name;
    };
    thread_local Asked asked;
    timespec now;
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    if (now.tv_sec != asked.tick.tv_sec || now.tv_nsec != asked.tick.tv_nsec) {
        asked.name = askedHostName();
        asked.tick = now;
    }
    return asked.name;
}

CmpiObjectPath KDVUtil::getComputerSystemPath()
{
    const ComputerSystemSettings& settings = computerSystemSettings();
    const std::string host = getHostName();
    CmpiObjectPath path = makeCmpiObjectPath(getBroker(), settings.nameSpace, settings.className);
    path.setHost(host);
    path.addKey("CreationClassName", settings.className);
    path.addKey("Name", host);
    return path;
}

operationalStatus KDVUtil::updateWorst(operationalStatus first, operationalStatus second) noexcept
{
    return rank(second) > rank(first) ? second : first;
}

bool KDVUtil::validateVersion(std::string_view version) noexcept
{
    std::uint16_t major = 0;
    std::uint16_t minor = 0;
    return readVersion(version, major, minor);
}

bool KDVUtil::stringVersionToMajor(std::string_view version, std::uint16_t& major) noexcept
{
    std::uint16_t found = 0;
    std::uint16_t minor = 0;
    const bool valid = readVersion(version, found, minor);
    if (valid) major = found;
    return valid;
}

bool KDVUtil::stringVersionToMinor(std::string_view version, std::uint16_t& minor) noexcept
{
    std::uint16_t major = 0;
    std::uint16_t found = 0;
    const bool valid = readVersion(version, major, found);
    if (valid) minor = found;
    return valid;
}

std::string KDVUtil::configurationDirectory()
{
    const char* const chosen = std::getenv("KDV_CONFIG_DIR");
    std::string directory = chosen && *chosen ? chosen : "/etc/cim/zt-kdv/";
    if (directory.back() != '/') directory += '/';
    return directory;
}

} // namespace KDV
