#include "hostschema/ClassRepository.h"

#include <fstream>

#include <gmock/gmock.h>

using namespace KDV::Host;
using testing::ElementsAre;

namespace {

const std::string space = "root/test";

const PropertyInfo& property(const ClassRepository& repository, const char* className, const char* name)
{
    const ClassInfo* info = repository.find(space, className);
    if (!info || !info->findProperty(name)) throw std::runtime_error(std::string("no ") + className + "." + name);
    return *info->findProperty(name);
}

// The default that one property of a class of its own gets.
SchemaValue defaultOf(const std::string& declaration)
{
    ClassRepository repository;
    repository.loadText("class X { " + declaration + "; };", space);
    return repository.find(space, "X")->properties()[0].defaultValue;
}

std::vector<std::string> texts(const SchemaValue& value)
{
    std::vector<std::string> all;
    for (const SchemaValue& element : value.elements)
        all.push_back(element.text);
    return all;
}

} // namespace

TEST(MofReader, ReadsEveryTypeOfProperty)
{
    ClassRepository repository;
    repository.loadText(
        "class Y { };"
        "class X { boolean A; uint8 B; uint16 C; uint32 D; uint64 E; sint8 F; sint16 G; sint32 H;"
        " sint64 I; real32 J; real64 K; char16 L; string M; datetime N; Y REF O; string P[]; uint16 Q[4];"
        " [EmbeddedInstance(\"Y\")] string R; [EmbeddedObject] string S[]; };",
        space);
    std::vector<CMPIType> types;
    for (const PropertyInfo& info : repository.find(space, "x")->properties())
        types.push_back(info.type);
    EXPECT_THAT(types,
                ElementsAre(CMPI_boolean, CMPI_uint8, CMPI_uint16, CMPI_uint32, CMPI_uint64, CMPI_sint8, CMPI_sint16,
                            CMPI_sint32, CMPI_sint64, CMPI_real32, CMPI_real64, CMPI_char16, CMPI_string, CMPI_dateTime,
                            CMPI_ref, CMPI_stringA, CMPI_uint16A, CMPI_instance, CMPI_instanceA));
    EXPECT_EQ(property(repository, "X", "O").referenceClass, "Y");
    EXPECT_EQ(property(repository, "X", "P").arraySize, 0u);
    EXPECT_EQ(property(repository, "X", "Q").arraySize, 4u);
}

TEST(MofReader, ReadsNumbersInEveryForm)
{
    EXPECT_EQ(defaultOf("uint32 P = 4294967295").number.uint32, 4294967295u);
    EXPECT_EQ(defaultOf("uint16 P = 0x1Ff").number.uint16, 0x1ffu);
    EXPECT_EQ(defaultOf("uint8 P = 1011b").number.uint8, 11u);
    EXPECT_EQ(defaultOf("uint8 P = 017").number.uint8, 15u);
    EXPECT_EQ(defaultOf("uint8 P = 0").number.uint8, 0u);
    EXPECT_EQ(defaultOf("sint8 P = -128").number.sint8, -128);
    EXPECT_EQ(defaultOf("sint64 P = -9223372036854775808").number.sint64, INT64_MIN);
    EXPECT_EQ(defaultOf("sint32 P = +7").number.sint32, 7);
    EXPECT_EQ(defaultOf("uint64 P = 18446744073709551615").number.uint64, UINT64_MAX);
    EXPECT_DOUBLE_EQ(defaultOf("real64 P = -1.5e3").number.real64, -1500.0);
    EXPECT_FLOAT_EQ(defaultOf("real32 P = .25").number.real32, 0.25f);
    EXPECT_DOUBLE_EQ(defaultOf("real64 P = 3").number.real64, 3.0);
}

TEST(MofReader, ReadsTextsWithEscapesAndConcatenation)
{
    EXPECT_EQ(defaultOf(R"(string P = "a" /* between */ "b\tc\"\\\n"
                            "d")")
                  .text,
              "ab\tc\"\\\nd");
    EXPECT_EQ(defaultOf(R"(string P = "\x41\xe9\x20AC!")").text, "A\xc3\xa9\xe2\x82\xac!");
    EXPECT_EQ(defaultOf(R"(char16 P = '\x20AC')").number.char16, 0x20acu);
    EXPECT_EQ(defaultOf("char16 P = 'z'").number.char16, 'z');
    EXPECT_EQ(defaultOf("datetime P = \"19980525133015.000000-300\"").text, "19980525133015.000000-300");
}

