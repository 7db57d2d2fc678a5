#include "BrokerFixture.h"

using namespace KDV::Host;
using testing::ElementsAre;

struct Instances : EveryProfile {
    static bool isPreset(const CMPIInstance* of, const char* name)
    {
        const PropertyEntry* entry = InstanceObject::of(of).find(name);
        return entry && entry->preset;
    }
    CMPIStatus setArray(const CMPIInstance* to, const char* name, CMPIArray* array, CMPIType type)
    {
        CMPIValue value{};
        value.array = array;
        return to->ft->setProperty(to, name, &value, type);
    }
};
INSTANTIATE_TEST_SUITE_P(Broker, Instances, testing::ValuesIn(allProfiles), profileOf);

TEST_P(Instances, StartsWithWhatTheServerPutsIn)
{
    CMPIObjectPath* p = path();
    addKey(p, "Name", "one");
    CMPIInstance* i = eft().newInstance(mb(), p, &status);
    EXPECT_EQ(i->ft->getPropertyCount(i, &status), by(0u, 12u, 0u));
    EXPECT_EQ(isPreset(i, "Size"), by(false, true, false));
    const CMPIData name = i->ft->getProperty(i, "Name", &status);
    EXPECT_EQ(status.rc, by(CMPI_RC_ERR_NO_SUCH_PROPERTY, CMPI_RC_OK, CMPI_RC_ERR_NO_SUCH_PROPERTY));
    if (GetParam() == Profile::Sfcb) {
        EXPECT_EQ(textOf(name.value), "one");
        EXPECT_EQ(i->ft->getProperty(i, "Size", &status).value.uint64, 7u);
        EXPECT_TRUE(isNull(i->ft->getProperty(i, "Label", &status)));
    }
}

TEST_P(Instances, RefusesAMissingPathAsTheServerDoes)
{
    CMPIInstance* i = eft().newInstance(mb(), nullptr, &status);
    EXPECT_EQ(i != nullptr, by(false, true, false));
    EXPECT_EQ(status.rc, by(CMPI_RC_ERR_INVALID_HANDLE, CMPI_RC_OK, CMPI_RC_ERR_INVALID_PARAMETER));
}

TEST_P(Instances, HandsPropertiesOutInTheOrderOfTheirLastSetting)
{
    CMPIInstance* i = instance();
    setText(i, "Label", "first");
    setNumber(i, "State", 1);
    setText(i, "name", "n");
    setText(i, "LABEL", "again");
    EXPECT_THAT(given(i), ElementsAre("State=1", "Name=\"n\"", "Label=\"again\""));
    setText(i, "Label", "last");
    EXPECT_THAT(given(i), ElementsAre("State=1", "Name=\"n\"", "Label=\"last\""));
}

TEST_P(Instances, KeepsOrderThroughManySettings)
{
    CMPIInstance* i = instance();
    for (int round = 0; round < 500; ++round) {
        setNumber(i, "State", static_cast<CMPIUint16>(round));
        setText(i, "Label", "x");
        setNumber(i, "Number", 2);
    }
    EXPECT_THAT(given(i), ElementsAre("State=499", "Label=\"x\"", "Number=2"));
    EXPECT_EQ(i->ft->getProperty(i, "state", &status).value.uint16, 499);
}

TEST_P(Instances, HoldsEveryTypeAsACopy)
{
    CMPIInstance* i = instance();
    CMPIValue value{};
    value.boolean = 1;
    EXPECT_EQ(i->ft->setProperty(i, "Good", &value, CMPI_boolean).rc, CMPI_RC_OK);
    value.sint8 = -3;
    EXPECT_EQ(i->ft->setProperty(i, "Small", &value, CMPI_sint8).rc, CMPI_RC_OK);
    value.real32 = 0.5f;
    EXPECT_EQ(i->ft->setProperty(i, "Ratio", &value, CMPI_real32).rc, CMPI_RC_OK);
    value.dateTime = eft().newDateTimeFromChars(mb(), "00000001000000.000000:000", &status);
    EXPECT_EQ(i->ft->setProperty(i, "When", &value, CMPI_dateTime).rc, CMPI_RC_OK);
    value.dateTime->ft->release(value.dateTime);
    value.string = string("text");
    EXPECT_EQ(i->ft->setProperty(i, "Label", &value, CMPI_string).rc, CMPI_RC_OK);
    value.string->ft->release(value.string);
    CMPIArray* codes = eft().newArray(mb(), 2, CMPI_uint16, &status);
    value.uint16 = 8;
    codes->ft->setElementAt(codes, 0, &value, CMPI_uint16);
    EXPECT_EQ(setArray(i, "Codes", codes, CMPI_uint16A).rc, CMPI_RC_OK);
    codes->ft->release(codes);
    CMPIInstance* inner = instance("SubThing");
    setText(inner, "Extra", "deep");
    value.inst = inner;
    EXPECT_EQ(i->ft->setProperty(i, "Label", nullptr, CMPI_string).rc, CMPI_RC_OK);
    if (GetParam() != Profile::Sfcb) {
        EXPECT_EQ(i->ft->setProperty(i, "Inner", &value, CMPI_instance).rc, CMPI_RC_OK);
        inner->ft->release(inner);
        EXPECT_EQ(collect(InstanceObject::of(i)).value("Inner"), "instance of SubThing { Extra = \"deep\"; }");
        i->ft->setProperty(i, "Inner", nullptr, CMPI_instance);
        EXPECT_THAT(given(i), ElementsAre("Good=true", "Small=-3", "Ratio=0.5", "When=00000001000000.000000:000",
                                          "Codes={8, NULL}", "Label=NULL", "Inner=NULL"));
    }
    EXPECT_EQ(broker->statistics().usesAfterRelease, 0u);
}

