#include "hostxml/RequestReader.h"

#include "hostxml/RequestError.h"
#include "hostxml/TreeCursor.h"

#include <algorithm>

namespace KDV::Host {

namespace {

bool sameNameText(std::string_view a, std::string_view b)
{
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](char x, char y) { return lower(x) == lower(y); });
}

// "2.0" is of major version 2, and so is "2.3.1".
bool isMajorVersion(std::string_view version, char major)
{
    return version.size() >= 2 && version[0] == major && version[1] == '.';
}

// LOCALNAMESPACEPATH
std::string readLocalNameSpacePath(TreeCursor at)
{
    at.expect("LOCALNAMESPACEPATH");
    std::string path;
    for (TreeCursor part = at.child(); part; part = part.next()) {
        part.expect("NAMESPACE");
        part.expectNoChildren();
        if (!path.empty()) path += '/';
        path += part.required("NAME");
    }
    if (path.empty()) at.refuse("is empty");
    return path;
}

RequestPath readPath(TreeCursor at);

void readKeyValue(TreeCursor at, RequestKey& key)
{
    const std::string_view kind = at.attribute("VALUETYPE", "string");
    if (kind == "string")
        key.kind = KeyKind::String;
    else if (kind == "boolean")
        key.kind = KeyKind::Boolean;
    else if (kind == "numeric")
        key.kind = KeyKind::Numeric;
    else
        at.refuse("has VALUETYPE \"" + std::string(kind) + "\"");
    key.type = at.attribute("TYPE", "");
    key.text = at.text();
}

void readKeyContent(TreeCursor at, RequestKey& key)
{
    if (at.is("KEYVALUE")) {
        readKeyValue(at, key);
    } else if (at.is("VALUE.REFERENCE")) {
        key.kind = KeyKind::Reference;
        key.reference = std::make_shared<const RequestPath>(readPath(at.only()));
    } else {
        at.refuse("is neither KEYVALUE nor VALUE.REFERENCE");
    }
}

// INSTANCENAME
void readInstanceName(TreeCursor at, RequestPath& path)
{
    at.expect("INSTANCENAME");
    path.isInstance = true;
    path.className = at.required("CLASSNAME");
    for (TreeCursor child = at.child(); child; child = child.next()) {
        RequestKey key;
        if (child.is("KEYBINDING")) {
            key.name = child.required("NAME");
            readKeyContent(child.only(), key);
        } else {
            if (child.next() || !path.keys.empty()) child.refuse("stands beside other keys and has no name");
            readKeyContent(child, key);
        }
        path.keys.push_back(std::move(key));
    }
}

void readNameSpacePath(TreeCursor at, RequestPath& path)
{
    at.expect("NAMESPACEPATH");
    TreeCursor host = at.firstOf(2);
    host.expect("HOST");
    path.host = host.text();
    path.nameSpace = readLocalNameSpacePath(host.next());
}

// Any of the elements that name a class or an instance.
RequestPath readPath(TreeCursor at)
{
    RequestPath path;
    if (at.is("INSTANCENAME")) {
        readInstanceName(at, path);
    } else if (at.is("CLASSNAME")) {
        path.className = at.required("NAME");
    } else if (at.is("INSTANCEPATH") || at.is("CLASSPATH")) {
        TreeCursor first = at.firstOf(2);
        readNameSpacePath(first, path);
        if (at.is("CLASSPATH"))
            path.className = first.next().expect("CLASSNAME").required("NAME");
        else
            readInstanceName(first.next(), path);
    } else if (at.is("LOCALINSTANCEPATH") || at.is("LOCALCLASSPATH")) {
        TreeCursor first = at.firstOf(2);
        path.nameSpace = readLocalNameSpacePath(first);
        if (at.is("LOCALCLASSPATH"))
            path.className = first.next().expect("CLASSNAME").required("NAME");
        else
            readInstanceName(first.next(), path);
    } else {
        at.refuse("names neither a class nor an instance");
    }
    return path;
}

bool isPathElement(TreeCursor at)
{
    return at.is("INSTANCENAME") || at.is("CLASSNAME") || at.is("INSTANCEPATH") || at.is("CLASSPATH") ||
           at.is("LOCALINSTANCEPATH") || at.is("LOCALCLASSPATH");
}

RequestInstance readInstance(TreeCursor at);

// Content of VALUE.ARRAY and VALUE.REFARRAY.
void readArray(TreeCursor at, RequestValue& value)
{
    const bool references = at.is("VALUE.REFARRAY");
    value.kind = references ? ValueKind::Paths : ValueKind::Texts;
    for (TreeCursor element = at.child(); element; element = element.next()) {
        if (element.is("VALUE.REFERENCE") && references)
            value.paths.push_back(readPath(element.only()));
        else if (element.is("VALUE") && !references)
            value.texts.emplace_back(element.text());
        else if (element.is("VALUE.NULL") && !references)
            value.texts.emplace_back();
        else
            element.refuse("does not belong into " + std::string(at.name()));
    }
}

