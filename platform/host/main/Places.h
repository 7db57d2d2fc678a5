// Where the program finds its schema and its providers without being told: beside itself, in a build tree as well as
// installed. Plain functions.
#pragma once

#include <filesystem>

namespace KDV::Host {

std::filesystem::path defaultSchemaDirectory();   // .../share/kdv-sas
std::filesystem::path defaultProviderDirectory(); // .../lib or .../lib/<architecture>
std::filesystem::path defaultStateDirectory();    // /var/lib/kdv-cimhost when installed, beside itself in a build tree

// Points providers at the configuration that is shipped with the schema when the machine has none of its own and the
// environment names none. Before providers are loaded, and before there are threads.
void useShippedConfiguration(const std::filesystem::path& schemaDirectory);

} // namespace KDV::Host
