#include "kdv-sas/CaptureCommand.h"

#include "capture/Anonymous.h"
#include "capture/ArchiveFile.h"
#include "capture/CaptureMachine.h"
#include "capture/Description.h"
#include "capture/SecretFinder.h"
#include "sashba/sysfs/OpenLive.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <sys/utsname.h>
#include <system_error>
#include <unistd.h>

namespace KdvSas {
namespace {

void tell(const std::string& text) { std::cerr << "kdv-sas: " + text + "\n"; }

void tellResult(const MachineCapture& made, const CaptureOptions& options)
{
    const auto files =
        std::count_if(made.captured.entries.begin(), made.captured.entries.end(),
                      [](const CapturedEntry& entry) { return entry.kind == CapturedEntry::Kind::File; });
    tell(options.file + " holds " + std::to_string(files) + " file(s) of " + std::to_string(made.adapters) +
         " SAS adapter(s)");
    if (made.adapters == 0) tell("no SAS adapter was recognised, so all SCSI hosts were taken");
    if (!made.captured.unread.empty())
        tell(std::to_string(made.captured.unread.size()) + " things could not be read; capture.txt in it lists them");
    if (options.withSerialNumbers)
        tell("it has serial numbers, addresses and names of this machine in it; mind whom you give it");
}

// Nobody wants to learn after minutes of waiting for devices that the file cannot be.
void needFolderOf(const std::string& file)
{
    const std::size_t slash = file.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : file.substr(0, slash + 1);
    if (access(folder.c_str(), W_OK | X_OK) != 0)
        throw std::runtime_error("cannot write " + file + ": " + std::generic_category().message(errno));
}

} // namespace

int runCapture(const CaptureOptions& options)
{
    const char* set = std::getenv("KDV_SYSFS_ROOT");
    const KDV::LivePlace place = KDV::livePlace(set ? set : "");
    if (access((place.root + "/.").c_str(), R_OK | X_OK) != 0) throw std::runtime_error("no tree at " + place.root);
    needFolderOf(options.file);
    utsname system{};
    uname(&system);

    CaptureSettings settings;
    settings.root = place.root;
    settings.opener = KDV::openerOf(place);
    settings.tell = tell;
    MachineCapture made = captureMachine(settings);
    if (!options.withSerialNumbers) {
        Secrets secrets = secretsOf(made.captured.entries);
        secrets.addHostName(system.nodename);
        makeAnonymous(made.captured, secrets, systemRandom());
    }
    CaptureCircumstances circumstances;
    circumstances.program = "kdv-sas " KDV_VERSION;
    circumstances.kernel = std::string(system.sysname) + " " + system.release + " " + system.machine;
    circumstances.ofCapture = place.captured;
    circumstances.privileged = geteuid() == 0;
    circumstances.serialNumbers = options.withSerialNumbers;
    const CapturedEntry description{CapturedEntry::Kind::File, "capture.txt", describeCapture(made, circumstances)};
    made.captured.entries.insert(made.captured.entries.begin(), description);
    writeArchive(options.file, made.captured.entries);
    tellResult(made, options);
    return 0;
}

} // namespace KdvSas
