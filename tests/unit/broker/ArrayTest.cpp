#include "BrokerFixture.h"

using namespace KDV::Host;

struct Arrays : EveryProfile {
    CMPIArray* array(CMPICount size, CMPIType type) { return eft().newArray(mb(), size, type, &status); }
    static CMPIStatus setString(CMPIArray* to, CMPICount index, CMPIString* text)
    {
        CMPIValue value{};
        value.string = text;
        return to->ft->setElementAt(to, index, &value, CMPI_string);
    }
};
INSTANTIATE_TEST_SUITE_P(Broker, Arrays, testing::ValuesIn(allProfiles), profileOf);

TEST_P(Arrays, StartWithNullElements)
{
    CMPIArray* a = array(2, CMPI_uint16);
    EXPECT_EQ(a->ft->getSize(a, &status), 2u);
    EXPECT_EQ(a->ft->getSimpleType(a, &status), CMPI_uint16);
    const CMPIData element = a->ft->getElementAt(a, 1, &status);
    EXPECT_EQ(element.state, CMPI_nullValue);
    EXPECT_EQ(element.type, CMPI_uint16);
}

TEST_P(Arrays, KeepTheirLength)
{
    CMPIArray* a = array(1, CMPI_uint16);
    CMPIValue value{};
    value.uint16 = 1;
    EXPECT_EQ(a->ft->setElementAt(a, 0, &value, CMPI_uint16).rc, CMPI_RC_OK);
    EXPECT_EQ(a->ft->setElementAt(a, 1, &value, CMPI_uint16).rc,
              by(CMPI_RC_ERR_NO_SUCH_PROPERTY, CMPI_RC_ERR_FAILED, CMPI_RC_ERR_NO_SUCH_PROPERTY));
    EXPECT_EQ(a->ft->getSize(a, &status), 1u);
    const CMPIData beyond = a->ft->getElementAt(a, 1, &status);
    EXPECT_EQ(status.rc, by(CMPI_RC_ERR_NO_SUCH_PROPERTY, CMPI_RC_OK, CMPI_RC_ERR_NO_SUCH_PROPERTY));
    EXPECT_EQ(beyond.state, by<CMPIValueState>(CMPI_nullValue, CMPI_badValue, CMPI_nullValue));
}

TEST_P(Arrays, GrowFromNothingOnlyAsSfcb)
{
    CMPIArray* a = array(0, CMPI_uint16);
    CMPIValue value{};
    for (CMPICount i = 0; i < 20; ++i) {
        value.uint16 = static_cast<CMPIUint16>(i);
        EXPECT_EQ(a->ft->setElementAt(a, i, &value, CMPI_uint16).rc,
                  by(CMPI_RC_ERR_NO_SUCH_PROPERTY, CMPI_RC_OK, CMPI_RC_ERR_NO_SUCH_PROPERTY));
    }
    EXPECT_EQ(a->ft->getSize(a, &status), by(0u, 20u, 0u));
    if (GetParam() == Profile::Sfcb) {
        EXPECT_EQ(a->ft->getElementAt(a, 19, &status).value.uint16, 19);
    }
}

TEST_P(Arrays, TakeOnlyElementsOfTheirType)
{
    CMPIArray* a = array(1, CMPI_uint16);
    CMPIValue value{};
    value.uint32 = 1;
    const CMPIrc refusal = by(CMPI_RC_ERR_TYPE_MISMATCH, CMPI_RC_ERR_FAILED, CMPI_RC_ERR_TYPE_MISMATCH);
    EXPECT_EQ(a->ft->setElementAt(a, 0, &value, CMPI_uint32).rc, refusal);
    CMPIArray* words = array(1, CMPI_string);
    EXPECT_EQ(words->ft->setElementAt(words, 0, reinterpret_cast<const CMPIValue*>("x"), CMPI_chars).rc,
              by(CMPI_RC_OK, CMPI_RC_OK, CMPI_RC_ERR_TYPE_MISMATCH));
    EXPECT_EQ(setString(words, 0, string("y")).rc, CMPI_RC_OK);
    CMPIArray* chars = array(1, CMPI_chars);
    EXPECT_EQ(chars->ft->getSimpleType(chars, &status), by(CMPI_string, CMPI_string, CMPI_chars));
    EXPECT_EQ(setString(chars, 0, string("y")).rc, by(CMPI_RC_OK, CMPI_RC_OK, CMPI_RC_ERR_TYPE_MISMATCH));
    EXPECT_EQ(chars->ft->setElementAt(chars, 0, reinterpret_cast<const CMPIValue*>("x"), CMPI_chars).rc, CMPI_RC_OK);
}

TEST_P(Arrays, TakeNullElements)
{
    CMPIArray* words = array(1, CMPI_string);
    EXPECT_EQ(words->ft->setElementAt(words, 0, nullptr, CMPI_string).rc,
              by(CMPI_RC_OK, CMPI_RC_OK, CMPI_RC_ERR_INVALID_PARAMETER));
    CMPIValue value{};
    EXPECT_EQ(words->ft->setElementAt(words, 0, &value, CMPI_null).rc, CMPI_RC_OK);
    EXPECT_TRUE(isNull(words->ft->getElementAt(words, 0, &status)));
}

TEST_P(Arrays, NeedTheirElementsAsLongAsTheServerDoes)
{
    CMPIArray* words = array(1, CMPI_string);
    CMPIString* text = string("text");
    setString(words, 0, text);
    text->ft->release(text);
    CMPIInstance* i = instance();
    CMPIValue value{};
    value.array = words;
    EXPECT_EQ(i->ft->setProperty(i, "Words", &value, CMPI_stringA).rc, CMPI_RC_OK);
    // Only Standard copies an element when it is set; the others keep a pointer to what is now released.
    EXPECT_EQ(collect(InstanceObject::of(i)).value("Words"), by("{\"text\"}", "{NULL}", "{NULL}"));
    EXPECT_EQ(broker->statistics().usesAfterRelease, by<std::uint64_t>(0, 1, 1));
}

TEST_P(Arrays, AreCopiedIntoProperties)
{
    CMPIArray* words = array(1, CMPI_string);
    CMPIString* text = string("text");
    setString(words, 0, text);
    CMPIInstance* i = instance();
    CMPIValue value{};
    value.array = words;
    EXPECT_EQ(i->ft->setProperty(i, "Words", &value, CMPI_stringA).rc, CMPI_RC_OK);
    text->ft->release(text);
    words->ft->release(words);
    EXPECT_EQ(collect(InstanceObject::of(i)).value("Words"), "{\"text\"}");
    EXPECT_TRUE(broker->statistics().lifetimesClean());
}

TEST_P(Arrays, RefuseWhatNoServerCouldHold)
{
    EXPECT_EQ(array(0xffffffffu, CMPI_uint16), nullptr);
    EXPECT_NE(status.rc, CMPI_RC_OK);
    EXPECT_EQ(array(1, CMPI_null), nullptr);
    EXPECT_EQ(array(1, CMPI_uint16A) != nullptr, by(false, true, true));
}

TEST_P(Arrays, ReadOnlyTheBytesOfTheElementType)
{
    // One byte on the heap: an address checker sees any read beyond it.
    const auto byte = std::make_unique<CMPIUint8>(CMPIUint8{200});
    CMPIArray* a = array(1, CMPI_uint8);
    EXPECT_EQ(a->ft->setElementAt(a, 0, reinterpret_cast<const CMPIValue*>(byte.get()), CMPI_uint8).rc, CMPI_RC_OK);
    EXPECT_EQ(a->ft->getElementAt(a, 0, &status).value.uint8, 200);
}
