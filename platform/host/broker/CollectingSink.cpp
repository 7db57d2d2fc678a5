#include "broker/CollectingSink.h"

#include <cstdio>

namespace KDV::Host {
namespace {

std::string realText(double value)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

std::string quotedText(std::string_view text)
{
    std::string out = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\') out += '\\';
        out += c;
    }
    return out + '"';
}

std::string arrayText(const ArrayObject& array)
{
    std::string out = "{";
    for (const CMPIData& element : array)
        out.append(out.size() > 1 ? ", " : "").append(valueText(element));
    return out + "}";
}

std::string instanceText(const InstanceObject& instance)
{
    const CollectedInstance copy = collect(instance);
    std::string out = "instance of " + copy.className + " {";
    for (const CollectedProperty& property : copy.properties)
        out.append(" ").append(property.name).append(" = ").append(property.value).append(";");
    return out + " }";
}

std::string integerText(CMPIType type, const CMPIValue& value)
{
    switch (type) {
    case CMPI_uint8:
        return std::to_string(value.uint8);
    case CMPI_uint16:
        return std::to_string(value.uint16);
    case CMPI_uint32:
        return std::to_string(value.uint32);
    case CMPI_uint64:
        return std::to_string(value.uint64);
    case CMPI_sint8:
        return std::to_string(value.sint8);
    case CMPI_sint16:
        return std::to_string(value.sint16);
    case CMPI_sint32:
        return std::to_string(value.sint32);
    case CMPI_sint64:
        return std::to_string(value.sint64);
    default:
        return "?";
    }
}

} // namespace

std::string valueText(const CMPIData& data)
{
    if (isNull(data)) return "NULL";
    if (data.type & CMPI_ARRAY) return arrayText(ArrayObject::of(data.value.array));
    switch (data.type) {
    case CMPI_boolean:
        return data.value.boolean ? "true" : "false";
    case CMPI_char16:
        return std::to_string(data.value.char16);
    case CMPI_real32:
        return realText(static_cast<double>(data.value.real32));
    case CMPI_real64:
        return realText(data.value.real64);
    case CMPI_string:
        return quotedText(textOf(data.value));
    case CMPI_dateTime:
        return std::string(dateTextOf(data.value));
    case CMPI_ref:
        return quotedText(PathObject::of(data.value.ref).text());
    case CMPI_instance:
        return instanceText(InstanceObject::of(data.value.inst));
    default:
        return integerText(data.type, data.value);
    }
}

std::string typeText(CMPIType type)
{
    static constexpr std::pair<CMPIType, const char*> names[] = {
        {CMPI_boolean, "boolean"}, {CMPI_char16, "char16"},     {CMPI_real32, "real32"}, {CMPI_real64, "real64"},
        {CMPI_uint8, "uint8"},     {CMPI_uint16, "uint16"},     {CMPI_uint32, "uint32"}, {CMPI_uint64, "uint64"},
        {CMPI_sint8, "sint8"},     {CMPI_sint16, "sint16"},     {CMPI_sint32, "sint32"}, {CMPI_sint64, "sint64"},
        {CMPI_string, "string"},   {CMPI_dateTime, "datetime"}, {CMPI_ref, "reference"}, {CMPI_instance, "instance"},
    };
    std::string text = "type " + std::to_string(type);
    for (const auto& [code, name] : names)
        if (code == (type & ~CMPI_ARRAY)) text = name;
    return (type & CMPI_ARRAY) ? text + "[]" : text;
}

CollectedInstance collect(const InstanceObject& instance)
{
    CollectedInstance copy;
    copy.className = instance.path->className;
    copy.path = instance.path->text();
    for (const PropertyEntry& entry : instance.properties())
        copy.properties.push_back(
            {entry.property->name, typeText(entry.type), valueText(entry.data()), entry.type, entry.preset});
    return copy;
}

const CollectedProperty* CollectedInstance::find(std::string_view name) const
{
    for (const CollectedProperty& property : properties)
        if (sameName(property.name, name)) return &property;
    return nullptr;
}

std::string CollectedInstance::value(std::string_view name) const
{
    const CollectedProperty* property = find(name);
    return property ? property->value : "absent";
}

CollectingSink::~CollectingSink() = default;

bool CollectingSink::instance(const InstanceObject& instance)
{
    instances.push_back(collect(instance));
    return true;
}

bool CollectingSink::objectPath(const PathObject& path)
{
    paths.push_back(path.text());
    return true;
}

bool CollectingSink::data(const CMPIData& data)
{
    values.push_back(valueText(data));
    return true;
}

void CollectingSink::done() { isDone = true; }
void CollectingSink::returned(const InstanceObject& instance) { instances.push_back(collect(instance)); }
void CollectingSink::returned(const PathObject& path) { paths.push_back(path.text()); }
void CollectingSink::returned(const CMPIData& data) { values.push_back(valueText(data)); }
void CollectingSink::delivered(std::string_view, const InstanceObject& indication)
{
    indications.push_back(collect(indication));
}

} // namespace KDV::Host
