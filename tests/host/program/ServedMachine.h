// kdv-cimhost as it is built, on a free port, serving a machine description with the real provider. It can be stopped
// and started again on what it kept. How many passes it made, those that its own clock started included, is read from
// its log. One thread; failures are std::runtime_error.
#pragma once

#include "hostprogram/StartedProgram.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace KDV::Host::Test {

class ServedMachine {
public:
    ServedMachine(); // a folder of its own, and nothing started
    ~ServedMachine();
    ServedMachine(const ServedMachine&) = delete;
    ServedMachine& operator=(const ServedMachine&) = delete;

    void start(const std::string& scenario); // forgets the log of an earlier start
    int terminate();                         // SIGTERM; the exit status
    void kill();                             // no chance to tidy up

    const std::filesystem::path& folder() const noexcept { return _folder; }
    std::uint16_t port() const noexcept { return _port; }
    std::string url() const;
    std::string greeting() const { return _program->output(); }

    std::string ask(const std::string& method, const std::string& parameters,
                    const std::string& nameSpace = "root/vnr") const; // the reply, held against the document type
    std::size_t countNames(const std::string& ofClass, const std::string& nameSpace = "root/vnr") const;
    void performWork() const; // one pass through the method of the worker

    unsigned passes() const; // of the worker since the start
    std::size_t countInLog(const std::string& text) const;

private:
    std::filesystem::path _folder;
    std::unique_ptr<StartedProgram> _program;
    std::uint16_t _port = 0;
    mutable std::string _worker; // the path of the worker, once asked for
};

} // namespace KDV::Host::Test
