#include "hostserver/RequestPaths.h"

#include "hostserver/CimError.h"
#include "hostserver/UntypedPath.h"

#include <charconv>
#include <limits>

namespace KDV::Host {

namespace {

template <class Number>
bool readNumber(std::string_view text, Number& number)
{
    int base = 10;
    const bool negative = !text.empty() && text[0] == '-';
    if (!text.empty() && text[0] == '+') text.remove_prefix(1);
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        text.remove_prefix(2);
        base = 16;
    }
    if (text.empty() || (negative && !std::numeric_limits<Number>::is_signed)) return false;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number, base);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

template <class Real>
bool readReal(std::string_view text, Real& number)
{
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return !text.empty() && result.ec == std::errc() && result.ptr == text.data() + text.size();
}

bool readBoolean(std::string_view text, CMPIBoolean& value)
{
    if (!sameName(text, "TRUE") && !sameName(text, "FALSE")) return false;
    value = sameName(text, "TRUE");
    return true;
}

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(blanks);
    return begin == text.npos ? std::string_view() : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

[[noreturn]] void wrongKey(const RequestKey& key, const ClassInfo& classInfo)
{
    throw CimError(CMPI_RC_ERR_INVALID_PARAMETER,
                   "the value \"" + key.text + "\" does not fit the key " + key.name + " of class " + classInfo.name());
}

void addKey(RequestScope& scope, const Namespace& nameSpace, PathObject& path, const RequestKey& key,
            const PropertyInfo& property)
{
    if (property.type == CMPI_ref) {
        CMPIValue value{};
        if (key.kind == KeyKind::Reference)
            value.ref = &makeReference(scope, nameSpace, *key.reference);
        else
            value.ref = &makeReference(scope, nameSpace, readUntypedPath(key.text));
        return path.addKey(property.name, value, CMPI_ref);
    }
    if (key.kind == KeyKind::Reference) wrongKey(key, path.classInfo ? *path.classInfo : *property.origin);
    if (property.type == CMPI_string || property.type == CMPI_dateTime || property.type == CMPI_char16)
        return path.addTextKey(property.name, key.text);
    CMPIValue value{};
    if (property.type == CMPI_boolean) {
        if (!readBoolean(trimmed(key.text), value.boolean)) wrongKey(key, *path.classInfo);
        return path.addKey(property.name, value, CMPI_boolean);
    }
    if (!path.addNumericKey(property.name, trimmed(key.text))) wrongKey(key, *path.classInfo);
}

} // namespace

bool readScalar(RequestScope& scope, CMPIType type, std::string_view text, CMPIValue& value)
{
    if (type == CMPI_string || type == CMPI_chars) {
        value.string = scope.string(text);
        return true;
    }
    text = trimmed(text);
    switch (type) {
    case CMPI_boolean:
        return readBoolean(text, value.boolean);
    case CMPI_uint8:
        return readNumber(text, value.uint8);
    case CMPI_uint16:
        return readNumber(text, value.uint16);
    case CMPI_uint32:
        return readNumber(text, value.uint32);
    case CMPI_uint64:
        return readNumber(text, value.uint64);
    case CMPI_sint8:
        return readNumber(text, value.sint8);
    case CMPI_sint16:
        return readNumber(text, value.sint16);
    case CMPI_sint32:
        return readNumber(text, value.sint32);
    case CMPI_sint64:
        return readNumber(text, value.sint64);
    case CMPI_real32:
        return readReal(text, value.real32);
    case CMPI_real64:
        return readReal(text, value.real64);
    case CMPI_dateTime: {
        const CMPIBroker* broker = scope.broker().cmpi();
        CMPIStatus status{CMPI_RC_OK, nullptr};
        value.dateTime = broker->eft->newDateTimeFromChars(broker, std::string(text).c_str(), &status);
        return value.dateTime && status.rc == CMPI_RC_OK;
    }
    default:
        return false;
    }
}

