// Equality and fingerprint of paths over every kind of key that a server could send.
#include "ScriptedPath.h"
#include "cmpicpp/CmpiObjectPath.h"
#include "cmpicpp/CmpiStatus.h"

#include <algorithm>
#include <cctype>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using namespace CmpiCpp;

namespace {

constexpr const char* nameSpace = "root/vnr";

void expectEqual(const ScriptedPath& a, const ScriptedPath& b)
{
    EXPECT_TRUE(a.lent() == b.lent()) << a.lent().str() << " and " << b.lent().str();
    EXPECT_TRUE(b.lent() == a.lent());
    EXPECT_FALSE(a.lent() != b.lent());
    EXPECT_EQ(a.lent().fingerprint(), b.lent().fingerprint());
}

// Unequal paths nearly always differ in their fingerprints; those below are chosen ones that do.
void expectUnequal(const ScriptedPath& a, const ScriptedPath& b)
{
    EXPECT_FALSE(a.lent() == b.lent()) << a.lent().str() << " and " << b.lent().str();
    EXPECT_FALSE(b.lent() == a.lent());
    EXPECT_NE(a.lent().fingerprint(), b.lent().fingerprint());
}

class PathEquality : public testing::Test {
protected:
    PathEquality() { CmpiObjectPath::setDefaultNameSpace(nameSpace); }
};

TEST_F(PathEquality, IgnoresCaseOfClassNamespaceAndKeyNames)
{
    ScriptedPath a("KDV_SASFan", "root/vnr");
    ScriptedPath b("kdv_sasFAN", "ROOT/Vnr");
    a.text("DeviceID", "1");
    b.text("deviceid", "1");
    expectEqual(a, b);
}

TEST_F(PathEquality, ComparesTextsExactly)
{
    ScriptedPath a("C"), b("C"), c("C");
    a.text("Name", "Fan 1");
    b.text("Name", "fan 1");
    c.text("Name", "Fan 1 ");
    expectUnequal(a, b);
    expectUnequal(a, c);
}

TEST_F(PathEquality, IgnoresTheHost)
{
    expectEqual(ScriptedPath("C", nameSpace, "here"), ScriptedPath("C", nameSpace, "there"));
    expectEqual(ScriptedPath("C", nameSpace, nullptr), ScriptedPath("C", nameSpace, "there"));
}

TEST_F(PathEquality, TakesAMissingNamespaceForTheDefault)
{
    expectEqual(ScriptedPath("C", ""), ScriptedPath("C", "root/vnr"));
    expectEqual(ScriptedPath("C", nullptr), ScriptedPath("C", "ROOT/VNR"));
    expectUnequal(ScriptedPath("C", ""), ScriptedPath("C", "root/cimv2"));
    CmpiObjectPath::setDefaultNameSpace("root/cimv2");
    expectEqual(ScriptedPath("C", ""), ScriptedPath("C", "root/cimv2"));
}

TEST_F(PathEquality, IgnoresTheOrderOfKeys)
{
    ScriptedPath a("C"), b("C");
    a.text("One", "1").text("Two", "2").text("Three", "3");
    b.text("Three", "3").text("One", "1").text("Two", "2");
    expectEqual(a, b);
}

TEST_F(PathEquality, TellsKeysFromValues)
{
    ScriptedPath a("C"), b("C");
    a.text("One", "1").text("Two", "2");
    b.text("One", "2").text("Two", "1");
    expectUnequal(a, b);
}

TEST_F(PathEquality, NeedsTheSameSetOfKeys)
{
    ScriptedPath a("C"), b("C"), c("C"), none("C");
    a.text("One", "1").text("Two", "2");
    b.text("One", "1");
    c.text("One", "1").text("Other", "2");
    expectUnequal(a, b);
    expectUnequal(a, c);
    expectUnequal(b, none);
}

TEST_F(PathEquality, CountsRepeatedKeys)
{
    ScriptedPath a("C"), b("C"), c("C");
    a.text("One", "1").text("one", "1").text("Two", "2");
    b.text("Two", "2").text("ONE", "1").text("One", "1");
    c.text("One", "1").text("Two", "2").text("Two", "2");
    expectEqual(a, b);
    expectUnequal(a, c);
}

TEST_F(PathEquality, ComparesNumbersByValueAcrossTypes)
{
    std::vector<std::unique_ptr<ScriptedPath>> paths;
    for (CMPIType type : {CMPI_uint8, CMPI_uint16, CMPI_uint32, CMPI_uint64})
        paths.emplace_back(new ScriptedPath("C"))->unsignedNumber("Number", type, 77);
    for (CMPIType type : {CMPI_sint8, CMPI_sint16, CMPI_sint32, CMPI_sint64})
        paths.emplace_back(new ScriptedPath("C"))->signedNumber("Number", type, 77);
    for (const auto& a : paths) {
        for (const auto& b : paths)
            expectEqual(*a, *b);
    }
}

TEST_F(PathEquality, TellsNegativeFromLargeNumbers)
{
    ScriptedPath minus("C"), narrow("C"), largest("C");
    minus.signedNumber("N", CMPI_sint64, -1);
    narrow.signedNumber("N", CMPI_sint8, -1);
    largest.unsignedNumber("N", CMPI_uint64, std::numeric_limits<std::uint64_t>::max());
    expectEqual(minus, narrow);
    expectUnequal(minus, largest);
}

TEST_F(PathEquality, TellsKindsApart)
{
    std::vector<std::unique_ptr<ScriptedPath>> paths;
    paths.emplace_back(new ScriptedPath("C"))->text("K", "1");
    paths.emplace_back(new ScriptedPath("C"))->unsignedNumber("K", CMPI_uint16, 1);
    paths.emplace_back(new ScriptedPath("C"))->unsignedNumber("K", CMPI_char16, 1);
    paths.emplace_back(new ScriptedPath("C"))->boolean("K", true);
    paths.emplace_back(new ScriptedPath("C"))->real("K", CMPI_real64, 1.0);
    paths.emplace_back(new ScriptedPath("C"))->key("K", CMPI_string, CMPI_nullValue, CMPIValue{});
    for (const auto& a : paths) {
        for (const auto& b : paths) {
            if (a != b) expectUnequal(*a, *b);
        }
    }
}

TEST_F(PathEquality, TakesEveryTrueByteForTrue)
{
    ScriptedPath a("C"), b("C"), c("C");
    CMPIValue one{};
    one.boolean = 1;
    a.boolean("On", true);
    b.key("On", CMPI_boolean, CMPI_goodValue, one);
    c.boolean("On", false);
    expectEqual(a, b);
    expectUnequal(a, c);
}

TEST_F(PathEquality, ComparesRealsByValue)
{
    ScriptedPath a("C"), b("C"), zero("C"), minusZero("C"), none("C"), other("C");
    a.real("R", CMPI_real32, 0.5);
    b.real("R", CMPI_real64, 0.5);
    zero.real("R", CMPI_real64, 0.0);
    minusZero.real("R", CMPI_real64, -0.0);
    none.real("R", CMPI_real64, std::numeric_limits<double>::quiet_NaN());
    other.real("R", CMPI_real32, -std::numeric_limits<double>::quiet_NaN());
    expectEqual(a, b);
    expectEqual(zero, minusZero);
    expectEqual(none, other);
    expectUnequal(a, zero);
}

TEST_F(PathEquality, ReadsTextsInBothForms)
{
    ScriptedPath a("C"), b("C"), empty("C"), null("C");
    a.text("Name", "x");
    b.chars("Name", "x");
    empty.text("Name", "");
    null.text("Name", nullptr);
    expectEqual(a, b);
    expectEqual(empty, null);
    expectUnequal(a, empty);
}

TEST_F(PathEquality, ComparesReferencesByTheSameRule)
{
    ScriptedPath end("KDV_SASFan", "root/vnr", "here"), sameEnd("kdv_sasfan", "", nullptr), otherEnd("KDV_SASFan");
    end.text("DeviceID", "1").text("SystemName", "s");
    sameEnd.text("systemname", "s").text("deviceid", "1");
    otherEnd.text("DeviceID", "2").text("SystemName", "s");
    ScriptedPath a("Link"), b("Link"), c("Link"), d("Link");
    a.reference("Antecedent", &end).reference("Dependent", &otherEnd);
    b.reference("dependent", &otherEnd).reference("ANTECEDENT", &sameEnd);
    c.reference("Antecedent", &otherEnd).reference("Dependent", &end);
    d.reference("Antecedent", nullptr).reference("Dependent", &otherEnd);
    expectEqual(a, b);
    expectUnequal(a, c);
    expectUnequal(a, d);
}

TEST_F(PathEquality, StopsAtReferencesNestedTooDeep)
{
    // Two towers of references, deeper than any real path; a walk without a limit would be the sender's to steer.
    std::vector<std::unique_ptr<ScriptedPath>> left, right;
    left.emplace_back(new ScriptedPath("C"));
    right.emplace_back(new ScriptedPath("C"));
    for (int i = 0; i < 10000; ++i) {
        const CMPIObjectPath* below = left.back().get();
        left.emplace_back(new ScriptedPath("C"))->reference("R", below);
        below = right.back().get();
        right.emplace_back(new ScriptedPath("C"))->reference("R", below);
    }
    EXPECT_FALSE(left.back()->lent() == right.back()->lent());
    EXPECT_EQ(left.back()->lent().fingerprint(), right.back()->lent().fingerprint());
    expectEqual(*left[4], *right[4]);
    EXPECT_LT(left.back()->lent().str().size(), 10000u);
}

TEST_F(PathEquality, StopsAtAReferenceToItself)
{
    ScriptedPath a("C"), b("C");
    a.reference("R", &a);
    b.reference("R", &b);
    EXPECT_TRUE(a.lent() == a.lent());
    EXPECT_FALSE(a.lent() == b.lent());
    EXPECT_EQ(a.lent().fingerprint(), b.lent().fingerprint());
    EXPECT_LT(a.lent().str().size(), 10000u);
}

TEST_F(PathEquality, HoldsForPathsWithManyKeys)
{
    ScriptedPath a("C"), b("C");
    for (int i = 0; i < 100; ++i)
        a.text(("Key" + std::to_string(i)).c_str(), std::to_string(i).c_str());
    for (int i = 99; i >= 0; --i)
        b.text(("KEY" + std::to_string(i)).c_str(), std::to_string(i).c_str());
    expectEqual(a, b);
    b.keys[50].data.value.string = b.keep("other");
    expectUnequal(a, b);
}

TEST_F(PathEquality, TreatsNoObjectAsTheEmptyPath)
{
    const CmpiObjectPath none = CmpiObjectPath::lent(nullptr);
    const CmpiObjectPath made = makeCmpiObjectPath(nullptr);
    const ScriptedPath blank("", "");
    EXPECT_TRUE(none == made);
    EXPECT_TRUE(none == blank.lent());
    EXPECT_EQ(none.fingerprint(), blank.lent().fingerprint());
    EXPECT_FALSE(none == ScriptedPath("C").lent());
}

TEST_F(PathEquality, ReportsABrokerThatFails)
{
    ScriptedPath a("C"), b("C");
    a.text("K", "1");
    b.text("K", "1");
    b.failing = CMPI_RC_ERR_FAILED;
    EXPECT_THROW(static_cast<void>(a.lent() == b.lent()), CmpiStatus);
    EXPECT_THROW(static_cast<void>(b.lent().fingerprint()), CmpiStatus);
}

// One random path as a recipe, so that it can be written down in several ways.
class Recipe {
public:
    Recipe(std::mt19937& random, int depth)
    {
        _className = pick(random, {"KDV_SASFan", "KDV_SASDiskDrive", "C"});
        const int count = std::uniform_int_distribution<>(0, 3)(random);
        for (int i = 0; i < count; ++i) {
            Part part;
            part.name = "Key" + std::to_string(i);
            part.kind = std::uniform_int_distribution<>(0, depth > 0 ? 4 : 3)(random);
            part.number = std::uniform_int_distribution<>(-2, 2)(random);
            if (part.kind == 4) part.target = std::make_unique<Recipe>(random, depth - 1);
            _parts.push_back(std::move(part));
        }
    }

