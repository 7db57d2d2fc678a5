#include "hostschema/ClassRepository.h"

#include <gmock/gmock.h>

using namespace KDV::Host;
using testing::ElementsAre;

namespace {

const char* const family = R"(
class Base {
    [Key, Description("the name")] string Name;
    uint16 State = 12;
    [Values{"a", "b"}] uint16 Codes[] = {1, 2};
    uint32 Reset();
};
class Middle : Base {
    boolean Extra;
    [Override("State")] uint16 State = NULL;
    [Override("Reset"), Description("again")] uint32 Reset(string Why);
};
class Leaf : Middle {
    [Override("Codes")] uint16 codes[];
    string Last;
};
class Other : Base { };
)";

struct Family : testing::Test {
    Family() { repository.loadText(family, "root/Test"); }
    const ClassInfo& of(const char* name) { return *repository.find("root/test", name); }
    ClassRepository repository;
};

std::vector<std::string> names(const std::vector<const ClassInfo*>& classes)
{
    std::vector<std::string> all;
    for (const ClassInfo* info : classes)
        all.push_back(info->name());
    return all;
}

} // namespace

TEST_F(Family, FindsClassesAndNamespacesWithoutRegardToCase)
{
    EXPECT_EQ(repository.find("ROOT/TEST", "LEAF"), repository.find("/root/test/", "leaf"));
    EXPECT_NE(repository.find("root/test", "Leaf"), nullptr);
    EXPECT_EQ(repository.find("root/test", "Leaf2"), nullptr);
    EXPECT_EQ(repository.find("root/tes", "Leaf"), nullptr);
    EXPECT_EQ(repository.find("root\\test", "Leaf"), nullptr);
    EXPECT_EQ(repository.find("", ""), nullptr);
}

TEST_F(Family, KeepsNamespacesApart)
{
    repository.loadText("class Leaf { string Alone; };", "interop");
    EXPECT_NE(repository.find("interop", "Leaf"), repository.find("root/test", "Leaf"));
    EXPECT_EQ(repository.find("interop", "Base"), nullptr);
    EXPECT_FALSE(isA(repository.find("interop", "Leaf"), &of("Base")));
}

TEST_F(Family, ReachesANamespaceByItsAlias)
{
    repository.addAlias("root/interop", "interop");
    repository.loadText("class One { };", "Root/Interop");
    EXPECT_NE(repository.find("interop", "One"), nullptr);
    EXPECT_EQ(repository.findNamespace("root/interop")->name(), "interop");
    EXPECT_EQ(repository.namespaces().size(), 2u);
}

TEST_F(Family, FlattensPropertiesWithOverridesInPlace)
{
    std::vector<std::string> properties;
    for (const PropertyInfo& property : of("Leaf").properties())
        properties.push_back(property.name + "/" + property.origin->name() + (property.propagated ? "" : "*"));
    EXPECT_THAT(properties, ElementsAre("Name/Base", "State/Base", "codes/Base*", "Extra/Middle", "Last/Leaf*"));
    EXPECT_THAT(of("Leaf").keys(), ElementsAre(0));
    EXPECT_EQ(of("Leaf").superclass(), &of("Middle"));
    EXPECT_EQ(of("Base").superclass(), nullptr);
}

TEST_F(Family, InheritsDefaultsUntilAnOverrideWritesNull)
{
    EXPECT_EQ(of("Other").findProperty("State")->defaultValue.number.uint16, 12u);
    EXPECT_TRUE(of("Middle").findProperty("State")->defaultValue.isNull);
    EXPECT_TRUE(of("Leaf").findProperty("State")->defaultValue.isNull);
    EXPECT_EQ(of("Leaf").findProperty("Codes")->defaultValue.elements.size(), 2u);
}

TEST_F(Family, InheritsQualifiersThatGoToSubclasses)
{
    const PropertyInfo& name = *of("Leaf").findProperty("Name");
    EXPECT_TRUE(name.qualifiers.isTrue("Key"));
    EXPECT_TRUE(name.qualifiers.find("Description")->propagated);
    EXPECT_NE(of("Leaf").findProperty("Codes")->qualifiers.find("Values"), nullptr);
    EXPECT_EQ(of("Leaf").findProperty("State")->qualifiers.find("Override"), nullptr);
    EXPECT_NE(of("Middle").findProperty("State")->qualifiers.find("Override"), nullptr);
}

