#include "kdv-sas/CaptureCommand.h"

#include "capture/Anonymous.h"
#include "capture/ArchiveFile.h"
#include "capture/CaptureMachine.h"
#include "capture/Description.h"
#include "capture/SecretFinder.h"
#include "sashba/sysfs/CapturedDevice.h"
#include "sashba/sysfs/SgDevice.h"

#include <cstdlib>
#include <iostream>
#include <sys/utsname.h>
#include <unistd.h>

namespace KdvSas {
namespace {

bool isRunningMachine(const std::string& root) { return root.empty() || root == "/sys" || root == "/sys/"; }

void tell(const std::string& text) { std::cerr << "kdv-sas: " + text + "\n"; }

void tellResult(const MachineCapture& made, const CaptureOptions& options)
{
    tell(options.file + " holds " + std::to_string(made.captured.entries.size()) + " files of " +
         std::to_string(made.adapters) + " SAS adapter(s)");
    if (made.adapters == 0) tell("no SAS adapter was recognised, so all SCSI hosts were taken");
    if (!made.captured.unread.empty())
        tell(std::to_string(made.captured.unread.size()) + " things could not be read; capture.txt in it lists them");
    if (options.withSerialNumbers)
        tell("it has serial numbers, addresses and names of this machine in it; mind whom you give it");
}

} // namespace

int runCapture(const CaptureOptions& options)
{
    const char* set = std::getenv("KDV_SYSFS_ROOT");
    const std::string root = set ? set : "";
    utsname system{};
    uname(&system);

    CaptureSettings settings;
    settings.root = isRunningMachine(root) ? "/sys" : root;
    settings.opener = isRunningMachine(root) ? KDV::makeSgOpener() : KDV::makeCaptureOpener(root);
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
    circumstances.ofCapture = !isRunningMachine(root);
    circumstances.privileged = geteuid() == 0;
    circumstances.serialNumbers = options.withSerialNumbers;
    made.captured.entries.push_back({CapturedEntry::Kind::File, "capture.txt", describeCapture(made, circumstances)});
    writeArchive(options.file, made.captured.entries);
    tellResult(made, options);
    return 0;
}

} // namespace KdvSas
