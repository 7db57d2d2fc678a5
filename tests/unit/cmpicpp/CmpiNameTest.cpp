#include "cmpicpp/CmpiName.h"

#include "ScriptedPath.h"
#include "cmpicpp/CmpiStatus.h"

#include <exception>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

using namespace CmpiCpp;

TEST(CmpiName, ComparesWithoutRegardToAsciiCase)
{
    EXPECT_EQ(CmpiName("KDVSASHBA"), CmpiName("kdvSasHba"));
    EXPECT_EQ(CmpiName("root/vnr"), CmpiName(std::string("ROOT/VNR")));
    EXPECT_NE(CmpiName("KDV_SASDiskDrive"), CmpiName("KDV_SASDiskDrives"));
    EXPECT_NE(CmpiName("KDV_SASDiskDrives"), CmpiName("KDV_SASDiskDrive"));
    EXPECT_NE(CmpiName("a"), CmpiName("b"));
}

TEST(CmpiName, FoldsLettersOnly)
{
    EXPECT_NE(CmpiName("["), CmpiName("{")); // the same but for the bit that tells letters' cases apart
    EXPECT_NE(CmpiName("@a"), CmpiName("`a"));
    EXPECT_NE(CmpiName("\xc3\x84"), CmpiName("\xc3\xa4")); // letters outside ASCII are compared as bytes
    EXPECT_EQ(CmpiName("a_1-\xff"), CmpiName("A_1-\xff"));
}

TEST(CmpiName, CountsNullAsEmpty)
{
    const CmpiName none(nullptr);
    EXPECT_TRUE(none.empty());
    EXPECT_STREQ(none.c_str(), "");
    EXPECT_EQ(none, CmpiName(""));
    EXPECT_NE(none, CmpiName("a"));
}

TEST(CmpiStatus, CarriesCodeAndText)
{
    const CmpiStatus status(CMPI_RC_ERR_NOT_FOUND, "no such drive");
    EXPECT_EQ(status.code(), CMPI_RC_ERR_NOT_FOUND);
    EXPECT_STREQ(status.str(), "no such drive");
}

TEST(CmpiStatus, HasATextWhenNoneWasGiven)
{
    EXPECT_STREQ(CmpiStatus(6).str(), "CMPI error 6");
    EXPECT_EQ(static_cast<int>(CmpiStatus(4711).code()), 4711);
}

TEST(CmpiStatus, IsNoStandardException) { EXPECT_FALSE((std::is_base_of_v<std::exception, CmpiStatus>)); }

TEST(ThrowIfFailed, LetsSuccessPass) { EXPECT_NO_THROW(throwIfFailed({CMPI_RC_OK, nullptr}, "newString")); }

TEST(ThrowIfFailed, TakesCodeAndTextOfTheBroker)
{
    ScriptedString message("class not found");
    try {
        throwIfFailed({CMPI_RC_ERR_INVALID_CLASS, &message}, "newObjectPath");
        FAIL() << "nothing was thrown";
    } catch (const CmpiStatus& status) {
        EXPECT_EQ(status.code(), CMPI_RC_ERR_INVALID_CLASS);
        EXPECT_STREQ(status.str(), "newObjectPath: class not found");
    }
}

TEST(ThrowIfFailed, NamesTheCodeWhenTheBrokerGivesNoText)
{
    ScriptedString nothing(nullptr);
    for (CMPIString* message : {static_cast<CMPIString*>(nullptr), static_cast<CMPIString*>(&nothing)}) {
        try {
            throwIfFailed({CMPI_RC_ERR_FAILED, message}, "clone");
            FAIL() << "nothing was thrown";
        } catch (const CmpiStatus& status) {
            EXPECT_STREQ(status.str(), "clone: CMPI error 1");
        }
    }
}