TEST(MofReader, ReadsBooleansNullsAndListsWithoutRegardToCase)
{
    EXPECT_EQ(defaultOf("boolean P = TRUE").number.boolean, 1);
    EXPECT_EQ(defaultOf("boolean P = False").number.boolean, 0);
    EXPECT_FALSE(defaultOf("boolean P = False").isNull);
    EXPECT_TRUE(defaultOf("uint16 P = null").isNull);
    EXPECT_TRUE(defaultOf("uint16 P").isNull);
    EXPECT_THAT(texts(defaultOf("string P[] = {\"a\", \"b\" \"c\", NULL}")), ElementsAre("a", "bc", ""));
    EXPECT_TRUE(defaultOf("string P[] = {\"a\", NULL}").elements[1].isNull);
    const SchemaValue empty = defaultOf("string P[] = {}");
    EXPECT_FALSE(empty.isNull);
    EXPECT_TRUE(empty.elements.empty());
}

TEST(MofReader, KeepsQualifiersInOrderWithTheirFlavors)
{
    ClassRepository repository;
    repository.loadText(
        "Qualifier Description : string = null, Scope(any), Flavor(EnableOverride, Translatable);\n"
        "Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride);\n"
        "Qualifier ValueMap : string[], Scope(property);\n"
        "Qualifier MaxLen : uint32 = 4, Scope(property);\n"
        "[Description(\"a class\"), Version(\"1.0.0\") : Restricted] class X {\n"
        "  [Key, Description(\"it\" \"s name\"), MaxLen(64), ValueMap{\"1\", \"2\"} : DisableOverride ToSubclass]\n"
        "  string Name; };",
        space);
    const ClassInfo& info = *repository.find(space, "X");
    EXPECT_EQ(info.qualifiers().find("version")->value.text, "1.0.0");
    EXPECT_FALSE(info.qualifiers().find("Version")->toSubclass);
    EXPECT_TRUE(info.qualifiers().find("Description")->translatable);
    const PropertyInfo& name = info.properties()[0];
    std::vector<std::string> names;
    for (const QualifierInfo& qualifier : name.qualifiers)
        names.push_back(qualifier.name);
    EXPECT_THAT(names, ElementsAre("Key", "Description", "MaxLen", "ValueMap"));
    EXPECT_FALSE(name.qualifiers.find("key")->overridable);
    EXPECT_EQ(name.qualifiers.find("description")->value.text, "its name");
    EXPECT_EQ(name.qualifiers.find("maxlen")->value.type, CMPI_uint32);
    EXPECT_EQ(name.qualifiers.find("maxlen")->value.number.uint32, 64u);
    EXPECT_THAT(texts(name.qualifiers.find("ValueMap")->value), ElementsAre("1", "2"));
    EXPECT_FALSE(name.qualifiers.find("ValueMap")->overridable);
}

TEST(MofReader, TakesStandardQualifiersWithoutTheirDeclarations)
{
    ClassRepository repository;
    repository.loadText("[Association, Version(\"2.0.0\")] class X { [Key] string A; [Key(false)] string B;"
                        " [Max(1), Weight(0.5)] uint8 C; }; class Y : X { };",
                        space);
    const ClassInfo& info = *repository.find(space, "X");
    EXPECT_TRUE(info.isAssociation());
    EXPECT_THAT(info.keys(), ElementsAre(0));
    EXPECT_EQ(property(repository, "X", "C").qualifiers.find("Max")->value.number.sint64, 1);
    EXPECT_TRUE(repository.find(space, "Y")->isAssociation());
    EXPECT_EQ(repository.find(space, "Y")->qualifiers().find("Version"), nullptr);
}

