// The half of InstanceWriter that writes paths and keys.
#include "hostxml/InstanceWriter.h"
#include "hostxml/XmlText.h"

namespace KDV::Host {

void InstanceWriter::key(std::string_view name, const PropertyInfo* property, const CMPIData& data)
{
    if (property && property->key && property->index >= 0 && _lastFragments && data.type == property->type &&
        !isNull(data)) {
        const KeyFragments& fragments = _lastFragments->keys[static_cast<std::size_t>(property->index)];
        _out.append(fragments.open);
        propertyBody(data.type, data.value);
        // A reference may have been written in between, but fragments never move.
        return _out.append(fragments.close);
    }
    _out.append("<KEYBINDING NAME=\"");
    appendAttribute(_out, name);
    const bool numeric =
        data.type != CMPI_string && data.type != CMPI_dateTime && data.type != CMPI_boolean && data.type != CMPI_char16;
    if (data.type == CMPI_ref) {
        _out.append("\"><VALUE.REFERENCE>");
        referencedPath(PathObject::of(data.value.ref));
        return _out.append("</VALUE.REFERENCE></KEYBINDING>");
    }
    _out.append("\"><KEYVALUE VALUETYPE=\"");
    _out.append(data.type == CMPI_boolean ? "boolean" : numeric ? "numeric" : "string");
    _out.append("\">");
    if (!isNull(data)) scalar(data.type, data.value);
    _out.append("</KEYVALUE></KEYBINDING>");
}

void InstanceWriter::instanceName(const PathObject& path)
{
    if (const ClassFragments* fragments = fragmentsOf(path.classInfo)) {
        _out.append(fragments->nameOpen);
    } else {
        _out.append("<INSTANCENAME CLASSNAME=\"");
        appendAttribute(_out, path.className);
        _out.append("\">");
        _lastFragments = nullptr;
        _lastClass = nullptr;
    }
    for (const KeyBinding& binding : path) {
        key(binding.name, binding.property, binding.data);
        fragmentsOf(path.classInfo); // again this class's, after a reference to another
    }
    _out.append("</INSTANCENAME>\n");
}

// Servers take the name of an instance from its key properties where the path lacks keys.
void InstanceWriter::nameOf(const InstanceObject& instance)
{
    const PathObject& path = *instance.path;
    if (!instance.classInfo || path.keyCount >= instance.classInfo->keys().size()) return instanceName(path);
    _out.append(fragmentsOf(instance.classInfo)->nameOpen);
    for (int index : instance.classInfo->keys()) {
        const PropertyInfo& info = instance.classInfo->properties()[static_cast<std::size_t>(index)];
        if (const KeyBinding* binding = path.findKey(info.name))
            key(info.name, &info, binding->data);
        else if (const PropertyEntry* entry = instance.find(info.name))
            key(info.name, &info, entry->data());
        fragmentsOf(instance.classInfo);
    }
    _out.append("</INSTANCENAME>\n");
}

void InstanceWriter::localNameSpacePath(std::string_view nameSpace)
{
    _out.append("<LOCALNAMESPACEPATH>");
    while (!nameSpace.empty()) {
        const std::size_t slash = nameSpace.find('/');
        const std::string_view part = nameSpace.substr(0, slash);
        if (!part.empty()) {
            _out.append("<NAMESPACE NAME=\"");
            appendAttribute(_out, part);
            _out.append("\"/>");
        }
        nameSpace = slash == nameSpace.npos ? std::string_view() : nameSpace.substr(slash + 1);
    }
    _out.append("</LOCALNAMESPACEPATH>");
}

void InstanceWriter::nameSpacePath(std::string_view host, std::string_view nameSpace)
{
    if (host.empty()) host = _host;
    if (nameSpace.empty()) nameSpace = _nameSpace;
    if (host != _lastHost || nameSpace != _lastNameSpace || _lastNameSpacePath.empty()) {
        const std::size_t begin = _out.size();
        _out.append("<NAMESPACEPATH><HOST>");
        appendText(_out, host);
        _out.append("</HOST>");
        localNameSpacePath(nameSpace);
        _out.append("</NAMESPACEPATH>");
        _lastHost = host;
        _lastNameSpace = nameSpace;
        _lastNameSpacePath = _out.view().substr(begin);
        return;
    }
    _out.append(_lastNameSpacePath);
}

void InstanceWriter::pathOf(const InstanceObject& instance)
{
    _out.append("<INSTANCEPATH>");
    nameSpacePath(instance.path->host, instance.path->nameSpace);
    nameOf(instance);
    _out.append("</INSTANCEPATH>");
}

void InstanceWriter::instancePath(const PathObject& path)
{
    _out.append("<INSTANCEPATH>");
    nameSpacePath(path.host, path.nameSpace);
    instanceName(path);
    _out.append("</INSTANCEPATH>\n");
}

void InstanceWriter::objectPath(const PathObject& path)
{
    _out.append("<OBJECTPATH>");
    instancePath(path);
    _out.append("</OBJECTPATH>\n");
}

void InstanceWriter::referencedPath(const PathObject& path)
{
    const bool isClass = path.keyCount == 0;
    const auto name = [&] {
        if (!isClass) return instanceName(path);
        _out.append("<CLASSNAME NAME=\"");
        appendAttribute(_out, path.className);
        _out.append("\"/>");
    };
    if (path.nameSpace.empty()) return name();
    if (path.host.empty()) {
        _out.append(isClass ? "<LOCALCLASSPATH>" : "<LOCALINSTANCEPATH>");
        localNameSpacePath(path.nameSpace);
        name();
        return _out.append(isClass ? "</LOCALCLASSPATH>" : "</LOCALINSTANCEPATH>");
    }
    _out.append(isClass ? "<CLASSPATH>" : "<INSTANCEPATH>");
    nameSpacePath(path.host, path.nameSpace);
    name();
    _out.append(isClass ? "</CLASSPATH>" : "</INSTANCEPATH>");
}

} // namespace KDV::Host
