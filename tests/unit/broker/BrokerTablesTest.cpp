#include "BrokerFixture.h"

using namespace KDV::Host;

struct BrokerTables : EveryProfile {};
INSTANTIATE_TEST_SUITE_P(Broker, BrokerTables, testing::ValuesIn(allProfiles), profileOf);

TEST_P(BrokerTables, SaysWhatTheServerSaysOfItself)
{
    EXPECT_EQ(mb()->bft->brokerVersion, by(200, 0, 200));
    EXPECT_EQ(eft().ftVersion, by(200, 1, 200));
    EXPECT_EQ(mb()->xft->ftVersion, 200);
    EXPECT_STREQ(mb()->bft->brokerName, by("KDV object manager", "RequestHandler", "Pegasus"));
    EXPECT_EQ(mb()->bft->brokerCapabilities, by(0xc1dfu, 0x1bfu, 0x81ffu));
    EXPECT_EQ(mb()->mft != nullptr, by(true, false, false));
}

TEST_P(BrokerTables, LeavesOutWhatTheServerLeavesOut)
{
    EXPECT_EQ(eft().newCMPIError != nullptr, by(true, false, true));
    EXPECT_EQ(eft().getMessage2 != nullptr, by(true, false, true));
    EXPECT_EQ(eft().openMessageFile != nullptr, by(true, false, true));
    EXPECT_EQ(mb()->xft->joinThread != nullptr, by(true, false, true));
    EXPECT_EQ(mb()->xft->signalCondition != nullptr, by(true, false, true));
    EXPECT_EQ(mb()->xft->threadSleep != nullptr, by(true, false, true));
    const CMPIObjectPathFT& paths = *path()->ft;
    EXPECT_EQ(paths.getClassQualifier != nullptr, by(true, false, false));
    EXPECT_EQ(paths.getPropertyQualifier != nullptr, by(true, true, false));
    EXPECT_EQ(paths.getParameterQualifier != nullptr, by(true, false, false));
    EXPECT_EQ(instance()->ft->setPropertyWithOrigin != nullptr, by(true, false, true));
    CollectingSink sink;
    ResultObject result(*broker, sink);
    EXPECT_EQ(result.ft->returnError != nullptr, by(true, false, true));
    EXPECT_EQ(result.ft->clone != nullptr, by(true, true, false));
    EXPECT_EQ(scope->context().ft->clone != nullptr, by(true, true, false));
}

TEST_P(BrokerTables, FillsEverySlotThatVersionOneHas)
{
    const auto* slots = reinterpret_cast<const void* const*>(&mb()->bft->brokerName);
    for (int slot = 0; slot < 19; ++slot)
        EXPECT_NE(slots[slot], nullptr) << "broker table, slot " << slot + 2;
    slots = reinterpret_cast<const void* const*>(&eft().newInstance);
    for (int slot = 0; slot < 16; ++slot)
        EXPECT_NE(slots[slot], nullptr) << "factory table, slot " << slot + 1;
    EXPECT_EQ(path()->ft->ftVersion, by(200, 1, 200));
}

TEST_P(BrokerTables, AnswersIsA)
{
    CMPIObjectPath* sub = path("SubThing");
    EXPECT_TRUE(eft().classPathIsA(mb(), sub, "subthing", &status));
    EXPECT_TRUE(eft().classPathIsA(mb(), sub, "THING", &status));
    EXPECT_FALSE(eft().classPathIsA(mb(), path(), "SubThing", &status));
    EXPECT_FALSE(eft().classPathIsA(mb(), sub, "Unknown", &status));
    EXPECT_EQ(status.rc, CMPI_RC_OK);
    EXPECT_FALSE(eft().classPathIsA(mb(), sub, nullptr, &status));
    EXPECT_EQ(status.rc, by(CMPI_RC_ERR_INVALID_PARAMETER, CMPI_RC_OK, CMPI_RC_ERR_INVALID_PARAMETER));
}

TEST_P(BrokerTables, FillsMessagesWithTheirInserts)
{
    CMPIString* text = eft().getMessage(mb(), "id", "$0 of $1, $2 and $3", &status, 3, CMPI_uint16, 7, CMPI_chars,
                                        "nine", CMPI_boolean, 1);
    ASSERT_NE(text, nullptr);
    EXPECT_STREQ(text->ft->getCharPtr(text, nullptr),
                 by("7 of nine, true and $3", "$0 of $1, $2 and $3", "7 of nine, true and $3"));
    EXPECT_EQ(status.rc, by(CMPI_RC_OK, CMPI_RC_ERR_NOT_SUPPORTED, CMPI_RC_OK));
}