TEST_P(Instances, TreatsUndeclaredPropertiesAsTheServerDoes)
{
    CMPIInstance* i = instance();
    EXPECT_EQ(setText(i, "Nonsense", "x").rc, by(CMPI_RC_ERR_INVALID_PARAMETER, CMPI_RC_OK, CMPI_RC_OK));
    EXPECT_EQ(given(i).size(), by<std::size_t>(0, 1, 0));
    EXPECT_EQ(broker->statistics().droppedProperties, by<std::uint64_t>(0, 0, 1));
    EXPECT_EQ(broker->statistics().refusedProperties, by<std::uint64_t>(1, 0, 0));
    i->ft->getProperty(i, "Nonsense", &status);
    EXPECT_EQ(status.rc == CMPI_RC_OK, by(false, true, false));
}

TEST_P(Instances, TreatsOtherTypesAsTheServerDoes)
{
    CMPIInstance* i = instance();
    const CMPIrc refusal = by(CMPI_RC_ERR_TYPE_MISMATCH, CMPI_RC_OK, CMPI_RC_ERR_INVALID_DATA_TYPE);
    CMPIValue value{};
    value.uint32 = 1;
    EXPECT_EQ(i->ft->setProperty(i, "State", &value, CMPI_uint32).rc, refusal);
    EXPECT_EQ(setText(i, "State", "text").rc, refusal);
    const CMPIrc kindRefusal = by(CMPI_RC_ERR_TYPE_MISMATCH, CMPI_RC_ERR_TYPE_MISMATCH, CMPI_RC_ERR_INVALID_DATA_TYPE);
    EXPECT_EQ(setNumber(i, "Label", 4).rc, kindRefusal);
    EXPECT_EQ(setText(i, "When", "00000001000000.000000:000").rc, kindRefusal);
    EXPECT_EQ(setNumber(i, "Codes", 4).rc, kindRefusal);
    CMPIArray* words = eft().newArray(mb(), 1, CMPI_string, &status);
    EXPECT_EQ(setArray(i, "Codes", words, CMPI_uint16A).rc, refusal) << "the element type counts as well";
    EXPECT_EQ(i->ft->setProperty(i, "Label", nullptr, CMPI_uint16).rc, kindRefusal);
}

TEST_P(Instances, ExplainsARefusal)
{
    CMPIInstance* i = instance();
    status = setNumber(i, "Label", 4);
    ASSERT_NE(status.msg, nullptr);
    EXPECT_EQ(StringObject::of(status.msg).text(),
              std::string("property Thing.Label: ") +
                  by("declared with another type", "another kind of value", "declared with another type"));
}

TEST_P(Instances, TellsMissesAsTheServerDoes)
{
    CMPIInstance* i = instance();
    const CMPIData data = i->ft->getProperty(i, "Nothing", &status);
    EXPECT_EQ(status.rc, by(CMPI_RC_ERR_NO_SUCH_PROPERTY, CMPI_RC_ERR_NOT_FOUND, CMPI_RC_ERR_NO_SUCH_PROPERTY));
    EXPECT_EQ(data.state, by<CMPIValueState>(CMPI_nullValue, CMPI_notFound, CMPI_nullValue | CMPI_notFound));
    i->ft->getPropertyAt(i, 99, nullptr, &status);
    EXPECT_NE(status.rc, CMPI_RC_OK);
}

