// What a refresh of the running machine costs: a generated tree of shelves with 60 bays, each with an expander, an
// enclosure device with its pages and a slot for each disk. The devices were asked before; nothing is asked while it is
// measured, and the kernel's part of reading an attribute is that of a file in memory.
#include "FakeSysfs.h"
#include "PageBytes.h"
#include "sashba/RecordTree.h"
#include "sashba/sysfs/CapturedDevice.h"
#include "sashba/sysfs/SysfsSource.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <exception>
#include <map>
#include <memory>

namespace KDV::Bench {
namespace {

constexpr unsigned baysOfShelf = 60;
constexpr unsigned disksOfHba = 5000;
constexpr std::uint64_t firstAddress = 0x5000a72001000000;

std::string hexText(std::uint64_t value)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%016llx", static_cast<unsigned long long>(value));
    return text;
}

struct Shelf {
    std::string host, hba, port, expander, expanderPath;
    unsigned number = 0;

    std::string below(unsigned phy) const
    {
        return port + "/" + expander + "/port-" + host + ":" + std::to_string(number) + ":" + std::to_string(phy);
    }
    std::string endDevice(unsigned phy) const
    {
        return "end_device-" + host + ":" + std::to_string(number) + ":" + std::to_string(phy);
    }
};

std::string addEnclosure(FakeSysfs& sysfs, const Shelf& shelf, unsigned target, unsigned firstDisk, unsigned disks)
{
    FakeDisk device;
    device.type = "13";
    device.address = shelf.host + ":0:" + std::to_string(target) + ":0";
    device.block = "";
    device.generic = "sgx" + std::to_string(target);
    device.vendor = "GLOBEX";
    device.model = "SHELF 60";
    device.wwid = "";
    device.parent = shelf.below(baysOfShelf);
    device.endDevice = shelf.endDevice(baysOfShelf);
    std::vector<std::string> elements(baysOfShelf, sesElement(SesCode::ok));
    std::string slots;
    for (unsigned bay = 0; bay < disks; ++bay)
        slots += sesSlotDescriptor(static_cast<int>(bay), static_cast<int>(bay), firstAddress + firstDisk + bay);
    const std::uint64_t id = 0x500a098000000000 + target;
    const std::vector<SesType> types{{SesElement::arrayDeviceSlot, baysOfShelf}, {SesElement::cooling, 1}};
    sysfs.page(device.address, "ready", "ready");
    sysfs.page(device.address, "ses_01", sesConfiguration(types, id));
    sysfs.page(device.address, "ses_02", sesStatus(0, {elements, {sesElement(SesCode::ok)}}));
    sysfs.page(device.address, "ses_0a", sesPage(0x0A, 0, slots));
    return sysfs.addEnclosure(sysfs.addDisk(shelf.hba, device), hexText(id), baysOfShelf);
}

void addShelfDisk(FakeSysfs& sysfs, const Shelf& shelf, const std::string& enclosure, unsigned disk)
{
    const unsigned bay = disk % baysOfShelf;
    const std::string n = std::to_string(disk);
    FakeDisk device;
    device.address = shelf.host + ":0:" + n + ":0";
    device.block = "sdx" + n;
    device.generic = "sg" + n;
    device.serial = "SP" + n;
    device.wwid = "naa." + hexText(firstAddress + 0x800000 + disk).substr(2);
    device.sasAddress = hexText(firstAddress + disk);
    device.parent = shelf.below(bay);
    device.endDevice = shelf.endDevice(bay);
    device.phy = std::to_string(bay);
    sysfs.page(device.address, "ready", "ready");
    sysfs.putInSlot(sysfs.addDisk(shelf.hba, device), enclosure, std::to_string(bay));
}

void addMachine(FakeSysfs& sysfs, unsigned disks)
{
    Shelf shelf;
    std::string enclosure;
    for (unsigned disk = 0; disk < disks; ++disk) {
        if (disk % disksOfHba == 0) {
            const unsigned host = disk / disksOfHba;
            shelf.host = std::to_string(host);
            shelf.hba = sysfs.addHba({host,
                                      "pci0000:00/0000:00:01.0/0000:0" + std::to_string(host + 1) + ":00.0",
                                      "mpt3sas",
                                      "running",
                                      true,
                                      {}});
        }
        if (disk % baysOfShelf == 0 || disk % disksOfHba == 0) {
            shelf.number = disk / baysOfShelf;
            shelf.port = "port-" + shelf.host + ":" + std::to_string(shelf.number);
            shelf.expander = "expander-" + shelf.host + ":" + std::to_string(shelf.number);
            const std::string port = sysfs.addPort(shelf.hba, shelf.port, {shelf.number % 8});
            sysfs.addExpander(port, shelf.expander, hexText(0x500a098100000000 + disk));
            enclosure = addEnclosure(sysfs, shelf, disks + disk, disk, std::min(baysOfShelf, disks - disk));
        }
        addShelfDisk(sysfs, shelf, enclosure, disk);
    }
}

struct Live {
    explicit Live(unsigned disks)
    {
        addMachine(sysfs, disks);
        SysfsSettings settings;
        settings.firstAnswers = std::chrono::minutes(10);
        settings.asking.diskInterval = settings.asking.boxInterval = settings.asking.deadline = std::chrono::hours(24);
        SysfsSurroundings surroundings;
        surroundings.reportError = [](const std::string& text) { std::fprintf(stderr, "%s\n", text.c_str()); };
        surroundings.reportInfo = [](const std::string&) {};
        surroundings.opener = makeCaptureOpener(sysfs.root());
        source = std::make_unique<SysfsSource>(sysfs.root(), settings, std::move(surroundings));
        source->load(tree);
        source->refresh(tree);
    }

    // All disks are there, each healthy and in its bay.
    bool isWhole(unsigned disks) const
    {
        unsigned found = 0;
        for (const auto* hba = tree.head(); hba; hba = hba->next.get()) {
            for (const auto* drive = hba->physicalDrives.get(); drive; drive = drive->next.get())
                found += drive->status == 2 && textOf(drive->location).find(" Bay ") != std::string_view::npos;
        }
        return found == disks;
    }

    FakeSysfs sysfs;
    RecordTree tree;
    std::unique_ptr<SysfsSource> source;
};

Live& machineOf(unsigned disks)
{
    static std::map<unsigned, std::unique_ptr<Live>> machines;
    std::unique_ptr<Live>& machine = machines[disks];
    if (!machine) machine = std::make_unique<Live>(disks);
    return *machine;
}

void Refresh(benchmark::State& state)
{
    const auto disks = static_cast<unsigned>(state.range(0));
    Live& live = machineOf(disks);
    if (!live.isWhole(disks)) state.SkipWithError("the records are not what the tree says");
    for (auto _ : state)
        live.source->refresh(live.tree);
}
BENCHMARK(Refresh)->Arg(24)->Arg(1255)->Arg(10000)->Unit(benchmark::kMillisecond);

// Without what is made of it.
void Scan(benchmark::State& state)
{
    const SysfsTree tree(machineOf(static_cast<unsigned>(state.range(0))).sysfs.root());
    SysfsScan scan(tree);
    scan.scan();
    for (auto _ : state)
        benchmark::DoNotOptimize(scan.scan());
}
BENCHMARK(Scan)->Arg(24)->Arg(1255)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace KDV::Bench

int main(int argc, char** argv)
try {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "kdv-live-bench: %s\n", error.what());
    return 1;
}
