#include "capture/Description.h"

#include <map>
#include <vector>

namespace KdvSas {
namespace {

// A line stays one, whatever is in a name.
std::string oneLine(std::string text)
{
    for (char& letter : text) {
        if (static_cast<unsigned char>(letter) < ' ' || letter == 0x7F) letter = '?';
    }
    return text;
}

} // namespace

std::string describeCapture(const MachineCapture& made, const CaptureCircumstances& circumstances)
{
    std::string text = "made by: " + circumstances.program + "\n";
    text += circumstances.ofCapture ? "of: a captured tree, read on " + circumstances.kernel + "\n"
                                    : "of: a running machine with " + circumstances.kernel + "\n";
    text += std::string("as root: ") + (circumstances.privileged ? "yes" : "no") + "\n";
    text += std::string("serial numbers, addresses and host names: ") +
            (circumstances.serialNumbers ? "as they are" : "replaced") + "\n";
    text += "SAS adapters: " + std::to_string(made.adapters) + "\n";
    text += "devices to ask: " + std::to_string(made.devices) + "\n";
    const std::vector<Unread>& unread = made.captured.unread;
    text += "not read: " + std::to_string(unread.size()) + "\n";
    std::map<std::string, std::vector<std::string>> byReason;
    for (const Unread& each : unread)
        byReason[each.why].push_back(each.path);
    for (const auto& [why, paths] : byReason) {
        text += "\n" + why + ":\n";
        for (const std::string& path : paths)
            text += "    " + oneLine(path) + "\n";
    }
    return text;
}

} // namespace KdvSas
