#include "sashba/sysfs/CapturedDevice.h"

#include "sashba/sysfs/DeviceText.h"
#include "sashba/sysfs/SysfsTree.h"

#include <fstream>

namespace KDV {
namespace {

class CapturedDevice final : public DeviceLink {
public:
    CapturedDevice(const std::string& pages, const std::string& device) : _folder(pages + "/" + device) {}

    ReadyReply testUnitReady() override
    {
        ReadyReply reply;
        const std::string said = read("ready");
        const std::string word(trimmed(said.substr(0, said.find('\n'))));
        reply.readiness = word == "ready"        ? Readiness::Ready
                          : word == "asleep"     ? Readiness::Asleep
                          : word == "not ready"  ? Readiness::NotReady
                          : word == "no connect" ? Readiness::NoConnect
                                                 : Readiness::Unknown;
        reply.denied = word == "denied";
        reply.timedOut = word == "hung";
        reply.failurePredicted = said.find("\nfailure predicted") != std::string::npos;
        return reply;
    }
    std::string logPage(std::uint8_t code) override { return read("log_" + twoDigits(code)); }
    std::string enclosurePage(std::uint8_t code) override { return read("ses_" + twoDigits(code)); }
    std::string smartctlOutput() override { return read("smartctl.json"); }

private:
    static std::string twoDigits(std::uint8_t code)
    {
        static constexpr char digits[] = "0123456789abcdef";
        return {digits[code >> 4], digits[code & 15]};
    }

    std::string read(const std::string& name) const
    {
        constexpr std::streamsize most = 262144;
        std::ifstream file(_folder + "/" + name, std::ios::binary);
        std::string bytes(static_cast<std::size_t>(most), '\0');
        file.read(bytes.data(), most);
        bytes.resize(static_cast<std::size_t>(file.gcount()));
        return bytes;
    }

    std::string _folder;
};

class CaptureOpener final : public DeviceOpener {
public:
    explicit CaptureOpener(std::string pages) : _pages(std::move(pages)) {}

    std::unique_ptr<DeviceLink> open(const AskedDevice& device, std::chrono::milliseconds, ReadyReply&) override
    {
        return std::make_unique<CapturedDevice>(_pages, lastOf(device.path));
    }

private:
    std::string _pages;
};

} // namespace

std::unique_ptr<DeviceOpener> makeCaptureOpener(const std::string& sysfsRoot)
{
    std::string root = sysfsRoot;
    while (root.size() > 1 && root.back() == '/')
        root.pop_back();
    return std::make_unique<CaptureOpener>(root + "/../pages");
}

} // namespace KDV
