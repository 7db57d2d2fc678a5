#include "hosttest/CimClient.h"
#include "hosttest/TestHost.h"

#include <gtest/gtest.h>

using namespace KDV::Host;
using namespace KDV::Host::Test;

namespace {

class Classes : public testing::Test {
protected:
    std::string ask(const std::string& method, const std::string& parameters)
    {
        return askHost(host.port(), intrinsic(method, parameters));
    }
    std::string flag(const std::string& name, bool on) { return parameter(name, value(on ? "TRUE" : "FALSE")); }
    TestHost host;
};

} // namespace

TEST_F(Classes, GetsAClassWithItsSuperclassMethodsAndQualifiers)
{
    const std::string reply = ask("GetClass", classParameter("t_box"));
    EXPECT_NE(reply.find("<CLASS NAME=\"T_Box\" SUPERCLASS=\"T_Element\">"), std::string::npos);
    EXPECT_NE(reply.find("<PROPERTY NAME=\"Number\" TYPE=\"uint32\">"), std::string::npos);
    EXPECT_NE(reply.find("<QUALIFIER NAME=\"Key\" TYPE=\"boolean\""), std::string::npos);
    EXPECT_NE(reply.find("<METHOD NAME=\"Blink\" TYPE=\"uint32\">"), std::string::npos);
    EXPECT_NE(reply.find("<PARAMETER NAME=\"Times\" TYPE=\"uint32\">"), std::string::npos);
    EXPECT_EQ(reply.find("ElementName"), std::string::npos) << "LocalOnly is the default here";
}

TEST_F(Classes, GivesInheritedPropertiesAndOriginsWhenAsked)
{
    const std::string reply = ask("GetClass", classParameter("T_Box") + flag("LocalOnly", false) +
                                                  flag("IncludeClassOrigin", true) + flag("IncludeQualifiers", false));
    EXPECT_NE(
        reply.find("<PROPERTY NAME=\"ElementName\" TYPE=\"string\" CLASSORIGIN=\"T_Element\" PROPAGATED=\"true\">"),
        std::string::npos)
        << reply;
    EXPECT_EQ(count(reply, "<QUALIFIER"), 0u);
    const std::string list = parameter("PropertyList", "<VALUE.ARRAY><VALUE>number</VALUE></VALUE.ARRAY>");
    EXPECT_EQ(count(ask("GetClass", classParameter("T_Box") + flag("LocalOnly", false) + list), "<PROPERTY"), 1u);
}

TEST_F(Classes, ShowsReferencesArraysAndDefaults)
{
    const std::string link = ask("GetClass", classParameter("T_BoxDisk"));
    EXPECT_NE(link.find("<PROPERTY.REFERENCE NAME=\"GroupComponent\" REFERENCECLASS=\"T_Box\">"), std::string::npos);
    const std::string disk = ask("GetClass", classParameter("T_Disk"));
    EXPECT_NE(disk.find("<PROPERTY.ARRAY NAME=\"Texts\" TYPE=\"string\">"), std::string::npos);
    EXPECT_NE(between(disk, "<PROPERTY NAME=\"Default\"", "</PROPERTY>").find("<VALUE>7</VALUE>"), std::string::npos);
}

TEST_F(Classes, EnumeratesOneLevelOrAll)
{
    EXPECT_EQ(count(ask("EnumerateClassNames", ""), "<CLASSNAME "), 2u) << "T_Element and T_BoxDisk stand at the top";
    EXPECT_EQ(count(ask("EnumerateClassNames", flag("DeepInheritance", true)), "<CLASSNAME "), 9u);
    EXPECT_EQ(count(ask("EnumerateClassNames", classParameter("T_Element")), "<CLASSNAME "), 2u);
    EXPECT_EQ(
        count(ask("EnumerateClassNames", classParameter("T_Element") + flag("DeepInheritance", true)), "<CLASSNAME "),
        7u);
    EXPECT_EQ(count(ask("EnumerateClassNames", classParameter("T_SolidDisk")), "<CLASSNAME "), 0u);
    EXPECT_EQ(count(ask("EnumerateClasses", classParameter("T_Disk")), "<CLASS "), 1u);
    EXPECT_EQ(count(ask("EnumerateClasses", flag("DeepInheritance", true)), "<CLASS "), 9u);
}

TEST_F(Classes, GivesTheExactCodeForEachMistake)
{
    EXPECT_EQ(errorCode(ask("GetClass", classParameter("T_None"))), 6u);
    EXPECT_EQ(errorCode(ask("GetClass", "")), 4u);
    EXPECT_EQ(errorCode(ask("EnumerateClasses", classParameter("T_None"))), 5u);
    EXPECT_EQ(errorCode(ask("EnumerateClassNames", classParameter("T_None"))), 5u);
    EXPECT_EQ(errorCode(askHost(host.port(), intrinsic("EnumerateClassNames", "", "interop/none"))), 3u);
}