TEST_F(Family, OverridesMethodsInPlace)
{
    ASSERT_EQ(of("Leaf").methods().size(), 1u);
    const MethodInfo& reset = of("Leaf").methods()[0];
    EXPECT_EQ(reset.parameters.size(), 1u);
    EXPECT_EQ(reset.origin, &of("Base"));
    EXPECT_TRUE(reset.propagated);
    EXPECT_FALSE(of("Middle").methods()[0].propagated);
}

TEST_F(Family, KnowsWhatIsBelowWhat)
{
    EXPECT_TRUE(of("Leaf").isA(of("Leaf")));
    EXPECT_TRUE(of("Leaf").isA(of("Middle")));
    EXPECT_TRUE(of("Leaf").isA(of("Base")));
    EXPECT_FALSE(of("Base").isA(of("Leaf")));
    EXPECT_FALSE(of("Leaf").isA(of("Other")));
    EXPECT_FALSE(isA(nullptr, &of("Base")));
    EXPECT_FALSE(isA(&of("Base"), nullptr));
}

TEST_F(Family, ListsSubclassesFlatAndDeep)
{
    const Namespace& space = *repository.findNamespace("root/test");
    EXPECT_THAT(names(space.subclasses(&of("Base"), false)), ElementsAre("Middle", "Other"));
    EXPECT_THAT(names(space.subclasses(&of("Base"), true)), ElementsAre("Middle", "Leaf", "Other"));
    EXPECT_THAT(names(space.subclasses(nullptr, false)), ElementsAre("Base"));
    EXPECT_THAT(names(space.subclasses(nullptr, true)), ElementsAre("Base", "Middle", "Leaf", "Other"));
    EXPECT_THAT(names(space.subclasses(&of("Leaf"), true)), ElementsAre());
}

TEST_F(Family, FindsPropertiesByAnySpelling)
{
    EXPECT_EQ(of("Leaf").property("NAME"), 0);
    EXPECT_EQ(of("Leaf").property("CODES"), 2);
    EXPECT_EQ(of("Leaf").property("last"), 4);
    EXPECT_EQ(of("Leaf").property("Nam"), -1);
    EXPECT_EQ(of("Leaf").property("Namee"), -1);
    EXPECT_EQ(of("Leaf").property(""), -1);
}

TEST_F(Family, FindsThePropertyThatFollowsWhateverTheGuess)
{
    const ClassInfo& leaf = of("Leaf");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(leaf.propertyAfter(-1, "Last"), 4);
        EXPECT_EQ(leaf.propertyAfter(4, "Name"), 0);
        EXPECT_EQ(leaf.propertyAfter(0, "State"), 1);
        EXPECT_EQ(leaf.propertyAfter(0, "Extra"), 3);
        EXPECT_EQ(leaf.propertyAfter(3, "eXTRA"), 3);
        EXPECT_EQ(leaf.propertyAfter(3, "Nothing"), -1);
    }
}

TEST_F(Family, NumbersClassesDensely)
{
    EXPECT_EQ(repository.classCount(), 4u);
    EXPECT_EQ(of("Base").number(), 0u);
    EXPECT_EQ(of("Other").number(), 3u);
}

TEST(ClassRepository, FindsEveryPropertyOfALargeClass)
{
    std::string mof = "class Wide {";
    for (int i = 0; i < 1000; ++i)
        mof += " uint32 Property" + std::to_string(i) + ";";
    ClassRepository repository;
    repository.loadText(mof + " };", "root");
    const ClassInfo& wide = *repository.find("root", "Wide");
    for (int i = 0; i < 1000; ++i)
        EXPECT_EQ(wide.property("PROPERTY" + std::to_string(i)), i);
    EXPECT_EQ(wide.property("Property1000"), -1);
}