TEST_P(BrokerTables, WritesDatesBothWays)
{
    CMPIDateTime* date = eft().newDateTimeFromBinary(mb(), 86400000000ull * 365 + 1500000, 1, &status);
    ASSERT_NE(date, nullptr);
    CMPIString* text = date->ft->getStringFormat(date, &status);
    EXPECT_STREQ(text->ft->getCharPtr(text, nullptr), "00000365000001.500000:000");
    EXPECT_TRUE(date->ft->isInterval(date, &status));
    EXPECT_EQ(date->ft->getBinaryFormat(date, &status), 86400000000ull * 365 + 1500000);
    date = eft().newDateTimeFromChars(mb(), "20240229010203.000004+060", &status);
    ASSERT_NE(date, nullptr);
    EXPECT_EQ(date->ft->getBinaryFormat(date, &status), 1709164923000004ull);
    EXPECT_EQ(eft().newDateTimeFromChars(mb(), "2024", &status), nullptr);
    EXPECT_EQ(status.rc, CMPI_RC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(eft().newDateTimeFromChars(mb(), "2024022901020x.000004+060", &status) != nullptr,
              by(false, true, false));
    const CMPIUint64 now = date->ft->getBinaryFormat(eft().newDateTime(mb(), &status), nullptr);
    EXPECT_GT(now, 1700000000000000ull);
}

TEST_P(BrokerTables, RefusesNullTextsAsTheServerDoes)
{
    CMPIString* text = eft().newString(mb(), nullptr, &status);
    EXPECT_EQ(text != nullptr, by(false, true, false));
    if (text) {
        EXPECT_EQ(text->ft->getCharPtr(text, nullptr), nullptr);
    } else {
        EXPECT_EQ(status.rc, CMPI_RC_ERR_INVALID_PARAMETER);
    }
}

TEST_P(BrokerTables, TellsTheKindsOfObjectsApart)
{
    EXPECT_TRUE(eft().isOfType(mb(), path(), "CMPIObjectPath", &status));
    EXPECT_FALSE(eft().isOfType(mb(), path(), "CMPIInstance", &status));
    CMPIString* type = eft().getType(mb(), instance(), &status);
    EXPECT_STREQ(type->ft->getCharPtr(type, nullptr), "CMPIInstance");
}

TEST_P(BrokerTables, LogsOnlyWhereTheServerDoes)
{
    struct Lines : LogSink {
        void message(CMPISeverity, std::string_view id, std::string_view text) override
        {
            all += std::string(id) + ":" + std::string(text);
        }
        void trace(CMPILevel, std::string_view, std::string_view) override {}
        std::string all;
    } lines;
    broker->setLogSink(&lines);
    status = eft().logMessage(mb(), CMPI_SEV_ERROR, "id", "text", nullptr);
    EXPECT_EQ(status.rc, by(CMPI_RC_OK, CMPI_RC_ERR_NOT_SUPPORTED, CMPI_RC_OK));
    EXPECT_EQ(lines.all, by("id:text", "", "id:text"));
}

TEST(StandardBroker, ReadsQualifiers)
{
    BrokerFixture f(Profile::Standard);
    CMPIObjectPath* path = f.path();
    EXPECT_TRUE(path->ft->getPropertyQualifier(path, "name", "KEY", &f.status).value.boolean);
    const CMPIData text = path->ft->getMethodQualifier(path, "Work", "Description", &f.status);
    EXPECT_EQ(textOf(text.value), "does it");
    EXPECT_EQ(textOf(path->ft->getParameterQualifier(path, "Work", "How", "Description", &f.status).value), "how");
    path->ft->getClassQualifier(path, "Version", &f.status);
    EXPECT_EQ(f.status.rc, CMPI_RC_ERR_NOT_FOUND);
}

TEST(StandardBroker, BuildsErrorsAndCopiesThem)
{
    BrokerFixture f(Profile::Standard);
    CMPIError* error = f.eft().newCMPIError(f.mb(), "owner", "ID1", "broken", ErrorSevHigh, Disk_Failure,
                                            CMPI_RC_ERR_FAILED, &f.status);
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->ft->setErrorType(error, HardwareError).rc, CMPI_RC_OK);
    EXPECT_EQ(error->ft->setOtherErrorType(error, "odd").rc, CMPI_RC_OK);
    CMPIError* clone = error->ft->clone(error, &f.status);
    error->ft->release(error);
    EXPECT_EQ(clone->ft->getErrorType(clone, nullptr), HardwareError);
    EXPECT_EQ(clone->ft->getProbableCause(clone, nullptr), Disk_Failure);
    CMPIString* message = clone->ft->getMessage(clone, nullptr);
    EXPECT_STREQ(message->ft->getCharPtr(message, nullptr), "broken");
    EXPECT_EQ(clone->ft->getErrorSource(clone, nullptr), nullptr);
    clone->ft->release(clone);
    EXPECT_EQ(f.broker->statistics().liveClones, 0);
}

TEST(StandardBroker, FreesWhatWasMadeAfterAMark)
{
    BrokerFixture f(Profile::Standard);
    CMPIString* before = f.string("before");
    CMPIGcStat* mark = f.mb()->mft->mark(f.mb(), &f.status);
    f.string("after");
    EXPECT_EQ(f.mb()->mft->release(f.mb(), mark).rc, CMPI_RC_OK);
    EXPECT_EQ(f.broker->statistics().leftToScope, 1u);
    EXPECT_STREQ(before->ft->getCharPtr(before, nullptr), "before");
    auto* bytes = static_cast<char*>(f.mb()->mft->cmpiCalloc(f.mb(), 4, 4));
    EXPECT_EQ(bytes[15], 0);
    bytes = static_cast<char*>(f.mb()->mft->cmpiRealloc(f.mb(), bytes, 64));
    f.mb()->mft->cmpiFree(f.mb(), bytes);
    f.mb()->mft->cmpiStrDup(f.mb(), "freed with the broker");
    f.mb()->mft->freeString(f.mb(), before);
    EXPECT_TRUE(f.broker->statistics().lifetimesClean());
}
