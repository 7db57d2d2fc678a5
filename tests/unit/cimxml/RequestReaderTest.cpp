#include "hostxml/RequestReader.h"

#include "hostxml/RequestError.h"

#include <string>

#include <gtest/gtest.h>

using namespace KDV::Host;

namespace {

std::string message(const std::string& call)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE "
           "ID=\"1001\" "
           "PROTOCOLVERSION=\"1.0\"><SIMPLEREQ>" +
           call + "</SIMPLEREQ></MESSAGE></CIM>";
}

const std::string vnr = "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"vnr\"/></LOCALNAMESPACEPATH>";

CimRequest read(const std::string& document) { return RequestReader().read(document); }

CimRequest readCall(const std::string& parameters)
{
    return read(message("<IMETHODCALL NAME=\"GetInstance\">" + vnr + parameters + "</IMETHODCALL>"));
}

RequestFault faultOf(const std::string& document)
{
    try {
        read(document);
    } catch (const RequestError& error) {
        EXPECT_NE(std::string(error.what()), "");
        return error.fault();
    }
    ADD_FAILURE() << "taken: " << document.substr(0, 200);
    return RequestFault::UnsupportedOperation;
}

} // namespace

TEST(RequestReader, ReadsAnEnumerationAsScriptsSendIt)
{
    const CimRequest request = read(message("<IMETHODCALL NAME=\"EnumerateInstances\">" + vnr +
                                            "<IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"KDV_SASDiskDrive\"/>"
                                            "</IPARAMVALUE></IMETHODCALL>"));
    EXPECT_TRUE(request.intrinsic);
    EXPECT_EQ(request.messageId, "1001");
    EXPECT_EQ(request.method, "EnumerateInstances");
    EXPECT_EQ(request.nameSpace, "root/vnr");
    ASSERT_EQ(request.parameters.size(), 1u);
    ASSERT_NE(request.find("classname"), nullptr) << "names are compared without regard to case";
    ASSERT_NE(request.find("ClassName")->value.path(), nullptr);
    EXPECT_EQ(request.find("ClassName")->value.path()->className, "KDV_SASDiskDrive");
    EXPECT_FALSE(request.find("ClassName")->value.path()->isInstance);
    EXPECT_EQ(request.find("Other"), nullptr);
}

TEST(RequestReader, ReadsAnEnumerationAsWbemcliSendsIt)
{
    const CimRequest request = read(
        "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n"
        "<MESSAGE ID=\"4711\" PROTOCOLVERSION=\"1.0\"><SIMPLEREQ><IMETHODCALL NAME=\"EnumerateInstances\">"
        "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"></NAMESPACE><NAMESPACE NAME=\"vnr\"></NAMESPACE>"
        "</LOCALNAMESPACEPATH>\n<IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"CIM_DiskDrive\"/></IPARAMVALUE>\n"
        "<IPARAMVALUE NAME=\"DeepInheritance\"><VALUE>TRUE</VALUE></IPARAMVALUE>\n"
        "<IPARAMVALUE NAME=\"LocalOnly\"><VALUE>FALSE</VALUE></IPARAMVALUE>\n</IMETHODCALL></SIMPLEREQ>\n"
        "</MESSAGE></CIM>");
    EXPECT_EQ(request.messageId, "4711");
    EXPECT_EQ(request.nameSpace, "root/vnr");
    EXPECT_EQ(request.find("DeepInheritance")->value.text, "TRUE");
    EXPECT_EQ(request.find("LocalOnly")->value.text, "FALSE");
}