TEST_P(Instances, FiltersPropertiesAsTheServerDoes)
{
    CMPIObjectPath* p = path();
    addKey(p, "Name", "key");
    CMPIInstance* i = eft().newInstance(mb(), p, &status);
    const char* list[] = {"label", "Unknown", nullptr};
    const char* keys[] = {"Name", "Number", nullptr};
    EXPECT_EQ(i->ft->setPropertyFilter(i, list, keys).rc, CMPI_RC_OK);
    EXPECT_EQ(setText(i, "Name", "key").rc, CMPI_RC_OK);
    EXPECT_EQ(setNumber(i, "State", 3).rc, CMPI_RC_OK);
    EXPECT_EQ(setText(i, "Label", "shown").rc, CMPI_RC_OK);
    if (GetParam() == Profile::Pegasus)
        EXPECT_THAT(given(i), ElementsAre("Name=\"key\"", "State=3", "Label=\"shown\""));
    else
        EXPECT_THAT(given(i), ElementsAre("Label=\"shown\""));
    EXPECT_EQ(InstanceObject::of(i).path->text(), "root/test:Thing.Name=\"key\"");
}

TEST_P(Instances, LosesKeysThatNoListNamesOnlyAsSfcb)
{
    CMPIObjectPath* p = path();
    addKey(p, "Name", "key");
    CMPIInstance* i = eft().newInstance(mb(), p, &status);
    const char* list[] = {"Label", nullptr};
    const char* none[] = {nullptr};
    EXPECT_EQ(i->ft->setPropertyFilter(i, list, none).rc, CMPI_RC_OK);
    EXPECT_EQ(InstanceObject::of(i).path->text(),
              by("root/test:Thing.Name=\"key\"", "root/test:Thing", "root/test:Thing.Name=\"key\""));
}

TEST_P(Instances, IgnoresAFilterThatIsNull)
{
    CMPIInstance* i = instance();
    EXPECT_EQ(i->ft->setPropertyFilter(i, nullptr, nullptr).rc, CMPI_RC_OK);
    setText(i, "Label", "shown");
    EXPECT_THAT(given(i), ElementsAre("Label=\"shown\""));
}

TEST_P(Instances, MakesThePathTheServerWouldSend)
{
    CollectingSink sink;
    ResultObject result(*broker, sink, ResultKind::Instances);
    CMPIInstance* i = instance();
    setText(i, "Name", "set");
    setNumber(i, "Number", 5);
    EXPECT_EQ(result.ft->returnInstance(&result, i).rc, CMPI_RC_OK);
    ASSERT_EQ(sink.instances.size(), 1u);
    EXPECT_EQ(sink.instances[0].path, "root/test:Thing.Name=\"set\",Number=5");
}

TEST_P(Instances, GivesItsPathAsAnObjectOfItsOwn)
{
    CMPIInstance* i = instance();
    CMPIObjectPath* p = i->ft->getObjectPath(i, &status);
    ASSERT_NE(p, nullptr);
    i->ft->release(i);
    EXPECT_EQ(PathObject::of(p).className, "Thing");
    EXPECT_EQ(p->ft->release(p).rc, CMPI_RC_OK);
}

TEST_P(Instances, ClonesDeeply)
{
    CMPIInstance* i = instance();
    setText(i, "Label", "kept");
    CMPIArray* words = eft().newArray(mb(), 1, CMPI_string, &status);
    CMPIValue value{};
    value.string = string("word");
    words->ft->setElementAt(words, 0, &value, CMPI_string);
    setArray(i, "Words", words, CMPI_stringA);
    CMPIInstance* clone = i->ft->clone(i, &status);
    setText(i, "Label", "changed");
    scope.reset();
    EXPECT_THAT(given(clone), ElementsAre("Label=\"kept\"", "Words={\"word\"}"));
    EXPECT_EQ(clone->ft->release(clone).rc, CMPI_RC_OK);
}

TEST(SfcbInstances, KeepPropertiesOfUnknownClasses)
{
    BrokerFixture f(Profile::Sfcb);
    CMPIInstance* i = f.instance("Unknown");
    EXPECT_EQ(BrokerFixture::setText(i, "Any", "a").rc, CMPI_RC_OK);
    EXPECT_EQ(BrokerFixture::setNumber(i, "Other", 1).rc, CMPI_RC_OK);
    EXPECT_EQ(BrokerFixture::setText(i, "any", "b").rc, CMPI_RC_OK);
    EXPECT_THAT(BrokerFixture::given(i), ElementsAre("Other=1", "any=\"b\""));
    EXPECT_EQ(i->ft->getObjectPath(i, &f.status), nullptr);
    EXPECT_EQ(f.status.rc, CMPI_RC_ERR_INVALID_CLASS);
}

TEST(StandardInstances, CheckTheOriginOfAProperty)
{
    BrokerFixture f(Profile::Standard);
    CMPIInstance* i = f.instance("SubThing");
    CMPIValue value{};
    value.uint16 = 2;
    EXPECT_EQ(i->ft->setPropertyWithOrigin(i, "State", &value, CMPI_uint16, "Thing").rc, CMPI_RC_OK);
    EXPECT_EQ(i->ft->setPropertyWithOrigin(i, "State", &value, CMPI_uint16, "SubThing").rc,
              CMPI_RC_ERR_INVALID_PARAMETER);
}
