#include "ScriptedPath.h"

namespace {

ScriptedPath& scripted(const CMPIObjectPath* path)
{
    return static_cast<ScriptedPath&>(*const_cast<CMPIObjectPath*>(path));
}

CMPIStatus releaseString(CMPIString*) { return {CMPI_RC_OK, nullptr}; }

const char* charsOf(const CMPIString* string, CMPIStatus* status)
{
    status->rc = CMPI_RC_OK;
    const auto& own = *static_cast<const ScriptedString*>(string);
    return own.isNull ? nullptr : own.text.c_str();
}

CMPIStatus releasePath(CMPIObjectPath* path)
{
    ++scripted(path).releases;
    return {CMPI_RC_OK, nullptr};
}

CMPIObjectPath* clonePath(const CMPIObjectPath* path, CMPIStatus* status)
{
    ++scripted(path).clones;
    status->rc = scripted(path).failing;
    return status->rc == CMPI_RC_OK ? &scripted(path) : nullptr;
}

CMPIString* answerText(const CMPIObjectPath* path, ScriptedString* text, CMPIStatus* status)
{
    status->rc = scripted(path).failing;
    return status->rc == CMPI_RC_OK ? text : nullptr;
}

CMPIString* nameSpaceOf(const CMPIObjectPath* path, CMPIStatus* status)
{
    return answerText(path, scripted(path).nameSpace, status);
}

CMPIString* hostOf(const CMPIObjectPath* path, CMPIStatus* status)
{
    return answerText(path, scripted(path).host, status);
}

CMPIString* classNameOf(const CMPIObjectPath* path, CMPIStatus* status)
{
    return answerText(path, scripted(path).className, status);
}

CMPIData keyAt(const CMPIObjectPath* path, CMPICount index, CMPIString** name, CMPIStatus* status)
{
    status->rc = scripted(path).failing;
    *name = scripted(path).keys[index].name;
    return scripted(path).keys[index].data;
}

CMPIData keyNamed(const CMPIObjectPath* path, const char* name, CMPIStatus* status)
{
    for (const ScriptedPath::Key& key : scripted(path).keys) {
        if (key.name->text == name) {
            status->rc = scripted(path).failing;
            return key.data;
        }
    }
    status->rc = CMPI_RC_ERR_NOT_FOUND;
    return CMPIData{CMPI_null, CMPI_notFound, {}};
}

CMPICount keyCount(const CMPIObjectPath* path, CMPIStatus* status)
{
    status->rc = scripted(path).failing;
    return static_cast<CMPICount>(scripted(path).keys.size());
}

CMPIStringFT makeStringTable()
{
    CMPIStringFT table{};
    table.ftVersion = CMPIVersion100;
    table.release = releaseString;
    table.getCharPtr = charsOf;
    return table;
}

CMPIObjectPathFT makePathTable()
{
    CMPIObjectPathFT table{};
    table.ftVersion = CMPIVersion100;
    table.release = releasePath;
    table.clone = clonePath;
    table.getNameSpace = nameSpaceOf;
    table.getHostname = hostOf;
    table.getClassName = classNameOf;
    table.getKey = keyNamed;
    table.getKeyAt = keyAt;
    table.getKeyCount = keyCount;
    return table;
}

const CMPIStringFT stringTable = makeStringTable();
const CMPIObjectPathFT pathTable = makePathTable();

} // namespace

ScriptedString::ScriptedString(const char* content)
    : CMPIString{this, &stringTable}, text(content ? content : ""), isNull(!content)
{
}

ScriptedPath::ScriptedPath(const char* ofClass, const char* inNameSpace, const char* onHost)
    : CMPIObjectPath{this, &pathTable}, className(keep(ofClass)), nameSpace(keep(inNameSpace)), host(keep(onHost))
{
}

ScriptedString* ScriptedPath::keep(const char* content) { return &_strings.emplace_back(content); }

ScriptedPath& ScriptedPath::key(const char* name, CMPIType type, CMPIValueState state, const CMPIValue& value)
{
    keys.push_back({keep(name), CMPIData{type, state, value}});
    return *this;
}

ScriptedPath& ScriptedPath::text(const char* name, const char* value)
{
    CMPIValue content{};
    content.string = keep(value);
    return key(name, CMPI_string, CMPI_keyValue, content);
}

ScriptedPath& ScriptedPath::chars(const char* name, const char* value)
{
    CMPIValue content{};
    content.chars = const_cast<char*>(value);
    return key(name, CMPI_chars, CMPI_goodValue, content);
}

ScriptedPath& ScriptedPath::reference(const char* name, const CMPIObjectPath* target)
{
    CMPIValue content{};
    content.ref = const_cast<CMPIObjectPath*>(target);
    return key(name, CMPI_ref, CMPI_goodValue, content);
}

ScriptedPath& ScriptedPath::boolean(const char* name, bool value)
{
    CMPIValue content{};
    content.boolean = value ? 255 : 0; // any byte but 0 is true
    return key(name, CMPI_boolean, CMPI_goodValue, content);
}

ScriptedPath& ScriptedPath::signedNumber(const char* name, CMPIType type, std::int64_t value)
{
    CMPIValue content{};
    switch (type) {
    case CMPI_sint8:
        content.sint8 = static_cast<CMPISint8>(value);
        break;
    case CMPI_sint16:
        content.sint16 = static_cast<CMPISint16>(value);
        break;
    case CMPI_sint32:
        content.sint32 = static_cast<CMPISint32>(value);
        break;
    default:
        content.sint64 = value;
        break;
    }
    return key(name, type, CMPI_goodValue, content);
}

ScriptedPath& ScriptedPath::unsignedNumber(const char* name, CMPIType type, std::uint64_t value)
{
    CMPIValue content{};
    switch (type) {
    case CMPI_uint8:
        content.uint8 = static_cast<CMPIUint8>(value);
        break;
    case CMPI_uint16:
        content.uint16 = static_cast<CMPIUint16>(value);
        break;
    case CMPI_uint32:
        content.uint32 = static_cast<CMPIUint32>(value);
        break;
    case CMPI_char16:
        content.char16 = static_cast<CMPIChar16>(value);
        break;
    default:
        content.uint64 = value;
        break;
    }
    return key(name, type, CMPI_goodValue, content);
}

ScriptedPath& ScriptedPath::real(const char* name, CMPIType type, double value)
{
    CMPIValue content{};
    if (type == CMPI_real32)
        content.real32 = static_cast<float>(value);
    else
        content.real64 = value;
    return key(name, type, CMPI_goodValue, content);
}
