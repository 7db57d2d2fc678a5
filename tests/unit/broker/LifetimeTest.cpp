#include "BrokerFixture.h"

#include <thread>

using namespace KDV::Host;

struct Lifetimes : EveryProfile {};
INSTANTIATE_TEST_SUITE_P(Broker, Lifetimes, testing::ValuesIn(allProfiles), profileOf);

TEST_P(Lifetimes, EndWithTheScope)
{
    string("a");
    instance();
    scope.reset();
    const BrokerStatistics counted = broker->statistics();
    EXPECT_EQ(counted.leftToScope, 2u);
    EXPECT_EQ(counted.of(counted.left, ObjectKind::String), 1u);
    EXPECT_EQ(counted.of(counted.left, ObjectKind::Instance), 1u);
    EXPECT_EQ(counted.of(counted.made, ObjectKind::ObjectPath), 1u);
}

TEST_P(Lifetimes, CountTheMostThatLivedAtOnce)
{
    for (int i = 0; i < 100; ++i) {
        CMPIString* a = string("a");
        CMPIString* b = string("b");
        a->ft->release(a);
        b->ft->release(b);
    }
    scope.reset();
    const BrokerStatistics counted = broker->statistics();
    EXPECT_EQ(counted.of(counted.maxLive, ObjectKind::String), 2u);
    EXPECT_EQ(counted.maxLiveAll, 2u);
    EXPECT_EQ(counted.leftToScope, 0u);
    EXPECT_TRUE(counted.lifetimesClean());
}

TEST_P(Lifetimes, SeeDoubleReleases)
{
    CMPIString* text = string("a");
    EXPECT_EQ(text->ft->release(text).rc, CMPI_RC_OK);
    EXPECT_EQ(text->ft->release(text).rc, CMPI_RC_ERR_INVALID_HANDLE);
    EXPECT_EQ(broker->statistics().doubleReleases, 1u);
    EXPECT_FALSE(broker->statistics().lifetimesClean());
}

TEST_P(Lifetimes, SeeUsesAfterRelease)
{
    CMPIInstance* i = instance();
    CMPIObjectPath* p = path();
    i->ft->release(i);
    p->ft->release(p);
    EXPECT_EQ(setText(i, "Label", "x").rc, CMPI_RC_ERR_INVALID_HANDLE);
    EXPECT_EQ(broker->statistics().usesAfterRelease, 1u);
    eft().newInstance(mb(), p, &status);
    EXPECT_EQ(broker->statistics().usesAfterRelease, 2u);
    CollectingSink sink;
    ResultObject result(*broker, sink);
    EXPECT_NE(result.ft->returnInstance(&result, i).rc, CMPI_RC_OK);
    EXPECT_EQ(broker->statistics().usesAfterRelease, 3u);
    EXPECT_TRUE(sink.instances.empty());
}

TEST_P(Lifetimes, SeeDoubleReleasesOfClones)
{
    CMPIString* text = string("a");
    CMPIString* clone = text->ft->clone(text, &status);
    EXPECT_EQ(clone->ft->release(clone).rc, CMPI_RC_OK);
    EXPECT_EQ(clone->ft->release(clone).rc, CMPI_RC_ERR_INVALID_HANDLE);
    EXPECT_EQ(broker->statistics().doubleReleases, 1u);
}

TEST_P(Lifetimes, SeeReleasesOfWhatIsOnlyLent)
{
    CMPIObjectPath* p = path();
    addKey(p, "Name", "n");
    CMPIString* name = nullptr;
    const CMPIData key = p->ft->getKeyAt(p, 0, &name, &status);
    const CMPIrc answer = by(CMPI_RC_ERR_FAILED, CMPI_RC_ERR_FAILED, CMPI_RC_OK);
    EXPECT_EQ(name->ft->release(name).rc, answer);
    EXPECT_EQ(key.value.string->ft->release(key.value.string).rc, answer);
    CMPIObjectPath* parameter = &scope->path("root/test", "Thing");
    EXPECT_EQ(parameter->ft->release(parameter).rc, answer);
    EXPECT_EQ(broker->statistics().lentReleases, 3u);
    EXPECT_EQ(textOf(p->ft->getKey(p, "Name", &status).value), "n");
}

TEST_P(Lifetimes, SeeReleasesFromAnotherThread)
{
    CMPIString* text = string("a");
    CMPIString* clone = text->ft->clone(text, &status);
    std::thread([&] {
        EXPECT_EQ(text->ft->release(text).rc, CMPI_RC_ERR_FAILED);
        EXPECT_EQ(clone->ft->release(clone).rc, CMPI_RC_OK);
    }).join();
    EXPECT_EQ(broker->statistics().foreignReleases, 1u);
    EXPECT_STREQ(text->ft->getCharPtr(text, nullptr), "a");
}

