#include "hostserver/BuiltInProvider.h"

namespace KDV::Host {

namespace {

bool sameKey(const CMPIData& a, const CMPIData& b)
{
    if (a.type != b.type || isNull(a) || isNull(b)) return false;
    if (a.type == CMPI_string) return textOf(a.value) == textOf(b.value);
    if (a.type == CMPI_ref) return samePath(PathObject::of(a.value.ref), PathObject::of(b.value.ref));
    return a.type == CMPI_boolean && a.value.boolean == b.value.boolean; // no built-in class has other keys
}

bool isWanted(const char* filter, std::string_view name) { return !filter || !*filter || sameName(filter, name); }

} // namespace

bool samePath(const PathObject& a, const PathObject& b)
{
    const bool elsewhere = !a.nameSpace.empty() && !b.nameSpace.empty() && !sameName(a.nameSpace, b.nameSpace);
    if (elsewhere || !sameName(a.className, b.className) || a.keyCount != b.keyCount) return false;
    for (const KeyBinding& key : a) {
        const KeyBinding* other = b.findKey(key.name);
        if (!other || !sameKey(key.data, other->data)) return false;
    }
    return true;
}

BuiltInProvider::~BuiltInProvider() = default;

InstanceObject& BuiltInProvider::make(RequestScope& scope, const ClassInfo& classInfo)
{
    return scope.instance(scope.path(classInfo.nameSpace().name(), classInfo.name()));
}

void BuiltInProvider::set(InstanceObject& instance, const char* name, const std::string& text)
{
    instance.ft->setProperty(&instance, name, reinterpret_cast<const CMPIValue*>(text.c_str()), CMPI_chars);
    const PropertyInfo* info = instance.classInfo->findProperty(name);
    if (info && info->key) instance.path->addTextKey(info->name, text);
}

void BuiltInProvider::set(InstanceObject& instance, const char* name, std::uint16_t number)
{
    CMPIValue value{};
    value.uint16 = number;
    instance.ft->setProperty(&instance, name, &value, CMPI_uint16);
}

void BuiltInProvider::set(InstanceObject& instance, const char* name, bool truth)
{
    CMPIValue value{};
    value.boolean = truth;
    instance.ft->setProperty(&instance, name, &value, CMPI_boolean);
}

void BuiltInProvider::set(InstanceObject& instance, const char* name, const PathObject& path)
{
    CMPIValue value{};
    value.ref = const_cast<PathObject*>(&path);
    instance.ft->setProperty(&instance, name, &value, CMPI_ref);
    instance.path->addKey(name, value, CMPI_ref);
}

void BuiltInProvider::setList(RequestScope& scope, InstanceObject& instance, const char* name,
                              const std::vector<std::uint16_t>& numbers)
{
    ArrayObject& array = scope.array(static_cast<CMPICount>(numbers.size()), CMPI_uint16);
    CMPIValue value{};
    for (CMPICount i = 0; i < numbers.size(); ++i) {
        value.uint16 = numbers[i];
        array.ft->setElementAt(&array, i, &value, CMPI_uint16);
    }
    value.array = &array;
    instance.ft->setProperty(&instance, name, &value, CMPI_uint16A);
}

Outcome BuiltInProvider::enumerateInstanceNames(const CMPIContext*, const PathObject& classPath, ResultSink& sink)
{
    RequestScope scope(_broker, classPath.nameSpace);
    for (const InstanceObject* instance : instancesOf(scope, *classPath.classInfo))
        if (!sink.objectPath(*instance->path)) return {CMPI_RC_ERR_FAILED, "the client is gone"};
    return {};
}

Outcome BuiltInProvider::enumerateInstances(const CMPIContext*, const PathObject& classPath, const char**,
                                            ResultSink& sink)
{
    RequestScope scope(_broker, classPath.nameSpace);
    for (const InstanceObject* instance : instancesOf(scope, *classPath.classInfo))
        if (!sink.instance(*instance)) return {CMPI_RC_ERR_FAILED, "the client is gone"};
    return {};
}

InstanceObject* BuiltInProvider::find(RequestScope& scope, const PathObject& path) const
{
    if (!path.classInfo) return nullptr;
    for (InstanceObject* instance : instancesOf(scope, *path.classInfo))
        if (samePath(*instance->path, path)) return instance;
    return nullptr;
}

Outcome BuiltInProvider::getInstance(const CMPIContext*, const PathObject& path, const char**, ResultSink& sink)
{
    RequestScope scope(_broker, path.nameSpace);
    const InstanceObject* instance = find(scope, path);
    if (!instance) return {CMPI_RC_ERR_NOT_FOUND, "there is no such instance: " + path.text()};
    sink.instance(*instance);
    return {};
}

struct BuiltInProvider::Link {
    const InstanceObject* association;
    const PathObject* other;
};

std::vector<BuiltInProvider::Link> BuiltInProvider::linksOf(RequestScope& scope, const PathObject& path,
                                                            const char* assocClass, const char* role,
                                                            const char* resultRole) const
{
    std::vector<Link> links;
    const Namespace& nameSpace = path.classInfo->nameSpace();
    const ClassInfo* wanted = assocClass && *assocClass ? nameSpace.find(assocClass) : nullptr;
    for (const ClassInfo* association : associationsIn(nameSpace)) {
        if (wanted && !association->isA(*wanted)) continue;
        for (const InstanceObject* instance : instancesOf(scope, *association))
            for (const KeyBinding& near : *instance->path) {
                if (near.data.type != CMPI_ref || !samePath(PathObject::of(near.data.value.ref), path) ||
                    !isWanted(role, near.name))
                    continue;
                for (const KeyBinding& far : *instance->path)
                    if (&far != &near && far.data.type == CMPI_ref && isWanted(resultRole, far.name))
                        links.push_back({instance, &PathObject::of(far.data.value.ref)});
            }
    }
    return links;
}

namespace {

bool hasClass(const PathObject& path, const char* resultClass, const Namespace& nameSpace)
{
    const ClassInfo* wanted = resultClass && *resultClass ? nameSpace.find(resultClass) : nullptr;
    return !wanted || isA(path.classInfo, wanted);
}

} // namespace

Outcome BuiltInProvider::associators(const CMPIContext*, const PathObject& path, const char* assocClass,
                                     const char* resultClass, const char* role, const char* resultRole, const char**,
                                     ResultSink& sink)
{
    RequestScope scope(_broker, path.nameSpace);
    for (const Link& link : linksOf(scope, path, assocClass, role, resultRole))
        if (hasClass(*link.other, resultClass, path.classInfo->nameSpace()))
            if (const InstanceObject* instance = find(scope, *link.other)) sink.instance(*instance);
    return {};
}

Outcome BuiltInProvider::associatorNames(const CMPIContext*, const PathObject& path, const char* assocClass,
                                         const char* resultClass, const char* role, const char* resultRole,
                                         ResultSink& sink)
{
    RequestScope scope(_broker, path.nameSpace);
    for (const Link& link : linksOf(scope, path, assocClass, role, resultRole))
        if (hasClass(*link.other, resultClass, path.classInfo->nameSpace())) sink.objectPath(*link.other);
    return {};
}

Outcome BuiltInProvider::references(const CMPIContext*, const PathObject& path, const char* resultClass,
                                    const char* role, const char**, ResultSink& sink)
{
    RequestScope scope(_broker, path.nameSpace);
    const InstanceObject* last = nullptr;
    for (const Link& link : linksOf(scope, path, resultClass, role, nullptr)) {
        if (link.association != last) sink.instance(*link.association);
        last = link.association; // both ends may be the given path
    }
    return {};
}

Outcome BuiltInProvider::referenceNames(const CMPIContext*, const PathObject& path, const char* resultClass,
                                        const char* role, ResultSink& sink)
{
    RequestScope scope(_broker, path.nameSpace);
    const InstanceObject* last = nullptr;
    for (const Link& link : linksOf(scope, path, resultClass, role, nullptr)) {
        if (link.association != last) sink.objectPath(*link.association->path);
        last = link.association;
    }
    return {};
}

} // namespace KDV::Host
