#include "BrokerFixture.h"

#include <thread>

using namespace KDV::Host;
using testing::ElementsAre;

namespace {

struct Server : BrokerUpcalls {
    Outcome enumerateInstances(const CMPIContext*, const PathObject& classPath, const char**, ResultSink& sink) override
    {
        const RequestScope inner(*classPath.head.broker);
        CMPIStatus status{CMPI_RC_OK, nullptr};
        const CMPIBroker* mb = classPath.head.broker->cmpi();
        CMPIInstance* made = mb->eft->newInstance(mb, &classPath, &status);
        for (CMPIUint16 i = 1; i <= 2; ++i) {
            BrokerFixture::setNumber(made, "State", i);
            sink.instance(InstanceObject::of(made));
        }
        return {};
    }
    Outcome getInstance(const CMPIContext* context, const PathObject& path, const char**, ResultSink& sink) override
    {
        if (path.keyCount == 0) return {CMPI_RC_ERR_NOT_FOUND, "no such thing"};
        return enumerateInstances(context, path, nullptr, sink);
    }
    Outcome invokeMethod(const CMPIContext* context, const PathObject& path, const char* method, const CMPIArgs* in,
                         CMPIArgs* out, ResultSink& sink) override
    {
        CMPIStatus status{CMPI_RC_OK, nullptr};
        principal = textOf(context->ft->getEntry(context, "CMPIPrincipal", &status).value);
        called = std::string(path.className) + "." + method;
        if (in) argument = valueText(in->ft->getArg(in, "how", &status));
        if (out) out->ft->addArg(out, "Why", reinterpret_cast<const CMPIValue*>("because"), CMPI_chars);
        CMPIData data{CMPI_uint32, CMPI_goodValue, {}};
        data.value.uint32 = 17;
        return {sink.data(data) ? CMPI_RC_OK : CMPI_RC_ERR_FAILED, {}};
    }
    std::string principal;
    std::string called;
    std::string argument;
};

struct Alerts : IndicationSink {
    Outcome deliver(const CMPIContext*, std::string_view nameSpace, const InstanceObject& indication) override
    {
        texts.push_back(std::string(nameSpace) + " " + collect(indication).value("Label"));
        return {};
    }
    std::vector<std::string> texts;
};

} // namespace

struct Upcalls : EveryProfile {
    Upcalls()
    {
        broker->setUpcalls(&server);
        context->addText("CMPIPrincipal", "me");
    }
    Server server;
    ContextObject* context = &scope->context();
};
INSTANTIATE_TEST_SUITE_P(Broker, Upcalls, testing::ValuesIn(allProfiles), profileOf);

TEST_P(Upcalls, GiveTheAnswersAsAnEnumeration)
{
    CMPIEnumeration* all = mb()->bft->enumerateInstances(mb(), context, path(), nullptr, &status);
    ASSERT_NE(all, nullptr);
    std::vector<int> states;
    while (all->ft->hasNext(all, &status)) {
        const CMPIData data = all->ft->getNext(all, &status);
        states.push_back(data.value.inst->ft->getProperty(data.value.inst, "State", &status).value.uint16);
    }
    EXPECT_THAT(states, ElementsAre(1, 2));
    const CMPIData end = all->ft->getNext(all, &status);
    EXPECT_EQ(status.rc, by(CMPI_RC_NO_MORE_ELEMENTS, CMPI_RC_OK, CMPI_RC_NO_MORE_ELEMENTS));
    EXPECT_EQ(end.state, by<CMPIValueState>(CMPI_nullValue, CMPI_badValue, CMPI_nullValue));
    CMPIArray* array = all->ft->toArray(all, &status);
    EXPECT_EQ(array->ft->getSize(array, &status), 2u);
}

TEST_P(Upcalls, GiveOneInstanceOrTheServersError)
{
    CMPIObjectPath* p = path();
    EXPECT_EQ(mb()->bft->getInstance(mb(), context, p, nullptr, &status), nullptr);
    EXPECT_EQ(status.rc, CMPI_RC_ERR_NOT_FOUND);
    EXPECT_EQ(StringObject::of(status.msg).text(), "no such thing");
    addKey(p, "Name", "n");
    CMPIInstance* one = mb()->bft->getInstance(mb(), context, p, nullptr, &status);
    ASSERT_NE(one, nullptr);
    EXPECT_EQ(one->ft->getProperty(one, "State", &status).value.uint16, 1);
    EXPECT_EQ(one->ft->release(one).rc, CMPI_RC_OK);
}

