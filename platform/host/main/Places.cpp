#include "Places.h"

#include <cstdlib>
#include <unistd.h>

namespace KDV::Host {

namespace fs = std::filesystem;

namespace {

fs::path prefix()
{
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    return error ? fs::path("/usr") : program.parent_path().parent_path();
}

} // namespace

fs::path defaultSchemaDirectory() { return prefix() / "share" / "kdv-sas"; }

fs::path defaultProviderDirectory()
{
    // Installed libraries may lie in a folder for the architecture, those of a build tree do not.
    const fs::path installed = prefix() / KDV_INSTALL_LIBDIR;
    const fs::path plain = prefix() / "lib";
    std::error_code error;
    return fs::exists(installed / "libKDVSASHBAProvider.so", error) ? installed : plain;
}

fs::path defaultStateDirectory()
{
    const fs::path at = prefix();
    if (at != "/usr" && at != "/usr/local") return at / "state";
    if (::geteuid() == 0) return "/var/lib/kdv-cimhost";
    const char* const state = std::getenv("XDG_STATE_HOME");
    if (state && *state) return fs::path(state) / "kdv-cimhost";
    const char* const home = std::getenv("HOME");
    return fs::path(home && *home ? home : "/tmp") / ".local" / "state" / "kdv-cimhost";
}

void useShippedConfiguration(const fs::path& schemaDirectory)
{
    std::error_code error;
    if (std::getenv("KDV_CONFIG_DIR") || fs::exists("/etc/cim/zt-kdv", error)) return;
    ::setenv("KDV_CONFIG_DIR", (schemaDirectory / "etc").c_str(), 0);
}

} // namespace KDV::Host
