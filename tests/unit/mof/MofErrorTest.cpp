#include "hostschema/ClassRepository.h"

#include <fstream>

#include <gmock/gmock.h>

using namespace KDV::Host;
using testing::HasSubstr;

namespace {

std::string errorOf(const std::string& mof)
{
    ClassRepository repository;
    try {
        repository.loadText(mof, "root/test", "bad.mof");
        repository.checkReferences();
    } catch (const MofError& error) {
        EXPECT_EQ(error.file(), "bad.mof");
        return error.what();
    }
    return "no error";
}

struct BadText {
    const char* name;
    const char* mof;
    unsigned line;
    const char* says;
};

class MofErrors : public testing::TestWithParam<BadText> {};

const BadText badTexts[] = {
    {"MissingSemicolon", "class X {\n string A\n};", 3, "expected \";\", found \"}\""},
    {"MissingBrace", "class X {\n string A;\n", 3, "expected a type or the name of a class, found the end of the file"},
    {"UnknownType", "class X {\n\n strin A; };", 3, "expected \"REF\" after the class name \"strin\""},
    {"NoDeclaration", "\nclas X { };", 2,
     "expected \"class\", \"instance\", \"qualifier\" or \"#pragma\", found \"clas\""},
    {"StrayByte", "class X { };\n@", 2, "found the character \"@\""},
    {"OpenString", "class X { string A = \"abc\n\"; };", 1, "expected \" to end the text"},
    {"OpenComment", "class X { };\n/* never\n\nends", 2, "expected \"*/\""},
    {"BadEscape", "class X { string A = \"\\q\"; };", 1, "after a backslash"},
    {"NulEscape", "class X { string A = \"\\x0\"; };", 1, "not all zero"},
    {"Surrogate", "class X { string A = \"\\xd800\"; };", 1, "surrogate"},
    {"LongCharacter", "class X { char16 A = 'ab'; };", 1, "one character between the apostrophes"},
    {"TooBigForByte", "class X {\n uint8 A = 256; };", 2,
     "expected an integer that fits the type, found the number 256"},
    {"NegativeUnsigned", "class X { uint32 A = -1; };", 1, "found the number -1"},
    {"TooSmallSigned", "class X { sint8 A = -129; };", 1, "found the number -129"},
    {"MoreThan64Bits", "class X { uint64 A = 18446744073709551616; };", 1, "at most 64 bits"},
    {"BadOctal", "class X { uint64 A = 089; };", 1, "expected an integer"},
    {"BadReal", "class X { real32 A = 1.e; };", 1, "expected a real number"},
    {"TextForNumber", "class X { uint8 A = \"1\"; };", 1,
     "expected an integer that fits the type, found the string \"1\""},
    {"NumberForBoolean", "class X { boolean A = 1; };", 1, "expected TRUE or FALSE"},
    {"ShortDate", "class X { datetime A = \"1998\"; };", 1, "25 characters"},
    {"ListForOne", "class X { uint8 A = {1}; };", 1, "expected one value, found a list"},
    {"OneForList", "class X { uint8 A[] = 1; };", 1, "expected a list of values in braces"},
    {"ArraySizeZero", "class X { uint8 A[0]; };", 1, "expected the size of the array"},
    {"UnknownSuperclass", "\n\nclass X : Y { };", 3,
     "expected a class declared before as superclass of X, found \"Y\""},
    {"ClassTwice", "class X { };\nclass x { };", 2, "declared a second time"},
    {"PropertyTwice", "class X { string A;\n string a; };", 2, "declared twice"},
    {"MethodTwice", "class X { uint32 A();\n uint32 a(); };", 2, "declared twice"},
    {"OverrideOtherType", "class X { string A; };\nclass Y : X {\n uint8 A; };", 3, "another type than in X"},
    {"OverrideOtherArray", "class X { string A[]; };\nclass Y : X { string A; };", 2, "another type than in X"},
    {"KeyAdded", "class X { [Key] string A; };\nclass Y : X { [Key] string B; };", 2,
     "added to those that X has already"},
    {"BelowTerminal", "[Terminal] class X { };\nclass Y : X { };", 2, "terminal"},
    {"QualifierTwice", "class X { [Key, key] string A; };", 1, "written twice"},
    {"QualifierNoValue", "Qualifier MaxLen : uint32, Scope(any);\nclass X { [MaxLen] string A; };", 2,
     "expected a value"},
    {"QualifierBadValue", "Qualifier MaxLen : uint32, Scope(any);\nclass X { [MaxLen(\"a\")] string A; };", 2,
     "an integer that fits"},
    {"QualifierNoScope", "Qualifier MaxLen : uint32;", 1, "expected \"Scope\""},
    {"BadFlavor", "class X { [Key : Sometimes] string A; };", 1, "expected a flavor"},
    {"UnknownInstance", "instance of X { };", 1, "expected an instance of a declared class"},
    {"UnknownProperty", "class X { };\ninstance of X {\n A = 1; };", 3, "expected a property of X, found \"A\""},
    {"AliasValue", "class X { string A; };\ninstance of X { A = $B; };", 2, "expected a value, found the alias $B"},
    {"MissingInclude", "\n#pragma include (\"nowhere.mof\")", 2, "found none named \"nowhere.mof\""},
    {"UnknownReference", "[Association] class X {\n Y REF A; };", 2, "names the class \"Y\", which is not declared"},
    {"WiderReference", "class B { }; class C : B { }; class X { C REF R; };\nclass Y : X {\n B REF R; };", 3,
     "not below C"},
    {"ReferenceArray", "class B { };\nclass X { B REF R[]; };", 2, "is an array"},
};

} // namespace

