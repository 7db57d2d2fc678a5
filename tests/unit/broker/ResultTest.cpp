#include "BrokerFixture.h"

using namespace KDV::Host;
using testing::ElementsAre;

struct Results : EveryProfile {
    CollectingSink sink;
};
INSTANTIATE_TEST_SUITE_P(Broker, Results, testing::ValuesIn(allProfiles), profileOf);

TEST_P(Results, ReachTheSinkAtOnce)
{
    ResultObject result(*broker, sink, ResultKind::Instances);
    CMPIInstance* i = instance();
    for (int round = 1; round <= 3; ++round) {
        setNumber(i, "State", static_cast<CMPIUint16>(round));
        EXPECT_EQ(result.ft->returnInstance(&result, i).rc, CMPI_RC_OK);
        ASSERT_EQ(sink.instances.size(), static_cast<std::size_t>(round));
        EXPECT_EQ(sink.instances.back().value("State"), std::to_string(round));
    }
    EXPECT_FALSE(sink.isDone);
    EXPECT_EQ(result.ft->returnDone(&result).rc, CMPI_RC_OK);
    EXPECT_TRUE(sink.isDone);
    EXPECT_EQ(result.returnedCount(), 3u);
}

TEST_P(Results, OfAnotherKindAreRefusedByStrictServers)
{
    ResultObject result(*broker, sink, ResultKind::ObjectPaths);
    EXPECT_EQ(result.ft->returnInstance(&result, instance()).rc,
              by(CMPI_RC_ERR_NOT_SUPPORTED, CMPI_RC_OK, CMPI_RC_ERR_NOT_SUPPORTED));
    EXPECT_EQ(result.ft->returnObjectPath(&result, path()).rc, CMPI_RC_OK);
    EXPECT_THAT(sink.paths, ElementsAre("root/test:Thing"));
}

TEST_P(Results, CarryData)
{
    ResultObject result(*broker, sink, ResultKind::Data);
    CMPIValue value{};
    value.uint32 = 12;
    EXPECT_EQ(result.ft->returnData(&result, &value, CMPI_uint32).rc, CMPI_RC_OK);
    EXPECT_EQ(result.ft->returnData(&result, reinterpret_cast<const CMPIValue*>("text"), CMPI_chars).rc, CMPI_RC_OK);
    value.ref = path();
    EXPECT_EQ(result.ft->returnData(&result, &value, CMPI_ref).rc, by(CMPI_RC_OK, CMPI_RC_ERR_FAILED, CMPI_RC_OK));
    EXPECT_EQ(result.ft->returnData(&result, nullptr, CMPI_uint32).rc,
              by(CMPI_RC_OK, CMPI_RC_OK, CMPI_RC_ERR_INVALID_PARAMETER));
    EXPECT_EQ(sink.values[0], "12");
    EXPECT_EQ(sink.values[1], "\"text\"");
}

TEST_P(Results, StopWhenTheReceiverIsGone)
{
    struct OneOnly : CollectingSink {
        bool instance(const InstanceObject& given) override
        {
            CollectingSink::instance(given);
            return false;
        }
    } one;
    ResultObject result(*broker, one, ResultKind::Instances);
    EXPECT_EQ(result.ft->returnInstance(&result, instance()).rc, CMPI_RC_ERR_FAILED);
    EXPECT_EQ(result.ft->returnInstance(&result, instance()).rc, CMPI_RC_ERR_FAILED);
    EXPECT_TRUE(result.stopped());
    EXPECT_EQ(one.instances.size(), 1u);
}

TEST_P(Results, DoNotLetExceptionsOfASinkThrough)
{
    struct Broken : CollectingSink {
        bool objectPath(const PathObject&) override { throw std::runtime_error("full"); }
    } broken;
    ResultObject result(*broker, broken);
    EXPECT_EQ(result.ft->returnObjectPath(&result, path()).rc, CMPI_RC_ERR_FAILED);
}

TEST_P(Results, AreSeenByARecorder)
{
    CollectingSink recorder;
    broker->setRecorder(&recorder);
    ResultObject result(*broker, sink);
    CMPIInstance* i = instance();
    setText(i, "Label", "seen");
    result.ft->returnInstance(&result, i);
    result.ft->returnObjectPath(&result, path());
    ASSERT_EQ(recorder.instances.size(), 1u);
    EXPECT_EQ(recorder.instances[0].value("Label"), "\"seen\"");
    EXPECT_EQ(recorder.paths.size(), 1u);
}

TEST_P(Results, AreNotTheProvidersToRelease)
{
    ResultObject result(*broker, sink);
    EXPECT_EQ(result.ft->release != nullptr, by(true, true, false));
    if (!result.ft->release) return;
    EXPECT_EQ(result.ft->release(&result).rc, CMPI_RC_ERR_FAILED);
    EXPECT_EQ(broker->statistics().lentReleases, 1u);
}
