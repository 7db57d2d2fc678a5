#include "hostxml/XmlFragments.h"

#include "hostxml/XmlText.h"

namespace KDV::Host {

namespace {

void appendNamed(ReplyBuffer& out, std::string_view attribute, std::string_view value)
{
    out.append(' ');
    out.append(attribute);
    out.append("=\"");
    appendAttribute(out, value);
    out.append('"');
}

// The start tag of a property without its closing bracket.
void appendPropertyTag(ReplyBuffer& out, std::string_view name, std::string_view origin, CMPIType type)
{
    const bool array = (type & CMPI_ARRAY) != 0;
    const auto element = static_cast<CMPIType>(type & ~CMPI_ARRAY);
    out.append(element == CMPI_ref ? "<PROPERTY.REFERENCE" : array ? "<PROPERTY.ARRAY" : "<PROPERTY");
    appendNamed(out, "NAME", name);
    if (!origin.empty()) appendNamed(out, "CLASSORIGIN", origin);
    if (element != CMPI_ref) appendNamed(out, "TYPE", xmlTypeName(element));
    if (element == CMPI_instance) appendNamed(out, "EmbeddedObject", "instance");
}

std::string instanceTag(std::string_view element, std::string_view className)
{
    ReplyBuffer out;
    out.append('<');
    out.append(element);
    appendNamed(out, "CLASSNAME", className);
    out.append('>');
    return std::string(out.view());
}

KeyFragments keyFragments(const PropertyInfo& key)
{
    KeyFragments fragments;
    fragments.name = key.name;
    ReplyBuffer out;
    out.append("<KEYBINDING");
    appendNamed(out, "NAME", key.name);
    out.append('>');
    const CMPIType type = key.elementType();
    if (type == CMPI_ref) {
        out.append("<VALUE.REFERENCE>");
        fragments.close = "</VALUE.REFERENCE></KEYBINDING>";
    } else {
        const bool numeric =
            type != CMPI_string && type != CMPI_dateTime && type != CMPI_boolean && type != CMPI_char16;
        out.append("<KEYVALUE");
        appendNamed(out, "VALUETYPE", type == CMPI_boolean ? "boolean" : numeric ? "numeric" : "string");
        out.append('>');
        fragments.close = "</KEYVALUE></KEYBINDING>";
    }
    fragments.open = out.view();
    return fragments;
}

} // namespace

std::string_view xmlTypeName(CMPIType type) noexcept
{
    switch (type & ~CMPI_ARRAY) {
    case CMPI_boolean:
        return "boolean";
    case CMPI_char16:
        return "char16";
    case CMPI_real32:
        return "real32";
    case CMPI_real64:
        return "real64";
    case CMPI_uint8:
        return "uint8";
    case CMPI_uint16:
        return "uint16";
    case CMPI_uint32:
        return "uint32";
    case CMPI_uint64:
        return "uint64";
    case CMPI_sint8:
        return "sint8";
    case CMPI_sint16:
        return "sint16";
    case CMPI_sint32:
        return "sint32";
    case CMPI_sint64:
        return "sint64";
    case CMPI_dateTime:
        return "datetime";
    case CMPI_ref:
        return "reference";
    default:
        return "string";
    }
}

std::string propertyOpen(std::string_view name, std::string_view origin, CMPIType type)
{
    ReplyBuffer out;
    appendPropertyTag(out, name, origin, type);
    if ((type & ~CMPI_ARRAY) == CMPI_ref)
        out.append("><VALUE.REFERENCE>");
    else
        out.append(type & CMPI_ARRAY ? "><VALUE.ARRAY>" : "><VALUE>");
    return std::string(out.view());
}

std::string propertyNull(std::string_view name, std::string_view origin, CMPIType type)
{
    ReplyBuffer out;
    appendPropertyTag(out, name, origin, type);
    // Not "<PROPERTY .../>": wbemcli reads no property that is an empty element tag.
    const bool array = (type & CMPI_ARRAY) != 0;
    out.append((type & ~CMPI_ARRAY) == CMPI_ref ? "></PROPERTY.REFERENCE>\n"
               : array                          ? "></PROPERTY.ARRAY>\n"
                                                : "></PROPERTY>\n");
    return std::string(out.view());
}

std::string_view propertyClose(CMPIType type) noexcept
{
    if ((type & ~CMPI_ARRAY) == CMPI_ref) return "</VALUE.REFERENCE></PROPERTY.REFERENCE>\n";
    return type & CMPI_ARRAY ? "</VALUE.ARRAY></PROPERTY.ARRAY>\n" : "</VALUE></PROPERTY>\n";
}

FragmentCache::FragmentCache(const ClassRepository& repository) : _slots(repository.classCount() * 2) {}

FragmentCache::~FragmentCache()
{
    for (Slot& slot : _slots)
        delete slot.load();
}

const ClassFragments& FragmentCache::make(const ClassInfo& classInfo, bool classOrigin, Slot& slot)
{
    auto made = std::make_unique<ClassFragments>();
    made->instanceOpen = instanceTag("INSTANCE", classInfo.name());
    made->nameOpen = instanceTag("INSTANCENAME", classInfo.name());
    for (const PropertyInfo& property : classInfo.properties()) {
        const std::string_view origin = classOrigin && property.origin ? property.origin->name() : std::string_view();
        made->properties.push_back({property.type, propertyOpen(property.name, origin, property.type),
                                    std::string(propertyClose(property.type)),
                                    propertyNull(property.name, origin, property.type)});
        made->keys.push_back(property.key ? keyFragments(property) : KeyFragments());
    }
    const ClassFragments* expected = nullptr;
    if (slot.compare_exchange_strong(expected, made.get(), std::memory_order_acq_rel)) return *made.release();
    return *expected; // another thread was first
}

} // namespace KDV::Host