    // The path, with everything that plays no part chosen anew.
    ScriptedPath& write(std::mt19937& random, std::vector<std::unique_ptr<ScriptedPath>>& kept) const
    {
        std::vector<const Part*> order;
        for (const Part& part : _parts)
            order.push_back(&part);
        std::shuffle(order.begin(), order.end(), random);
        kept.emplace_back(new ScriptedPath(recased(_className, random).c_str(),
                                           pick(random, {"root/vnr", "Root/VNR", ""}).c_str(),
                                           pick(random, {"", "host", "other"}).c_str()));
        ScriptedPath& path = *kept.back();
        for (const Part* part : order)
            writeKey(path, *part, random, kept);
        return path;
    }

    // The plain rule, on the recipes themselves.
    bool operator==(const Recipe& other) const
    {
        return _className == other._className && _parts.size() == other._parts.size() &&
               std::equal(_parts.begin(), _parts.end(), other._parts.begin(), [](const Part& a, const Part& b) {
                   return a.kind == b.kind && (a.kind == 4 ? *a.target == *b.target : valueOf(a) == valueOf(b));
               });
    }

private:
    struct Part {
        std::string name;
        int kind = 0; // text, number, boolean, null, reference
        int number = 0;
        std::unique_ptr<Recipe> target;
    };

