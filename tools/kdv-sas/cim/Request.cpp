#include "cim/Request.h"

namespace Cim {
namespace {

std::string nameSpaceXml(const std::string& nameSpace)
{
    std::string xml = "<LOCALNAMESPACEPATH>";
    std::size_t begin = 0;
    while (begin <= nameSpace.size()) {
        std::size_t end = nameSpace.find('/', begin);
        if (end == std::string::npos) end = nameSpace.size();
        xml += "<NAMESPACE NAME=\"" + escaped(nameSpace.substr(begin, end - begin)) + "\"/>";
        begin = end + 1;
    }
    return xml + "</LOCALNAMESPACEPATH>";
}

std::string parameter(const char* name, const std::string& value)
{
    return "<IPARAMVALUE NAME=\"" + std::string(name) + "\">" + value + "</IPARAMVALUE>";
}

std::string classNameXml(const std::string& className) { return "<CLASSNAME NAME=\"" + escaped(className) + "\"/>"; }

Request operation(const char* method, const std::string& nameSpace, const std::string& parameters)
{
    return {method, nameSpace,
            "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"1\" "
            "PROTOCOLVERSION=\"1.0\"><SIMPLEREQ><IMETHODCALL NAME=\"" +
                std::string(method) + "\">" + nameSpaceXml(nameSpace) + parameters +
                "</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>"};
}

// Class and keys as the CIMObject header of a method call has them (DSP0200, untyped path).
std::string keysText(const Path& path)
{
    std::string text = path.className;
    char separator = '.';
    for (const Key& key : path.keys) {
        text += separator + key.name + "=";
        if (key.valueType != "string") {
            text += key.value;
        } else {
            text += '"';
            for (const char c : key.value)
                text += c == '"' || c == '\\' ? std::string("\\") + c : std::string(1, c);
            text += '"';
        }
        separator = ',';
    }
    return text;
}

} // namespace

std::string escaped(const std::string& text)
{
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += c;
        }
    }
    return result;
}

std::string instanceNameXml(const Path& path)
{
    std::string xml = "<INSTANCENAME CLASSNAME=\"" + escaped(path.className) + "\">";
    for (const Key& key : path.keys) {
        xml += "<KEYBINDING NAME=\"" + escaped(key.name) + "\">";
        if (key.reference)
            xml += valueReferenceXml(*key.reference);
        else
            xml += "<KEYVALUE VALUETYPE=\"" + key.valueType + "\">" + escaped(key.value) + "</KEYVALUE>";
        xml += "</KEYBINDING>";
    }
    return xml + "</INSTANCENAME>";
}

std::string valueReferenceXml(const Path& path)
{
    if (path.nameSpace.empty()) return "<VALUE.REFERENCE>" + instanceNameXml(path) + "</VALUE.REFERENCE>";
    return "<VALUE.REFERENCE><LOCALINSTANCEPATH>" + nameSpaceXml(path.nameSpace) + instanceNameXml(path) +
           "</LOCALINSTANCEPATH></VALUE.REFERENCE>";
}

Request enumerateInstances(const std::string& nameSpace, const std::string& className)
{
    return operation("EnumerateInstances", nameSpace,
                     parameter("ClassName", classNameXml(className)) + parameter("LocalOnly", "<VALUE>FALSE</VALUE>") +
                         parameter("DeepInheritance", "<VALUE>TRUE</VALUE>"));
}

Request enumerateInstanceNames(const std::string& nameSpace, const std::string& className)
{
    return operation("EnumerateInstanceNames", nameSpace, parameter("ClassName", classNameXml(className)));
}

Request getInstance(const std::string& nameSpace, const Path& path)
{
    return operation("GetInstance", nameSpace,
                     parameter("InstanceName", instanceNameXml(path)) + parameter("LocalOnly", "<VALUE>FALSE</VALUE>"));
}

Request deleteInstance(const std::string& nameSpace, const Path& path)
{
    return operation("DeleteInstance", nameSpace, parameter("InstanceName", instanceNameXml(path)));
}

Request invokeMethod(const std::string& nameSpace, const Path& path, const std::string& method)
{
    return {method, nameSpace + ":" + keysText(path),
            "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"1\" "
            "PROTOCOLVERSION=\"1.0\"><SIMPLEREQ><METHODCALL NAME=\"" +
                escaped(method) + "\"><LOCALINSTANCEPATH>" + nameSpaceXml(nameSpace) + instanceNameXml(path) +
                "</LOCALINSTANCEPATH></METHODCALL></SIMPLEREQ></MESSAGE></CIM>"};
}

Request createInstance(const std::string& nameSpace, const std::string& className,
                       const std::vector<NewProperty>& properties)
{
    std::string xml = "<INSTANCE CLASSNAME=\"" + escaped(className) + "\">";
    for (const NewProperty& property : properties) {
        if (property.reference)
            xml += "<PROPERTY.REFERENCE NAME=\"" + property.name + "\" REFERENCECLASS=\"" +
                   escaped(property.reference->className) + "\">" + valueReferenceXml(*property.reference) +
                   "</PROPERTY.REFERENCE>";
        else
            xml += "<PROPERTY NAME=\"" + property.name + "\" TYPE=\"" + property.type + "\"><VALUE>" +
                   escaped(property.text) + "</VALUE></PROPERTY>";
    }
    return operation("CreateInstance", nameSpace, parameter("NewInstance", xml + "</INSTANCE>"));
}

} // namespace Cim
