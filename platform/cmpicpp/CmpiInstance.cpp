#include "cmpicpp/CmpiInstance.h"

#include "cmpicpp/PathKeys.h"

#include <memory>
#include <utility>

namespace CmpiCpp {

namespace {

thread_local const char* const* listInForce = nullptr;

std::uint32_t shortHash(const char* name) noexcept { return static_cast<std::uint32_t>(nameHash(name)); }

// Names and values of a path's keys, read once; on the stack for every real path.
class KeysOnce {
public:
    explicit KeysOnce(const CMPIObjectPath* path) : _count(keyCountOf(path)), _keys(_few), _names(_fewNames)
    {
        if (_count > few) {
            _many = std::make_unique<PathKey[]>(_count);
            _manyNames = std::make_unique<const char*[]>(_count + 1u);
            _keys = _many.get();
            _names = _manyNames.get();
        }
        for (CMPICount i = 0; i < _count; ++i) {
            _keys[i] = keyAt(path, i);
            _names[i] = _keys[i].name;
        }
        _names[_count] = nullptr;
    }

    const PathKey* begin() const noexcept { return _keys; }
    const PathKey* end() const noexcept { return _keys + _count; }
    CMPICount count() const noexcept { return _count; }
    const char** names() noexcept { return _names; }

private:
    static constexpr CMPICount few = 8;
    CMPICount _count;
    PathKey _few[few];
    const char* _fewNames[few + 1];
    std::unique_ptr<PathKey[]> _many;
    std::unique_ptr<const char*[]> _manyNames;
    PathKey* _keys;
    const char** _names;
};

// A number got back from a path may be of a wider type than the class declares; the property row that follows has
// the exact one.
bool isNumber(CMPIType type) noexcept { return (type & CMPI_UINT) != 0 && (type & (CMPI_ENC | CMPI_ARRAY)) == 0; }

} // namespace

CmpiInstance::CmpiInstance(CMPIInstance* raw, const char* const* wanted) noexcept
    : _raw(raw), _wanted(wanted), _keyHashes{}
{
}

CmpiInstance::CmpiInstance(CmpiInstance&& other) noexcept
    : _raw(std::exchange(other._raw, nullptr)), _wanted(other._wanted), _keyCount(other._keyCount)
{
    std::memcpy(_keyHashes, other._keyHashes, sizeof _keyHashes);
}

CmpiInstance::~CmpiInstance() { releaseObject(_raw); }

bool CmpiInstance::isListed(const CmpiName& name) const noexcept
{
    if (_keyCount > keyRoom) return true;
    for (const char* const* wanted = _wanted; *wanted; ++wanted) {
        if (name == CmpiName(*wanted)) return true;
    }
    const std::uint32_t hash = shortHash(name.c_str());
    for (unsigned i = 0; i < _keyCount; ++i) {
        if (_keyHashes[i] == hash) return true;
    }
    return false;
}

void CmpiInstance::set(const CmpiName& name, const CMPIValue* value, CMPIType type)
{
    throwIfFailed(_raw->ft->setProperty(_raw, name.c_str(), value, type), "setProperty");
}

// Filter before content: what a server sets later then passes its filter, and keys stay usable for the path.
void CmpiInstance::setKeys(const CMPIObjectPath* path)
{
    KeysOnce keys(path);
    if (_wanted) {
        _keyCount = keys.count();
        for (unsigned i = 0; i < _keyCount && i < keyRoom; ++i)
            _keyHashes[i] = shortHash(keys.names()[i]);
        const CMPIStatus status = _raw->ft->setPropertyFilter(_raw, const_cast<const char**>(_wanted), keys.names());
        if (status.rc != CMPI_RC_ERR_NOT_SUPPORTED) // then our own skipping must do
            throwIfFailed(status, "setPropertyFilter");
    }
    for (const PathKey& key : keys) {
        if (key.isNull()) continue;
        const CMPIStatus status = _raw->ft->setProperty(_raw, key.name, asArgument(key.data), key.data.type);
        const bool mismatch = status.rc == CMPI_RC_ERR_TYPE_MISMATCH || status.rc == CMPI_RC_ERR_INVALID_DATA_TYPE;
        if (!(mismatch && isNumber(key.data.type))) throwIfFailed(status, "setProperty");
    }
}

void CmpiInstance::addProperty(const CmpiName& name, bool value)
{
    if (!wants(name)) return;
    CMPIValue content = blankValue();
    content.boolean = value;
    set(name, &content, CMPI_boolean);
}

void CmpiInstance::addProperty(const CmpiName& name, std::uint8_t value)
{
    if (!wants(name)) return;
    CMPIValue content = blankValue();
    content.uint8 = value;
    set(name, &content, CMPI_uint8);
}

void CmpiInstance::addProperty(const CmpiName& name, std::uint16_t value)
{
    if (!wants(name)) return;
    CMPIValue content = blankValue();
    content.uint16 = value;
    set(name, &content, CMPI_uint16);
}

void CmpiInstance::addProperty(const CmpiName& name, std::uint32_t value)
{
    if (!wants(name)) return;
    CMPIValue content = blankValue();
    content.uint32 = value;
    set(name, &content, CMPI_uint32);
}

void CmpiInstance::addProperty(const CmpiName& name, std::uint64_t value)
{
    if (!wants(name)) return;
    CMPIValue content = blankValue();
    content.uint64 = value;
    set(name, &content, CMPI_uint64);
}

void CmpiInstance::addProperty(const CmpiName& name, std::int8_t value)
{
    if (!wants(name)) return;
    CMPIValue content = blankValue();
    content.sint8 = value;
    set(name, &content, CMPI_sint8);
}

void CmpiInstance::addProperty(const CmpiName& name, const char* text)
{
    if (wants(name)) set(name, charsValue(text ? text : ""), CMPI_chars);
}

void CmpiInstance::addProperty(const CmpiName& name, const std::string& text) { addProperty(name, text.c_str()); }

void CmpiInstance::addProperty(const CmpiName& name, const CmpiObjectPath& reference)
{
    if (!wants(name)) return;
    if (!reference.raw()) throw CmpiStatus(CMPI_RC_ERR_INVALID_HANDLE, "a reference to an empty object path");
    CMPIValue content = blankValue();
    content.ref = const_cast<CMPIObjectPath*>(reference.raw());
    set(name, &content, CMPI_ref);
}

void CmpiInstance::addProperty(const CmpiName& name, const CmpiArray& array)
{
    if (!wants(name)) return;
    CMPIValue content = blankValue();
    content.array = array.raw();
    set(name, &content, static_cast<CMPIType>(array.elementType() | CMPI_ARRAY));
}

void CmpiInstance::addDateTimeProperty(const CmpiName& name, const CMPIBroker* broker,
                                       std::uint64_t microsecondsSince1970)
{
    if (!wants(name)) return;
    CMPIStatus status{CMPI_RC_OK, nullptr};
    CMPIDateTime* raw = factories(broker).newDateTimeFromBinary(broker, microsecondsSince1970, 0, &status);
    const Owned<CMPIDateTime> dateTime(checkedObject(raw, status, "newDateTimeFromBinary"));
    CMPIValue content = blankValue();
    content.dateTime = dateTime.get();
    set(name, &content, CMPI_dateTime);
}

CmpiInstance makeCmpiInstance(const CMPIBroker* broker, const CmpiObjectPath& path)
{
    if (!path.raw()) throw CmpiStatus(CMPI_RC_ERR_INVALID_HANDLE, "an instance needs an object path");
    CMPIStatus status{CMPI_RC_OK, nullptr};
    CMPIInstance* raw = factories(broker).newInstance(broker, path.raw(), &status);
    CmpiInstance instance(checkedObject(raw, status, "newInstance"), PropertyList::current());
    instance.setKeys(path.raw());
    return instance;
}

PropertyList::PropertyList(const char* const* names) noexcept : _previous(std::exchange(listInForce, names)) {}

PropertyList::~PropertyList() { listInForce = _previous; }

const char* const* PropertyList::current() noexcept { return listInForce; }

} // namespace CmpiCpp
