#include "cmpicpp/CmpiArray.h"

#include "BrokerTest.h"
#include "cmpicpp/CmpiInstance.h"
#include "cmpicpp/CmpiResults.h"

using namespace CmpiCpp;
using namespace KDV::Host;

namespace {

class CmpiArrayTest : public BrokerTest {
protected:
    static CMPIData at(const CmpiArray& array, CMPICount index)
    {
        CMPIStatus status{CMPI_RC_OK, nullptr};
        const CMPIData data = array.raw()->ft->getElementAt(array.raw(), index, &status);
        EXPECT_EQ(status.rc, CMPI_RC_OK);
        return data;
    }
    static std::string textAt(const CmpiArray& array, CMPICount index)
    {
        return std::string(textOf(at(array, index).value));
    }
};
KDV_FOR_EACH_PROFILE(CmpiArrayTest);

TEST_P(CmpiArrayTest, StoresNumbersInItsOwnType)
{
    inRequest([&] {
        for (CMPIType type :
             {CMPI_uint8, CMPI_uint16, CMPI_uint32, CMPI_uint64, CMPI_sint8, CMPI_sint16, CMPI_sint32, CMPI_sint64}) {
            CmpiArray array = makeCmpiArray(cmpi(), 2, type);
            array.setElementAt(1, 100);
            EXPECT_EQ(at(array, 1).type, type);
            // The member of every type begins at the same byte, and 100 fits all of them.
            EXPECT_EQ(at(array, 1).value.uint8, 100);
            EXPECT_EQ(array.elementType(), type);
            EXPECT_EQ(array.size(), 2u);
        }
    });
    expectClean();
}

TEST_P(CmpiArrayTest, KeepsTheValueOfWideAndNegativeNumbers)
{
    inRequest([&] {
        CmpiArray wide = makeCmpiArray(cmpi(), 1, CMPI_uint64);
        wide.setElementAt(0, ~std::uint64_t{0});
        EXPECT_EQ(at(wide, 0).value.uint64, ~std::uint64_t{0});
        CmpiArray negative = makeCmpiArray(cmpi(), 2, CMPI_sint16);
        negative.setElementAt(0, -3);
        EXPECT_EQ(at(negative, 0).value.sint16, -3);
        CmpiArray flags = makeCmpiArray(cmpi(), 2, CMPI_boolean);
        flags.setElementAt(0, true);
        flags.setElementAt(1, 0);
        EXPECT_EQ(at(flags, 0).value.boolean, 1);
        EXPECT_EQ(at(flags, 1).value.boolean, 0);
    });
    expectClean();
}

TEST_P(CmpiArrayTest, ChangesNothingOutsideItsLength)
{
    inRequest([&] {
        CmpiArray numbers = makeCmpiArray(cmpi(), 1, CMPI_uint16);
        numbers.setElementAt(1, 5);
        numbers.setElementAt(4000000000u, 5);
        CmpiArray texts = makeCmpiArray(cmpi(), 1, CMPI_string);
        texts.setElementAt(1, "outside");
        CmpiArray none = makeCmpiArray(cmpi(), 0, CMPI_string);
        none.setElementAt(0, "outside");
        CMPIStatus status{CMPI_RC_OK, nullptr};
        EXPECT_EQ(none.raw()->ft->getSize(none.raw(), &status), 0u);
        EXPECT_EQ(numbers.raw()->ft->getSize(numbers.raw(), &status), 1u);
        EXPECT_NE(at(numbers, 0).state & CMPI_nullValue, 0);
        EXPECT_NE(at(texts, 0).state & CMPI_nullValue, 0);
    });
    expectClean();
}

TEST_P(CmpiArrayTest, LeavesUnsetElementsNull)
{
    inRequest([&] {
        CmpiArray array = makeCmpiArray(cmpi(), 3, CMPI_string);
        array.setElementAt(1, "set");
        EXPECT_NE(at(array, 0).state & CMPI_nullValue, 0);
        EXPECT_EQ(textAt(array, 1), "set");
        EXPECT_NE(at(array, 2).state & CMPI_nullValue, 0);
    });
    expectClean();
}

TEST_P(CmpiArrayTest, HoldsItsTextsAndReleasesThem)
{
    inRequest([&] {
        for (CMPICount count : {1u, 4u, 5u, 40u}) {
            CmpiArray array = makeCmpiArray(cmpi(), count, CMPI_string);
            for (CMPICount i = 0; i < count; ++i)
                array.setElementAt(i, "text " + std::to_string(i));
            CmpiArray moved = std::move(array);
            for (CMPICount i = 0; i < count; ++i)
                EXPECT_EQ(textAt(moved, i), "text " + std::to_string(i));
        }
    });
    expectClean();
    EXPECT_EQ(broker.statistics().of(broker.statistics().made, ObjectKind::String), 50u);
}

TEST_P(CmpiArrayTest, ReplacesATextAndReleasesTheOldOne)
{
    inRequest([&] {
        CmpiArray array = makeCmpiArray(cmpi(), 2, CMPI_string);
        array.setElementAt(0, "old");
        array.setElementAt(0, std::string("new"));
        array.setElementAt(1, static_cast<const char*>(nullptr));
        EXPECT_EQ(textAt(array, 0), "new");
        EXPECT_EQ(textAt(array, 1), "");
    });
    expectClean();
}

TEST_P(CmpiArrayTest, MakesTextArraysOfStringObjects)
{
    inRequest([&] {
        CmpiArray array = makeCmpiArray(cmpi(), 1, CMPI_chars);
        EXPECT_EQ(array.elementType(), CMPI_string);
        array.setElementAt(0, "x");
        EXPECT_EQ(at(array, 0).type, CMPI_string);
    });
    expectClean();
}

TEST_P(CmpiArrayTest, RefusesValuesOfTheOtherKind)
{
    inRequest([&] {
        CmpiArray numbers = makeCmpiArray(cmpi(), 1, CMPI_uint16);
        EXPECT_EQ(codeOf([&] { numbers.setElementAt(0, "text"); }), CMPI_RC_ERR_TYPE_MISMATCH);
        CmpiArray texts = makeCmpiArray(cmpi(), 1, CMPI_string);
        EXPECT_EQ(codeOf([&] { texts.setElementAt(0, 1); }), CMPI_RC_ERR_TYPE_MISMATCH);
    });
    expectClean();
}

TEST_P(CmpiArrayTest, NeedsABroker)
{
    EXPECT_EQ(codeOf([] { makeCmpiArray(nullptr, 1, CMPI_uint16); }), CMPI_RC_ERR_INVALID_HANDLE);
}

} // namespace
