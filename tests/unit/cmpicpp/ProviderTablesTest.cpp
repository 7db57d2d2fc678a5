// The C tables of a provider: what a server passes arrives, and no exception leaves.
#include "BrokerTest.h"
#include "TalkingProvider.h"
#include "cmpicpp/CmpiAssociationProvider.h"
#include "cmpicpp/CmpiIndicationProvider.h"
#include "cmpicpp/CmpiInstanceProvider.h"
#include "cmpicpp/CmpiMBService.h"
#include "cmpicpp/CmpiMethodProvider.h"

#include <functional>
#include <stdexcept>
#include <vector>

using namespace CmpiCpp;
using namespace KDV::Host;
using testing::ElementsAre;

namespace {

class ProviderTablesTest : public BrokerTest {
protected:
    ProviderTablesTest()
    {
        provider.setBroker(cmpi());
        _path = &_scope.path("root/vnr", "Fan");
        _context = &_scope.context();
    }

    struct Slot {
        const char* name;
        std::function<CMPIStatus(const CMPIResult*)> call;
    };

    // Every function slot of every table, called as a server does; with nothing where a server may pass nothing.
    std::vector<Slot> slots(bool withArguments)
    {
        const CMPIObjectPath* path = withArguments ? _path : nullptr;
        const char* const text = withArguments ? "A" : nullptr;
        const char** list = withArguments ? _list : nullptr;
        const CMPIContext* context = withArguments ? _context : nullptr;
        CMPIInstanceMI* i = provider.getInstanceMI();
        CMPIAssociationMI* a = provider.getAssociationMI();
        CMPIIndicationMI* n = provider.getIndicationMI();
        CMPIMethodMI* m = provider.getMethodMI();
        const CMPIBoolean flag = withArguments ? 1 : 0;
        return {
            {"enumerateInstanceNames",
             [=](const CMPIResult* r) { return i->ft->enumerateInstanceNames(i, context, r, path); }},
            {"enumerateInstances",
             [=](const CMPIResult* r) { return i->ft->enumerateInstances(i, context, r, path, list); }},
            {"getInstance", [=](const CMPIResult* r) { return i->ft->getInstance(i, context, r, path, list); }},
            {"createInstance",
             [=](const CMPIResult* r) { return i->ft->createInstance(i, context, r, path, nullptr); }},
            {"modifyInstance",
             [=](const CMPIResult* r) { return i->ft->modifyInstance(i, context, r, path, nullptr, list); }},
            {"deleteInstance", [=](const CMPIResult* r) { return i->ft->deleteInstance(i, context, r, path); }},
            {"execQuery", [=](const CMPIResult* r) { return i->ft->execQuery(i, context, r, path, text, text); }},
            {"associators",
             [=](const CMPIResult* r) {
                 return a->ft->associators(a, context, r, path, text, text, text, text, list);
             }},
            {"associatorNames",
             [=](const CMPIResult* r) { return a->ft->associatorNames(a, context, r, path, text, text, text, text); }},
            {"references",
             [=](const CMPIResult* r) { return a->ft->references(a, context, r, path, text, text, list); }},
            {"referenceNames",
             [=](const CMPIResult* r) { return a->ft->referenceNames(a, context, r, path, text, text); }},
            {"invokeMethod",
             [=](const CMPIResult* r) { return m->ft->invokeMethod(m, context, r, path, text, nullptr, nullptr); }},
            {"authorizeFilter",
             [=](const CMPIResult*) { return n->ft->authorizeFilter(n, context, nullptr, text, path, text); }},
            {"mustPoll",
             [=](const CMPIResult*) { return n->ft->mustPoll(n, context, nullptr, nullptr, nullptr, nullptr); }},
            {"activateFilter",
             [=](const CMPIResult*) { return n->ft->activateFilter(n, context, nullptr, text, path, flag); }},
            {"deActivateFilter",
             [=](const CMPIResult*) { return n->ft->deActivateFilter(n, context, nullptr, text, path, flag); }},
            {"enableIndications", [=](const CMPIResult*) { return n->ft->enableIndications(n, context); }},
            {"disableIndications", [=](const CMPIResult*) { return n->ft->disableIndications(n, context); }},
            {"cleanup", [=](const CMPIResult*) { return i->ft->cleanup(i, context, flag); }},
            {"cleanup", [=](const CMPIResult*) { return a->ft->cleanup(a, context, flag); }},
            {"cleanup", [=](const CMPIResult*) { return n->ft->cleanup(n, context, flag); }},
            {"cleanup", [=](const CMPIResult*) { return m->ft->cleanup(m, context, flag); }},
        };
    }

