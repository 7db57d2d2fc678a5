#include "hostxml/ClassWriter.h"

#include "hostxml/XmlFragments.h"
#include "hostxml/XmlText.h"

#include <algorithm>

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

void appendScalar(ReplyBuffer& out, const SchemaValue& value)
{
    switch (value.type) {
    case CMPI_boolean:
        return out.append(value.number.boolean ? "TRUE" : "FALSE");
    case CMPI_char16:
        return appendChar16(out, value.number.char16);
    case CMPI_real32:
        return appendNumber(out, value.number.real32);
    case CMPI_real64:
        return appendNumber(out, value.number.real64);
    case CMPI_uint8:
        return appendNumber(out, std::uint64_t{value.number.uint8});
    case CMPI_uint16:
        return appendNumber(out, std::uint64_t{value.number.uint16});
    case CMPI_uint32:
        return appendNumber(out, std::uint64_t{value.number.uint32});
    case CMPI_uint64:
        return appendNumber(out, std::uint64_t{value.number.uint64});
    case CMPI_sint8:
        return appendNumber(out, std::int64_t{value.number.sint8});
    case CMPI_sint16:
        return appendNumber(out, std::int64_t{value.number.sint16});
    case CMPI_sint32:
        return appendNumber(out, std::int64_t{value.number.sint32});
    case CMPI_sint64:
        return appendNumber(out, std::int64_t{value.number.sint64});
    default:
        return appendText(out, value.text);
    }
}

void appendValue(ReplyBuffer& out, const SchemaValue& value)
{
    if (value.isNull) return;
    if (!value.isArray()) {
        out.append("<VALUE>");
        appendScalar(out, value);
        return out.append("</VALUE>");
    }
    out.append("<VALUE.ARRAY>");
    for (const SchemaValue& element : value.elements) {
        if (element.isNull) {
            out.append("<VALUE.NULL/>");
            continue;
        }
        out.append("<VALUE>");
        appendScalar(out, element);
        out.append("</VALUE>");
    }
    out.append("</VALUE.ARRAY>");
}

void appendQualifiers(ReplyBuffer& out, const QualifierList& qualifiers, bool localOnly)
{
    for (const QualifierInfo& qualifier : qualifiers) {
        if (localOnly && qualifier.propagated) continue;
        out.append("<QUALIFIER");
        appendNamed(out, "NAME", qualifier.name);
        appendNamed(out, "TYPE", xmlTypeName(qualifier.value.type));
        if (qualifier.propagated) appendNamed(out, "PROPAGATED", "true");
        if (!qualifier.overridable) appendNamed(out, "OVERRIDABLE", "false");
        if (!qualifier.toSubclass) appendNamed(out, "TOSUBCLASS", "false");
        if (qualifier.translatable) appendNamed(out, "TRANSLATABLE", "true");
        out.append('>');
        appendValue(out, qualifier.value);
        out.append("</QUALIFIER>\n");
    }
}

void appendArraySize(ReplyBuffer& out, std::uint32_t size)
{
    if (size == 0) return;
    out.append(" ARRAYSIZE=\"");
    appendNumber(out, std::uint64_t{size});
    out.append('"');
}

void appendProperty(ReplyBuffer& out, const PropertyInfo& property, const ClassForm& form)
{
    const std::string_view element = property.isReference() ? "PROPERTY.REFERENCE"
                                     : property.isArray()   ? "PROPERTY.ARRAY"
                                                            : "PROPERTY";
    out.append('<');
    out.append(element);
    appendNamed(out, "NAME", property.name);
    if (property.isReference())
        appendNamed(out, "REFERENCECLASS", property.referenceClass);
    else
        appendNamed(out, "TYPE", xmlTypeName(property.type));
    if (property.isArray()) appendArraySize(out, property.arraySize);
    if (form.classOrigin && property.origin) appendNamed(out, "CLASSORIGIN", property.origin->name());
    if (property.propagated) appendNamed(out, "PROPAGATED", "true");
    if (property.elementType() == CMPI_instance) appendNamed(out, "EmbeddedObject", "instance");
    out.append('>');
    if (form.qualifiers) appendQualifiers(out, property.qualifiers, false);
    if (!property.isReference()) appendValue(out, property.defaultValue);
    out.append("</");
    out.append(element);
    out.append(">\n");
}

void appendParameter(ReplyBuffer& out, const ParameterInfo& parameter, const ClassForm& form)
{
    const bool array = (parameter.type & CMPI_ARRAY) != 0;
    const bool reference = (parameter.type & ~CMPI_ARRAY) == CMPI_ref;
    const std::string_view element = reference ? (array ? "PARAMETER.REFARRAY" : "PARAMETER.REFERENCE")
                                     : array   ? "PARAMETER.ARRAY"
                                               : "PARAMETER";
    out.append('<');
    out.append(element);
    appendNamed(out, "NAME", parameter.name);
    if (reference)
        appendNamed(out, "REFERENCECLASS", parameter.referenceClass);
    else
        appendNamed(out, "TYPE", xmlTypeName(parameter.type));
    if (array) appendArraySize(out, parameter.arraySize);
    out.append('>');
    if (form.qualifiers) appendQualifiers(out, parameter.qualifiers, false);
    out.append("</");
    out.append(element);
    out.append(">\n");
}

void appendMethod(ReplyBuffer& out, const MethodInfo& method, const ClassForm& form)
{
    out.append("<METHOD");
    appendNamed(out, "NAME", method.name);
    if (method.returnType != CMPI_null) appendNamed(out, "TYPE", xmlTypeName(method.returnType));
    if (form.classOrigin && method.origin) appendNamed(out, "CLASSORIGIN", method.origin->name());
    if (method.propagated) appendNamed(out, "PROPAGATED", "true");
    out.append('>');
    if (form.qualifiers) appendQualifiers(out, method.qualifiers, false);
    for (const ParameterInfo& parameter : method.parameters)
        appendParameter(out, parameter, form);
    out.append("</METHOD>\n");
}

bool isAsked(const ClassForm& form, std::string_view name)
{
    return !form.properties || std::any_of(form.properties->begin(), form.properties->end(),
                                           [&](const std::string& asked) { return sameName(asked, name); });
}

} // namespace

void appendClass(ReplyBuffer& out, const ClassInfo& classInfo, const ClassForm& form)
{
    out.append("<CLASS");
    appendNamed(out, "NAME", classInfo.name());
    if (classInfo.superclass()) appendNamed(out, "SUPERCLASS", classInfo.superclass()->name());
    out.append(">\n");
    if (form.qualifiers) appendQualifiers(out, classInfo.qualifiers(), form.localOnly);
    for (const PropertyInfo& property : classInfo.properties())
        if (!(form.localOnly && property.propagated) && isAsked(form, property.name))
            appendProperty(out, property, form);
    for (const MethodInfo& method : classInfo.methods())
        if (!(form.localOnly && method.propagated)) appendMethod(out, method, form);
    out.append("</CLASS>\n");
}

void appendClassName(ReplyBuffer& out, std::string_view name)
{
    out.append("<CLASSNAME");
    appendNamed(out, "NAME", name);
    out.append("/>\n");
}

} // namespace KDV::Host
