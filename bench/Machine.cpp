#include "Machine.h"

#include "broker/InstanceObject.h"

#include <chrono>
#include <cstdlib>
#include <stdexcept>

namespace KDV::Bench {
namespace {

using namespace Host;

constexpr const char* nameSpace = "root/vnr";
constexpr const char* diskClass = "KDV_SASDiskDrive";

// Keeps the keys of every disk and, of the first, everything that was set.
class LearningSink : public ResultSink {
public:
    LearningSink(std::vector<std::vector<std::pair<std::string, std::string>>>& keys,
                 std::vector<ReadyProperty>& properties)
        : _keys(keys), _properties(properties)
    {
    }

    bool instance(const InstanceObject& instance) override
    {
        std::vector<std::pair<std::string, std::string>> keys;
        for (const KeyBinding& key : *instance.path)
            keys.emplace_back(std::string(key.name), std::string(textOf(key.data.value)));
        _keys.push_back(std::move(keys));
        if (_properties.empty())
            for (const PropertyEntry& entry : instance.properties())
                learn(entry);
        return true;
    }
    bool objectPath(const PathObject&) override { return false; }
    bool data(const CMPIData&) override { return false; }

private:
    void learn(const PropertyEntry& entry)
    {
        ReadyProperty ready{std::string(entry.property->name), entry.type, {}, entry.value, {}, {}};
        if (entry.type == CMPI_string) {
            ready.text = textOf(entry.value);
        } else if (entry.type & CMPI_ARRAY) {
            for (const CMPIData& element : ArrayObject::of(entry.value.array)) {
                ready.elements.push_back(element.value);
                if ((entry.type & ~CMPI_ARRAY) == CMPI_string) ready.texts.emplace_back(textOf(element.value));
            }
        }
        _properties.push_back(std::move(ready));
    }

