#include "common/LoggedProvider.h"

#include "broker/Broker.h"
#include "broker/CollectingSink.h"
#include "broker/RequestScope.h"
#include "broker/ResultObject.h"
#include "cmpicpp/CmpiStatus.h"
#include "logger/LogSettings.h"

#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace CmpiCpp;
using testing::ElementsAre;
using testing::IsEmpty;
namespace KDV {
namespace {

const std::string nameSpace = "root/vnr";

// Notes what reaches it; ends as it is told to.
class Noting : public CmpiInstanceProvider,
               public CmpiAssociationProvider,
               public CmpiIndicationProvider,
               public CmpiMethodProvider {
public:
    std::vector<std::string> calls;
    int code = 0;
    bool throwsException = false;

    void note(const std::string& call)
    {
        calls.push_back(call);
        if (code != 0) throw CmpiStatus(code, "told to");
        if (throwsException) throw std::runtime_error("told to");
    }
    bool cleanup(const CmpiContext&, bool terminating) override
    {
        note("cleanup");
        return terminating;
    }
    void enumInstanceNames(const CmpiContext&, const CmpiObjectPath&, const CmpiObjectPathResult&) override
    {
        note("enumInstanceNames");
    }
    void enumInstances(const CmpiContext&, const CmpiObjectPath&, const char* const*,
                       const CmpiInstanceResult&) override
    {
        note("enumInstances");
    }
    void getInstance(const CmpiContext&, const CmpiObjectPath&, const char* const*, const CmpiInstanceResult&) override
    {
        note("getInstance");
    }
    void createInstance(const CmpiContext&, const CmpiObjectPath&, const CMPIInstance*,
                        const CmpiObjectPathResult&) override
    {
        note("createInstance");
    }
    void modifyInstance(const CmpiContext&, const CmpiObjectPath&, const CMPIInstance*, const char* const*) override
    {
        note("modifyInstance");
    }
    void deleteInstance(const CmpiContext&, const CmpiObjectPath&) override { note("deleteInstance"); }
    void execQuery(const CmpiContext&, const CmpiObjectPath&, const char*, const char*,
                   const CmpiInstanceResult&) override
    {
        note("execQuery");
    }
    void associators(const CmpiContext&, const CmpiObjectPath&, const CmpiName& association, const CmpiName& result,
                     const CmpiName& role, const CmpiName& resultRole, const char* const*,
                     const CmpiInstanceResult&) override
    {
        note(std::string("associators ") + association.c_str() + result.c_str() + role.c_str() + resultRole.c_str());
    }
    void associatorNames(const CmpiContext&, const CmpiObjectPath&, const CmpiName& association, const CmpiName& result,
                         const CmpiName& role, const CmpiName& resultRole, const CmpiObjectPathResult&) override
    {
        note(std::string("associatorNames ") + association.c_str() + result.c_str() + role.c_str() +
             resultRole.c_str());
    }
    void references(const CmpiContext&, const CmpiObjectPath&, const CmpiName& result, const CmpiName& role,
                    const char* const*, const CmpiInstanceResult&) override
    {
        note(std::string("references ") + result.c_str() + role.c_str());
    }
    void referenceNames(const CmpiContext&, const CmpiObjectPath&, const CmpiName& result, const CmpiName& role,
                        const CmpiObjectPathResult&) override
    {
        note(std::string("referenceNames ") + result.c_str() + role.c_str());
    }
    void authorizeFilter(const CmpiContext&, const CmpiSelectExp&, const CmpiName&, const CmpiObjectPath&,
                         const char*) override
    {
        note("authorizeFilter");
    }
    void mustPoll(const CmpiContext&) override { note("mustPoll"); }
    void activateFilter(const CmpiContext&, const CmpiSelectExp&, const CmpiName&, const CmpiObjectPath&,
                        bool first) override
    {
        note(first ? "activateFilter first" : "activateFilter");
    }
    void deactivateFilter(const CmpiContext&, const CmpiSelectExp&, const CmpiName&, const CmpiObjectPath&,
                          bool last) override
    {
        note(last ? "deactivateFilter last" : "deactivateFilter");
    }
    void enableIndications(const CmpiContext&) override { note("enableIndications"); }
    void disableIndications(const CmpiContext&) override { note("disableIndications"); }
    void invokeMethod(const CmpiContext&, const CmpiObjectPath&, const CmpiName& method, const CmpiArgs&,
                      const CmpiMethodResult&) override
    {
        note(std::string("invokeMethod ") + method.c_str());
    }
};

struct Logged : testing::Test {
    Logged()
    {
        repository.loadText("class T_Thing { [Key] string Name; };", nameSpace, "thing.mof");
        const Logger first("test"); // the settings of the process come with the first one
        setLogLevel(LogLevel::info);
        setLogSink([this](LogLevel level, std::string_view, std::string_view text) {
            lines.push_back((level == LogLevel::error ? "E " : "") + std::string(text));
        });
    }
    ~Logged() override
    {
        setLogSink({});
        setLogLevel(LogLevel::error);
    }

    CMPIrc enumerate()
    {
        Host::RequestScope scope(broker, nameSpace);
        Host::CollectingSink sink;
        Host::ResultObject result(broker, sink, Host::ResultKind::Instances);
        CMPIInstanceMI* const mi = logged.getInstanceMI();
        return mi->ft
            ->enumerateInstances(mi, &scope.context(), result.cmpi(), &scope.path(nameSpace, "T_Thing"), nullptr)
            .rc;
    }

