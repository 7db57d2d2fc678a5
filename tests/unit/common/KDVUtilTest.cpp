#include "common/KDVUtil.h"

#include "broker/Broker.h"
#include "broker/PathObject.h"
#include "broker/RequestScope.h"
#include "common/ComputerSystemSettings.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
namespace KDV {
namespace {

constexpr operationalStatus ranked[] = {OperationalStatusOK, OperationalStatusUnknown,
                                        OperationalStatusPredictiveFailure, OperationalStatusDegraded,
                                        OperationalStatusError};

TEST(KDVUtil, RanksStatesFromBestToWorst)
{
    for (int a = 0; a < 5; ++a)
        for (int b = 0; b < 5; ++b)
            EXPECT_EQ(KDVUtil::updateWorst(ranked[a], ranked[b]), ranked[std::max(a, b)]) << a << " " << b;
}

TEST(KDVUtil, TakesAStateWithoutRankAsUnknownAndKeepsTheFirstOfEquals)
{
    const auto stopped = static_cast<operationalStatus>(10);
    EXPECT_EQ(KDVUtil::updateWorst(stopped, OperationalStatusUnknown), stopped);
    EXPECT_EQ(KDVUtil::updateWorst(OperationalStatusUnknown, stopped), OperationalStatusUnknown);
    EXPECT_EQ(KDVUtil::updateWorst(OperationalStatusOK, stopped), stopped);
    EXPECT_EQ(KDVUtil::updateWorst(stopped, OperationalStatusPredictiveFailure), OperationalStatusPredictiveFailure);
}

TEST(KDVUtil, TakesVersionsOfDigitsAndPoints)
{
    for (const char* valid : {"1.0", "0.0", "01.02", "65535.65535", "1.2.3", "1.2.3.4.5", "00000065535.1"})
        EXPECT_TRUE(KDVUtil::validateVersion(valid)) << valid;
    for (const char* invalid : {"", ".", "1", "1.", ".1", "1..2", "1.2.", "65536.1", "1.65536", "1.2.65536", "a.b",
                                "1.b", " 1.2", "1.2 ", "-1.2", "+1.2", "1,2", "99999999999999999999.1", "1.2x"})
        EXPECT_FALSE(KDVUtil::validateVersion(invalid)) << invalid;
    EXPECT_FALSE(KDVUtil::validateVersion(std::string_view("1.2\0", 4)));
}

TEST(KDVUtil, ReadsMajorAndMinorOfValidVersionsOnly)
{
    std::uint16_t major = 7;
    std::uint16_t minor = 8;
    EXPECT_TRUE(KDVUtil::stringVersionToMajor("12.34.56", major));
    EXPECT_TRUE(KDVUtil::stringVersionToMinor("12.34.56", minor));
    EXPECT_EQ(major, 12);
    EXPECT_EQ(minor, 34);
    EXPECT_FALSE(KDVUtil::stringVersionToMajor("13.", major));
    EXPECT_FALSE(KDVUtil::stringVersionToMinor("13.35.65536", minor));
    EXPECT_EQ(major, 12);
    EXPECT_EQ(minor, 34);
}

TEST(KDVUtil, GivesTheNameOfTheHost)
{
    char name[256] = {};
    ASSERT_EQ(gethostname(name, sizeof name - 1), 0);
    EXPECT_EQ(KDVUtil::getHostName(), name);
}

TEST(KDVUtil, EndsTheConfigurationDirectoryWithASlash)
{
    const char* const before = std::getenv("KDV_CONFIG_DIR");
    const std::string kept = before ? before : "";
    setenv("KDV_CONFIG_DIR", "/some/where", 1);
    EXPECT_EQ(KDVUtil::configurationDirectory(), "/some/where/");
    setenv("KDV_CONFIG_DIR", "/some/where/", 1);
    EXPECT_EQ(KDVUtil::configurationDirectory(), "/some/where/");
    unsetenv("KDV_CONFIG_DIR");
    EXPECT_EQ(KDVUtil::configurationDirectory(), "/etc/cim/zt-kdv/");
    if (before) setenv("KDV_CONFIG_DIR", kept.c_str(), 1);
}

// The settings are read once for the process: this is the only test here that makes the path.
TEST(KDVUtil, MakesThePathOfTheConfiguredComputerSystem)
{
    const std::string directory = testing::TempDir() + "kdv-common-" + std::to_string(getpid());
    std::filesystem::create_directories(directory);
    std::ofstream(directory + "/computer-system.conf") << "class = T_ComputerSystem\nnamespace=root/cimv2\n";
    setenv("KDV_CONFIG_DIR", directory.c_str(), 1);
    Host::ClassRepository repository;
    repository.loadText("class T_ComputerSystem { [Key] string CreationClassName; [Key] string Name; };", "root/cimv2",
                        "t.mof");
    Host::Broker broker(repository, {Host::Profile::Standard, true});
    const Host::RequestScope scope(broker, "root/cimv2");
    KDVUtil::setBroker(broker.cmpi());
    const std::string host = KDVUtil::getHostName();
    EXPECT_EQ(Host::PathObject::of(KDVUtil::getComputerSystemPath().raw()).text(),
              "//" + host + "/root/cimv2:T_ComputerSystem.CreationClassName=\"T_ComputerSystem\",Name=\"" + host +
                  "\"");
    EXPECT_EQ(KDVUtil::getBroker(), broker.cmpi());
    KDVUtil::setBroker(nullptr);
    unsetenv("KDV_CONFIG_DIR");
    std::filesystem::remove_all(directory);
}

TEST(ComputerSystemSettings, KeepTheirDefaultsWhereTheFileSaysNothing)
{
    ComputerSystemSettings settings;
    std::vector<std::string> mistakes;
    parseComputerSystemSettings("# nothing\n\n \t\r\n", settings, mistakes);
    EXPECT_EQ(settings.className, "KDV_ComputerSystem");
    EXPECT_EQ(settings.nameSpace, "root/vnr");
    EXPECT_THAT(mistakes, IsEmpty());
}

TEST(ComputerSystemSettings, TakeClassAndNamespace)
{
    ComputerSystemSettings settings;
    std::vector<std::string> mistakes;
    parseComputerSystemSettings("class=PG_ComputerSystem\r\n  namespace =  root/cimv2  ", settings, mistakes);
    EXPECT_EQ(settings.className, "PG_ComputerSystem");
    EXPECT_EQ(settings.nameSpace, "root/cimv2");
    EXPECT_THAT(mistakes, IsEmpty());
}

TEST(ComputerSystemSettings, ReportMistakesWithTheirLineAndStayAsTheyWere)
{
    ComputerSystemSettings settings;
    std::vector<std::string> mistakes;
    parseComputerSystemSettings("class=9\nnamespace=root//x\nname=x\nclass\nclass=\nclass=A B", settings, mistakes);
    EXPECT_EQ(settings.className, "KDV_ComputerSystem");
    EXPECT_EQ(settings.nameSpace, "root/vnr");
    EXPECT_THAT(mistakes, ElementsAre(HasSubstr("line 1: expected the name"), HasSubstr("line 2: expected a namespace"),
                                      HasSubstr("line 3: unknown setting"), HasSubstr("line 4: expected"),
                                      HasSubstr("line 5: expected the name"), HasSubstr("line 6: expected the name")));
}

} // namespace
} // namespace KDV
