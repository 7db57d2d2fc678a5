#include "broker/ProviderModule.h"

#include "BrokerFixture.h"

using namespace KDV::Host;
using testing::HasSubstr;

namespace {

const std::string folder = KDV_BUILD_DIR "/lib";

std::string failureOf(const std::string& location, const std::string& directory)
{
    try {
        ProviderModule module(location, directory);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "loaded";
}

} // namespace

struct Modules : EveryProfile {
    ProviderModule module{"BrokerTestProvider", folder};
};
INSTANTIATE_TEST_SUITE_P(Broker, Modules, testing::ValuesIn(allProfiles), profileOf);

TEST_P(Modules, RunAProvider)
{
    ASSERT_EQ(module.create(*broker, "Test").rc, CMPI_RC_OK);
    ASSERT_NE(module.instanceMI(), nullptr);
    EXPECT_NE(module.methodMI(), nullptr);
    EXPECT_EQ(module.associationMI(), nullptr);
    CollectingSink sink;
    ResultObject result(*broker, sink, ResultKind::Instances);
    CMPIInstanceMI* mi = module.instanceMI();
    status = mi->ft->enumerateInstances(mi, &scope->context(), &result, &scope->path("root/test", "Thing"), nullptr);
    EXPECT_EQ(status.rc, CMPI_RC_OK);
    ASSERT_EQ(sink.instances.size(), 2u);
    EXPECT_EQ(sink.instances[1].value("State"), "2");
    EXPECT_TRUE(sink.isDone);
    EXPECT_EQ(module.cleanup(*broker, true).rc, CMPI_RC_OK);
    EXPECT_EQ(module.instanceMI(), nullptr);
    scope.reset();
    EXPECT_EQ(broker->statistics().leftToScope, 0u);
}

TEST_P(Modules, TellWhyAFactoryRefused)
{
    Outcome outcome = module.create(*broker, "Refused");
    EXPECT_EQ(outcome.rc, CMPI_RC_ERR_NOT_FOUND);
    EXPECT_EQ(outcome.message, "unknown name");
    outcome = module.create(*broker, "Silent");
    EXPECT_EQ(outcome.rc, CMPI_RC_ERR_FAILED);
    EXPECT_THAT(outcome.message, HasSubstr("_Generic_Create_InstanceMI gave no provider for the name \"Silent\""));
    EXPECT_EQ(module.instanceMI(), nullptr);
    EXPECT_EQ(module.create(*broker, "Test").rc, CMPI_RC_OK) << "and may be asked again";
    module.cleanup(*broker, true);
}

TEST_P(Modules, KeepAProviderThatWantsToStay)
{
    ASSERT_EQ(module.create(*broker, "Stays").rc, CMPI_RC_OK);
    EXPECT_EQ(module.cleanup(*broker, false).rc, CMPI_RC_DO_NOT_UNLOAD);
    ASSERT_NE(module.methodMI(), nullptr);
    CollectingSink sink;
    ResultObject result(*broker, sink, ResultKind::Data);
    CMPIMethodMI* mi = module.methodMI();
    mi->ft->invokeMethod(mi, &scope->context(), &result, &scope->path("root/test", "Thing"), "Any", nullptr, nullptr);
    EXPECT_THAT(sink.values, testing::ElementsAre("2")) << "each kind was asked";
    EXPECT_EQ(module.cleanup(*broker, true).rc, CMPI_RC_OK);
    EXPECT_EQ(module.methodMI(), nullptr);
}

TEST(ProviderModule, SaysWhyALibraryCannotBeLoaded)
{
    EXPECT_THAT(failureOf("NoSuchProvider", folder), HasSubstr("libNoSuchProvider.so"));
    EXPECT_THAT(failureOf("relative.so", ""), HasSubstr("expected an absolute path"));
    EXPECT_THAT(failureOf(folder + "/libBrokerTestEmpty.so", ""), HasSubstr("has none of the factories"));
    EXPECT_EQ(failureOf(folder + "/libBrokerTestProvider.so", ""), "loaded");
}