    Host::ClassRepository repository;
    Host::Broker broker{repository, {Host::Profile::Standard, true}};
    Noting noting;
    LoggedProvider logged{Logger("test"), &noting};
    std::vector<std::string> lines;
};

TEST_F(Logged, ForwardsEveryOperationOfTheFourInterfaces)
{
    const CmpiContext context(nullptr);
    const CmpiInstanceResult instances(nullptr);
    const CmpiObjectPathResult paths(nullptr);
    const CmpiSelectExp filter(nullptr);
    Host::RequestScope scope(broker, nameSpace);
    const CmpiObjectPath path = CmpiObjectPath::lent(&scope.path(nameSpace, "T_Thing"));
    logged.enumInstanceNames(context, path, paths);
    logged.enumInstances(context, path, nullptr, instances);
    logged.getInstance(context, path, nullptr, instances);
    logged.createInstance(context, path, nullptr, paths);
    logged.modifyInstance(context, path, nullptr, nullptr);
    logged.deleteInstance(context, path);
    logged.execQuery(context, path, "", "", instances);
    logged.associators(context, path, "a", "b", "c", "d", nullptr, instances);
    logged.associatorNames(context, path, "a", "b", "c", "d", paths);
    logged.references(context, path, "b", "c", nullptr, instances);
    logged.referenceNames(context, path, "b", "c", paths);
    logged.authorizeFilter(context, filter, "T_Thing", path, "owner");
    logged.mustPoll(context);
    logged.activateFilter(context, filter, "T_Thing", path, true);
    logged.activateFilter(context, filter, nullptr, path, false);
    logged.deactivateFilter(context, filter, "T_Thing", path, true);
    logged.enableIndications(context);
    logged.disableIndications(context);
    logged.invokeMethod(context, path, "PerformWork", CmpiArgs(nullptr, nullptr), CmpiMethodResult(nullptr));
    EXPECT_FALSE(logged.cleanup(context, false));
    EXPECT_TRUE(logged.cleanup(context, true));
    EXPECT_TRUE(logged.unloadOK(context));
    EXPECT_THAT(noting.calls,
                ElementsAre("enumInstanceNames", "enumInstances", "getInstance", "createInstance", "modifyInstance",
                            "deleteInstance", "execQuery", "associators abcd", "associatorNames abcd", "references bc",
                            "referenceNames bc", "authorizeFilter", "mustPoll", "activateFilter first",
                            "activateFilter", "deactivateFilter last", "enableIndications", "disableIndications",
                            "invokeMethod PerformWork", "cleanup", "cleanup"));
    EXPECT_EQ(lines.size(), 2 * 22u); // a line as each begins and one as it ends
}

TEST_F(Logged, LogsWhatWasAskedAndHowItEnded)
{
    EXPECT_EQ(enumerate(), CMPI_RC_OK);
    noting.code = CMPI_RC_ERR_NOT_FOUND;
    EXPECT_EQ(enumerate(), CMPI_RC_ERR_NOT_FOUND);
    noting.code = 0;
    noting.throwsException = true;
    EXPECT_EQ(enumerate(), CMPI_RC_ERR_FAILED);
    ASSERT_EQ(lines.size(), 6u);
    for (const std::size_t i : {0u, 2u, 4u})
        EXPECT_THAT(lines[i], testing::EndsWith("root/vnr:T_Thing"));
    EXPECT_EQ(lines[1], "enumInstances() done");
    EXPECT_EQ(lines[3], "enumInstances() ends with code 6: told to");
    EXPECT_EQ(lines[5], "enumInstances() ends with an exception: told to");
}

TEST_F(Logged, AsksAPathForNoTextWhileInfoLinesAreOff)
{
    setLogLevel(LogLevel::error);
    broker.resetStatistics();
    EXPECT_EQ(enumerate(), CMPI_RC_OK);
    EXPECT_THAT(lines, IsEmpty());
    const Host::BrokerStatistics statistics = broker.statistics();
    EXPECT_EQ(statistics.of(statistics.made, Host::ObjectKind::String), 0u);
}

class MethodsOnly : public CmpiMethodProvider {};

TEST_F(Logged, RefusesWhatTheOtherDoesNotServe)
{
    MethodsOnly methods;
    LoggedProvider poor(Logger("test"), &methods);
    Host::RequestScope scope(broker, nameSpace);
    const CmpiObjectPath path = CmpiObjectPath::lent(&scope.path(nameSpace, "T_Thing"));
    const auto refused = [](auto call) {
        try {
            call();
        } catch (const CmpiStatus& status) {
            return static_cast<int>(status.code());
        }
        return -1;
    };
    const CmpiContext context(nullptr);
    EXPECT_EQ(refused([&] { poor.deleteInstance(context, path); }), CMPI_RC_ERR_NOT_SUPPORTED);
    EXPECT_EQ(refused([&] { poor.mustPoll(context); }), CMPI_RC_ERR_NOT_SUPPORTED);
    EXPECT_EQ(refused([&] { poor.referenceNames(context, path, "", "", CmpiObjectPathResult(nullptr)); }),
              CMPI_RC_ERR_NOT_SUPPORTED);
    EXPECT_THROW(LoggedProvider(Logger("test"), nullptr), std::invalid_argument);
}

} // namespace
} // namespace KDV
