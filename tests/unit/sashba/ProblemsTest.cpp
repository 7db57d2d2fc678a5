// Every kind of mistake in a scenario: its place and what was expected there.
#include "Playground.h"
#include "sashba/scenario/ScenarioReader.h"

#include <string>

#include <gmock/gmock.h>

namespace KDV {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string problemsOf(const std::string& text)
{
    Problems problems;
    const bool usable = readScenario(text, problems).has_value();
    EXPECT_EQ(usable, problems.empty());
    return problems.text();
}

std::string driveProblem(const std::string& members)
{
    return problemsOf(oneHba(R"("physicalDrives": [{"driveNumber": 0}, {"driveNumber": 1, )" + members + "}]"));
}

std::string volumeProblem(const std::string& members)
{
    return problemsOf(oneHba(R"("logicalDrives": [{"logicalDriveNumber": 0, )" + members + "}]"));
}

std::string changeProblem(const std::string& members)
{
    return problemsOf(oneHba(R"("physicalDrives": [{"driveNumber": 1}])", R"("timeline": [{)" + members + "}]"));
}

TEST(Syntax, TellsLineAndColumn)
{
    EXPECT_EQ(problemsOf("{\n  \"hbas\": [}\n}"), "line 2, column 12: expected other JSON, found \"}\"");
    EXPECT_THAT(problemsOf("{\"hbas\": tru}"), StartsWith("line 1, column 13: expected other JSON"));
    EXPECT_THAT(problemsOf("{\"hbas\": []} x"), StartsWith("line 1, column 14: expected other JSON"));
}

TEST(Syntax, TellsThatTheFileEndsTooEarly)
{
    EXPECT_THAT(problemsOf("{\"hbas\": ["), HasSubstr("found the end of the file"));
    EXPECT_THAT(problemsOf(""), HasSubstr("line 1, column 1: expected more JSON"));
}

TEST(Syntax, RefusesBytesThatAreNoUtf8)
{
    EXPECT_THAT(problemsOf("{\"hbas\": [{\"name\": \"\xFF\"}]}"), StartsWith("line 1, column 21: expected other JSON"));
}

TEST(Syntax, RefusesANumberThatNoMachineCounts)
{
    EXPECT_EQ(problemsOf("{\"hbas\": 1e400}"), "line 1, column 14: expected a number of usual size, ending here");
}

TEST(Syntax, RefusesAFieldNamedTwice)
{
    EXPECT_EQ(problemsOf(R"({"hbas": [{"hbaNumber": 0}, {"hbaNumber": 1, "name": "a", "name": "b"}]})"),
              "/hbas/1/name: expected once, found more than once");
    EXPECT_EQ(problemsOf(R"({"hbas": [], "hbas": []})"), "/hbas: expected once, found more than once");
}

TEST(Document, NeedsHbas)
{
    EXPECT_EQ(problemsOf("{}"), "/hbas: expected an array of HBAs, found nothing");
    EXPECT_EQ(problemsOf(R"({"hbas": 5})"), "/hbas: expected an array of HBAs, found the number 5");
    EXPECT_EQ(problemsOf("[]"), "/: expected an object with \"hbas\", found an array");
    EXPECT_EQ(problemsOf(R"({"hbas": [7]})"), "/hbas/0: expected an object, found the number 7");
}

TEST(Document, RefusesUnknownMembersAndNamesTheProbableOne)
{
    EXPECT_EQ(problemsOf(R"({"hbas": [], "timelin": []})"), "/timelin: expected a known field, probably \"timeline\"");
    EXPECT_EQ(driveProblem(R"("serialNumer": "x")"),
              "/hbas/0/physicalDrives/1/serialNumer: expected a known field, probably \"serialNumber\"");
    EXPECT_EQ(driveProblem(R"("zzzzzzzzzzzz": 1)"), "/hbas/0/physicalDrives/1/zzzzzzzzzzzz: expected a known field");
}

TEST(Document, EscapesNamesInPlaces)
{
    EXPECT_THAT(driveProblem(R"("a/b~c": 1)"), StartsWith("/hbas/0/physicalDrives/1/a~1b~0c: "));
}

TEST(Document, TheBytesOfTheProviderHaveNoField)
{
    EXPECT_THAT(driveProblem(R"("oldStatus": 1)"), StartsWith("/hbas/0/physicalDrives/1/oldStatus: "));
    EXPECT_THAT(driveProblem(R"("acknowledged": 1)"), StartsWith("/hbas/0/physicalDrives/1/acknowledged: "));
    EXPECT_THAT(volumeProblem(R"("oldRedundancyState": 1)"), HasSubstr("/oldRedundancyState: "));
    EXPECT_THAT(problemsOf(oneHba(R"("oldControllerStatus": 1)")), HasSubstr("/oldControllerStatus: "));
}

TEST(Element, NeedsItsNumber)
{
    EXPECT_EQ(problemsOf(R"({"hbas": [{}]})"), "/hbas/0/hbaNumber: expected the number of the element");
    EXPECT_EQ(problemsOf(oneHba(R"("storageBoxes": [{"name": "x"}])")),
              "/hbas/0/storageBoxes/0/boxNumber: expected the number of the element");
}

TEST(Element, NeedsANumberOfItsOwn)
{
    EXPECT_THAT(problemsOf(oneHba(R"("physicalDrives": [{"driveNumber": 4}, {"driveNumber": 4}])")),
                StartsWith("/hbas/0/physicalDrives/1/driveNumber: expected a number that no other"));
    EXPECT_THAT(problemsOf(R"({"hbas": [{"hbaNumber": 1}, {"hbaNumber": 1}]})"), StartsWith("/hbas/1/hbaNumber: "));
    EXPECT_EQ(
        problemsOf(oneHba(R"("physicalDrives": [{"driveNumber": 4}, {"driveNumber": 4, "duplicateNumber": true}])")),
        "");
    EXPECT_EQ(driveProblem(R"("duplicateNumber": 1)"),
              "/hbas/0/physicalDrives/1/duplicateNumber: expected true or false, found the number 1");
}

TEST(Element, ListsMustBeArraysOfObjects)
{
    EXPECT_EQ(problemsOf(oneHba(R"("physicalDrives": {})")),
              "/hbas/0/physicalDrives: expected an array, found an object");
    EXPECT_EQ(problemsOf(oneHba(R"("physicalDrives": [null])")),
              "/hbas/0/physicalDrives/0: expected an object, found null");
}

TEST(Field, ACodeIsAKnownWordOrAByte)
{
    const std::string place = "/hbas/0/physicalDrives/1/interface: ";
    const std::string known = "expected one of \"unknown\", \"SATA\", \"SAS\", or a code from 0 to 255, found ";
    EXPECT_EQ(driveProblem(R"("interface": "sas")"), place + known + "the text \"sas\"");
    EXPECT_EQ(driveProblem(R"("interface": 256)"), place + known + "the number 256");
    EXPECT_EQ(driveProblem(R"("interface": -1)"), place + known + "the number -1");
    EXPECT_EQ(driveProblem(R"("interface": 2.0)"), place + known + "the number 2.0");
    EXPECT_EQ(driveProblem(R"("interface": true)"), place + known + "true");
    EXPECT_EQ(driveProblem(R"("interface": [])"), place + known + "an array");
}

TEST(Field, ANumberThatDoesNotFitIsNoWrap)
{
    const std::string place = "/hbas/0/physicalDrives/1/";
    EXPECT_EQ(driveProblem(R"("size": 4294967296)"),
              place + "size: expected a whole number from 0 to 4294967295, found the number 4294967296");
    EXPECT_EQ(driveProblem(R"("size": -1)"),
              place + "size: expected a whole number from 0 to 4294967295, found the number -1");
    EXPECT_THAT(driveProblem(R"("size": 1.5)"), HasSubstr("found the number 1.5"));
    EXPECT_THAT(driveProblem(R"("size": 1e3)"), HasSubstr("expected a whole number"));
    EXPECT_THAT(driveProblem(R"("size": "1")"), HasSubstr("found the text \"1\""));
    EXPECT_THAT(driveProblem(R"("size": 18446744073709551616)"), HasSubstr("expected a whole number"));
    EXPECT_EQ(driveProblem(R"("carrierAppVersion": 256)"),
              place + "carrierAppVersion: expected a whole number from 0 to 255, found the number 256");
    EXPECT_EQ(driveProblem(R"("ssdWearStatus": 128)"),
              place + "ssdWearStatus: expected a whole number from -128 to 127, found the number 128");
    EXPECT_THAT(driveProblem(R"("ssdWearStatus": -129)"), HasSubstr("found the number -129"));
}

TEST(Field, ATextIsAText)
{
    EXPECT_EQ(driveProblem(R"("serialNumber": 7)"),
              "/hbas/0/physicalDrives/1/serialNumber: expected a text, found the number 7");
}

TEST(Field, ABoxIsNamedOnce)
{
    EXPECT_THAT(driveProblem(R"("boxNumber": 1, "boxIdentifier": 1)"),
                StartsWith("/hbas/0/physicalDrives/1/boxNumber: expected either"));
    EXPECT_THAT(driveProblem(R"("boxNumber": 256)"), HasSubstr("expected a whole number from 0 to 255"));
}

TEST(Field, DriveNumbersAreAtMostSixteenWholeNumbers)
{
    const std::string place = "/hbas/0/logicalDrives/0/members";
    EXPECT_EQ(volumeProblem(R"("members": [0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16])"),
              place + ": expected at most 16 drive numbers, found 17");
    EXPECT_THAT(volumeProblem(R"("members": [1, "x"])"), StartsWith(place + "/1: expected a whole number"));
    EXPECT_EQ(volumeProblem(R"("members": 3)"), place + ": expected an array of drive numbers, found the number 3");
    EXPECT_THAT(volumeProblem(R"("rebuildingDrive": "all")"), HasSubstr("expected a drive number or \"none\""));
}

TEST(TimelineProblem, NeedsOneTime)
{
    EXPECT_EQ(changeProblem(R"("hba": 0, "pull": 1)"), "/timeline/0: expected either \"atPass\" or \"afterSeconds\"");
    EXPECT_EQ(changeProblem(R"("atPass": 1, "afterSeconds": 1, "hba": 0, "pull": 1)"),
              "/timeline/0: expected either \"atPass\" or \"afterSeconds\"");
    EXPECT_THAT(changeProblem(R"("atPass": 0, "hba": 0, "pull": 1)"),
                StartsWith("/timeline/0/atPass: expected at least 1"));
    EXPECT_THAT(changeProblem(R"("atPass": 1.5, "hba": 0, "pull": 1)"), StartsWith("/timeline/0/atPass: "));
    EXPECT_THAT(changeProblem(R"("afterSeconds": -1, "hba": 0, "pull": 1)"), StartsWith("/timeline/0/afterSeconds: "));
    EXPECT_THAT(changeProblem(R"("afterSeconds": 1e300, "hba": 0, "pull": 1)"), HasSubstr("expected seconds from 0"));
}

TEST(TimelineProblem, NeedsOneActionAndATarget)
{
    EXPECT_THAT(changeProblem(R"("atPass": 1, "hba": 0)"), StartsWith("/timeline/0: expected exactly one of \"set\""));
    EXPECT_THAT(changeProblem(R"("atPass": 1, "hba": 0, "pull": 1, "insert": 1)"),
                HasSubstr("expected exactly one of"));
    EXPECT_EQ(changeProblem(R"("atPass": 1, "pull": 1)"),
              "/timeline/0/hba: expected the number of an HBA, found nothing");
    EXPECT_EQ(changeProblem(R"("atPass": 1, "hba": 3, "pull": 1)"),
              "/timeline/0/hba: expected the number of an HBA in \"hbas\", found 3");
    EXPECT_EQ(changeProblem(R"("atPass": 1, "hba": 0, "pull": 2)"),
              "/timeline/0/pull: expected the number of an element of this HBA, found 2");
    EXPECT_THAT(changeProblem(R"("atPass": 1, "hba": 0, "physicalDrive": 9, "set": {})"),
                StartsWith("/timeline/0/physicalDrive: "));
    EXPECT_THAT(changeProblem(R"("atPass": 1, "hba": 0, "physicalDrive": 1, "storageBox": 1, "set": {})"),
                HasSubstr("expected at most one of"));
    EXPECT_THAT(changeProblem(R"("atPass": 1, "hba": 0, "physicalDrive": 1, "pull": 1)"),
                StartsWith("/timeline/0/physicalDrive: expected only beside \"set\""));
    EXPECT_THAT(changeProblem(R"("atPass": 1, "hba": 0, "puls": 1)"),
                HasSubstr("/timeline/0/puls: expected a known field"));
    EXPECT_THAT(changeProblem(R"("atPass": 1, "hba": 0, "pull": 1, "occurrence": 0)"), HasSubstr("/occurrence: "));
    EXPECT_THAT(changeProblem(R"("atPass": 1, "hba": 0, "set": {}, "occurrence": 1)"), HasSubstr("/occurrence: "));
    EXPECT_THAT(changeProblem(R"("atPass": 1, "hba": 0, "insert": {"driveNumber": 5}, "occurrence": 2)"),
                HasSubstr("/occurrence: "));
}

TEST(TimelineProblem, FieldsInAChangeAreCheckedLikeAnyOther)
{
    EXPECT_THAT(changeProblem(R"("atPass": 1, "hba": 0, "physicalDrive": 1, "set": {"status": 300})"),
                StartsWith("/timeline/0/set/status: expected one of"));
    EXPECT_THAT(changeProblem(R"("atPass": 1, "hba": 0, "physicalDrive": 1, "set": {"fanStatus": 2})"),
                StartsWith("/timeline/0/set/fanStatus: expected a known field"));
    EXPECT_THAT(changeProblem(R"("atPass": 1, "hba": 0, "set": 5)"), StartsWith("/timeline/0/set: expected an object"));
    EXPECT_THAT(changeProblem(R"("atPass": 1, "hba": 0, "insert": {"serialNumber": "x"})"),
                StartsWith("/timeline/0/insert/driveNumber: expected the number"));
    EXPECT_THAT(changeProblem(R"("atPass": 1, "hba": 0, "insert": {"driveNumber": 5, "duplicateNumber": true})"),
                StartsWith("/timeline/0/insert/duplicateNumber: "));
}

TEST(TimelineProblem, ARoundHoldsItsChanges)
{
    const auto withRound = [](const std::string& round) {
        return problemsOf(oneHba(R"("physicalDrives": [{"driveNumber": 1}])",
                                 R"("timeline": [{"atPass": 4, "hba": 0, "pull": 1}], "repeatEvery": )" + round));
    };
    EXPECT_EQ(withRound(R"({"passes": 4})"), "");
    EXPECT_THAT(withRound(R"({"passes": 3})"), StartsWith("/timeline/0: expected to be due within the round"));
    EXPECT_THAT(withRound(R"({"passes": 0})"), StartsWith("/repeatEvery/passes: expected at least 1"));
    EXPECT_THAT(withRound(R"({"seconds": 0})"), StartsWith("/repeatEvery/seconds: expected at least 0.001"));
    EXPECT_THAT(withRound(R"({"pass": 3})"),
                StartsWith("/repeatEvery/pass: expected a known field, probably \"passes\""));
    EXPECT_THAT(withRound("5"), StartsWith("/repeatEvery: expected an object"));
}

TEST(ProblemList, TellsAllAtOnceInTheOrderOfTheFile)
{
    EXPECT_EQ(
        problemsOf(R"({"hbas": [{"hbaNumber": 0, "nam": "x", "slotNumber": 256,
        "physicalDrives": [{"driveNumber": -1}]}], "timeline": 3})"),
        "/hbas/0/nam: expected a known field, probably \"name\"; "
        "/hbas/0/slotNumber: expected one of \"embedded\", \"unknown\", or a code from 0 to 255, found the number "
        "256; "
        "/hbas/0/physicalDrives/0/driveNumber: expected a whole number from 0 to 4294967295, found the number -1; "
        "/timeline: expected an array of changes, found the number 3");
}

TEST(ProblemList, IsBounded)
{
    std::string drives;
    for (int i = 0; i < 1000; ++i)
        drives += (i ? "," : "") + std::string("{\"driveNumber\": ") + std::to_string(i) + ", \"x\": 1}";
    const std::string text = problemsOf(oneHba("\"physicalDrives\": [" + drives + "]"));
    EXPECT_THAT(text, HasSubstr("and 980 more"));
    EXPECT_LT(text.size(), 3000U);
}

TEST(ProblemList, ShowsNothingUnprintableAndCutsLongTexts)
{
    const std::string text = driveProblem("\"interface\": \"\\u001b[31m" + std::string(1000, 'x') + '"');
    EXPECT_THAT(text, HasSubstr("\"?[31mxxx"));
    EXPECT_THAT(text, Not(HasSubstr("\x1b")));
    EXPECT_LT(text.size(), 300U);
}

} // namespace
} // namespace KDV
