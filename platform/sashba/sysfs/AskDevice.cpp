#include "sashba/sysfs/AskDevice.h"

#include "sashba/sysfs/ScsiPages.h"
#include "sashba/sysfs/SmartctlOutput.h"

#include <algorithm>

namespace KDV {

DeviceLink::~DeviceLink() = default;
DeviceOpener::~DeviceOpener() = default;

namespace {

constexpr std::uint8_t solidStatePage = 0x11;
constexpr std::uint8_t backgroundScanPage = 0x15; // has the hours
constexpr std::uint8_t exceptionsPage = 0x2F;

// A page that the device does not list is not asked for: some devices take long to refuse.
class LogPages {
public:
    explicit LogPages(DeviceLink& link) : _link(link), _supported(parseSupportedLogPages(ByteView(link.logPage(0x00))))
    {
    }

    std::string operator()(std::uint8_t code) const
    {
        const bool listed = std::find(_supported.begin(), _supported.end(), code) != _supported.end();
        return listed ? _link.logPage(code) : std::string();
    }

private:
    DeviceLink& _link;
    std::vector<std::uint8_t> _supported;
};

void readHealthPages(DeviceLink& link, bool spins, DeviceAnswer& answer)
{
    const LogPages page(link);
    if (const auto exceptions = parseInformationalExceptions(ByteView(page(exceptionsPage)))) {
        answer.failurePredicted = answer.failurePredicted.value_or(false) || exceptions->predictsFailure();
        answer.warned = exceptions->warns();
    }
    if (const auto minutes = parsePowerOnMinutes(ByteView(page(backgroundScanPage))))
        answer.powerOnHours = *minutes / 60;
    if (!spins) {
        if (const auto used = parseEnduranceUsed(ByteView(page(solidStatePage)))) answer.enduranceUsed = *used;
    }
}

// What smartctl says fills only what the pages left open, but for the health of a SATA disk, which the translation of
// an adapter often hides.
void takeSmartctl(const std::string& output, DeviceAnswer& answer)
{
    const std::optional<SmartctlReport> report = parseSmartctlOutput(output);
    if (!report) return;
    if (report->asleep) answer.readiness = Readiness::Asleep;
    if (report->passed) answer.failurePredicted = answer.failurePredicted.value_or(false) || !*report->passed;
    answer.warned = answer.warned || report->warned;
    if (!answer.powerOnHours) answer.powerOnHours = report->powerOnHours;
    if (!answer.enduranceUsed) answer.enduranceUsed = report->enduranceUsed;
    answer.rotation = report->rotation;
    answer.serial = report->serial;
    answer.firmware = report->firmware;
}

void askDisk(const AskedDevice& device, DeviceLink& link, DeviceAnswer& answer)
{
    if (answer.readiness != Readiness::Ready) return; // nothing that might wake or trouble it
    readHealthPages(link, device.spins, answer);
    if (device.transport != Transport::Sas || !answer.failurePredicted) takeSmartctl(link.smartctlOutput(), answer);
}

void askEnclosure(const AskedDevice& device, DeviceLink* link, const SysfsTree& tree, DeviceAnswer& answer)
{
    if (link && answer.readiness == Readiness::Ready) {
        const std::string configuration = link->enclosurePage(0x01);
        if (!configuration.empty()) {
            const std::string status = link->enclosurePage(0x02);
            const std::string descriptors = link->enclosurePage(0x07);
            const std::string additional = link->enclosurePage(0x0A);
            answer.enclosure =
                enclosureState(ByteView(configuration), ByteView(status), ByteView(descriptors), ByteView(additional));
        }
    }
    if (device.enclosure.empty()) return;
    for (const std::string& name : tree.names(device.enclosure)) {
        const std::string slot = device.enclosure + "/" + name;
        std::string status = tree.text(slot + "/status");
        if (!status.empty()) answer.slots[slot] = {std::move(status), tree.number(slot + "/fault")};
    }
}

void askVolume(const AskedDevice& device, const SysfsTree& tree, DeviceAnswer& answer)
{
    for (const std::string& name : tree.names(device.path + "/raid_devices")) {
        const std::string volume = device.path + "/raid_devices/" + name + "/";
        answer.raidLevel = tree.text(volume + "level");
        answer.raidState = tree.text(volume + "state");
        answer.raidProgress = tree.number(volume + "resync");
    }
}

} // namespace

DeviceAnswer askDevice(const AskedDevice& device, DeviceOpener& opener, const SysfsTree& tree,
                       std::chrono::milliseconds deadline)
{
    DeviceAnswer answer;
    if (device.kind == AskedKind::FirmwareVolume) {
        askVolume(device, tree, answer);
        return answer;
    }
    ReadyReply reply;
    const std::unique_ptr<DeviceLink> link = opener.open(device, deadline, reply);
    if (link) reply = link->testUnitReady();
    answer.readiness = reply.readiness;
    answer.denied = reply.denied;
    answer.hung = reply.timedOut;
    if (reply.failurePredicted) answer.failurePredicted = true;
    if (answer.hung) return answer;
    if (device.kind == AskedKind::Disk && link) askDisk(device, *link, answer);
    if (device.kind == AskedKind::Enclosure) askEnclosure(device, link.get(), tree, answer);
    return answer;
}

} // namespace KDV
