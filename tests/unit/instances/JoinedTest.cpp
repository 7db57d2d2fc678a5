#include "instances/Joined.h"

#include <gtest/gtest.h>

namespace KDV::Test {
namespace {

TEST(Joined, PutsTextsFieldsAndNumbersTogether)
{
    SasPhysicalDriveRecord drive{};
    drive.driveNumber = 4294967295u;
    std::memset(drive.firmwareRevision, 'r', sizeof drive.firmwareRevision);
    const std::string text = "text";
    const char* const pointer = "pointer";
    EXPECT_EQ(joined({"literal ", text, " ", pointer, " ", std::string_view("viewed", 4), " ", drive.driveNumber, " ",
                      drive.mediaType, " ", drive.firmwareRevision, drive.name}),
              "literal text pointer view 4294967295 0 rrrrrrrrr");
}

TEST(Joined, IsEmptyForNothing)
{
    EXPECT_EQ(joined({}), "");
    EXPECT_EQ(joined({"", std::string()}), "");
}

} // namespace
} // namespace KDV::Test
