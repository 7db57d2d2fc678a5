// Runs smartctl for one disk where it is installed, with a deadline after which it is killed. A disk that sleeps is not
// woken. Blocks until the program has ended: for the asking threads. Empty when there is nothing to tell.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace KDV {

std::string runSmartctl(const std::string& node, std::chrono::milliseconds deadline);

// The standard output of a program, at most a mebibyte; empty when it cannot be started or is not done in time.
std::string outputOf(const std::string& program, const std::vector<std::string>& arguments,
                     std::chrono::milliseconds deadline);

} // namespace KDV
