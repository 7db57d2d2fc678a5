#include "cmpicpp/CmpiObjectPath.h"

#include "cmpicpp/PathKeys.h"

#include <atomic>
#include <list>
#include <mutex>
#include <utility>

namespace CmpiCpp {

namespace {

std::atomic<const char*> defaultNameSpaceText{""};

const char* defaultNameSpace() noexcept { return defaultNameSpaceText.load(std::memory_order_acquire); }

// Some servers read every number back as sint64 but want an unsigned one where the class declares it so.
CMPIStatus addSameKey(const CMPIObjectPath* path, const PathKey& key)
{
    const CMPIStatus status = path->ft->addKey(path, key.name, asArgument(key.data), key.data.type);
    const bool mismatch = status.rc == CMPI_RC_ERR_TYPE_MISMATCH || status.rc == CMPI_RC_ERR_INVALID_DATA_TYPE;
    if (!mismatch || key.data.type != CMPI_sint64 || key.data.value.sint64 < 0) return status;
    CMPIValue value = blankValue();
    value.uint64 = static_cast<CMPIUint64>(key.data.value.sint64);
    return path->ft->addKey(path, key.name, &value, CMPI_uint64);
}

} // namespace

CmpiObjectPath CmpiObjectPath::lent(const CMPIObjectPath* raw) noexcept
{
    return CmpiObjectPath(const_cast<CMPIObjectPath*>(raw), Hold::lent);
}

CmpiObjectPath CmpiObjectPath::owned(CMPIObjectPath* raw) noexcept { return CmpiObjectPath(raw, Hold::made); }

CmpiObjectPath::CmpiObjectPath(const CmpiObjectPath& other) : _raw(nullptr), _hold(Hold::cloned)
{
    if (!other._raw) return;
    CMPIStatus status{CMPI_RC_OK, nullptr};
    CMPIObjectPath* clone = other._raw->ft->clone(other._raw, &status);
    _raw = checkedObject(clone, status, "clone");
}

CmpiObjectPath::CmpiObjectPath(CmpiObjectPath&& other) noexcept
    : _raw(std::exchange(other._raw, nullptr)), _hold(std::exchange(other._hold, Hold::lent))
{
}

CmpiObjectPath& CmpiObjectPath::operator=(CmpiObjectPath other) noexcept
{
    std::swap(_raw, other._raw);
    std::swap(_hold, other._hold);
    return *this;
}

CmpiObjectPath::~CmpiObjectPath()
{
    if (_hold != Hold::lent) releaseObject(_raw);
}

const CMPIObjectPath* CmpiObjectPath::existing() const
{
    if (!_raw) throw CmpiStatus(CMPI_RC_ERR_INVALID_HANDLE, "the object path is empty");
    return _raw;
}

bool CmpiObjectPath::empty() const { return *classNameOf(_raw) == '\0'; }

std::string CmpiObjectPath::getClassName() const { return classNameOf(_raw); }

std::string CmpiObjectPath::getNameSpace() const { return nameSpaceOf(_raw); }

std::string CmpiObjectPath::getHost() const { return hostOf(_raw); }

void CmpiObjectPath::setHost(const std::string& host)
{
    const CMPIObjectPath* path = existing();
    throwIfFailed(path->ft->setHostname(path, host.c_str()), "setHostname");
}

void CmpiObjectPath::setNameSpace(const std::string& nameSpace)
{
    const CMPIObjectPath* path = existing();
    throwIfFailed(path->ft->setNameSpace(path, nameSpace.c_str()), "setNameSpace");
}

void CmpiObjectPath::addKey(const CmpiName& name, const char* text)
{
    const CMPIObjectPath* path = existing();
    throwIfFailed(path->ft->addKey(path, name.c_str(), charsValue(text ? text : ""), CMPI_chars), "addKey");
}

void CmpiObjectPath::addKey(const CmpiName& name, const std::string& text) { addKey(name, text.c_str()); }

void CmpiObjectPath::addKey(const CmpiName& name, const CmpiObjectPath& reference)
{
    const CMPIObjectPath* path = existing();
    CMPIValue value = blankValue();
    value.ref = const_cast<CMPIObjectPath*>(reference.existing());
    throwIfFailed(path->ft->addKey(path, name.c_str(), &value, CMPI_ref), "addKey");
}

std::string CmpiObjectPath::keyText(const CmpiName& name) const
{
    if (!_raw) return {};
    CMPIStatus status{CMPI_RC_OK, nullptr};
    const PathKey key{name.c_str(), _raw->ft->getKey(_raw, name.c_str(), &status)};
    if (isMiss(status.rc)) return {};
    throwIfFailed(status, "getKey");
    return key.isText() && !key.isNull() ? key.text() : "";
}

bool CmpiObjectPath::equals(const CmpiObjectPath& other) const
{
    return equalPaths(_raw, other._raw, defaultNameSpace(), 0);
}

std::uint64_t CmpiObjectPath::fingerprint() const { return fingerprintOf(_raw, defaultNameSpace(), 0); }

void CmpiObjectPath::setDefaultNameSpace(const std::string& nameSpace)
{
    // Texts stay for the life of the process: other threads may be reading the one in force.
    static std::mutex mutex;
    static std::list<std::string>& texts = *new std::list<std::string>;
    std::lock_guard<std::mutex> lock(mutex);
    if (nameSpace == defaultNameSpace()) return;
    texts.push_back(nameSpace);
    defaultNameSpaceText.store(texts.back().c_str(), std::memory_order_release);
}

CMPIObjectPath* CmpiObjectPath::detach() noexcept
{
    _hold = Hold::lent;
    return _raw;
}

CmpiObjectPath makeCmpiObjectPath(const CMPIBroker* broker, const CmpiName& nameSpace, const CmpiName& className)
{
    CMPIStatus status{CMPI_RC_OK, nullptr};
    CMPIObjectPath* raw = factories(broker).newObjectPath(broker, nameSpace.c_str(), className.c_str(), &status);
    return CmpiObjectPath::owned(checkedObject(raw, status, "newObjectPath"));
}

CmpiObjectPath makeCmpiObjectPath(const CMPIBroker*) { return CmpiObjectPath::owned(nullptr); }

CmpiObjectPath remakeCmpiObjectPath(const CMPIBroker* broker, const CmpiObjectPath& path)
{
    const CMPIObjectPath* raw = path.raw();
    if (!raw) return makeCmpiObjectPath(broker);
    CmpiObjectPath made = makeCmpiObjectPath(broker, nameSpaceOf(raw), classNameOf(raw));
    const char* host = hostOf(raw);
    if (*host) made.setHost(host);
    const CMPICount count = keyCountOf(raw);
    for (CMPICount i = 0; i < count; ++i) {
        const PathKey key = keyAt(raw, i);
        if (!key.isNull()) throwIfFailed(addSameKey(made.raw(), key), "addKey");
    }
    return made;
}

} // namespace CmpiCpp
