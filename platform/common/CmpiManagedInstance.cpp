#include "common/CmpiManagedInstance.h"

#include "cmpicpp/CmpiStatus.h"
#include "common/CollectionIndex.h"
#include "common/KeySources.h"

#include <mutex>
#include <stdexcept>
#include <unordered_set>

using namespace CmpiCpp;
namespace KDV {
namespace {

// The names live as long as the process: there are as many as classes in the code. Never destroyed, because objects
// may outlive the static objects of a library.
const std::string* shared(const std::string& className)
{
    static std::mutex& mutex = *new std::mutex;
    static auto& names = *new std::unordered_set<std::string>;
    std::lock_guard<std::mutex> lock(mutex);
    return &*names.insert(className).first;
}

} // namespace

CmpiManagedInstance::CmpiManagedInstance(const std::string& className) : _className(shared(className)) {}

CmpiManagedInstance::~CmpiManagedInstance() = default;

void CmpiManagedInstance::invokeMethod(const CmpiContext&, const CmpiName& method, const CmpiArgs&,
                                       const CmpiMethodResult&)
{
    throw CmpiStatus(CMPI_RC_ERR_METHOD_NOT_AVAILABLE, *_className + " has no method " + method.c_str());
}

const std::string& CmpiManagedInstance::getClassName() const { return *_className; }

void CmpiManagedInstance::setVisible(bool visible) noexcept
{
    _visible = visible;
    if (_index) _index->setVisible(_id, visible);
}

void CmpiManagedInstance::keysReadFrom(const void* bytes, std::size_t count)
{
    if (_index) throw std::logic_error(*_className + ": key sources are declared before the object is handed over");
    if (!_keySources) _keySources = std::make_unique<DeclaredKeySources>();
    _keySources->regions.push_back({bytes, count});
}

} // namespace KDV
