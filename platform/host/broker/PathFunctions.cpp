// The function table of object paths.
#include "broker/Calls.h"

#include <cstring>

namespace KDV::Host {
namespace {

CMPIString* lend(const PathObject& path, StringObject*& lent, std::string_view text)
{
    if (!lent) lent = makeString(Placement::inside(path.head, path.memory), text);
    return lent;
}

CMPIStatus setNameSpace(const CMPIObjectPath* self, const char* ns)
{
    return change<PathObject>(self, [&](PathObject& path) {
        path.setNameSpace(viewOf(ns));
        return ok();
    });
}

CMPIString* getNameSpace(const CMPIObjectPath* self, CMPIStatus* status)
{
    return answer<PathObject, CMPIString*>(self, status, nullptr, [](PathObject& path, CMPIStatus&) {
        return lend(path, path.lentNameSpace, path.nameSpace);
    });
}

CMPIStatus setHostname(const CMPIObjectPath* self, const char* hn)
{
    return change<PathObject>(self, [&](PathObject& path) {
        path.setHost(viewOf(hn));
        return ok();
    });
}

CMPIString* getHostname(const CMPIObjectPath* self, CMPIStatus* status)
{
    return answer<PathObject, CMPIString*>(
        self, status, nullptr, [](PathObject& path, CMPIStatus&) { return lend(path, path.lentHost, path.host); });
}

CMPIStatus setClassName(const CMPIObjectPath* self, const char* cn)
{
    return change<PathObject>(self, [&](PathObject& path) {
        Broker& broker = *path.head.broker;
        const std::string_view name = viewOf(cn);
        const ClassInfo* info = broker.repository().find(path.nameSpace, name);
        if (!info && broker.profile() == Profile::Standard)
            return failedWith(broker, CMPI_RC_ERR_NOT_FOUND, "class not found: " + std::string(name));
        path.className = path.memory->copy(name);
        path.classInfo = info;
        path.lentClassName = nullptr;
        for (std::uint32_t i = 0; i < path.keyCount; ++i)
            path.keys[i].property = info ? info->findProperty(path.keys[i].name) : nullptr;
        return ok();
    });
}

CMPIString* getClassName(const CMPIObjectPath* self, CMPIStatus* status)
{
    return answer<PathObject, CMPIString*>(self, status, nullptr, [](PathObject& path, CMPIStatus&) {
        return lend(path, path.lentClassName, path.className);
    });
}

// The key that the class declares by this name; few, so each is compared.
const PropertyInfo* declaredKey(const ClassInfo* info, const char* name) noexcept
{
    if (!info) return nullptr;
    for (int index : info->keys()) {
        const PropertyInfo& property = info->properties()[static_cast<std::size_t>(index)];
        if (std::strcmp(property.name.c_str(), name) == 0) return &property;
    }
    const PropertyInfo* other = info->findProperty(name);
    return other && other->key ? other : nullptr;
}

// Strict brokers turn the general number types into the key's own.
bool widensTo(CMPIType given, CMPIType declared) noexcept
{
    return (given == CMPI_uint64 && (declared & 0xc0) == 0x80 && declared < 0x100) ||
           (given == CMPI_sint64 && (declared & 0xc0) == 0xc0 && declared < 0x100) ||
           (given == CMPI_real64 && declared == CMPI_real32);
}

CMPIStatus keyRefused(Broker& broker, CMPIrc rc, const PathObject& path, const char* key, const char* why)
{
    return failedWith(broker, rc, "key " + std::string(path.className) + "." + key + ": " + why);
}

CMPIStatus checkKey(PathObject& path, const char* key, const PropertyInfo* property, CMPIType type)
{
    Broker& broker = *path.head.broker;
    const bool standard = broker.profile() == Profile::Standard;
    const CMPIrc wrongType = standard ? CMPI_RC_ERR_TYPE_MISMATCH : CMPI_RC_ERR_INVALID_DATA_TYPE;
    if (type == CMPI_null || type == CMPI_instance || (type & CMPI_ARRAY))
        return keyRefused(broker, wrongType, path, key, "no key has this type");
    if (!property) {
        if (standard && path.classInfo)
            return keyRefused(broker, CMPI_RC_ERR_INVALID_PARAMETER, path, key, "not declared as a key");
        return ok();
    }
    if (type != property->type && !widensTo(type, property->type))
        return keyRefused(broker, wrongType, path, key, "declared with another type");
    return ok();
}

CMPIStatus addKey(const CMPIObjectPath* self, const char* key, const CMPIValue* value, CMPIType type)
{
    return change<PathObject>(self, [&](PathObject& path) {
        const Profile profile = path.head.broker->profile();
        if (!key) return failed(CMPI_RC_ERR_INVALID_PARAMETER);
        const PropertyInfo* property = declaredKey(path.classInfo, key);
        const CMPIType stored = type == CMPI_chars ? CMPI_string : type;
        if (profile != Profile::Sfcb) {
            if (!value) return failed(profile == Profile::Pegasus ? CMPI_RC_ERR_FAILED : CMPI_RC_ERR_INVALID_PARAMETER);
            const CMPIStatus status = checkKey(path, key, property, stored);
            if (status.rc != CMPI_RC_OK) return status;
        }
        const Placement inside = Placement::inside(path.head, path.memory);
        if (type == CMPI_chars && value) { // nearly every key
            CMPIString* text = makeString(inside, reinterpret_cast<const char*>(value));
            CMPIData& bound = bindKey(path, key, property);
            bound.type = CMPI_string;
            bound.state = CMPI_goodValue;
            bound.value.string = text;
            return ok();
        }
        CMPIData data;
        if (!copyValue(inside, value, type, data)) return failed(CMPI_RC_ERR_INVALID_DATA_TYPE);
        if (profile != Profile::Sfcb && property && data.type != property->type) {
            if (data.type == CMPI_real64) data.value.real32 = static_cast<CMPIReal32>(data.value.real64);
            data.type = property->type;
        }
        bindKey(path, key, property) = data;
        return ok();
    });
}

CMPIData asRead(const PathObject& path, const CMPIData& held) noexcept
{
    const Profile profile = path.head.broker->profile();
    CMPIData data;
    data.type = held.type;
    data.state = profile == Profile::Sfcb ? held.state : static_cast<CMPIValueState>(held.state | CMPI_keyValue);
    data.value = held.value;
    if (profile != Profile::Pegasus || (data.type & CMPI_ARRAY) || data.type >= 0x100 || !(data.type & 0x80))
        return data;
    switch (data.type) {
    case CMPI_uint8:
        data.value.sint64 = data.value.uint8;
        break;
    case CMPI_uint16:
        data.value.sint64 = data.value.uint16;
        break;
    case CMPI_uint32:
        data.value.sint64 = data.value.uint32;
        break;
    case CMPI_sint8:
        data.value.sint64 = data.value.sint8;
        break;
    case CMPI_sint16:
        data.value.sint64 = data.value.sint16;
        break;
    case CMPI_sint32:
        data.value.sint64 = data.value.sint32;
        break;
    default:
        break;
    }
    data.type = CMPI_sint64;
    return data;
}

CMPIData getKey(const CMPIObjectPath* self, const char* key, CMPIStatus* status)
{
    return answer<PathObject>(self, status, missing(CMPI_nullValue), [&](PathObject& path, CMPIStatus& outcome) {
        const KeyBinding* found = key ? path.findKey(key) : nullptr;
        if (found) return asRead(path, found->data);
        outcome = failed(path.head.broker->profile() == Profile::Standard ? CMPI_RC_ERR_NO_SUCH_PROPERTY
                                                                          : CMPI_RC_ERR_NOT_FOUND);
        return missing(CMPI_nullValue);
    });
}

CMPIData getKeyAt(const CMPIObjectPath* self, CMPICount index, CMPIString** name, CMPIStatus* status)
{
    return answer<PathObject>(self, status, missing(CMPI_nullValue), [&](PathObject& path, CMPIStatus& outcome) {
        if (index >= path.keyCount) {
            outcome = failed(path.head.broker->profile() == Profile::Sfcb ? CMPI_RC_ERR_NOT_FOUND
                                                                          : CMPI_RC_ERR_NO_SUCH_PROPERTY);
            return missing(CMPI_nullValue);
        }
        KeyBinding& key = path.keys[index];
        if (name) *name = lend(path, key.lentName, key.name);
        return asRead(path, key.data);
    });
}

CMPICount getKeyCount(const CMPIObjectPath* self, CMPIStatus* status)
{
    return answer<PathObject, CMPICount>(self, status, 0, [](PathObject& path, CMPIStatus&) { return path.keyCount; });
}

CMPIStatus setNameSpaceFromObjectPath(const CMPIObjectPath* self, const CMPIObjectPath* src)
{
    return change<PathObject>(self, [&](PathObject& path) {
        const PathObject* from = argument<PathObject>(src);
        if (!from) return failed(CMPI_RC_ERR_INVALID_PARAMETER);
        path.setNameSpace(from->nameSpace);
        return ok();
    });
}

CMPIStatus setHostAndNameSpaceFromObjectPath(const CMPIObjectPath* self, const CMPIObjectPath* src)
{
    return change<PathObject>(self, [&](PathObject& path) {
        const PathObject* from = argument<PathObject>(src);
        if (!from) return failed(CMPI_RC_ERR_INVALID_PARAMETER);
        path.setNameSpace(from->nameSpace);
        path.setHost(from->host);
        return ok();
    });
}

CMPIData qualifierData(PathObject& path, const QualifierList* list, const char* qName, CMPIStatus& outcome)
{
    const QualifierInfo* qualifier = list && qName ? list->find(qName) : nullptr;
    if (!qualifier) {
        outcome = failed(CMPI_RC_ERR_NOT_FOUND);
        return missing(CMPI_nullValue);
    }
    return schemaData(Placement::inside(path.head, path.memory), qualifier->value);
}

CMPIData getClassQualifier(const CMPIObjectPath* self, const char* qName, CMPIStatus* status)
{
    return answer<PathObject>(self, status, missing(CMPI_nullValue), [&](PathObject& path, CMPIStatus& outcome) {
        return qualifierData(path, path.classInfo ? &path.classInfo->qualifiers() : nullptr, qName, outcome);
    });
}

CMPIData getPropertyQualifier(const CMPIObjectPath* self, const char* pName, const char* qName, CMPIStatus* status)
{
    return answer<PathObject>(self, status, missing(CMPI_nullValue), [&](PathObject& path, CMPIStatus& outcome) {
        const PropertyInfo* property = path.classInfo && pName ? path.classInfo->findProperty(pName) : nullptr;
        return qualifierData(path, property ? &property->qualifiers : nullptr, qName, outcome);
    });
}

const MethodInfo* methodOf(const PathObject& path, const char* name)
{
    return path.classInfo && name ? path.classInfo->findMethod(name) : nullptr;
}

CMPIData getMethodQualifier(const CMPIObjectPath* self, const char* mName, const char* qName, CMPIStatus* status)
{
    return answer<PathObject>(self, status, missing(CMPI_nullValue), [&](PathObject& path, CMPIStatus& outcome) {
        const MethodInfo* method = methodOf(path, mName);
        return qualifierData(path, method ? &method->qualifiers : nullptr, qName, outcome);
    });
}

CMPIData getParameterQualifier(const CMPIObjectPath* self, const char* mName, const char* pName, const char* qName,
                               CMPIStatus* status)
{
    return answer<PathObject>(self, status, missing(CMPI_nullValue), [&](PathObject& path, CMPIStatus& outcome) {
        const QualifierList* list = nullptr;
        if (const MethodInfo* method = methodOf(path, mName))
            for (const ParameterInfo& parameter : method->parameters)
                if (pName && sameName(parameter.name, pName)) list = &parameter.qualifiers;
        return qualifierData(path, list, qName, outcome);
    });
}

CMPIString* toString(const CMPIObjectPath* self, CMPIStatus* status)
{
    return answer<PathObject, CMPIString*>(self, status, nullptr, [](PathObject& path, CMPIStatus&) {
        return textInScope(*path.head.broker, path.text());
    });
}

} // namespace

CMPIObjectPathFT pathTable(Profile profile)
{
    CMPIObjectPathFT table{objectTableVersion(profile),
                           release<PathObject, CMPIObjectPath>,
                           cloneObject<PathObject, CMPIObjectPath>,
                           setNameSpace,
                           getNameSpace,
                           setHostname,
                           getHostname,
                           setClassName,
                           getClassName,
                           addKey,
                           getKey,
                           getKeyAt,
                           getKeyCount,
                           setNameSpaceFromObjectPath,
                           setHostAndNameSpaceFromObjectPath,
                           getClassQualifier,
                           getPropertyQualifier,
                           getMethodQualifier,
                           getParameterQualifier,
                           toString};
    if (profile != Profile::Standard) {
        table.getClassQualifier = nullptr;
        table.getMethodQualifier = nullptr;
        table.getParameterQualifier = nullptr;
    }
    if (profile == Profile::Pegasus) table.getPropertyQualifier = nullptr;
    return table;
}

} // namespace KDV::Host