    static std::string textOfStatus(const CMPIStatus& status)
    {
        return status.msg ? std::string(StringObject::of(status.msg).text()) : "no text";
    }

    TalkingProvider provider;

private:
    RequestScope _scope{broker, "root/vnr"};
    PathObject* _path = nullptr;
    ContextObject* _context = nullptr;
    const char* _list[3] = {"One", "Two", nullptr};
};
KDV_FOR_EACH_PROFILE(ProviderTablesTest);

TEST_P(ProviderTablesTest, PassEverythingOn)
{
    for (const Slot& slot : slots(true)) {
        ResultObject result(broker, sink);
        EXPECT_EQ(slot.call(result.cmpi()).rc, CMPI_RC_OK) << slot.name;
    }
    EXPECT_THAT(provider.calls,
                ElementsAre("enumInstanceNames Fan", "enumInstances Fan {One Two }", "getInstance Fan {One Two }",
                            "createInstance Fan", "modifyInstance Fan {One Two }", "deleteInstance Fan",
                            "execQuery Fan A A", "associators Fan A,A,A,A {One Two }", "associatorNames Fan A,A,A,A",
                            "references Fan ,A,A, {One Two }", "referenceNames Fan ,A,A,", "invokeMethod Fan A",
                            "authorizeFilter none A Fan A", "mustPoll", "activateFilter none A Fan first",
                            "deactivateFilter none A Fan last", "enableIndications", "disableIndications",
                            "cleanup terminating", "unloadOK", "cleanup terminating", "unloadOK", "cleanup terminating",
                            "unloadOK", "cleanup terminating", "unloadOK"));
    EXPECT_EQ(sink.values, std::vector<std::string>{"17"});
}

TEST_P(ProviderTablesTest, TolerateNothingForEveryArgument)
{
    for (const Slot& slot : slots(false)) {
        ResultObject result(broker, sink);
        EXPECT_EQ(slot.call(result.cmpi()).rc, CMPI_RC_OK) << slot.name;
    }
    EXPECT_EQ(provider.calls[0], "enumInstanceNames ");
    EXPECT_EQ(provider.calls[7], "associators  ,,, all");
    EXPECT_EQ(provider.calls[12], "authorizeFilter none   ");
    EXPECT_EQ(provider.calls[18], "cleanup");
}

TEST_P(ProviderTablesTest, EndAnswersOnceAndOnlyWhenTheyWentWell)
{
    std::size_t number = 0;
    for (const Slot& slot : slots(true)) {
        ResultObject result(broker, sink);
        slot.call(result.cmpi());
        const bool answers = number < 12 && number != 4 && number != 5; // all but modify, delete and the indications
        EXPECT_EQ(result.isDone(), answers) << slot.name;
        ++number;
    }
    provider.then = [] { throw CmpiStatus(CMPI_RC_ERR_NOT_FOUND); };
    for (const Slot& slot : slots(true)) {
        ResultObject result(broker, sink);
        slot.call(result.cmpi());
        EXPECT_FALSE(result.isDone()) << slot.name;
    }
}

TEST_P(ProviderTablesTest, TurnACmpiStatusIntoItsCodeAndText)
{
    provider.then = [] { throw CmpiStatus(CMPI_RC_ERR_NOT_FOUND, "no such drive"); };
    for (const Slot& slot : slots(true)) {
        ResultObject result(broker, sink);
        const CMPIStatus status = slot.call(result.cmpi());
        EXPECT_EQ(status.rc, CMPI_RC_ERR_NOT_FOUND) << slot.name;
        EXPECT_EQ(textOfStatus(status), "no such drive") << slot.name;
    }
}

TEST_P(ProviderTablesTest, TurnStandardExceptionsIntoCodeOneAndTheirText)
{
    provider.then = [] { throw std::runtime_error("out of paper"); };
    for (const Slot& slot : slots(true)) {
        ResultObject result(broker, sink);
        const CMPIStatus status = slot.call(result.cmpi());
        EXPECT_EQ(status.rc, CMPI_RC_ERR_FAILED) << slot.name;
        EXPECT_EQ(textOfStatus(status), "out of paper") << slot.name;
    }
}

TEST_P(ProviderTablesTest, TurnAnythingElseIntoCodeOne)
{
    provider.then = [] { throw 42; };
    for (const Slot& slot : slots(true)) {
        ResultObject result(broker, sink);
        EXPECT_EQ(slot.call(result.cmpi()).rc, CMPI_RC_ERR_FAILED) << slot.name;
    }
}

TEST_P(ProviderTablesTest, NeverReportSuccessForAnException)
{
    provider.then = [] { throw CmpiStatus(CMPI_RC_OK, "odd"); };
    for (const Slot& slot : slots(true)) {
        ResultObject result(broker, sink);
        EXPECT_EQ(slot.call(result.cmpi()).rc, CMPI_RC_ERR_FAILED) << slot.name;
    }
}

TEST_P(ProviderTablesTest, GiveNoTextWhereTheBrokerGivesNone)
{
    provider.then = [&] {
        broker.failAfter(1, CMPI_RC_ERR_FAILED);
        throw CmpiStatus(CMPI_RC_ERR_NOT_FOUND, "lost");
    };
    for (const Slot& slot : slots(true)) {
        ResultObject result(broker, sink);
        const CMPIStatus status = slot.call(result.cmpi());
        EXPECT_EQ(status.rc, CMPI_RC_ERR_NOT_FOUND) << slot.name;
        EXPECT_EQ(status.msg, nullptr) << slot.name;
    }
    provider.setBroker(nullptr);
    provider.then = [] { throw CmpiStatus(CMPI_RC_ERR_NOT_FOUND, "lost"); };
    ResultObject result(broker, sink);
    EXPECT_EQ(slots(true)[0].call(result.cmpi()).msg, nullptr);
}

TEST_P(ProviderTablesTest, AskBothQuestionsBeforeAProviderMayGo)
{
    CMPIMethodMI* mi = provider.getMethodMI();
    EXPECT_EQ(mi->ft->cleanup(mi, nullptr, 1).rc, CMPI_RC_OK);
    provider.unloadAnswer = false;
    EXPECT_EQ(mi->ft->cleanup(mi, nullptr, 1).rc, CMPI_RC_DO_NOT_UNLOAD);
    provider.unloadAnswer = true;
    provider.cleanupAnswer = false;
    provider.calls.clear();
    EXPECT_EQ(mi->ft->cleanup(mi, nullptr, 0).rc, CMPI_RC_DO_NOT_UNLOAD);
    EXPECT_THAT(provider.calls, ElementsAre("cleanup"));
}

TEST_P(ProviderTablesTest, FailWithoutAResultToAnswerTo)
{
    EXPECT_EQ(slots(true)[0].call(nullptr).rc, CMPI_RC_ERR_INVALID_HANDLE);
    EXPECT_EQ(slots(true)[1].call(nullptr).rc, CMPI_RC_ERR_INVALID_HANDLE);
    EXPECT_EQ(slots(true)[11].call(nullptr).rc, CMPI_RC_ERR_INVALID_HANDLE);
}

template <class Slot>
bool allFilled(std::initializer_list<Slot> filled)
{
    for (Slot slot : filled) {
        if (!slot) return false;
    }
    return true;
}

TEST_P(ProviderTablesTest, ClaimTheVersionWhoseSlotsTheyFill)
{
    const CMPIInstanceMIFT& i = *provider.getInstanceMI()->ft;
    const CMPIAssociationMIFT& a = *provider.getAssociationMI()->ft;
    const CMPIIndicationMIFT& n = *provider.getIndicationMI()->ft;
    const CMPIMethodMIFT& m = *provider.getMethodMI()->ft;
    EXPECT_EQ(i.ftVersion, CMPIVersion200);
    EXPECT_EQ(a.ftVersion, CMPIVersion200);
    EXPECT_EQ(n.ftVersion, CMPIVersion200);
    EXPECT_EQ(m.ftVersion, CMPIVersion200);
    EXPECT_TRUE(i.miName && a.miName && n.miName && m.miName);
    EXPECT_TRUE(allFilled<bool>({i.cleanup != nullptr, i.enumerateInstanceNames != nullptr,
                                 i.enumerateInstances != nullptr, i.getInstance != nullptr, i.createInstance != nullptr,
                                 i.modifyInstance != nullptr, i.deleteInstance != nullptr, i.execQuery != nullptr}));
    EXPECT_TRUE(allFilled<bool>({a.cleanup != nullptr, a.associators != nullptr, a.associatorNames != nullptr,
                                 a.references != nullptr, a.referenceNames != nullptr}));
    EXPECT_TRUE(allFilled<bool>({n.cleanup != nullptr, n.authorizeFilter != nullptr, n.mustPoll != nullptr,
                                 n.activateFilter != nullptr, n.deActivateFilter != nullptr,
                                 n.enableIndications != nullptr, n.disableIndications != nullptr}));
    EXPECT_TRUE(allFilled<bool>({m.cleanup != nullptr, m.invokeMethod != nullptr}));
}

// Nothing overridden.
class SilentProvider : public CmpiInstanceProvider,
                       public CmpiAssociationProvider,
                       public CmpiIndicationProvider,
                       public CmpiMethodProvider {};

TEST_P(ProviderTablesTest, RefuseByDefaultWhatWouldNeedAnAnswer)
{
    SilentProvider silent;
    silent.setBroker(cmpi());
    ResultObject result(broker, sink);
    const CMPIResult* r = result.cmpi();
    CMPIInstanceMI* i = silent.getInstanceMI();
    CMPIAssociationMI* a = silent.getAssociationMI();
    CMPIIndicationMI* n = silent.getIndicationMI();
    CMPIMethodMI* m = silent.getMethodMI();
    const CMPIrc refused[] = {
        i->ft->enumerateInstanceNames(i, nullptr, r, nullptr).rc,
        i->ft->enumerateInstances(i, nullptr, r, nullptr, nullptr).rc,
        i->ft->getInstance(i, nullptr, r, nullptr, nullptr).rc,
        i->ft->createInstance(i, nullptr, r, nullptr, nullptr).rc,
        i->ft->modifyInstance(i, nullptr, r, nullptr, nullptr, nullptr).rc,
        i->ft->deleteInstance(i, nullptr, r, nullptr).rc,
        i->ft->execQuery(i, nullptr, r, nullptr, nullptr, nullptr).rc,
        a->ft->associators(a, nullptr, r, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr).rc,
        a->ft->associatorNames(a, nullptr, r, nullptr, nullptr, nullptr, nullptr, nullptr).rc,
        a->ft->references(a, nullptr, r, nullptr, nullptr, nullptr, nullptr).rc,
        a->ft->referenceNames(a, nullptr, r, nullptr, nullptr, nullptr).rc,
        n->ft->authorizeFilter(n, nullptr, nullptr, nullptr, nullptr, nullptr).rc,
        n->ft->activateFilter(n, nullptr, nullptr, nullptr, nullptr, 1).rc,
        m->ft->invokeMethod(m, nullptr, r, nullptr, nullptr, nullptr, nullptr).rc,
    };
    EXPECT_THAT(refused, testing::Each(CMPI_RC_ERR_NOT_SUPPORTED));
    const CMPIrc accepted[] = {
        n->ft->mustPoll(n, nullptr, nullptr, nullptr, nullptr, nullptr).rc,
        n->ft->deActivateFilter(n, nullptr, nullptr, nullptr, nullptr, 1).rc,
        n->ft->enableIndications(n, nullptr).rc,
        n->ft->disableIndications(n, nullptr).rc,
        m->ft->cleanup(m, nullptr, 1).rc,
    };
    EXPECT_THAT(accepted, testing::Each(CMPI_RC_OK));
}

TEST_P(ProviderTablesTest, ShareOneProviderObject)
{
    CmpiProvider& shared = provider;
    EXPECT_EQ(dynamic_cast<CmpiInstanceProvider*>(&shared), static_cast<CmpiInstanceProvider*>(&provider));
    EXPECT_EQ(dynamic_cast<CmpiMethodProvider*>(&shared), static_cast<CmpiMethodProvider*>(&provider));
    EXPECT_EQ(shared.refcount(), 0u);
    shared.incRefcount();
    shared.incRefcount();
    EXPECT_EQ(provider.refcount(), 2u);
    EXPECT_EQ(provider.getBroker(), cmpi());
}

class Listener : public IndicationSink {
public:
    Outcome deliver(const CMPIContext*, std::string_view nameSpace, const InstanceObject& indication) override
    {
        seen.push_back(std::string(nameSpace) + " " + std::string(indication.path->className));
        return outcome;
    }
    std::vector<std::string> seen;
    Outcome outcome;
};

TEST_P(ProviderTablesTest, DeliverIndicationsThroughTheBroker)
{
    Listener listener;
    broker.setIndicationSink(&listener);
    const CmpiContext context(&RequestScope::current(broker)->context());
    CmpiMBService service(cmpi(), Logger("test"));
    const CmpiInstance fan = makeCmpiInstance(cmpi(), makeFan("1"));
    const CmpiStatus delivered = service.deliverIndication(context, "root/vnr", fan);
    EXPECT_EQ(delivered.code(), CMPI_RC_OK);
    EXPECT_THAT(listener.seen, ElementsAre("root/vnr Fan"));

    listener.outcome = {CMPI_RC_ERR_FAILED, "nobody listens"};
    const CmpiStatus refused = service.deliverIndication(context, "root/vnr", fan);
    EXPECT_EQ(refused.code(), CMPI_RC_ERR_FAILED);
    EXPECT_THAT(refused.str(), testing::HasSubstr("nobody listens"));
    broker.setIndicationSink(nullptr);

    CmpiMBService nowhere(nullptr, Logger("test"));
    EXPECT_EQ(nowhere.deliverIndication(context, "root/vnr", fan).code(), CMPI_RC_ERR_NOT_SUPPORTED);
}

} // namespace
