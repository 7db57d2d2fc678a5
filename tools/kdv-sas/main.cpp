// kdv-sas: SAS storage over CIM-XML from the command line.
#include "kdv-sas/CaptureCommand.h"
#include "kdv-sas/Credentials.h"
#include "kdv-sas/Health.h"
#include "kdv-sas/Json.h"
#include "kdv-sas/Listener.h"
#include "kdv-sas/PathText.h"
#include "kdv-sas/StatusView.h"
#include "kdv-sas/TableView.h"
#include "kdv-sas/TreeView.h"
#include "kdv-sas/Watch.h"
#include "sashba/RecordTree.h"
#include "sashba/sysfs/OpenLive.h"
#include "sashba/sysfs/ScenarioWriter.h"

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <unistd.h>

#include <CLI/CLI.hpp>

using namespace KdvSas;

namespace {

struct Options {
    Cim::ServerAddress server;
    std::string credentialsFile;
    std::string user;
    std::string nameSpace = storageNameSpace;
    std::string className;
    std::string path;
    std::string file;
    CaptureOptions capture;
    std::string listen = "127.0.0.1";
    std::uint16_t listenPort = 0;
    unsigned count = 0;
    bool json = false;
    bool check = false;
};

bool colours() { return ::isatty(STDOUT_FILENO) && !std::getenv("NO_COLOR"); }

int status(Cim::Connection& connection, const Options& options)
{
    const Machine machine = readMachine(connection, options.nameSpace);
    if (options.json)
        std::cout << statusJson(machine) << "\n";
    else if (options.check)
        std::cout << checkLine(machine) << "\n";
    else
        printStatus(std::cout, machine, colours());
    return exitStatus(machine.worst());
}

int tree(Cim::Connection& connection, const Options& options)
{
    const Machine machine = readMachine(connection, options.nameSpace);
    if (options.json)
        std::cout << statusJson(machine) << "\n";
    else
        printTree(std::cout, machine, colours());
    return 0;
}

int list(Cim::Connection& connection, const Options& options)
{
    const std::vector<Cim::Instance> instances =
        connection.send(Cim::enumerateInstances(options.nameSpace, options.className)).instances;
    if (options.json) {
        std::cout << instancesJson(instances) << "\n";
        return 0;
    }
    for (const Cim::Instance& instance : instances)
        printInstance(std::cout, instance);
    return 0;
}

int show(Cim::Connection& connection, const Options& options)
{
    Cim::Path path = parsePath(options.path);
    const std::string nameSpace = path.nameSpace.empty() ? options.nameSpace : path.nameSpace;
    Cim::Reply reply = connection.send(Cim::getInstance(nameSpace, path));
    if (reply.instances.empty()) throw Cim::Unreachable("the server answers without an instance");
    path.nameSpace = nameSpace;
    reply.instances.front().path = path;
    if (options.json)
        std::cout << instanceJson(reply.instances.front()) << "\n";
    else
        printInstance(std::cout, reply.instances.front());
    return 0;
}

// Asks the provider to look at the hardware now instead of at its next interval.
int refresh(Cim::Connection& connection, const Options& options)
{
    const std::vector<Cim::Path> workers =
        connection.send(Cim::enumerateInstanceNames(options.nameSpace, "KDV_AutoStartSASHBA")).paths;
    if (workers.empty()) throw Cim::Unreachable("the server has no worker of the provider");
    for (const Cim::Path& worker : workers)
        connection.send(Cim::invokeMethod(options.nameSpace, worker, "PerformWork"));
    return 0;
}

int watch(Cim::Connection& connection, const Options& options)
{
    unsigned seen = 0;
    Listener* running = nullptr;
    Listener listener(options.listen, options.listenPort, [&](const Cim::Instance& alert) {
        std::cout << (options.json ? instanceJson(alert) : alertLine(alert)) << std::endl;
        if (options.count && ++seen == options.count) running->stop();
        return true;
    });
    running = &listener;
    const Subscription subscription(connection, listener.url());
    if (!options.json)
        std::cerr << "Watching " << connection.server().url << "; alerts come to " << listener.url()
                  << ". Ctrl-C ends it.\n";
    listener.run();
    return 0;
}

void commonOptions(CLI::App& app, Options& options)
{
    app.add_option("--server", options.server.url, "URL of the CIM server")->capture_default_str();
    app.add_option("--namespace", options.nameSpace, "namespace of the storage classes")->capture_default_str();
    app.add_option("--credentials", options.credentialsFile, "file with a line user:password, readable by you alone");
    app.add_option("--user", options.user, "user name; the password is asked for");
    app.add_option("--ca-file", options.server.caFile, "certificates to trust for https");
    app.add_flag("--insecure", options.server.insecure, "take any certificate for https");
    app.add_option("--timeout", options.server.timeout, "seconds to wait without progress")->capture_default_str();
    app.add_flag("--json", options.json, "JSON instead of text");
}

// Reads this machine itself, without a server, and writes it as a scenario file.
int scenario(const Options& options)
{
    const auto tell = [](const std::string& text) { std::cerr << "kdv-sas: " + text + "\n"; };
    const char* root = std::getenv("KDV_SYSFS_ROOT");
    KDV::SysfsSettings settings;
    settings.firstAnswers = std::chrono::seconds(30); // nobody waits but the one who called
    KDV::RecordTree records;
    KDV::openLiveMachine(root ? root : "", settings, tell, tell)->load(records);
    if (!records.head()) return 3; // it has said so
    const std::string text = KDV::scenarioOf(records.head());
    if (options.file.empty()) return std::cout << text << std::flush ? 0 : 3;
    std::ofstream file(options.file);
    file << text << std::flush;
    if (!file) throw std::runtime_error("cannot write " + options.file);
    return 0;
}

using Command = int (*)(Cim::Connection&, const Options&);

int run(Command command, Options& options)
{
    if (!options.credentialsFile.empty() || !options.user.empty()) {
        const Credentials credentials = options.credentialsFile.empty() ? askForCredentials(options.user)
                                                                        : readCredentialsFile(options.credentialsFile);
        options.server.user = credentials.user;
        options.server.password = credentials.password;
    }
    while (!options.server.url.empty() && options.server.url.back() == '/')
        options.server.url.pop_back();
    Cim::Connection connection(options.server);
    return command(connection, options);
}

} // namespace

