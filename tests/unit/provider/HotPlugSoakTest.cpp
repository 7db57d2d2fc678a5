// Thousands of passes with random pulls and insertions while clients read: every answer is that of a whole pass, and
// what memory stays is the small device object of each pulled disk.
#include "fixture/ProviderFixture.h"
#include "provider/DeviceObjects.h"

#include <atomic>
#include <malloc.h>
#include <random>
#include <thread>

namespace KDV::Test {
namespace {

using namespace Host;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool countsMemory = false; // a sanitizer's allocator keeps what was freed
#else
constexpr bool countsMemory = true;
#endif

constexpr std::uint32_t disks = 12;

class HotPlugSoak : public ProviderFixture {
protected:
    HotPlugSoak() : hba(machine.addHba(1))
    {
        log.stop();
        machine.addBox(hba, 1);
        for (std::uint32_t number = 0; number < disks; ++number)
            records.push_back(&machine.addDrive(hba, number, unassignedUsage));
        present.assign(disks, true);
        makeProvider();
        machine.whenUpdated = [this](SasDataRoot&) { change(); };
    }

    // Pulls or puts back each disk with one chance in four.
    void change()
    {
        std::size_t now = 0;
        for (std::uint32_t number = 0; number < disks; ++number) {
            if (random() % 4 == 0) {
                if (present[number])
                    machine.pull(hba, number);
                else
                    machine.insert(hba, *records[number]);
                pulls += present[number];
                present[number] = !present[number];
            }
            now += present[number];
        }
        inPlace = now;
    }

    SasHbaRecord& hba;
    std::vector<SasPhysicalDriveRecord*> records;
    std::vector<bool> present;
    std::mt19937 random{4711};
    std::size_t pulls = 0;
    std::size_t inPlace = disks;
};

TEST_P(HotPlugSoak, AnswersWholePassesAndKeepsOnlyDeviceObjects)
{
    const Requests ask = requests();
    std::atomic<bool> done{false};
    std::atomic<std::size_t> answers{0};
    std::vector<std::thread> readers;
    for (int reader = 0; reader < 2; ++reader) {
        readers.emplace_back([&] {
            do {
                const Reply drives = ask.instances("KDV_SASDiskDrive");
                ASSERT_EQ(drives.rc, CMPI_RC_OK) << drives.message;
                ASSERT_LE(drives.instances.size(), std::size_t{disks});
                for (const char* link : {"KDV_SASDiskPhysicalPackageDiskDrive", "KDV_SASArraySystemStorageExtent"})
                    for (const CollectedInstance& instance : ask.instances(link).instances)
                        ASSERT_EQ(instance.properties.size(), 2u); // both ends are there
                const Reply linked = ask.associatorNames(arraySystemName(hba), {"KDV_SASArraySystemDiskDrive"});
                ASSERT_EQ(linked.rc, CMPI_RC_OK) << linked.message;
                ++answers;
            } while (!done);
        });
    }

    std::size_t settled = 0;
    std::size_t pullsSettled = 0;
    const int passes = GetParam() == Profile::Standard ? 10'000 : 2'000;
    for (int pass = 0; pass < passes; ++pass) {
        ASSERT_EQ(ask.pass().rc, CMPI_RC_OK);
        if (pass == passes / 10) {
            settled = mallinfo2().uordblks;
            pullsSettled = pulls;
        }
    }
    done = true;
    for (std::thread& reader : readers)
        reader.join();

    EXPECT_GT(answers, 0u);
    EXPECT_EQ(count("KDV_SASDiskDrive"), inPlace);
    EXPECT_EQ(count("KDV_SASDriveCageDiskPhysicalPackage"), inPlace);
    EXPECT_GT(pulls, static_cast<std::size_t>(passes));
    if (countsMemory) {
        const std::size_t now = mallinfo2().uordblks;
        const std::size_t grown = now > settled ? now - settled : 0;
        constexpr std::size_t perPull = sizeof(SasPhysicalDrive) + 32;
        EXPECT_LT(grown, (pulls - pullsSettled) * perPull + (std::size_t{1} << 20))
            << static_cast<double>(grown) / static_cast<double>(pulls - pullsSettled) << " bytes for each pull";
    }
}

KDV_UNDER_EVERY_BROKER(HotPlugSoak);

} // namespace
} // namespace KDV::Test
