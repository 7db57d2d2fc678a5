// kdv-cimhost: a small CIM object manager that serves CMPI providers to WBEM clients.
#include "Alerts.h"
#include "Places.h"
#include "Summary.h"

#include <csignal>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <unistd.h>

#include <CLI/CLI.hpp>

using namespace KDV::Host;

namespace {

struct Arguments {
    std::vector<std::string> listen{"127.0.0.1:5988"};
    std::string portFile;
    std::string schemaDirectory = defaultSchemaDirectory().string();
    std::string providerDirectory = defaultProviderDirectory().string();
    std::string stateDirectory = defaultStateDirectory().string();
    std::string profile = "standard";
    bool quiet = false;
};

void declare(CLI::App& app, Arguments& arguments)
{
    app.set_version_flag("--version", "kdv-cimhost " KDV_VERSION);
    app.add_option("--listen", arguments.listen, "where to listen, ADDRESS:PORT; may be given several times")
        ->capture_default_str();
    app.add_option("--port-file", arguments.portFile,
                   "write the port of each address that is listened at, a line each");
    app.add_option("--schema-dir", arguments.schemaDirectory, "folder with kdv-sas.reg, kdv-sas.mof and core/")
        ->capture_default_str();
    app.add_option("--provider-dir", arguments.providerDirectory, "folder with the provider libraries")
        ->capture_default_str();
    app.add_option("--state-dir", arguments.stateDirectory,
                   "folder where subscriptions are kept and the alert stream is")
        ->capture_default_str();
    app.add_option("--profile", arguments.profile, "how strict the broker is, and which server it resembles")
        ->check(CLI::IsMember({"standard", "sfcb", "pegasus"}))
        ->capture_default_str();
    app.add_flag("--quiet", arguments.quiet, "say nothing at the start");
}

HostOptions optionsOf(const Arguments& arguments)
{
    HostOptions options;
    options.schemaDirectory = arguments.schemaDirectory;
    options.providerDirectory = arguments.providerDirectory;
    for (Profile profile : allProfiles)
        if (arguments.profile == profileName(profile)) options.broker.profile = profile;
    return options;
}

// Whole at once: whoever waits for the file never reads half of it.
void writePortFile(const std::string& name, const std::vector<Endpoint>& endpoints)
{
    const std::string unfinished = name + ".new";
    std::ofstream file(unfinished);
    for (const Endpoint& endpoint : endpoints)
        file << endpoint.port << '\n';
    file.close();
    if (!file || std::rename(unfinished.c_str(), name.c_str()) != 0) throw std::runtime_error("cannot write " + name);
}

int run(const Arguments& arguments, const sigset_t& ending)
{
    useShippedConfiguration(arguments.schemaDirectory);
    CimHost host(optionsOf(arguments));
    Alerts alerts(host, arguments.stateDirectory);
    std::vector<Endpoint> endpoints;
    for (const std::string& each : arguments.listen)
        endpoints.push_back(host.listen(each));
    for (const std::string& failure : host.createProviders())
        std::cerr << "kdv-cimhost: " << failure << '\n';
    alerts.start();
    host.serve();
    if (!arguments.portFile.empty()) writePortFile(arguments.portFile, endpoints);
    if (!arguments.quiet) writeSummary(std::cout, host, endpoints, alerts.streamPath());
    int signal = 0;
    sigwait(&ending, &signal);
    host.stop();
    if (!arguments.quiet) std::cout << "kdv-cimhost ended" << std::endl;
    // Everybody was told to end, but a provider's pass may still be on its way out of a call and must find the broker
    // and all static objects where they were. So nothing is destroyed.
    std::fflush(nullptr);
    ::_exit(0);
}

} // namespace

int main(int argc, char** argv)
{
    CLI::App app{"A small CIM object manager that serves CMPI providers over CIM-XML.", "kdv-cimhost"};
    Arguments arguments;
    declare(app, arguments);
    CLI11_PARSE(app, argc, argv);

    // Before any thread begins: all of them inherit it, and only this one takes these signals.
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGTERM);
    sigaddset(&ending, SIGINT);
    sigaddset(&ending, SIGHUP);
    pthread_sigmask(SIG_BLOCK, &ending, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return run(arguments, ending);
    } catch (const std::exception& error) {
        std::cerr << "kdv-cimhost: " << error.what() << '\n';
        return 1;
    }
}