TEST(RequestReader, ReadsKeysWithAndWithoutTheirType)
{
    const CimRequest request = readCall(
        "<IPARAMVALUE NAME=\"InstanceName\"><INSTANCENAME CLASSNAME=\"X\">"
        "<KEYBINDING NAME=\"A\"><KEYVALUE VALUETYPE=\"string\" TYPE=\"string\">d &amp; 1</KEYVALUE></KEYBINDING>"
        "<KEYBINDING NAME=\"B\"><KEYVALUE VALUETYPE=\"numeric\" TYPE=\"uint32\">3</KEYVALUE></KEYBINDING>"
        "<KEYBINDING NAME=\"C\"><KEYVALUE VALUETYPE=\"boolean\">TRUE</KEYVALUE></KEYBINDING>"
        "<KEYBINDING NAME=\"D\"><KEYVALUE></KEYVALUE></KEYBINDING></INSTANCENAME></IPARAMVALUE>"
        "<IPARAMVALUE NAME=\"PropertyList\"><VALUE.ARRAY><VALUE>Name</VALUE><VALUE.NULL/><VALUE/></VALUE.ARRAY>"
        "</IPARAMVALUE>");
    const RequestPath& path = *request.find("InstanceName")->value.path();
    ASSERT_EQ(path.keys.size(), 4u);
    EXPECT_TRUE(path.isInstance);
    EXPECT_EQ(path.keys[0].text, "d & 1");
    EXPECT_EQ(path.keys[0].kind, KeyKind::String);
    EXPECT_EQ(path.keys[1].kind, KeyKind::Numeric);
    EXPECT_EQ(path.keys[1].type, "uint32");
    EXPECT_EQ(path.keys[2].kind, KeyKind::Boolean);
    EXPECT_EQ(path.keys[3].text, "");
    const auto& list = request.find("PropertyList")->value.texts;
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[0], "Name");
    EXPECT_FALSE(list[1].has_value());
    EXPECT_EQ(list[2], "");
}

TEST(RequestReader, ReadsReferencesAmongTheKeysInEveryForm)
{
    const std::string name = "<INSTANCENAME CLASSNAME=\"D\"><KEYBINDING NAME=\"N\"><KEYVALUE>1</KEYVALUE></KEYBINDING>"
                             "</INSTANCENAME>";
    const CimRequest request =
        readCall("<IPARAMVALUE NAME=\"InstanceName\"><INSTANCENAME CLASSNAME=\"L\">"
                 "<KEYBINDING NAME=\"A\"><VALUE.REFERENCE><INSTANCEPATH><NAMESPACEPATH><HOST>h:1</HOST>" +
                 vnr + "</NAMESPACEPATH>" + name +
                 "</INSTANCEPATH></VALUE.REFERENCE></KEYBINDING>"
                 "<KEYBINDING NAME=\"B\"><VALUE.REFERENCE><LOCALINSTANCEPATH>" +
                 vnr + name +
                 "</LOCALINSTANCEPATH></VALUE.REFERENCE></KEYBINDING>"
                 "<KEYBINDING NAME=\"C\"><VALUE.REFERENCE>" +
                 name +
                 "</VALUE.REFERENCE></KEYBINDING>"
                 "</INSTANCENAME></IPARAMVALUE>");
    const auto& keys = request.find("InstanceName")->value.path()->keys;
    ASSERT_EQ(keys.size(), 3u);
    EXPECT_EQ(keys[0].reference->host, "h:1");
    EXPECT_EQ(keys[0].reference->nameSpace, "root/vnr");
    EXPECT_EQ(keys[1].reference->nameSpace, "root/vnr");
    EXPECT_EQ(keys[2].reference->nameSpace, "");
    for (const RequestKey& key : keys) {
        EXPECT_EQ(key.kind, KeyKind::Reference);
        EXPECT_EQ(key.reference->className, "D");
        EXPECT_EQ(key.reference->keys.at(0).text, "1");
    }
}

TEST(RequestReader, ReadsAMethodCallOnAnInstanceAndOnAClass)
{
    const CimRequest onInstance = read(message(
        "<METHODCALL NAME=\"PerformWork\"><LOCALINSTANCEPATH>" + vnr +
        "<INSTANCENAME CLASSNAME=\"W\"><KEYBINDING NAME=\"N\"><KEYVALUE>1</KEYVALUE></KEYBINDING></INSTANCENAME>"
        "</LOCALINSTANCEPATH><PARAMVALUE NAME=\"P\" PARAMTYPE=\"uint32\"><VALUE>4</VALUE></PARAMVALUE>"
        "<PARAMVALUE NAME=\"Q\"/></METHODCALL>"));
    EXPECT_FALSE(onInstance.intrinsic);
    EXPECT_TRUE(onInstance.target.isInstance);
    EXPECT_EQ(onInstance.nameSpace, "root/vnr");
    EXPECT_EQ(onInstance.find("P")->type, "uint32");
    EXPECT_EQ(onInstance.find("Q")->value.kind, ValueKind::Null);
    const CimRequest onClass = read(message("<METHODCALL NAME=\"PerformWork\"><LOCALCLASSPATH>" + vnr +
                                            "<CLASSNAME NAME=\"W\"/></LOCALCLASSPATH></METHODCALL>"));
    EXPECT_FALSE(onClass.target.isInstance);
    EXPECT_EQ(onClass.target.className, "W");
}

