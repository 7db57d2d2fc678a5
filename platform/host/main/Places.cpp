#include "Places.h"

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

} // namespace KDV::Host