    static int valueOf(const Part& part) { return part.kind == 2 ? part.number > 0 : part.kind == 3 ? 0 : part.number; }

    static std::string pick(std::mt19937& random, std::vector<std::string> choices)
    {
        return choices[std::uniform_int_distribution<std::size_t>(0, choices.size() - 1)(random)];
    }

    static std::string recased(std::string text, std::mt19937& random)
    {
        for (char& c : text) {
            if (random() % 2) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        }
        return text;
    }

    static void writeKey(ScriptedPath& path, const Part& part, std::mt19937& random,
                         std::vector<std::unique_ptr<ScriptedPath>>& kept)
    {
        const std::string name = recased(part.name, random);
        constexpr CMPIType signedTypes[] = {CMPI_sint8, CMPI_sint16, CMPI_sint32, CMPI_sint64};
        constexpr CMPIType unsignedTypes[] = {CMPI_uint8, CMPI_uint16, CMPI_uint32, CMPI_uint64};
        if (part.kind == 0)
            path.text(name.c_str(), std::to_string(part.number).c_str());
        else if (part.kind == 1 && (part.number < 0 || random() % 2))
            path.signedNumber(name.c_str(), signedTypes[random() % 4], part.number);
        else if (part.kind == 1)
            path.unsignedNumber(name.c_str(), unsignedTypes[random() % 4], static_cast<std::uint64_t>(part.number));
        else if (part.kind == 2)
            path.boolean(name.c_str(), part.number > 0);
        else if (part.kind == 3)
            path.key(name.c_str(), CMPI_string, CMPI_nullValue, CMPIValue{});
        else
            path.reference(name.c_str(), &part.target->write(random, kept));
    }