RequestValue readValue(TreeCursor at)
{
    RequestValue value;
    if (at.is("VALUE")) {
        value.kind = ValueKind::Text;
        value.text = at.text();
    } else if (at.is("VALUE.ARRAY") || at.is("VALUE.REFARRAY")) {
        readArray(at, value);
    } else if (at.is("VALUE.REFERENCE") || isPathElement(at)) {
        value.kind = ValueKind::Path;
        value.paths.push_back(readPath(at.is("VALUE.REFERENCE") ? at.only() : at));
    } else if (at.is("INSTANCE")) {
        value.kind = ValueKind::Instance;
        value.instance = std::make_shared<const RequestInstance>(readInstance(at));
    } else if (at.is("VALUE.NAMEDINSTANCE")) {
        value.kind = ValueKind::Instance;
        TreeCursor path = at.firstOf(2);
        RequestInstance instance = readInstance(path.next());
        instance.path = readPath(path.expect("INSTANCENAME"));
        value.instance = std::make_shared<const RequestInstance>(std::move(instance));
    } else {
        at.refuse("is no value that an operation takes");
    }
    return value;
}

// PROPERTY, PROPERTY.ARRAY and PROPERTY.REFERENCE
RequestProperty readProperty(TreeCursor at)
{
    RequestProperty property;
    property.name = at.required("NAME");
    property.isArray = at.is("PROPERTY.ARRAY");
    if (at.is("PROPERTY.REFERENCE"))
        property.type = "reference";
    else if (at.is("PROPERTY") || property.isArray)
        property.type = at.required("TYPE");
    else
        at.refuse("is no property");
    // Clients write the name of this attribute in either case.
    property.embedded = !at.attribute("EmbeddedObject", at.attribute("EMBEDDEDOBJECT", "")).empty();
    for (TreeCursor child = at.child(); child; child = child.next()) {
        if (child.is("QUALIFIER")) continue;
        if (child.next()) child.refuse("is followed by another value");
        property.value = readValue(child);
    }
    return property;
}

RequestInstance readInstance(TreeCursor at)
{
    at.expect("INSTANCE");
    RequestInstance instance;
    instance.className = at.required("CLASSNAME");
    for (TreeCursor child = at.child(); child; child = child.next())
        if (!child.is("QUALIFIER")) instance.properties.push_back(readProperty(child));
    return instance;
}

// IPARAMVALUE and PARAMVALUE
RequestParameter readParameter(TreeCursor at, std::string_view element)
{
    at.expect(element);
    RequestParameter parameter;
    parameter.name = at.required("NAME");
    parameter.type = at.attribute("PARAMTYPE", "");
    if (TreeCursor value = at.child()) {
        if (value.next()) at.refuse("has more than one value");
        parameter.value = readValue(value);
    }
    return parameter;
}

void readCall(TreeCursor at, CimRequest& request)
{
    request.intrinsic = at.is("IMETHODCALL");
    if (!request.intrinsic) at.expect("METHODCALL");
    request.method = at.required("NAME");
    TreeCursor target = at.child();
    if (!target) at.refuse("has no target");
    if (request.intrinsic) {
        request.nameSpace = readLocalNameSpacePath(target);
    } else {
        if (!target.is("LOCALINSTANCEPATH") && !target.is("LOCALCLASSPATH"))
            target.refuse("is neither LOCALINSTANCEPATH nor LOCALCLASSPATH");
        request.target = readPath(target);
        request.nameSpace = request.target.nameSpace;
    }
    for (TreeCursor child = target.next(); child; child = child.next())
        request.parameters.push_back(readParameter(child, request.intrinsic ? "IPARAMVALUE" : "PARAMVALUE"));
}

void readMessage(TreeCursor message, CimRequest& request)
{
    if (!isMajorVersion(message.required("PROTOCOLVERSION"), '1'))
        throw RequestError(RequestFault::UnsupportedProtocolVersion, "PROTOCOLVERSION must be 1.x");
    request.messageId = message.required("ID");
    const TreeCursor kind = message.only();
    if (kind.is("MULTIREQ")) throw RequestError(RequestFault::MultipleRequestsUnsupported, "MULTIREQ is not supported");
    if (kind.is("SIMPLEEXPREQ") || kind.is("MULTIEXPREQ"))
        throw RequestError(RequestFault::UnsupportedOperation, "this server takes no export messages");
    kind.expect("SIMPLEREQ");
    TreeCursor call = kind.child();
    while (call && call.is("CORRELATOR"))
        call = call.next();
    if (!call || call.next()) kind.refuse("must hold one call");
    readCall(call, request);
}

} // namespace

const RequestParameter* CimRequest::find(std::string_view name) const
{
    for (const RequestParameter& parameter : parameters)
        if (sameNameText(parameter.name, name)) return &parameter;
    return nullptr;
}

CimRequest RequestReader::read(std::string_view document)
{
    _tree.read(document);
    const TreeCursor cim(_tree);
    cim.expect("CIM");
    if (!isMajorVersion(cim.required("CIMVERSION"), '2'))
        throw RequestError(RequestFault::UnsupportedCimVersion, "CIMVERSION must be 2.x");
    if (!isMajorVersion(cim.required("DTDVERSION"), '2'))
        throw RequestError(RequestFault::UnsupportedDtdVersion, "DTDVERSION must be 2.x");
    CimRequest request;
    readMessage(cim.only().expect("MESSAGE"), request);
    return request;
}

RequestInstance readEmbeddedInstance(std::string_view document)
{
    XmlTree tree;
    tree.read(document);
    return readInstance(TreeCursor(tree));
}

} // namespace KDV::Host