TEST(MofReader, ReadsMethodsWithParameters)
{
    ClassRepository repository;
    repository.loadText(
        "class Y { }; class X { [Description(\"works\")] uint32 Work();\n"
        " string Ask([In] string Question, [In(false), Out] uint16 Codes[], [Out] Y REF Who, Y REF All[]); };",
        space);
    const ClassInfo& info = *repository.find(space, "X");
    ASSERT_EQ(info.methods().size(), 2u);
    EXPECT_EQ(info.findMethod("work")->returnType, CMPI_uint32);
    EXPECT_TRUE(info.findMethod("Work")->parameters.empty());
    const MethodInfo& ask = *info.findMethod("ASK");
    ASSERT_EQ(ask.parameters.size(), 4u);
    EXPECT_TRUE(ask.parameters[0].in);
    EXPECT_FALSE(ask.parameters[0].out);
    EXPECT_EQ(ask.parameters[1].type, CMPI_uint16A);
    EXPECT_FALSE(ask.parameters[1].in);
    EXPECT_TRUE(ask.parameters[1].out);
    EXPECT_EQ(ask.parameters[2].referenceClass, "Y");
    EXPECT_TRUE(ask.parameters[2].in);
    EXPECT_EQ(ask.parameters[3].type, CMPI_refA);
}

TEST(MofReader, SkipsCommentsAndPragmas)
{
    ClassRepository repository;
    repository.loadText("\xef\xbb\xbf// one\n/* class Z { }; \n ** */ #pragma locale (\"en_US\")\n"
                        "#pragma namespace (\"root/other\")\nclass X { }; // the end",
                        space);
    EXPECT_NE(repository.find(space, "X"), nullptr);
    EXPECT_EQ(repository.find(space, "Z"), nullptr);
    EXPECT_EQ(repository.findNamespace("root/other"), nullptr);
}

TEST(MofReader, ReadsStaticInstances)
{
    ClassRepository repository;
    repository.loadText("class X { [Key] string Name; uint16 Codes[]; };\n"
                        "[Description(\"made\")] instance of X as $One { Name = \"one\"; codes = {1, 2}; };",
                        space);
    const auto& instances = repository.findNamespace(space)->instances();
    ASSERT_EQ(instances.size(), 1u);
    EXPECT_EQ(instances[0].classInfo->name(), "X");
    ASSERT_EQ(instances[0].values.size(), 2u);
    EXPECT_EQ(instances[0].values[0].first->name, "Name");
    EXPECT_EQ(instances[0].values[0].second.text, "one");
    EXPECT_EQ(instances[0].values[1].second.elements[1].number.uint16, 2u);
}

TEST(MofReader, FollowsIncludesBesideTheFileOnce)
{
    const std::filesystem::path folder = testing::TempDir() + "/mof-includes";
    std::filesystem::create_directories(folder / "sub");
    std::ofstream(folder / "main.mof") << "#pragma include (\"sub/base.mof\")\n#pragma include (\"sub/base.mof\")\n"
                                          "class X : Base { };";
    std::ofstream(folder / "sub/base.mof") << "#pragma include (\"../main.mof\")\nclass Base { };";
    ClassRepository repository;
    repository.loadFile(folder / "main.mof", space);
    ASSERT_NE(repository.find(space, "X"), nullptr);
    EXPECT_EQ(repository.find(space, "X")->superclass()->name(), "Base");
    repository.loadFile(folder / "main.mof", "root/second");
    EXPECT_NE(repository.find("root/second", "X"), nullptr);
    std::filesystem::remove_all(folder);
}

TEST(MofReader, ReadsTheShippedSchema)
{
    ClassRepository repository;
    repository.loadFile(KDV_SOURCE_DIR "/schema/core/cim-core.mof", "root/vnr");
    repository.loadFile(KDV_SOURCE_DIR "/schema/kdv-sas.mof", "root/vnr");
    EXPECT_NO_THROW(repository.checkReferences());
    const ClassInfo* drive = repository.find("root/vnr", "KDV_SASDiskDrive");
    ASSERT_NE(drive, nullptr);
    std::vector<std::string> keys;
    for (int index : drive->keys())
        keys.push_back(drive->properties()[static_cast<std::size_t>(index)].name);
    EXPECT_THAT(
        keys, testing::UnorderedElementsAre("SystemCreationClassName", "SystemName", "CreationClassName", "DeviceID"));
    EXPECT_EQ(drive->findProperty("OperationalStatus")->type, CMPI_uint16A);
    EXPECT_TRUE(drive->isA(*repository.find("root/vnr", "CIM_ManagedElement")));
}