TEST_P(Upcalls, ReachMethodsFromAThreadOfTheProvider)
{
    CMPIContext* prepared = mb()->bft->prepareAttachThread(mb(), context);
    CMPIData answer{};
    std::string why;
    std::thread([&] {
        mb()->bft->attachThread(mb(), prepared);
        CMPIStatus local{CMPI_RC_OK, nullptr};
        CMPIObjectPath* p = eft().newObjectPath(mb(), "root/test", "Thing", &local);
        CMPIArgs* in = eft().newArgs(mb(), &local);
        in->ft->addArg(in, "How", reinterpret_cast<const CMPIValue*>("well"), CMPI_chars);
        CMPIArgs* out = eft().newArgs(mb(), &local);
        answer = mb()->bft->invokeMethod(mb(), prepared, p, "Work", in, out, &local);
        EXPECT_EQ(local.rc, CMPI_RC_OK);
        why = textOf(out->ft->getArg(out, "why", &local).value);
        out->ft->getArg(out, "other", &local);
        EXPECT_EQ(local.rc, by(CMPI_RC_ERR_NO_SUCH_PROPERTY, CMPI_RC_ERR_NOT_FOUND, CMPI_RC_ERR_NO_SUCH_PROPERTY));
        mb()->bft->detachThread(mb(), prepared);
    }).join();
    EXPECT_EQ(answer.value.uint32, 17u);
    EXPECT_EQ(server.called, "Thing.Work");
    EXPECT_EQ(server.principal, "me");
    EXPECT_EQ(server.argument, "\"well\"");
    EXPECT_EQ(why, "because");
}

TEST_P(Upcalls, AreNotSupportedWithoutAServer)
{
    broker->setUpcalls(nullptr);
    EXPECT_EQ(mb()->bft->enumerateInstances(mb(), context, path(), nullptr, &status), nullptr);
    EXPECT_EQ(status.rc, CMPI_RC_ERR_NOT_SUPPORTED);
    broker->setUpcalls(&server);
    EXPECT_EQ(mb()->bft->references(mb(), context, path(), nullptr, nullptr, nullptr, &status), nullptr);
    EXPECT_EQ(status.rc, CMPI_RC_ERR_NOT_SUPPORTED);
    EXPECT_EQ(mb()->bft->deleteInstance(mb(), context, path()).rc, CMPI_RC_ERR_NOT_SUPPORTED);
}

TEST_P(Upcalls, DeliverIndications)
{
    CMPIInstance* alert = instance();
    setText(alert, "Label", "disk failed");
    EXPECT_EQ(mb()->bft->deliverIndication(mb(), context, "root/test", alert).rc, CMPI_RC_ERR_FAILED)
        << "nobody listens yet";
    Alerts alerts;
    CollectingSink recorder;
    broker->setIndicationSink(&alerts);
    broker->setRecorder(&recorder);
    EXPECT_EQ(mb()->bft->deliverIndication(mb(), context, "root/test", alert).rc, CMPI_RC_OK);
    EXPECT_THAT(alerts.texts, ElementsAre("root/test \"disk failed\""));
    EXPECT_EQ(recorder.indications.size(), 1u);
    EXPECT_EQ(mb()->bft->deliverIndication(mb(), context, "root/test", nullptr).rc, CMPI_RC_ERR_INVALID_PARAMETER);
}

TEST_P(Upcalls, CompileQueriesThroughTheHost)
{
    struct ByLabel : SelectEvaluator {
        bool matches(const InstanceObject& given) const override { return given.find("Label") != nullptr; }
        bool matches(CMPIAccessor* accessor, void* parameter) const override
        {
            return accessor("Label", parameter).state == CMPI_goodValue;
        }
    };
    struct Compiler : SelectCompiler {
        std::shared_ptr<const SelectEvaluator> compile(std::string_view query, std::string_view,
                                                       Outcome& outcome) override
        {
            if (query == "good") return std::make_shared<ByLabel>();
            outcome = {CMPI_RC_ERR_INVALID_QUERY, "not understood"};
            return nullptr;
        }
    } compiler;
    EXPECT_EQ(eft().newSelectExp(mb(), "good", "WQL", nullptr, &status), nullptr);
    EXPECT_EQ(status.rc, CMPI_RC_ERR_NOT_SUPPORTED);
    broker->setSelectCompiler(&compiler);
    EXPECT_EQ(eft().newSelectExp(mb(), "bad", "WQL", nullptr, &status), nullptr);
    EXPECT_EQ(status.rc, CMPI_RC_ERR_INVALID_QUERY);
    CMPISelectExp* made = eft().newSelectExp(mb(), "good", "WQL", nullptr, &status);
    ASSERT_NE(made, nullptr);
    CMPISelectExp* clone = made->ft->clone(made, &status);
    made->ft->release(made);
    CMPIInstance* i = eft().newInstance(mb(), path("Link"), &status);
    EXPECT_FALSE(clone->ft->evaluate(clone, i, &status));
    EXPECT_EQ(status.rc, CMPI_RC_OK);
    CMPIInstance* labelled = instance();
    setText(labelled, "Label", "x");
    EXPECT_TRUE(clone->ft->evaluate(clone, labelled, &status));
    CMPIString* text = clone->ft->getString(clone, &status);
    EXPECT_STREQ(text->ft->getCharPtr(text, nullptr), "good");
    EXPECT_EQ(clone->ft->release(clone).rc, CMPI_RC_OK);
    EXPECT_TRUE(broker->statistics().lifetimesClean());
}
