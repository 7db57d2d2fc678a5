// What a registration file says: which provider of which library serves which class where. The form is that of sfcb, so
// that the host takes exactly the file that is installed there.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace KDV::Host {

struct Registration {
    std::string className;
    std::string provider;
    std::string location; // library name without "lib" and ".so"
    std::vector<std::string> nameSpaces;
    bool instances = false;
    bool associations = false;
    bool methods = false;
    bool indications = false;
};

// "[Class]" begins a block of "key: value" lines; "#" begins a comment. std::runtime_error with file and line for
// anything else and for a block that lacks provider, location, type or namespace.
std::vector<Registration> readRegistrations(const std::filesystem::path& file);

} // namespace KDV::Host