TEST(RequestReader, ReadsANewInstanceWithEveryKindOfProperty)
{
    const CimRequest request = readCall(
        "<IPARAMVALUE NAME=\"NewInstance\"><INSTANCE CLASSNAME=\"F\">"
        "<PROPERTY NAME=\"Query\" TYPE=\"string\"><VALUE>SELECT * FROM X WHERE a &lt; 3</VALUE></PROPERTY>"
        "<PROPERTY NAME=\"None\" TYPE=\"uint16\"></PROPERTY>"
        "<PROPERTY.ARRAY NAME=\"List\" TYPE=\"string\"><VALUE.ARRAY><VALUE>a</VALUE></VALUE.ARRAY></PROPERTY.ARRAY>"
        "<PROPERTY.REFERENCE NAME=\"Ref\" REFERENCECLASS=\"D\"><VALUE.REFERENCE><INSTANCENAME CLASSNAME=\"D\">"
        "</INSTANCENAME></VALUE.REFERENCE></PROPERTY.REFERENCE></INSTANCE></IPARAMVALUE>");
    const RequestInstance& instance = *request.find("NewInstance")->value.instance;
    EXPECT_EQ(instance.className, "F");
    ASSERT_EQ(instance.properties.size(), 4u);
    EXPECT_EQ(instance.properties[0].value.text, "SELECT * FROM X WHERE a < 3");
    EXPECT_EQ(instance.properties[1].value.kind, ValueKind::Null);
    EXPECT_TRUE(instance.properties[2].isArray);
    EXPECT_EQ(instance.properties[3].type, "reference");
    EXPECT_EQ(instance.properties[3].value.path()->className, "D");
}

TEST(RequestReader, OneReaderReadsManyRequests)
{
    RequestReader reader;
    const std::string call = message("<IMETHODCALL NAME=\"EnumerateClassNames\">" + vnr + "</IMETHODCALL>");
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(reader.read(call).method, "EnumerateClassNames");
        EXPECT_THROW(reader.read("<CIM"), RequestError);
    }
}

TEST(RequestReader, SaysWhichVersionItDoesNotSupport)
{
    const auto versions = [](const char* cim, const char* dtd, const char* protocol) {
        return std::string("<CIM CIMVERSION=\"") + cim + "\" DTDVERSION=\"" + dtd +
               "\"><MESSAGE ID=\"1\" PROTOCOLVERSION=\"" + protocol + "\"><SIMPLEREQ><IMETHODCALL NAME=\"GetClass\">" +
               vnr + "</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>";
    };
    EXPECT_EQ(read(versions("2.8", "2.4", "1.4")).method, "GetClass");
    EXPECT_EQ(faultOf(versions("3.0", "2.0", "1.0")), RequestFault::UnsupportedCimVersion);
    EXPECT_EQ(faultOf(versions("2.0", "1.0", "1.0")), RequestFault::UnsupportedDtdVersion);
    EXPECT_EQ(faultOf(versions("2.0", "2.0", "2.0")), RequestFault::UnsupportedProtocolVersion);
    EXPECT_EQ(faultOf(versions("2.0", "2.0", "")), RequestFault::UnsupportedProtocolVersion);
}

