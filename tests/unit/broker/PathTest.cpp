#include "BrokerFixture.h"

using namespace KDV::Host;
using testing::ElementsAre;

struct Paths : EveryProfile {
    const char* chars(CMPIString* text) { return text->ft->getCharPtr(text, &status); }
};
INSTANTIATE_TEST_SUITE_P(Broker, Paths, testing::ValuesIn(allProfiles), profileOf);

TEST_P(Paths, KeepsWhatItWasGiven)
{
    CMPIObjectPath* p = eft().newObjectPath(mb(), "ROOT/test", "thing", &status);
    ASSERT_NE(p, nullptr);
    EXPECT_STREQ(chars(p->ft->getNameSpace(p, &status)), "ROOT/test");
    EXPECT_STREQ(chars(p->ft->getClassName(p, &status)), "thing");
    EXPECT_STREQ(chars(p->ft->getHostname(p, &status)), "");
    EXPECT_EQ(p->ft->setHostname(p, "here").rc, CMPI_RC_OK);
    EXPECT_STREQ(chars(p->ft->getHostname(p, &status)), "here");
    EXPECT_EQ(p->ft->setNameSpace(p, "root/else").rc, CMPI_RC_OK);
    EXPECT_STREQ(chars(p->ft->getNameSpace(p, &status)), "root/else");
    CMPIObjectPath* other = path();
    EXPECT_EQ(p->ft->setHostAndNameSpaceFromObjectPath(p, other).rc, CMPI_RC_OK);
    EXPECT_STREQ(chars(p->ft->getNameSpace(p, &status)), "root/test");
    EXPECT_EQ(p->ft->setClassName(p, "SubThing").rc, CMPI_RC_OK);
    EXPECT_STREQ(chars(p->ft->getClassName(p, &status)), "SubThing");
}

TEST_P(Paths, RefusesUnknownClassesOnlyAsStandard)
{
    CMPIObjectPath* p = eft().newObjectPath(mb(), "root/test", "Unknown", &status);
    EXPECT_EQ(p != nullptr, by(false, true, true));
    EXPECT_EQ(status.rc, by(CMPI_RC_ERR_NOT_FOUND, CMPI_RC_OK, CMPI_RC_OK));
    p = eft().newObjectPath(mb(), "root/none", "Thing", &status);
    EXPECT_EQ(status.rc, by(CMPI_RC_ERR_INVALID_NAMESPACE, CMPI_RC_OK, CMPI_RC_OK));
    p = eft().newObjectPath(mb(), nullptr, "Thing", &status);
    ASSERT_NE(p, nullptr) << "without a namespace the one of the request counts";
    EXPECT_EQ(PathObject::of(p).classInfo, repository.find("root/test", "Thing"));
}

TEST_P(Paths, GivesKeysBackInOrder)
{
    CMPIObjectPath* p = path();
    EXPECT_EQ(addKey(p, "Number", 9).rc, CMPI_RC_OK);
    EXPECT_EQ(addKey(p, "name", "a \"b\"").rc, CMPI_RC_OK);
    EXPECT_EQ(addKey(p, "NUMBER", 10).rc, CMPI_RC_OK);
    EXPECT_EQ(p->ft->getKeyCount(p, &status), 2u);
    CMPIString* name = nullptr;
    CMPIData data = p->ft->getKeyAt(p, 0, &name, &status);
    EXPECT_STREQ(chars(name), "Number");
    EXPECT_EQ(data.type, by(CMPI_uint16, CMPI_uint16, CMPI_sint64));
    EXPECT_EQ(data.value.uint16, 10);
    EXPECT_EQ((data.state & CMPI_keyValue) != 0, by(true, false, true));
    data = p->ft->getKeyAt(p, 1, &name, &status);
    EXPECT_STREQ(chars(name), "name");
    EXPECT_EQ(data.type, CMPI_string);
    EXPECT_STREQ(chars(data.value.string), "a \"b\"");
    EXPECT_EQ(textOf(p->ft->getKey(p, "NAME", &status).value), "a \"b\"");
    EXPECT_EQ(p->ft->getKeyAt(p, 0, nullptr, nullptr).value.uint16, 10);
}

TEST_P(Paths, TellsMissesAsTheServerDoes)
{
    CMPIObjectPath* p = path();
    p->ft->getKey(p, "Name", &status);
    EXPECT_EQ(status.rc, by(CMPI_RC_ERR_NO_SUCH_PROPERTY, CMPI_RC_ERR_NOT_FOUND, CMPI_RC_ERR_NOT_FOUND));
    p->ft->getKeyAt(p, 0, nullptr, &status);
    EXPECT_EQ(status.rc, by(CMPI_RC_ERR_NO_SUCH_PROPERTY, CMPI_RC_ERR_NOT_FOUND, CMPI_RC_ERR_NO_SUCH_PROPERTY));
}