    std::string _className;
    std::vector<Part> _parts;
};

TEST_F(PathEquality, AgreesWithThePlainRuleOnRandomPaths)
{
    std::mt19937 random(20240611);
    std::vector<std::unique_ptr<Recipe>> recipes;
    for (int i = 0; i < 120; ++i)
        recipes.push_back(std::make_unique<Recipe>(random, 2));
    int equal = 0;
    int unequalWithEqualFingerprint = 0;
    for (const auto& a : recipes) {
        for (const auto& b : recipes) {
            std::vector<std::unique_ptr<ScriptedPath>> kept;
            const ScriptedPath& left = a->write(random, kept);
            const ScriptedPath& right = b->write(random, kept);
            ASSERT_EQ(left.lent() == right.lent(), *a == *b) << left.lent().str() << " and " << right.lent().str();
            const bool sameFingerprint = left.lent().fingerprint() == right.lent().fingerprint();
            if (*a == *b) {
                ++equal;
                ASSERT_TRUE(sameFingerprint) << left.lent().str() << " and " << right.lent().str();
            } else {
                unequalWithEqualFingerprint += sameFingerprint;
            }
        }
    }
    EXPECT_GT(equal, 120); // more than each with itself
    EXPECT_EQ(unequalWithEqualFingerprint, 0);
}

} // namespace
