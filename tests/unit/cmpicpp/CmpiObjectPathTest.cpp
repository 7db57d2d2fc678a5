#include "cmpicpp/CmpiObjectPath.h"

#include "BrokerTest.h"
#include "ScriptedPath.h"
#include "cmpicpp/CmpiResults.h"

#include <optional>
#include <utility>

using namespace CmpiCpp;
using namespace KDV::Host;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class CmpiObjectPathTest : public BrokerTest {};
KDV_FOR_EACH_PROFILE(CmpiObjectPathTest);

TEST_P(CmpiObjectPathTest, KeepsWhatItIsMadeOf)
{
    inRequest([&] {
        CmpiObjectPath path = makeFan("1");
        EXPECT_FALSE(path.empty());
        EXPECT_EQ(path.getClassName(), "Fan");
        EXPECT_EQ(path.getNameSpace(), "root/vnr");
        EXPECT_EQ(path.getHost(), "");
        path.setHost("server.example");
        path.setNameSpace("root/other");
        EXPECT_EQ(path.getHost(), "server.example");
        EXPECT_EQ(path.getNameSpace(), "root/other");
        EXPECT_EQ(path.keyText("DeviceID"), "1");
        EXPECT_EQ(path.keyText("SystemName"), "box");
    });
    expectClean();
}

TEST_P(CmpiObjectPathTest, AnswersAMissingKeyWithNoText)
{
    inRequest([&] {
        EXPECT_EQ(makePath("Fan").keyText("DeviceID"), "");
        CmpiObjectPath link = makePath("Cooling");
        link.addKey("Antecedent", makeFan("1"));
        EXPECT_EQ(link.keyText("Antecedent"), ""); // not a text
    });
    expectClean();
}

TEST_P(CmpiObjectPathTest, TakesNullTextForEmpty)
{
    inRequest([&] {
        CmpiObjectPath path = makePath("Fan");
        path.addKey("DeviceID", static_cast<const char*>(nullptr));
        EXPECT_EQ(path.str(), "/root/vnr:Fan.DeviceID=\"\"");
    });
    expectClean();
}

TEST_P(CmpiObjectPathTest, CopiesTextsWhenTheyAreAdded)
{
    inRequest([&] {
        CmpiObjectPath path = makePath("Fan");
        std::string text = "before";
        path.addKey("DeviceID", text);
        text = "after!";
        EXPECT_EQ(path.keyText("DeviceID"), "before");
    });
}

TEST_P(CmpiObjectPathTest, IsWrittenAsAUri)
{
    inRequest([&] {
        CmpiObjectPath path = makeFan("a \"quoted\" back\\slash, and = more");
        path.setHost("server");
        EXPECT_EQ(path.str(), "//server/root/vnr:Fan.CreationClassName=\"Fan\","
                              "DeviceID=\"a \\\"quoted\\\" back\\\\slash, and = more\",SystemName=\"box\"");
        path.setHost("");
        EXPECT_EQ(makePath("Fan").str(), "/root/vnr:Fan");
    });
    expectClean();
}

TEST_P(CmpiObjectPathTest, WritesReferencesAsQuotedUris)
{
    inRequest([&] {
        CmpiObjectPath end = makePath("Fan");
        end.setHost("server");
        end.addKey("DeviceID", "1\"2");
        CmpiObjectPath link = makePath("Cooling");
        link.addKey("Antecedent", end);
        EXPECT_EQ(link.str(), "/root/vnr:Cooling.Antecedent="
                              "\"//server/root/vnr:Fan.DeviceID=\\\"1\\\\\\\"2\\\"\"");
    });
    expectClean();
}

TEST_P(CmpiObjectPathTest, OutlivesItsRequestAsACopy)
{
    std::optional<CmpiObjectPath> copy;
    inRequest([&] {
        CmpiObjectPath path = makeFan("1");
        copy = path;
        path.addKey("DeviceID", "2");
    });
    inRequest([&] {
        EXPECT_EQ(copy->keyText("DeviceID"), "1");
        EXPECT_TRUE(copy->isCopy());
        EXPECT_TRUE(*copy == makeFan("1"));
        EXPECT_EQ(copy->fingerprint(), makeFan("1").fingerprint());
    });
    EXPECT_EQ(broker.statistics().liveClones, 1);
    copy.reset();
    expectClean();
}

TEST_P(CmpiObjectPathTest, MovesWithoutAskingTheBroker)
{
    inRequest([&] {
        CmpiObjectPath path = makeFan("1");
        const CMPIObjectPath* raw = path.raw();
        CmpiObjectPath moved = std::move(path);
        EXPECT_EQ(moved.raw(), raw);
        EXPECT_EQ(path.raw(), nullptr);
        EXPECT_TRUE(path.empty());
        CmpiObjectPath other = makeFan("2");
        other = std::move(moved);
        EXPECT_EQ(other.raw(), raw);
        other = makePath("Fan");
        EXPECT_EQ(other.keyText("DeviceID"), "");
    });
    EXPECT_EQ(broker.statistics().of(broker.statistics().made, ObjectKind::ObjectPath), 3u);
    expectClean();
}

