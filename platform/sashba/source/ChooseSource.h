// Decides where this process's machine comes from: the environment variable KDV_SAS_SCENARIO (the path of a scenario
// file), else "scenario" in KDVSasHbaMRA.json of the configuration directory (/etc/cim/zt-kdv/, or what KDV_CONFIG_DIR
// names), relative to that directory; where neither names a scenario, the running Linux machine as sysfs shows it below
// KDV_SYSFS_ROOT (/sys). Asked once for each creation of the lists.
#pragma once

#include "sashba/source/Source.h"

#include <memory>
#include <string>

class Logger;

namespace KDV {

// Null when the configuration is broken; the log then has one error that says what to do.
std::unique_ptr<Source> chooseSource(const Logger& log);

// The directory with a slash at its end.
std::string configurationDirectory();

} // namespace KDV
