// The shared library as the provider uses it: two functions, a root, the environment and the configuration directory.
#include "records/SasDataLibrary.h"

#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace KDV {
namespace {

class SasHbaLibrary : public testing::Test {
protected:
    void SetUp() override
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "kdv-library-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern;
        setenv("KDV_CONFIG_DIR", folder.c_str(), 1);
        setenv("KDV_LOG", ("file:" + file("log")).c_str(), 1);
        setenv("KDV_SYSFS_ROOT", folder.c_str(), 1); // not the machine that the test runs on
        unsetenv("KDV_SAS_SCENARIO");
        setenv("KDV_SYSFS_ROOT", folder.c_str(), 1); // a machine without an adapter, whatever this one has
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    std::string file(const std::string& name) const { return (folder / name).string(); }
    void write(const std::string& name, const std::string& text) const { std::ofstream(file(name)) << text; }
    void choose(const std::string& name) const { setenv("KDV_SAS_SCENARIO", file(name).c_str(), 1); }

    static std::string machine(const std::string& name, int drives)
    {
        std::string list;
        for (int i = 0; i < drives; ++i)
            list += (i ? ", " : "") + std::string("{\"driveNumber\": ") + std::to_string(i) + "}";
        return R"({"hbas": [{"hbaNumber": 0, "name": ")" + name + R"(", "physicalDrives": [)" + list + "]}]}";
    }

    static std::string nameOf(const SasDataRoot& root)
    {
        return root.hbas ? std::string(textOf(root.hbas.get()->name)) : "none";
    }

    std::filesystem::path folder;
};

TEST_F(SasHbaLibrary, ServesTheScenarioOfTheEnvironment)
{
    write("a.json", machine("A", 2));
    choose("a.json");
    SasDataRoot root{};
    CreateSasLists(&root);
    ASSERT_EQ(nameOf(root), "A");
    const SasPhysicalDriveRecord* drive = root.hbas->physicalDrives.get();
    ASSERT_NE(drive, nullptr);
    EXPECT_TRUE(drive->next);
    UpdateSasData(&root);
    EXPECT_EQ(root.hbas->physicalDrives.get(), drive);
}

TEST_F(SasHbaLibrary, ServesTheScenarioOfTheConfigurationFile)
{
    write("a.json", machine("A", 0));
    write("b.json", machine("B", 0));
    write("KDVSasHbaMRA.json", R"({"scenario": "b.json"})");
    SasDataRoot root{};
    CreateSasLists(&root);
    EXPECT_EQ(nameOf(root), "B") << "a path relative to the configuration directory";
    write("KDVSasHbaMRA.json", R"({"scenario": ")" + file("a.json") + "\"}");
    CreateSasLists(&root);
    EXPECT_EQ(nameOf(root), "A") << "an absolute path";
    choose("b.json");
    CreateSasLists(&root);
    EXPECT_EQ(nameOf(root), "B") << "the environment goes first";
}

TEST_F(SasHbaLibrary, HasNoHbaWhenNothingOrNothingUsableIsChosen)
{
    SasDataRoot root{};
    CreateSasLists(&root);
    EXPECT_EQ(nameOf(root), "none");
    UpdateSasData(&root);
    EXPECT_EQ(nameOf(root), "none");
    for (const char* configuration : {"{", "[]", R"({"scenario": 3})", R"({"scenari": "b.json"})",
                                      R"({"scenario": ""})", R"({"scenario": "missing.json"})"}) {
        write("KDVSasHbaMRA.json", configuration);
        CreateSasLists(&root);
        EXPECT_EQ(nameOf(root), "none") << configuration;
    }
}

TEST_F(SasHbaLibrary, WritesTheHeadOfTheListAndNothingElseInTheRoot)
{
    write("a.json", machine("A", 1));
    choose("a.json");
    SasDataRoot root;
    std::memset(static_cast<void*>(&root), 0xA5, sizeof root);
    CreateSasLists(&root);
    UpdateSasData(&root);
    const auto* bytes = reinterpret_cast<const unsigned char*>(&root);
    for (std::size_t at = 4; at < sizeof root; ++at)
        EXPECT_EQ(bytes[at], 0xA5) << at;
}

TEST_F(SasHbaLibrary, StartsAnewForTheSameRootWithItsOldRecords)
{
    write("a.json", machine("A", 1));
    choose("a.json");
    SasDataRoot root{};
    CreateSasLists(&root);
    SasPhysicalDriveRecord* drive = root.hbas->physicalDrives.get();
    drive->oldStatus = 3;
    root = SasDataRoot{};
    CreateSasLists(&root);
    EXPECT_EQ(root.hbas->physicalDrives.get(), drive);
    EXPECT_EQ(drive->oldStatus, 0) << "never checked, as in new lists";
}

TEST_F(SasHbaLibrary, KeepsTwoRootsApart)
{
    write("a.json", machine("A", 1));
    write("b.json", machine("B", 1));
    SasDataRoot first{};
    SasDataRoot second{};
    choose("a.json");
    CreateSasLists(&first);
    choose("b.json");
    CreateSasLists(&second);
    EXPECT_EQ(nameOf(first), "A");
    EXPECT_EQ(nameOf(second), "B");
    EXPECT_NE(first.hbas.get(), second.hbas.get());
    UpdateSasData(&first);
    EXPECT_EQ(nameOf(first), "A");
}

TEST_F(SasHbaLibrary, MayBeCalledForSeveralRootsAtOnce)
{
    write("a.json", machine("A", 50));
    choose("a.json");
    std::vector<SasDataRoot> roots(4);
    std::vector<std::thread> threads;
    for (SasDataRoot& root : roots) {
        threads.emplace_back([&root] {
            root = SasDataRoot{};
            CreateSasLists(&root);
            for (int pass = 0; pass < 50; ++pass)
                UpdateSasData(&root);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (const SasDataRoot& root : roots)
        EXPECT_EQ(nameOf(root), "A");
}

TEST_F(SasHbaLibrary, AnswersANullOrUnknownRootWithNothing)
{
    CreateSasLists(nullptr);
    UpdateSasData(nullptr);
    SasDataRoot never{};
    UpdateSasData(&never);
    EXPECT_FALSE(never.hbas);
}

TEST_F(SasHbaLibrary, TakesANewRootAtAnOldAddressForOneWithoutLists)
{
    write("a.json", machine("A", 1));
    choose("a.json");
    SasDataRoot root{};
    CreateSasLists(&root);
    ASSERT_TRUE(root.hbas);
    root = SasDataRoot{};
    UpdateSasData(&root);
    EXPECT_FALSE(root.hbas);
}

TEST_F(SasHbaLibrary, ShowsItsTwoFunctionsUnderThePlainName)
{
    void* library = dlopen(KDV_DATA_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    EXPECT_NE(dlsym(library, "CreateSasLists"), nullptr);
    EXPECT_NE(dlsym(library, "UpdateSasData"), nullptr);
    dlclose(library);
    EXPECT_EQ(std::filesystem::path(KDV_DATA_LIBRARY).filename(), "libKDVSasHbaMRA.so");
}

} // namespace
} // namespace KDV