PathObject& makePath(RequestScope& scope, const Namespace& nameSpace, const ClassInfo& classInfo,
                     const RequestPath& given, bool complete)
{
    PathObject& path = scope.path(nameSpace.name(), classInfo.name());
    for (const RequestKey& key : given.keys) {
        const PropertyInfo* property = nullptr;
        if (!key.name.empty())
            property = classInfo.findProperty(key.name);
        else if (classInfo.keys().size() == 1)
            property = &classInfo.properties()[static_cast<std::size_t>(classInfo.keys().front())];
        if (!property || !property->key)
            throw CimError(CMPI_RC_ERR_INVALID_PARAMETER, "class " + classInfo.name() + " has no key " +
                                                              (key.name.empty() ? "without a name" : key.name));
        addKey(scope, nameSpace, path, key, *property);
    }
    if (complete)
        for (int index : classInfo.keys()) {
            const PropertyInfo& property = classInfo.properties()[static_cast<std::size_t>(index)];
            if (!path.findKey(property.name))
                throw CimError(CMPI_RC_ERR_INVALID_PARAMETER,
                               "the key " + property.name + " of class " + classInfo.name() + " is missing");
        }
    return path;
}

PathObject& makeReference(RequestScope& scope, const Namespace& nameSpace, const RequestPath& given)
{
    const std::string_view where = given.nameSpace.empty() ? std::string_view(nameSpace.name()) : given.nameSpace;
    const Namespace* known = scope.broker().repository().findNamespace(where);
    const ClassInfo* classInfo = known ? known->find(given.className) : nullptr;
    if (classInfo) return makePath(scope, *known, *classInfo, given, false);
    PathObject& path = scope.path(where, given.className);
    for (const RequestKey& key : given.keys) {
        CMPIValue value{};
        if (key.kind == KeyKind::Reference) {
            value.ref = &makeReference(scope, nameSpace, *key.reference);
            path.addKey(key.name, value, CMPI_ref);
        } else if (key.kind == KeyKind::Boolean && readBoolean(trimmed(key.text), value.boolean)) {
            path.addKey(key.name, value, CMPI_boolean);
        } else if (key.kind != KeyKind::Numeric || !path.addNumericKey(key.name, trimmed(key.text))) {
            path.addTextKey(key.name, key.text);
        }
    }
    return path;
}

CMPIData makeValue(RequestScope& scope, const Namespace& nameSpace, CMPIType type, const RequestValue& given)
{
    CMPIData data{type, CMPI_goodValue, {}};
    const auto refuse = [] { throw CimError(CMPI_RC_ERR_TYPE_MISMATCH, "a value does not have the declared type"); };
    const auto element = static_cast<CMPIType>(type & ~CMPI_ARRAY);
    if (given.kind == ValueKind::Null) {
        data.state = CMPI_nullValue;
    } else if (type & CMPI_ARRAY) {
        const bool references = element == CMPI_ref;
        if (given.kind != (references ? ValueKind::Paths : ValueKind::Texts)) refuse();
        const std::size_t size = references ? given.paths.size() : given.texts.size();
        ArrayObject& array = scope.array(static_cast<CMPICount>(size), element);
        for (std::size_t i = 0; i < size; ++i) {
            CMPIValue value{};
            if (references)
                value.ref = &makeReference(scope, nameSpace, given.paths[i]);
            else if (!given.texts[i])
                continue;
            else if (!readScalar(scope, element, *given.texts[i], value))
                refuse();
            array.ft->setElementAt(&array, static_cast<CMPICount>(i), &value, element);
        }
        data.value.array = &array;
    } else if (type == CMPI_ref) {
        if (given.kind != ValueKind::Path) refuse();
        data.value.ref = &makeReference(scope, nameSpace, *given.path());
    } else if (given.kind != ValueKind::Text || !readScalar(scope, type, given.text, data.value)) {
        refuse();
    }
    return data;
}

InstanceObject& makeInstance(RequestScope& scope, const Namespace& nameSpace, const PathObject& path,
                             const RequestInstance& given)
{
    InstanceObject& instance = scope.instance(path);
    for (const RequestProperty& property : given.properties) {
        const PropertyInfo* info = path.classInfo->findProperty(property.name);
        if (!info)
            throw CimError(CMPI_RC_ERR_NO_SUCH_PROPERTY,
                           "class " + path.classInfo->name() + " has no property " + property.name);
        const CMPIData data = makeValue(scope, nameSpace, info->type, property.value);
        const CMPIStatus status =
            instance.ft->setProperty(&instance, info->name.c_str(), isNull(data) ? nullptr : &data.value, info->type);
        if (status.rc != CMPI_RC_OK)
            throw CimError(CMPI_RC_ERR_TYPE_MISMATCH, "the property " + property.name + " was not taken");
    }
    return instance;
}

} // namespace KDV::Host
