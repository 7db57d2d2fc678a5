// Where the program finds its schema and its providers without being told: beside itself, in a build tree as well as
// installed. Plain functions.
#pragma once

#include <filesystem>

namespace KDV::Host {

std::filesystem::path defaultSchemaDirectory();   // .../share/kdv-sas
std::filesystem::path defaultProviderDirectory(); // .../lib or .../lib/<architecture>

} // namespace KDV::Host