TEST_P(CmpiObjectPathTest, NeverReleasesWhatIsLent)
{
    inRequest([&] {
        PathObject& parameter = RequestScope::current(broker)->path("root/vnr", "Fan");
        parameter.addTextKey("DeviceID", "1");
        const CmpiObjectPath lent = CmpiObjectPath::lent(&parameter);
        const CmpiObjectPath copy = lent;
        EXPECT_FALSE(lent.isCopy());
        EXPECT_EQ(copy.keyText("DeviceID"), "1");
    });
    EXPECT_EQ(broker.statistics().lentReleases, 0u);
    EXPECT_EQ(broker.statistics().liveClones, 0);
}

TEST_P(CmpiObjectPathTest, GivesUpADetachedObject)
{
    inRequest([&] {
        CmpiObjectPath path = makeFan("1");
        const CMPIObjectPath* raw = path.detach();
        EXPECT_EQ(raw, path.raw());
        EXPECT_EQ(path.keyText("DeviceID"), "1");
    });
    expectClean(1);
}

TEST_P(CmpiObjectPathTest, LeavesAReturnedPathToTheServer)
{
    inRequest([&] {
        ResultObject result(broker, sink, ResultKind::ObjectPaths);
        const CmpiObjectPathResult paths(result.cmpi(), cmpi());
        paths.returnObjectPath(makeFan("1"));
        paths.returnDone();
    });
    EXPECT_THAT(sink.paths, ElementsAre(testing::HasSubstr("DeviceID=\"1\"")));
    EXPECT_TRUE(sink.isDone);
    const BrokerStatistics counted = broker.statistics();
    EXPECT_TRUE(counted.lifetimesClean());
    EXPECT_EQ(counted.of(counted.made, ObjectKind::ObjectPath), 1u);
}

TEST_P(CmpiObjectPathTest, RemakesACopyBeforeItIsLeftToTheServer)
{
    inRequest([&] {
        CmpiObjectPath link = makePath("Cooling");
        link.setHost("server");
        link.addKey("Antecedent", makeFan("1"));
        link.addKey("Dependent", makeFan("2"));
        const CmpiObjectPath kept = link;
        ResultObject result(broker, sink, ResultKind::ObjectPaths);
        CmpiObjectPathResult(result.cmpi(), cmpi()).returnObjectPath(kept);
        // Without a broker the copy is returned as it is, and released.
        CmpiObjectPathResult(result.cmpi()).returnObjectPath(kept);
    });
    EXPECT_THAT(sink.paths, testing::SizeIs(2));
    EXPECT_EQ(sink.paths[0], sink.paths[1]);
    EXPECT_EQ(broker.statistics().liveClones, 0);
    EXPECT_TRUE(broker.statistics().lifetimesClean());
}

TEST_P(CmpiObjectPathTest, RemakesNumericKeysWhateverTypeTheServerReadsThemAs)
{
    inRequest([&] {
        PathObject& parameter = RequestScope::current(broker)->path("root/vnr", "Numbered");
        ASSERT_TRUE(parameter.addNumericKey("Number", "513"));
        const CmpiObjectPath lent = CmpiObjectPath::lent(&parameter);
        const CmpiObjectPath made = remakeCmpiObjectPath(cmpi(), lent);
        EXPECT_TRUE(made == lent);
        EXPECT_EQ(made.fingerprint(), lent.fingerprint());
        EXPECT_EQ(made.str(), "/root/vnr:Numbered.Number=513");
    });
    expectClean();
}

TEST_P(CmpiObjectPathTest, EqualsWhatAClientSends)
{
    inRequest([&] {
        PathObject& end = RequestScope::current(broker)->path("ROOT/VNR", "fan");
        end.addTextKey("systemname", "box");
        end.addTextKey("DEVICEID", "1");
        end.addTextKey("CreationClassName", "Fan");
        const CmpiObjectPath asked = CmpiObjectPath::lent(&end);
        CmpiObjectPath ours = makeFan("1");
        ours.setHost("server");
        EXPECT_TRUE(asked == ours);
        EXPECT_EQ(asked.fingerprint(), ours.fingerprint());

        PathObject& link = RequestScope::current(broker)->path("root/vnr", "Cooling");
        CMPIValue value{};
        value.ref = &end;
        link.addKey("dependent", value, CMPI_ref);
        CmpiObjectPath ourLink = makePath("Cooling");
        ourLink.addKey("Dependent", ours);
        EXPECT_TRUE(CmpiObjectPath::lent(&link) == ourLink);
        EXPECT_EQ(CmpiObjectPath::lent(&link).fingerprint(), ourLink.fingerprint());
    });
    expectClean();
}

