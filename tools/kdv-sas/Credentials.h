// User and password for a server: from a file ("user:password", readable by its owner only) or from a prompt without
// echo; never from the argument list, which everybody on the machine can read.
#pragma once

#include <string>

namespace KdvSas {

struct Credentials {
    std::string user;
    std::string password;
};

Credentials readCredentialsFile(const std::string& file); // throws std::runtime_error with file and reason
Credentials askForCredentials(const std::string& user);   // from the terminal; throws when there is none

} // namespace KdvSas
