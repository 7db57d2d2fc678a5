#include "kdv-sas/Credentials.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace KdvSas {
namespace {

// Puts the echo of the terminal back whatever happens.
class NoEcho {
public:
    NoEcho()
    {
        if (::tcgetattr(STDIN_FILENO, &_before) != 0)
            throw std::runtime_error("there is no terminal to ask for a password; use --credentials FILE");
        termios quiet = _before;
        quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet);
    }
    NoEcho(const NoEcho&) = delete;
    NoEcho& operator=(const NoEcho&) = delete;
    ~NoEcho() { ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &_before); }

private:
    termios _before;
};

} // namespace

Credentials readCredentialsFile(const std::string& file)
{
    struct stat stamp = {};
    if (::stat(file.c_str(), &stamp) != 0) throw std::runtime_error(file + ": " + std::strerror(errno));
    if (stamp.st_mode & (S_IRWXG | S_IRWXO))
        throw std::runtime_error(file + ": others may read it; chmod 600 it first");
    std::ifstream in(file);
    std::string line;
    if (!std::getline(in, line)) throw std::runtime_error(file + ": expected a line user:password");
    const std::size_t colon = line.find(':');
    if (colon == std::string::npos || colon == 0) throw std::runtime_error(file + ":1: expected user:password");
    return {line.substr(0, colon), line.substr(colon + 1)};
}

Credentials askForCredentials(const std::string& user)
{
    const NoEcho quiet;
    std::cerr << "Password of " << user << ": " << std::flush;
    std::string password;
    std::getline(std::cin, password);
    std::cerr << "\n";
    return {user, password};
}

} // namespace KdvSas