    std::vector<std::vector<std::pair<std::string, std::string>>>& _keys;
    std::vector<ReadyProperty>& _properties;
};

void require(const CMPIStatus& status, const char* what)
{
    if (status.rc != CMPI_RC_OK)
        throw std::runtime_error(std::string(what) + " failed with " + std::to_string(status.rc));
}

const ClassRepository& loadedSchema()
{
    static ClassRepository repository;
    const std::string share = std::string(KDV_BUILD_DIR) + "/share/kdv-sas/";

    repository.loadFile(share + "core/cim-core.mof", nameSpace);
    repository.loadFile(share + "kdv-sas.mof", nameSpace);
    return repository;
}

CMPIValue* asValue(const std::string& text)
{
    // With CMPI_chars the text itself stands in the place of the value.
    return reinterpret_cast<CMPIValue*>(const_cast<char*>(text.c_str()));
}

void setReady(const CMPIBroker* mb, CMPIInstance* instance, const ReadyProperty& property)
{
    CMPIStatus status{CMPI_RC_OK, nullptr};
    if (property.type == CMPI_string) {
        instance->ft->setProperty(instance, property.name.c_str(), asValue(property.text), CMPI_chars);
        return;
    }
    if (!(property.type & CMPI_ARRAY)) {
        instance->ft->setProperty(instance, property.name.c_str(), &property.value, property.type);
        return;
    }
    const CMPIType element = property.type & ~CMPI_ARRAY;
    CMPIArray* array = mb->eft->newArray(mb, static_cast<CMPICount>(property.elements.size()), element, &status);
    std::vector<CMPIString*> made;
    for (CMPICount i = 0; i < property.elements.size(); ++i) {
        CMPIValue value = property.elements[i];
        if (element == CMPI_string) {
            value.string = mb->eft->newString(mb, property.texts[i].c_str(), &status);
            made.push_back(value.string);
        }
        array->ft->setElementAt(array, i, &value, element);
    }
    CMPIValue value;
    value.array = array;
    instance->ft->setProperty(instance, property.name.c_str(), &value, property.type);
    array->ft->release(array);
    for (CMPIString* text : made)
        text->ft->release(text);
}

} // namespace

Machine& Machine::instance()
{
    static Machine machine;
    return machine;
}

Machine::Machine()
    : _broker(loadedSchema(), {Profile::Standard, false}),
      _module("KDVSASHBAProvider", std::string(KDV_BUILD_DIR) + "/lib")
{
    const auto start = std::chrono::steady_clock::now();
    const Outcome made = _module.create(_broker, "KDVSASHBA");
    _populateSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (made.rc != CMPI_RC_OK) throw std::runtime_error("the provider was not made: " + made.message);

    RequestScope scope(_broker, nameSpace);
    LearningSink sink(_diskKeys, _diskProperties);
    ResultObject result(_broker, sink, ResultKind::Instances);
    CMPIInstanceMI* mi = _module.instanceMI();
    require(mi->ft->enumerateInstances(mi, &scope.context(), result.cmpi(), &scope.path(nameSpace, diskClass), nullptr),
            "enumerateInstances");
    CMPIIndicationMI* indications = _module.indicationMI();
    require(indications->ft->enableIndications(indications, &scope.context()), "enableIndications");
}

std::uint64_t Machine::run(const std::function<CMPIStatus(RequestScope&, CMPIResult*)>& call)
{
    RequestScope scope(_broker, nameSpace);
    CountingSink sink;
    ResultObject result(_broker, sink);
    require(call(scope, result.cmpi()), "the call");
    return sink.count;
}

std::uint64_t Machine::enumerate(const char* className)
{
    CMPIInstanceMI* mi = _module.instanceMI();
    return run([&](RequestScope& scope, CMPIResult* result) {
        return mi->ft->enumerateInstances(mi, &scope.context(), result, &scope.path(nameSpace, className), nullptr);
    });
}

PathObject& Machine::diskPath(RequestScope& scope, std::size_t index)
{
    PathObject& path = scope.path(nameSpace, diskClass);
    for (const auto& [name, text] : _diskKeys[index])
        path.addTextKey(name, text);
    return path;
}

std::uint64_t Machine::getDisk(std::size_t index)
{
    CMPIInstanceMI* mi = _module.instanceMI();
    return run([&](RequestScope& scope, CMPIResult* result) {
        return mi->ft->getInstance(mi, &scope.context(), result, &diskPath(scope, index), nullptr);
    });
}

std::uint64_t Machine::hopToPackage(std::size_t index)
{
    CMPIAssociationMI* mi = _module.associationMI();
    return run([&](RequestScope& scope, CMPIResult* result) {
        return mi->ft->associators(mi, &scope.context(), result, &diskPath(scope, index),
                                   "KDV_SASDiskPhysicalPackageDiskDrive", nullptr, nullptr, nullptr, nullptr);
    });
}

std::uint64_t Machine::pass()
{
    CMPIMethodMI* mi = _module.methodMI();
    return run([&](RequestScope& scope, CMPIResult* result) {
        return mi->ft->invokeMethod(mi, &scope.context(), result, &scope.path(nameSpace, "KDV_AutoStartSASHBA"),
                                    "PerformWork", &scope.args(), &scope.args());
    });
}

std::uint64_t Machine::floorOfEnumeration()
{
    const CMPIBroker* mb = _broker.cmpi();
    return run([&](RequestScope&, CMPIResult* result) {
        CMPIStatus status{CMPI_RC_OK, nullptr};
        for (const auto& keys : _diskKeys) {
            CMPIObjectPath* path = mb->eft->newObjectPath(mb, nameSpace, diskClass, &status);
            path->ft->setHostname(path, "localhost");
            for (const auto& [name, text] : keys)
                path->ft->addKey(path, name.c_str(), asValue(text), CMPI_chars);
            CMPIInstance* instance = mb->eft->newInstance(mb, path, &status);
            for (const auto& [name, text] : keys) // as makeCmpiInstance does, since not every server does it
                instance->ft->setProperty(instance, name.c_str(), asValue(text), CMPI_chars);
            for (const ReadyProperty& property : _diskProperties)
                setReady(mb, instance, property);
            status = result->ft->returnInstance(result, instance);
            instance->ft->release(instance);
            path->ft->release(path);
        }
        return status;
    });
}

} // namespace KDV::Bench