TEST(RequestReader, RefusesSeveralRequestsAndExportsByName)
{
    const std::string head = "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"1\" PROTOCOLVERSION=\"1.0\">";
    EXPECT_EQ(faultOf(head + "<MULTIREQ/></MESSAGE></CIM>"), RequestFault::MultipleRequestsUnsupported);
    EXPECT_EQ(faultOf(head + "<SIMPLEEXPREQ/></MESSAGE></CIM>"), RequestFault::UnsupportedOperation);
    EXPECT_STREQ(cimErrorName(RequestFault::MultipleRequestsUnsupported), "multiple-requests-unsupported");
    EXPECT_EQ(httpStatusOf(RequestFault::MultipleRequestsUnsupported), 501u);
    EXPECT_EQ(httpStatusOf(RequestFault::NotWellFormed), 400u);
}

TEST(RequestReader, TellsWellFormedFromValid)
{
    EXPECT_EQ(faultOf(""), RequestFault::NotWellFormed);
    EXPECT_EQ(faultOf("no xml"), RequestFault::NotWellFormed);
    EXPECT_EQ(faultOf("<CIM><MESSAGE></CIM>"), RequestFault::NotWellFormed);
    EXPECT_EQ(faultOf("<HTML/>"), RequestFault::NotLooselyValid);
    EXPECT_EQ(faultOf("<CIM/>"), RequestFault::NotLooselyValid) << "no versions";
    for (const char* call : {"", "<IMETHODCALL NAME=\"X\"/>", "<IMETHODCALL/>", "<METHODRESPONSE NAME=\"X\"/>"})
        EXPECT_EQ(faultOf(message(call)), RequestFault::NotLooselyValid) << call;
    const std::string one = "<IMETHODCALL NAME=\"GetClass\">" + vnr + "</IMETHODCALL>";
    EXPECT_EQ(faultOf(message(one + one)), RequestFault::NotLooselyValid) << "two calls";
    EXPECT_EQ(faultOf(message("<IMETHODCALL NAME=\"GetClass\"><LOCALNAMESPACEPATH/></IMETHODCALL>")),
              RequestFault::NotLooselyValid);
}

TEST(RequestReader, RefusesParametersThatTheDocumentTypeForbids)
{
    for (const char* content :
         {"<IPARAMVALUE><VALUE>1</VALUE></IPARAMVALUE>", "<IPARAMVALUE NAME=\"A\"><VALUE/><VALUE/></IPARAMVALUE>",
          "<IPARAMVALUE NAME=\"A\"><VALUE.ARRAY><CLASSNAME NAME=\"X\"/></VALUE.ARRAY></IPARAMVALUE>",
          "<IPARAMVALUE NAME=\"A\"><CLASSNAME/></IPARAMVALUE>", "<IPARAMVALUE NAME=\"A\"><INSTANCENAME/></IPARAMVALUE>",
          "<IPARAMVALUE NAME=\"A\"><INSTANCENAME CLASSNAME=\"X\"><KEYBINDING NAME=\"K\"/></INSTANCENAME></IPARAMVALUE>",
          "<IPARAMVALUE NAME=\"A\"><INSTANCENAME CLASSNAME=\"X\"><KEYBINDING NAME=\"K\"><KEYVALUE VALUETYPE=\"odd\">1"
          "</KEYVALUE></KEYBINDING></INSTANCENAME></IPARAMVALUE>",
          "<IPARAMVALUE NAME=\"A\"><INSTANCEPATH/></IPARAMVALUE>", "<PARAMVALUE NAME=\"A\"/>", "<UNKNOWN/>"})
        EXPECT_EQ(faultOf(message("<IMETHODCALL NAME=\"GetInstance\">" + vnr + content + "</IMETHODCALL>")),
                  RequestFault::NotLooselyValid)
            << content;
}

TEST(RequestReader, ReadsAnEmbeddedInstance)
{
    const RequestInstance instance = readEmbeddedInstance(
        "<INSTANCE CLASSNAME=\"E\"><PROPERTY NAME=\"A\" TYPE=\"string\"><VALUE>1</VALUE></PROPERTY></INSTANCE>");
    EXPECT_EQ(instance.className, "E");
    EXPECT_EQ(instance.properties.at(0).value.text, "1");
    EXPECT_THROW(readEmbeddedInstance("<CLASS NAME=\"E\"/>"), RequestError);
}
