// Collects the log lines of the process at info level for its life. Lines come from any thread.
#pragma once

#include <mutex>
#include <string>
#include <vector>

namespace KDV::Test {

class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    // "<last part of the source> <text>", an error with "error: " before the text.
    std::vector<std::string> lines() const;
    std::vector<std::string> sources() const; // whole sources of the same lines
    std::vector<std::string> linesWith(const std::string& part) const;
    void clear();
    void stop(); // no lines from here on

private:
    mutable std::mutex _mutex;
    std::vector<std::string> _lines;
    std::vector<std::string> _sources;
};

} // namespace KDV::Test
