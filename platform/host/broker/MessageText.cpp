#include "broker/MessageText.h"

#include "broker/CollectingSink.h"
#include "broker/NamedValues.h"

#include <vector>

namespace KDV::Host {
namespace {

// Values narrower than int arrive as int, float as double: the promotions of variable argument lists. The list is
// passed by its own pointer, since taking from a copy would not advance it.
struct Inserts {
    va_list values;
};

bool nextInsert(Inserts& inserts, std::string& text)
{
    const auto type = static_cast<CMPIType>(va_arg(inserts.values, int));
    switch (type) {
    case CMPI_boolean:
        text = va_arg(inserts.values, int) ? "true" : "false";
        return true;
    case CMPI_sint8:
    case CMPI_sint16:
    case CMPI_sint32:
        text = std::to_string(va_arg(inserts.values, int));
        return true;
    case CMPI_uint8:
    case CMPI_uint16:
    case CMPI_uint32:
        text = std::to_string(va_arg(inserts.values, unsigned));
        return true;
    case CMPI_sint64:
        text = std::to_string(va_arg(inserts.values, long long));
        return true;
    case CMPI_uint64:
        text = std::to_string(va_arg(inserts.values, unsigned long long));
        return true;
    case CMPI_real32:
    case CMPI_real64:
        text = std::to_string(va_arg(inserts.values, double));
        return true;
    case CMPI_chars: {
        const char* chars = va_arg(inserts.values, const char*);
        text = chars ? chars : "";
        return true;
    }
    case CMPI_string: {
        const CMPIString* string = va_arg(inserts.values, const CMPIString*);
        text = string ? std::string(StringObject::of(string).text()) : std::string();
        return true;
    }
    default:
        return false;
    }
}

} // namespace

bool fillMessage(const char* text, CMPICount count, va_list values, std::string& filled)
{
    constexpr CMPICount mostInserts = 10;
    std::vector<std::string> texts;
    Inserts inserts;
    va_copy(inserts.values, values);
    bool good = true;
    for (CMPICount i = 0; good && i < count && i < mostInserts; ++i) {
        texts.emplace_back();
        good = nextInsert(inserts, texts.back());
    }
    va_end(inserts.values);
    for (const char* at = text; good && *at; ++at) {
        const bool insert = *at == '$' && at[1] >= '0' && at[1] <= '9';
        const std::size_t number = insert ? static_cast<std::size_t>(at[1] - '0') : texts.size();
        if (number < texts.size()) {
            filled += texts[number];
            ++at;
        } else {
            filled += *at;
        }
    }
    return good;
}

bool describe(const ObjectHead& head, const void* object, std::string& text)
{
    switch (head.kind) {
    case ObjectKind::ObjectPath:
        text = PathObject::of(static_cast<const CMPIObjectPath*>(object)).text();
        return true;
    case ObjectKind::Instance: {
        const CollectedInstance instance = collect(InstanceObject::of(static_cast<const CMPIInstance*>(object)));
        text = "instance of " + instance.className + " {";
        for (const CollectedProperty& property : instance.properties)
            text += " " + property.name + " = " + property.value + ";";
        text += " }";
        return true;
    }
    case ObjectKind::String:
        text = StringObject::of(static_cast<const CMPIString*>(object)).text();
        return true;
    case ObjectKind::Args:
        text = "(";
        for (const NamedValue& value : ArgsObject::of(static_cast<const CMPIArgs*>(object)).values)
            text.append(text.size() > 1 ? ", " : "")
                .append(value.name->text())
                .append(" = ")
                .append(valueText(value.data));
        text += ")";
        return true;
    default:
        return false;
    }
}

} // namespace KDV::Host