int main(int argc, char** argv)
try {
    Options options;
    CLI::App app{"SAS storage of a machine, asked over CIM-XML from any server that has the provider"};
    app.name("kdv-sas");
    app.require_subcommand(1);
    app.fallthrough();
    commonOptions(app, options);
    CLI::App* statusApp = app.add_subcommand(
        "status", "one screen, worst first; exit status 0 healthy, 1 degraded, 2 failed, 3 unknown or unreachable");
    statusApp->add_flag("--check", options.check, "one line for monitoring systems");
    CLI::App* treeApp = app.add_subcommand("tree", "everything as a tree");
    CLI::App* listApp = app.add_subcommand("list", "the instances of a class");
    listApp->add_option("class", options.className, "such as KDV_SASDiskDrive or CIM_StorageVolume")->required();
    CLI::App* showApp = app.add_subcommand("show", "one instance");
    showApp->add_option("path", options.path, "Class.Key=\"value\",...")->required();
    CLI::App* refreshApp = app.add_subcommand("refresh", "make the provider look at the hardware now");
    CLI::App* scenarioApp = app.add_subcommand("scenario", "write this machine's SAS adapters as a scenario file");
    scenarioApp->add_option("file", options.file, "file to write; standard output without it");
    CLI::App* captureApp = app.add_subcommand("capture", "capture this machine's SAS adapters for a bug report");
    captureApp->add_option("file", options.capture.file, "archive to write, such as machine.tar.gz")->required();
    captureApp->add_flag("--with-serial-numbers", options.capture.withSerialNumbers,
                         "leave serial numbers, addresses and host names as they are");
    CLI::App* const watchApp = app.add_subcommand("watch", "subscribe and print alerts as they come");
    watchApp->add_option("--listen", options.listen, "address to receive alerts on")->capture_default_str();
    watchApp->add_option("--listen-port", options.listenPort, "port to receive alerts on; 0 takes a free one");
    watchApp->add_option("--count", options.count, "end after this many alerts");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : 3;
    }
    if (*statusApp) return run(status, options);
    if (*treeApp) return run(tree, options);
    if (*listApp) return run(list, options);
    if (*showApp) return run(show, options);
    if (*captureApp) return runCapture(options.capture);
    if (*scenarioApp) return scenario(options);
    if (*refreshApp) return run(refresh, options);
    return run(watch, options); // the last one: a command was required
} catch (const Cim::Refused& error) {
    std::cerr << "kdv-sas: the server answers error " << error.code() << ": " << error.what() << "\n";
    return 3;
} catch (const std::exception& error) {
    std::cerr << "kdv-sas: " << error.what() << "\n";
    return 3;
}