TEST_P(Paths, ChecksTheTypesOfKeys)
{
    CMPIObjectPath* p = path();
    EXPECT_EQ(addKey(p, "Name", 3).rc, by(CMPI_RC_ERR_TYPE_MISMATCH, CMPI_RC_OK, CMPI_RC_ERR_INVALID_DATA_TYPE));
    EXPECT_EQ(addKey(p, "Number", "3").rc, by(CMPI_RC_ERR_TYPE_MISMATCH, CMPI_RC_OK, CMPI_RC_ERR_INVALID_DATA_TYPE));
    EXPECT_EQ(addKey(p, "Label", "x").rc, by(CMPI_RC_ERR_INVALID_PARAMETER, CMPI_RC_OK, CMPI_RC_OK));
    CMPIValue value{};
    value.uint64 = 77;
    EXPECT_EQ(p->ft->addKey(p, "Number", &value, CMPI_uint64).rc, CMPI_RC_OK);
    EXPECT_EQ(p->ft->getKey(p, "Number", &status).value.uint16, 77);
    EXPECT_EQ(p->ft->addKey(p, "Number", &value, CMPI_sint64).rc,
              by(CMPI_RC_ERR_TYPE_MISMATCH, CMPI_RC_OK, CMPI_RC_ERR_INVALID_DATA_TYPE));
    EXPECT_EQ(p->ft->addKey(p, "Name", nullptr, CMPI_string).rc,
              by(CMPI_RC_ERR_INVALID_PARAMETER, CMPI_RC_OK, CMPI_RC_ERR_FAILED));
    value.array = eft().newArray(mb(), 1, CMPI_uint16, &status);
    EXPECT_EQ(p->ft->addKey(p, "Number", &value, CMPI_uint16A).rc,
              by(CMPI_RC_ERR_TYPE_MISMATCH, CMPI_RC_OK, CMPI_RC_ERR_INVALID_DATA_TYPE));
    EXPECT_NE(p->ft->addKey(p, nullptr, &value, CMPI_uint16).rc, CMPI_RC_OK);
}

TEST_P(Paths, HoldsReferencesAsCopies)
{
    CMPIObjectPath* from = path();
    addKey(from, "Name", "one");
    addKey(from, "Number", 1);
    CMPIObjectPath* link = path("Link");
    CMPIValue value{};
    value.ref = from;
    EXPECT_EQ(link->ft->addKey(link, "From", &value, CMPI_ref).rc, CMPI_RC_OK);
    from->ft->release(from);
    EXPECT_EQ(PathObject::of(link).text(), "root/test:Link.From=\"root/test:Thing.Name=\\\"one\\\",Number=1\"");
}

TEST_P(Paths, ClonesOutliveTheScope)
{
    CMPIObjectPath* p = path();
    addKey(p, "Name", "kept");
    CMPIObjectPath* clone = p->ft->clone(p, &status);
    ASSERT_NE(clone, nullptr);
    scope.reset();
    EXPECT_EQ(broker->statistics().liveClones, 1);
    EXPECT_EQ(PathObject::of(clone).text(), "root/test:Thing.Name=\"kept\"");
    EXPECT_EQ(clone->ft->release(clone).rc, CMPI_RC_OK);
    EXPECT_EQ(broker->statistics().liveClones, 0);
}

TEST_P(Paths, TakesKeysOfClientsWithTheTypeTheServerGives)
{
    PathObject& p = scope->path("root/test", "Thing");
    EXPECT_TRUE(p.addNumericKey("number", "42"));
    EXPECT_EQ(p.findKey("Number")->data.type, by(CMPI_uint16, CMPI_uint64, CMPI_uint16));
    EXPECT_TRUE(p.addNumericKey("Number", "0x1F"));
    EXPECT_EQ(p.findKey("Number")->data.value.uint16, 31);
    EXPECT_FALSE(p.addNumericKey("Number", "65536"));
    EXPECT_FALSE(p.addNumericKey("Number", "-1"));
    EXPECT_FALSE(p.addNumericKey("Number", "12x"));
    EXPECT_FALSE(p.addNumericKey("Number", ""));
    EXPECT_TRUE(p.addNumericKey("Unknown", "-9223372036854775808"));
    EXPECT_FALSE(p.addNumericKey("Unknown", "18446744073709551616"));
    p.addTextKey("Name", "n");
    EXPECT_EQ(p.text(), "root/test:Thing.number=31,Unknown=-9223372036854775808,Name=\"n\"");
}

TEST_P(Paths, GrowsBeyondItsFirstKeysAndBlocks)
{
    PathObject& p = scope->path("root/test", "Unknown");
    const std::string longText(3000, 'x');
    for (int i = 0; i < 50; ++i)
        p.addTextKey("Key" + std::to_string(i), longText);
    EXPECT_EQ(p.keyCount, 50u);
    EXPECT_EQ(textOf(p.findKey("key49")->data.value), longText);
    EXPECT_EQ(textOf(p.findKey("key0")->data.value), longText);
}

TEST_P(Paths, WritesHostAndNamespaceAsText)
{
    CMPIObjectPath* p = path();
    p->ft->setHostname(p, "host");
    addKey(p, "Number", 3);
    EXPECT_STREQ(chars(p->ft->toString(p, &status)), "//host/root/test:Thing.Number=3");
}
