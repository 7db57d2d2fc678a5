// What requests and passes cost inside the process, without HTTP and XML. The machine comes from the scenario that
// KDV_SAS_SCENARIO names; bench/run goes through the sizes.
#include "Machine.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <exception>

using KDV::Bench::Machine;

namespace {

void perItem(benchmark::State& state, std::uint64_t items)
{
    state.SetItemsProcessed(static_cast<std::int64_t>(items));
}

void EnumerateDisks(benchmark::State& state)
{
    std::uint64_t items = 0;
    for (auto _ : state)
        items += Machine::instance().enumerate("KDV_SASDiskDrive");
    perItem(state, items);
}
BENCHMARK(EnumerateDisks)->Unit(benchmark::kMicrosecond);

void EnumerateFloor(benchmark::State& state)
{
    std::uint64_t items = 0;
    for (auto _ : state)
        items += Machine::instance().floorOfEnumeration();
    perItem(state, items);
}
BENCHMARK(EnumerateFloor)->Unit(benchmark::kMicrosecond);

// Walks over the disks with a stride, so that one size does not profit from a warm cache more than another.
std::size_t nextDisk()
{
    static std::size_t at = 0;
    at = (at + 7919) % Machine::instance().disks();
    return at;
}

void GetInstance(benchmark::State& state)
{
    std::uint64_t items = 0;
    for (auto _ : state)
        items += Machine::instance().getDisk(nextDisk());
    perItem(state, items);
}
BENCHMARK(GetInstance)->Unit(benchmark::kMicrosecond);

void AssociatorHop(benchmark::State& state)
{
    std::uint64_t items = 0;
    for (auto _ : state)
        items += Machine::instance().hopToPackage(nextDisk());
    perItem(state, items);
}
BENCHMARK(AssociatorHop)->Unit(benchmark::kMicrosecond);

void PassWithoutChange(benchmark::State& state)
{
    for (auto _ : state)
        Machine::instance().pass();
}
BENCHMARK(PassWithoutChange)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
try {
    benchmark::Initialize(&argc, argv);
    Machine& machine = Machine::instance();
    std::printf("disks %zu, populated in %.3f s\n", machine.disks(), machine.secondsToPopulate());
    if (machine.disks() == 0 || machine.enumerate("KDV_SASDiskDrive") != machine.disks() || machine.getDisk(0) != 1 ||
        machine.hopToPackage(0) != 1 || machine.floorOfEnumeration() != machine.disks()) {
        std::fprintf(stderr, "kdv-bench: the machine does not answer as it should\n");
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "kdv-bench: %s\n", error.what());
    return 1;
}
