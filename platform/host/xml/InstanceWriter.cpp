#include "hostxml/InstanceWriter.h"

#include "hostxml/XmlText.h"

namespace KDV::Host {

namespace {

// An array of nothing but NULL, or of nothing at all. It goes out as NULL: clients index the first element of an array
// without looking whether there is one.
bool hasNothing(const ArrayObject& array)
{
    for (const CMPIData& element : array)
        if (!isNull(element)) return false;
    return true;
}

} // namespace

bool PropertySelection::has(const ClassInfo* classInfo, const PropertyInfo& property)
{
    if (_all) return true;
    const auto named = [&](std::string_view name) {
        for (const std::string& wanted : _names)
            if (sameName(wanted, name)) return true;
        return false;
    };
    if (!classInfo || property.index < 0) return named(property.name);
    if (_class != classInfo) {
        _class = classInfo;
        _byIndex.clear();
        for (const PropertyInfo& each : classInfo->properties())
            _byIndex.push_back(named(each.name));
    }
    return _byIndex[static_cast<std::size_t>(property.index)];
}

InstanceWriter::InstanceWriter(ReplyBuffer& out, FragmentCache& fragments, std::string_view host,
                               std::string_view nameSpace)
    : _out(out), _fragments(fragments), _host(host), _nameSpace(nameSpace)
{
}

const ClassFragments* InstanceWriter::fragmentsOf(const ClassInfo* classInfo)
{
    if (!classInfo) return nullptr;
    if (classInfo != _lastClass) {
        _lastFragments = &_fragments.of(*classInfo, _classOrigin);
        _lastClass = classInfo;
    }
    return _lastFragments;
}

void InstanceWriter::instance(const InstanceObject& instance)
{
    if (const ClassFragments* fragments = fragmentsOf(instance.classInfo)) {
        _out.append(fragments->instanceOpen);
    } else {
        _out.append("<INSTANCE CLASSNAME=\"");
        appendAttribute(_out, instance.path->className);
        _out.append("\">");
    }
    properties(instance);
    _out.append("</INSTANCE>\n");
}

void InstanceWriter::namedInstance(const InstanceObject& object)
{
    _out.append("<VALUE.NAMEDINSTANCE>");
    nameOf(object);
    instance(object);
    _out.append("</VALUE.NAMEDINSTANCE>\n");
}

void InstanceWriter::objectWithPath(const InstanceObject& object)
{
    _out.append("<VALUE.OBJECTWITHPATH>");
    pathOf(object);
    instance(object);
    _out.append("</VALUE.OBJECTWITHPATH>\n");
}

void InstanceWriter::instanceWithPath(const InstanceObject& object)
{
    _out.append("<VALUE.INSTANCEWITHPATH>");
    pathOf(object);
    instance(object);
    _out.append("</VALUE.INSTANCEWITHPATH>\n");
}

void InstanceWriter::properties(const InstanceObject& instance)
{
    const ClassFragments* fragments = fragmentsOf(instance.classInfo);
    for (const PropertyEntry& entry : instance.properties())
        if (_selection.all() || _selection.has(instance.classInfo, *entry.property)) {
            property(instance, entry, fragments);
            // Embedded instances are of other classes.
            fragments = fragmentsOf(instance.classInfo);
        }
}

void InstanceWriter::property(const InstanceObject& instance, const PropertyEntry& entry,
                              const ClassFragments* fragments)
{
    const PropertyInfo& info = *entry.property;
    const bool null = entry.isNull() || ((entry.type & CMPI_ARRAY) && hasNothing(ArrayObject::of(entry.value.array)));
    if (fragments && info.index >= 0) {
        const PropertyFragments& fragment = fragments->properties[static_cast<std::size_t>(info.index)];
        if (null && entry.type == fragment.type) return _out.append(fragment.null);
        if (entry.type == fragment.type) {
            _out.append(fragment.open);
            propertyBody(entry.type, entry.value);
            return _out.append(fragment.close);
        }
    }
    const std::string_view origin = !_classOrigin        ? std::string_view()
                                    : info.origin        ? std::string_view(info.origin->name())
                                    : instance.classInfo ? std::string_view(instance.classInfo->name())
                                                         : instance.path->className;
    if (null) return _out.append(propertyNull(info.name, origin, entry.type));
    _out.append(propertyOpen(info.name, origin, entry.type));
    propertyBody(entry.type, entry.value);
    _out.append(propertyClose(entry.type));
}

void InstanceWriter::propertyBody(CMPIType type, const CMPIValue& value)
{
    if (type & CMPI_ARRAY) return array(ArrayObject::of(value.array));
    if (type == CMPI_ref) return referencedPath(PathObject::of(value.ref));
    scalar(type, value);
}

void InstanceWriter::array(const ArrayObject& array)
{
    for (const CMPIData& element : array) {
        // There is VALUE.NULL, but clients as common as wbemcli give up on the whole reply when they meet it.
        if (isNull(element)) continue;
        if (array.elementType == CMPI_ref) {
            _out.append("<VALUE.REFERENCE>");
            referencedPath(PathObject::of(element.value.ref));
            _out.append("</VALUE.REFERENCE>");
            continue;
        }
        _out.append("<VALUE>");
        scalar(array.elementType, element.value);
        _out.append("</VALUE>");
    }
}

void InstanceWriter::scalar(CMPIType type, const CMPIValue& value)
{
    switch (type) {
    case CMPI_boolean:
        return _out.append(value.boolean ? "TRUE" : "FALSE");
    case CMPI_char16:
        return appendChar16(_out, value.char16);
    case CMPI_real32:
        return appendNumber(_out, value.real32);
    case CMPI_real64:
        return appendNumber(_out, value.real64);
    case CMPI_uint8:
        return appendNumber(_out, std::uint64_t{value.uint8});
    case CMPI_uint16:
        return appendNumber(_out, std::uint64_t{value.uint16});
    case CMPI_uint32:
        return appendNumber(_out, std::uint64_t{value.uint32});
    case CMPI_uint64:
        return appendNumber(_out, std::uint64_t{value.uint64});
    case CMPI_sint8:
        return appendNumber(_out, std::int64_t{value.sint8});
    case CMPI_sint16:
        return appendNumber(_out, std::int64_t{value.sint16});
    case CMPI_sint32:
        return appendNumber(_out, std::int64_t{value.sint32});
    case CMPI_sint64:
        return appendNumber(_out, std::int64_t{value.sint64});
    case CMPI_string:
        return appendText(_out, textOf(value));
    case CMPI_dateTime:
        return appendText(_out, dateTextOf(value));
    case CMPI_ref:
        return appendText(_out, PathObject::of(value.ref).text());
    case CMPI_instance: {
        // An embedded instance is XML as text: written apart, then escaped as a whole.
        ReplyBuffer xml;
        InstanceWriter writer(xml, _fragments, _host, _nameSpace);
        writer.setClassOrigin(_classOrigin);
        writer.instance(InstanceObject::of(value.inst));
        return appendText(_out, xml.view());
    }
    default:
        return;
    }
}

void InstanceWriter::value(const CMPIData& data)
{
    if (isNull(data)) return;
    if (data.type & CMPI_ARRAY) {
        const ArrayObject& elements = ArrayObject::of(data.value.array);
        const bool references = elements.elementType == CMPI_ref;
        _out.append(references ? "<VALUE.REFARRAY>" : "<VALUE.ARRAY>");
        array(elements);
        return _out.append(references ? "</VALUE.REFARRAY>" : "</VALUE.ARRAY>");
    }
    _out.append(data.type == CMPI_ref ? "<VALUE.REFERENCE>" : "<VALUE>");
    propertyBody(data.type, data.value);
    _out.append(data.type == CMPI_ref ? "</VALUE.REFERENCE>" : "</VALUE>");
}

} // namespace KDV::Host
