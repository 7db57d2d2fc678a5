#include "hosttest/TestHost.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace KDV::Host::Test {

namespace fs = std::filesystem;

void writeTestSchema(const fs::path& folder, bool core)
{
    const fs::path source(KDV_SOURCE_DIR);
    fs::create_directories(folder / "core");
    fs::copy_file(source / "schema/core/qualifiers.mof", folder / "core/qualifiers.mof");
    if (core) fs::copy_file(source / "schema/core/cim-core.mof", folder / "core/cim-core.mof");
    fs::copy_file(source / "tests/host/provider/test.mof", folder / "kdv-sas.mof");
    const std::pair<const char*, const char*> served[] = {{"T_Disk", "instance"},
                                                          {"T_SolidDisk", "instance"},
                                                          {"T_Box", "instance method"},
                                                          {"T_FailsEarly", "instance"},
                                                          {"T_FailsLate", "instance"},
                                                          {"T_Slow", "instance"},
                                                          {"T_BoxDisk", "instance association"}};
    std::ofstream registration(folder / "kdv-sas.reg");
    for (const auto& [className, type] : served)
        registration << '[' << className << "]\n   provider: TEST\n   location: KDVTestProvider\n   type: " << type
                     << "\n   namespace: root/test\n";
    if (!registration.flush()) throw std::runtime_error("cannot write the registration");
}

fs::path testProviderDirectory() { return fs::path(KDV_BUILD_DIR) / "tests/providers"; }

TestHost::TestHost(const TestSettings& settings)
{
    std::string name = (fs::temp_directory_path() / "kdv-host-test-XXXXXX").string();
    if (!::mkdtemp(name.data())) throw std::runtime_error("cannot make a temporary folder");
    _folder = name;
    writeTestSchema(_folder, settings.core);
    ::setenv("KDV_TEST_DISKS", std::to_string(settings.disks).c_str(), 1);
    HostOptions options;
    options.schemaDirectory = _folder;
    options.providerDirectory = testProviderDirectory();
    options.broker = {settings.profile, true};
    options.limits = settings.limits;
    options.pull = settings.pull;
    _host = std::make_unique<CimHost>(std::move(options));
    _port = static_cast<std::uint16_t>(std::stoul(_host->listen("127.0.0.1:0").port));
    for (const std::string& failure : _host->createProviders())
        throw std::runtime_error(failure);
    _host->serve();
}

TestHost::~TestHost()
{
    _host.reset();
    std::error_code ignored;
    fs::remove_all(_folder, ignored);
}

} // namespace KDV::Host::Test