TEST_P(Lifetimes, OnAThreadWithoutAScopeAreTheServersAffair)
{
    std::thread([&] {
        CMPIStatus local{CMPI_RC_OK, nullptr};
        CMPIString* text = eft().newString(mb(), "a", &local);
        EXPECT_EQ(text != nullptr, by(false, true, false));
        EXPECT_EQ(local.rc, by(CMPI_RC_ERR_FAILED, CMPI_RC_OK, CMPI_RC_ERR_FAILED));
    }).join();
    EXPECT_EQ(broker->statistics().unattachedCalls, by<std::uint64_t>(1, 0, 1));
    EXPECT_EQ(broker->statistics().leftToScope, by<std::uint64_t>(0, 1, 0)) << "freed with the thread";
}

TEST_P(Lifetimes, OfAnAttachedThreadEndWithDetach)
{
    ContextObject& context = scope->context();
    context.addText("CMPIPrincipal", "someone");
    CMPIContext* prepared = mb()->bft->prepareAttachThread(mb(), &context);
    ASSERT_NE(prepared, nullptr);
    std::uint64_t leftBeforeTheThreadEnded = 0;
    std::thread([&] {
        EXPECT_EQ(mb()->bft->attachThread(mb(), prepared).rc, CMPI_RC_OK);
        CMPIStatus local{CMPI_RC_OK, nullptr};
        EXPECT_NE(eft().newString(mb(), "a", &local), nullptr);
        EXPECT_EQ(textOf(prepared->ft->getEntry(prepared, "cmpiprincipal", &local).value), "someone");
        CMPIContext* next = mb()->bft->prepareAttachThread(mb(), prepared);
        EXPECT_EQ(mb()->bft->detachThread(mb(), prepared).rc, CMPI_RC_OK);
        EXPECT_EQ(mb()->bft->attachThread(mb(), next).rc, CMPI_RC_OK);
        EXPECT_EQ(mb()->bft->detachThread(mb(), next).rc, CMPI_RC_OK);
        leftBeforeTheThreadEnded = broker->statistics().leftToScope;
    }).join();
    EXPECT_EQ(leftBeforeTheThreadEnded, by<std::uint64_t>(1, 0, 1)) << "Sfcb frees only when the thread ends";
    EXPECT_EQ(broker->statistics().leftToScope, 1u);
    EXPECT_EQ(broker->statistics().liveClones, 0);
}

TEST_P(Lifetimes, NeedAPreparedContextToAttach)
{
    ContextObject& context = scope->context();
    EXPECT_EQ(mb()->bft->attachThread(mb(), &context).rc, CMPI_RC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(mb()->bft->attachThread(mb(), nullptr).rc, CMPI_RC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(mb()->bft->prepareAttachThread(mb(), nullptr), nullptr);
}

TEST_P(Lifetimes, OfNestedScopesGoWhereTheServerKeepsThem)
{
    {
        const RequestScope inner(*broker, "root/test");
        string("a");
    }
    EXPECT_EQ(broker->statistics().leftToScope, by<std::uint64_t>(1, 0, 1)) << "Sfcb keeps until the request ends";
    scope.reset();
    EXPECT_EQ(broker->statistics().leftToScope, 1u);
}

TEST(Memory, StaysSmallWhenObjectsAreReleased)
{
    BrokerFixture f(Profile::Standard, false);
    for (int i = 0; i < 10000; ++i) {
        CMPIInstance* one = f.instance();
        BrokerFixture::setText(one, "Label", "some text that takes room");
        one->ft->release(one);
    }
    f.scope.reset();
    EXPECT_LE(f.broker->statistics().maxScopeBytes, 64u * 1024);
    EXPECT_EQ(f.broker->statistics().leftToScope, 0u);
}

TEST(Memory, TakesTextsOfAnySize)
{
    BrokerFixture f(Profile::Standard, false);
    for (std::size_t size : {0u, 100u, 5000u, 40000u, 3000000u}) {
        const std::string text(size, 'x');
        CMPIInstance* one = f.instance();
        BrokerFixture::setText(one, "Label", text.c_str());
        EXPECT_EQ(textOf(InstanceObject::of(one).find("Label")->value).size(), size);
        one->ft->release(one);
        CMPIString* string = f.string(text.c_str());
        EXPECT_EQ(StringObject::of(string).text(), text);
        string->ft->release(string);
    }
    EXPECT_TRUE(f.broker->statistics().lifetimesClean());
}

TEST(Memory, ServesManyThreadsAtOnce)
{
    BrokerFixture f(Profile::Standard);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&f] {
            const RequestScope scope(*f.broker, "root/test");
            CollectingSink sink;
            ResultObject result(*f.broker, sink);
            for (int i = 0; i < 200; ++i) {
                CMPIObjectPath* p = f.eft().newObjectPath(f.mb(), "root/test", "Thing", nullptr);
                CMPIInstance* one = f.eft().newInstance(f.mb(), p, nullptr);
                BrokerFixture::setText(one, "Label", "x");
                BrokerFixture::setNumber(one, "State", 3);
                result.ft->returnInstance(&result, one);
                one->ft->release(one);
                p->ft->release(p);
            }
            EXPECT_EQ(sink.instances.size(), 200u);
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_TRUE(f.broker->statistics().lifetimesClean());
    EXPECT_EQ(f.broker->statistics().leftToScope, 0u);
}
