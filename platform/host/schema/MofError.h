// What is wrong in a MOF text, and where: what() reads "file:line: expected ..., found ...".
#pragma once

#include <stdexcept>
#include <string>

namespace KDV::Host {

class MofError : public std::runtime_error {
public:
    MofError(const std::string& file, unsigned line, const std::string& what)
        : std::runtime_error(file + ":" + std::to_string(line) + ": " + what), _file(file), _line(line)
    {
    }
    ~MofError() override;

    const std::string& file() const noexcept { return _file; }
    unsigned line() const noexcept { return _line; }

private:
    std::string _file;
    unsigned _line;
};

} // namespace KDV::Host