TEST_P(CmpiObjectPathTest, ReportsWhatTheBrokerRefuses)
{
    inRequest([&] {
        EXPECT_EQ(codeOf([&] { makePath("NoSuchClass"); }), isStandard() ? CMPI_RC_ERR_NOT_FOUND : CMPI_RC_OK);
        CmpiObjectPath path = makePath("Fan");
        EXPECT_EQ(codeOf([&] { path.addKey("Undeclared", "x"); }),
                  isStandard() ? CMPI_RC_ERR_INVALID_PARAMETER : CMPI_RC_OK);
    });
    EXPECT_TRUE(broker.statistics().lifetimesClean());
}

TEST_P(CmpiObjectPathTest, NeedsABroker)
{
    EXPECT_EQ(codeOf([] { makeCmpiObjectPath(nullptr, "root/vnr", "Fan"); }), CMPI_RC_ERR_INVALID_HANDLE);
    EXPECT_THAT(makeCmpiObjectPath(cmpi()).str(), IsEmpty());
}

void expectEmpty(CmpiObjectPath path)
{
    EXPECT_TRUE(path.empty());
    EXPECT_EQ(path.getClassName(), "");
    EXPECT_EQ(path.getNameSpace(), "");
    EXPECT_EQ(path.getHost(), "");
    EXPECT_EQ(path.keyText("DeviceID"), "");
    EXPECT_EQ(path.str(), "");
    const CmpiObjectPath copy = path;
    EXPECT_TRUE(copy == path);
    EXPECT_EQ(copy.fingerprint(), path.fingerprint());
    EXPECT_EQ(codeOf([&] { path.setHost("host"); }), CMPI_RC_ERR_INVALID_HANDLE);
    EXPECT_EQ(codeOf([&] { path.setNameSpace("ns"); }), CMPI_RC_ERR_INVALID_HANDLE);
    EXPECT_EQ(codeOf([&] { path.addKey("K", "text"); }), CMPI_RC_ERR_INVALID_HANDLE);
    EXPECT_EQ(codeOf([&] { path.addKey("K", copy); }), CMPI_RC_ERR_INVALID_HANDLE);
    EXPECT_EQ(path.detach(), nullptr);
}

TEST(EmptyObjectPath, CanBeAskedEverythingAndChangedByNothing)
{
    expectEmpty(makeCmpiObjectPath(nullptr));
    expectEmpty(CmpiObjectPath::lent(nullptr));
    expectEmpty(CmpiObjectPath::owned(nullptr));
}

TEST(EmptyObjectPath, IsNotReturned)
{
    const CmpiObjectPathResult nowhere(nullptr);
    EXPECT_EQ(codeOf([&] { nowhere.returnObjectPath(makeCmpiObjectPath(nullptr)); }), CMPI_RC_ERR_INVALID_HANDLE);
    EXPECT_EQ(codeOf([&] { nowhere.returnDone(); }), CMPI_RC_ERR_INVALID_HANDLE);
}

TEST(ObjectPathOfAnyServer, TakesMissesAndNullsForNothing)
{
    ScriptedPath path(nullptr, nullptr, nullptr);
    EXPECT_TRUE(path.lent().empty());
    for (CMPIrc miss : {CMPI_RC_ERR_NOT_FOUND, CMPI_RC_ERR_NO_SUCH_PROPERTY}) {
        path.failing = miss;
        EXPECT_EQ(path.lent().getHost(), "");
    }
    path.failing = CMPI_RC_ERR_ACCESS_DENIED;
    EXPECT_EQ(codeOf([&] { static_cast<void>(path.lent().getHost()); }), CMPI_RC_ERR_ACCESS_DENIED);
    EXPECT_EQ(codeOf([&] {
                  CmpiObjectPath copy = path.lent();
                  CmpiObjectPath again = copy;
              }),
              CMPI_RC_ERR_ACCESS_DENIED);
}

TEST(ObjectPathOfAnyServer, WritesEveryKindOfKey)
{
    ScriptedPath path("C", "ns", "h");
    path.boolean("B", true).signedNumber("S", CMPI_sint8, -5).unsignedNumber("U", CMPI_uint64, ~std::uint64_t{0});
    path.real("R", CMPI_real64, 0.5).chars("T", "x").key("N", CMPI_string, CMPI_nullValue, CMPIValue{});
    path.unsignedNumber("C16", CMPI_char16, 65).boolean("F", false).reference("Nothing", nullptr);
    EXPECT_EQ(path.lent().str(),
              "//h/ns:C.B=TRUE,S=-5,U=18446744073709551615,R=0.5,T=\"x\",C16=65,F=FALSE,Nothing=\"\"");
}

TEST(ObjectPathOfAnyServer, ReadsTextKeysOfBothForms)
{
    ScriptedPath path("C");
    path.text("A", "one").chars("B", "two").key("N", CMPI_string, CMPI_nullValue, CMPIValue{});
    EXPECT_EQ(path.lent().keyText("A"), "one");
    EXPECT_EQ(path.lent().keyText("B"), "two");
    EXPECT_EQ(path.lent().keyText("N"), "");
    EXPECT_EQ(path.lent().keyText("None"), "");
}

} // namespace