TEST_P(MofErrors, NamesTheLineAndWhatWasExpected)
{
    const std::string text = errorOf(GetParam().mof);
    EXPECT_THAT(text, HasSubstr("bad.mof:" + std::to_string(GetParam().line) + ": "));
    EXPECT_THAT(text, HasSubstr(GetParam().says));
}

INSTANTIATE_TEST_SUITE_P(MofReader, MofErrors, testing::ValuesIn(badTexts),
                         [](const auto& text) { return std::string(text.param.name); });

TEST(MofReader, SurvivesEveryPrefixOfAGoodText)
{
    const std::string good = "Qualifier Key : boolean = false, Scope(property), Flavor(DisableOverride);\n"
                             "[Description(\"a\" \"\\x41\")] class X : B as $a { [Key] string A[2] = {\"x\", NULL};\n"
                             " uint32 M([In] X REF P[], real32 Q); char16 C = 'c'; sint8 D = -0x7f; };\n"
                             "instance of X { A = {\"1\"}; };";
    unsigned refused = 0;
    for (std::size_t length = 0; length < good.size(); ++length) {
        ClassRepository repository;
        repository.loadText("class B { };", "root/test");
        try {
            repository.loadText(good.substr(0, length), "root/test");
        } catch (const MofError&) {
            ++refused;
        }
    }
    // Only the cuts at the ends of the declarations are whole texts.
    EXPECT_GT(refused, good.size() - 20);
}

TEST(MofReader, SurvivesEveryByteInEveryPlace)
{
    const std::string good = "[Key(\"a\")] class X { string A[2]={'c',1.5,\"\\x4\"}; };//";
    for (std::size_t at = 0; at < good.size(); ++at)
        for (int byte = 0; byte < 256; ++byte) {
            std::string text = good;
            text[at] = static_cast<char>(byte);
            ClassRepository repository;
            try {
                repository.loadText(text, "root/test");
            } catch (const MofError& error) {
                EXPECT_GE(error.line(), 1u);
            }
        }
}

TEST(MofReader, RefusesIncludesThatNeverEnd)
{
    const std::filesystem::path folder = testing::TempDir() + "/mof-depth";
    std::filesystem::create_directories(folder);
    for (int i = 0; i < 20; ++i)
        std::ofstream(folder / ("f" + std::to_string(i) + ".mof")) << "#pragma include (\"f" << i + 1 << ".mof\")\n";
    std::ofstream(folder / "f20.mof") << "class X { };";
    ClassRepository repository;
    try {
        repository.loadFile(folder / "f0.mof", "root/test");
        FAIL() << "expected an error";
    } catch (const MofError& error) {
        EXPECT_THAT(error.what(), HasSubstr("at most 16 files that include each other"));
        EXPECT_EQ(error.line(), 1u);
    }
    std::filesystem::remove_all(folder);
}

TEST(MofReader, NamesAFileThatIsNotThere)
{
    ClassRepository repository;
    try {
        repository.loadFile("/nonexistent/a.mof", "root/test");
        FAIL() << "expected an error";
    } catch (const MofError& error) {
        EXPECT_EQ(error.file(), "/nonexistent/a.mof");
    }
}
