// An object manager in the test's own process: the test provider's classes in namespace "root/test", on a free port of
// loopback. Its schema and registration lie in a temporary folder that goes with it.
#pragma once

#include "hostserver/CimHost.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace KDV::Host::Test {

struct TestSettings {
    int disks = 8;
    bool core = false; // with the common classes, as the program has them
    Profile profile = Profile::Standard;
    ServerLimits limits;
    PullLimits pull;
};

class TestHost {
public:
    explicit TestHost(const TestSettings& settings = {});
    ~TestHost();
    TestHost(const TestHost&) = delete;
    TestHost& operator=(const TestHost&) = delete;

    std::uint16_t port() const noexcept { return _port; }
    CimHost& host() noexcept { return *_host; }

private:
    std::filesystem::path _folder;
    std::unique_ptr<CimHost> _host;
    std::uint16_t _port = 0;
};

// A folder with schema and registration of the test provider, for whoever starts the program itself.
void writeTestSchema(const std::filesystem::path& folder, bool core);
std::filesystem::path testProviderDirectory();

} // namespace KDV::Host::Test
