#include "indications/SubscriptionProvider.h"

#include "hostschema/SchemaName.h"
#include "indications/Refusal.h"

#include <algorithm>

namespace KDV::Host {

namespace {

bool isClass(std::string_view className, const char* name) { return sameName(className, name); }

bool isA(const ClassRepository& repository, std::string_view nameSpace, std::string_view className, const char* base)
{
    if (!base || !*base) return true;
    const ClassInfo* derived = repository.find(nameSpace, className);
    const ClassInfo* wanted = repository.find(nameSpace, base);
    return derived && wanted && derived->isA(*wanted);
}

bool isRole(const char* asked, const char* role) { return !asked || !*asked || sameName(asked, role); }

} // namespace

SubscriptionProvider::~SubscriptionProvider() = default;

const std::vector<const char*>& SubscriptionProvider::classNames()
{
    static const std::vector<const char*> names{InteropClass::filter,       InteropClass::destination,
                                                InteropClass::handler,      InteropClass::collection,
                                                InteropClass::subscription, InteropClass::collectionSubscription,
                                                InteropClass::member};
    return names;
}

bool SubscriptionProvider::isAssociation(std::string_view className)
{
    return isClass(className, InteropClass::subscription) || isClass(className, InteropClass::collectionSubscription) ||
           isClass(className, InteropClass::member);
}

// Every operation in a scope of its own, refusals turned into outcomes.
template <class Body>
Outcome SubscriptionProvider::answer(const PathObject& path, const char** properties, Body body)
try {
    RequestScope scope(_service.broker(), path.nameSpace);
    body(InteropContext{scope, path.nameSpace, properties});
    return {};
} catch (const Refusal& refusal) {
    return {refusal.rc(), refusal.what()};
} catch (const std::exception& error) {
    return {CMPI_RC_ERR_FAILED, error.what()};
}

std::string SubscriptionProvider::creatorOf(const CMPIContext* context)
{
    const NamedValue* principal = context ? ContextObject::of(context).values.find("CMPIPrincipal") : nullptr;
    return principal && principal->data.type == CMPI_string && !isNull(principal->data)
               ? std::string(textOf(principal->data.value))
               : std::string();
}

void SubscriptionProvider::each(const InteropContext& at, std::string_view className, const Visit& visit)
{
    if (isClass(className, InteropClass::filter)) {
        for (const FilterRecord& one : _service.filters())
            visit(filterInstance(at, one));
    } else if (isClass(className, InteropClass::destination) || isClass(className, InteropClass::handler)) {
        for (const DestinationRecord& one : _service.destinations())
            if (sameName(one.key.className, className)) visit(destinationInstance(at, one));
    } else if (isClass(className, InteropClass::collection)) {
        for (const FilterCollectionRecord& one : _service.collections())
            visit(collectionInstance(at, one));
    } else if (isClass(className, InteropClass::member)) {
        for (const FilterCollectionRecord& one : _service.collections())
            for (const ElementKey& filter : one.filters)
                visit(memberInstance(at, one, filter));
    } else {
        for (const SubscriptionView& one : _service.subscriptions())
            if (sameName(one.record.className, className)) visit(subscriptionInstance(at, one, _service.now()));
    }
}

namespace {

// Paths as keys: without host and namespace, which a client may write or leave out.
bool sameKeys(const PathObject& one, const PathObject& other)
{
    if (!sameName(one.className, other.className) || one.keyCount != other.keyCount) return false;
    return std::all_of(one.begin(), one.end(), [&](const KeyBinding& key) {
        const KeyBinding* match = other.findKey(key.name);
        if (!match || isNull(match->data) || match->data.type != key.data.type) return false;
        if (key.data.type == CMPI_ref)
            return match->data.value.ref &&
                   sameKeys(PathObject::of(key.data.value.ref), PathObject::of(match->data.value.ref));
        return key.data.type == CMPI_string && textOf(key.data.value) == textOf(match->data.value);
    });
}

} // namespace

InstanceObject& SubscriptionProvider::find(const InteropContext& at, const PathObject& path)
{
    InstanceObject* found = nullptr;
    each(at, path.className, [&](InstanceObject& one) {
        if (sameKeys(*one.path, path)) found = &one;
    });
    if (!found) throw Refusal(CMPI_RC_ERR_NOT_FOUND, "there is no " + path.text());
    return *found;
}

Outcome SubscriptionProvider::enumerateInstanceNames(const CMPIContext*, const PathObject& classPath, ResultSink& sink)
{
    return answer(classPath, nullptr, [&](const InteropContext& at) {
        each(at, classPath.className, [&](InstanceObject& one) { sink.objectPath(*one.path); });
    });
}

Outcome SubscriptionProvider::enumerateInstances(const CMPIContext*, const PathObject& classPath,
                                                 const char** properties, ResultSink& sink)
{
    return answer(classPath, properties, [&](const InteropContext& at) {
        each(at, classPath.className, [&](InstanceObject& one) { sink.instance(one); });
    });
}

Outcome SubscriptionProvider::getInstance(const CMPIContext*, const PathObject& path, const char** properties,
                                          ResultSink& sink)
{
    return answer(path, properties, [&](const InteropContext& at) { sink.instance(find(at, path)); });
}

Outcome SubscriptionProvider::createInstance(const CMPIContext* context, const PathObject& classPath,
                                             const InstanceObject& instance, ResultSink& sink)
{
    return answer(classPath, nullptr, [&](const InteropContext& at) {
        const std::string_view className = classPath.className;
        if (isClass(className, InteropClass::filter)) {
            const FilterRecord filter = newFilter(instance, _service);
            _service.add(filter);
            sink.objectPath(elementPath(at, filter.key));
        } else if (isClass(className, InteropClass::destination) || isClass(className, InteropClass::handler)) {
            const DestinationRecord destination = newDestination(instance, _service);
            _service.add(destination);
            sink.objectPath(elementPath(at, destination.key));
        } else if (isClass(className, InteropClass::subscription) ||
                   isClass(className, InteropClass::collectionSubscription)) {
            SubscriptionRecord subscription = newSubscription(instance);
            subscription.creator = creatorOf(context);
            _service.add(subscription);
            sink.objectPath(subscriptionPath(at, subscription.key));
        } else {
            throw Refusal(CMPI_RC_ERR_NOT_SUPPORTED, "collections of filters belong to the server");
        }
    });
}

Outcome SubscriptionProvider::modifyInstance(const CMPIContext*, const PathObject& path, const InstanceObject& instance,
                                             const char** properties)
{
    return answer(path, nullptr, [&](const InteropContext& at) {
        const InstanceObject& current = find(at, path);
        const bool subscription = isAssociation(path.className) && !isClass(path.className, InteropClass::member);
        if (!subscription) {
            refuseChanges(current, instance, properties);
            return;
        }
        const SubscriptionKey key = subscriptionKeyOf(path);
        for (const SubscriptionView& one : _service.subscriptions())
            if (one.record.key == key) _service.replace(changedSubscription(one.record, current, instance, properties));
    });
}

Outcome SubscriptionProvider::deleteInstance(const CMPIContext*, const PathObject& path)
{
    return answer(path, nullptr, [&](const InteropContext& at) {
        find(at, path);
        const std::string_view className = path.className;
        if (isClass(className, InteropClass::filter))
            _service.removeFilter(elementKeyOf(path));
        else if (isClass(className, InteropClass::destination) || isClass(className, InteropClass::handler))
            _service.removeDestination(elementKeyOf(path));
        else if (isClass(className, InteropClass::collection) || isClass(className, InteropClass::member))
            throw Refusal(CMPI_RC_ERR_FAILED, "collections of filters belong to the server and cannot be deleted");
        else
            _service.removeSubscription(subscriptionKeyOf(path));
    });
}

struct SubscriptionProvider::Question {
    const char* association;
    const char* resultClass;
    const char* role;
    const char* resultRole;
};

// Visits the association instances that name `path`, or with `ends` what stands at their other end.
Outcome SubscriptionProvider::follow(const PathObject& path, const Question& question, const char** properties,
                                     bool ends, const Visit& visit)
{
    return answer(path, properties, [&](const InteropContext& at) {
        const ClassRepository& repository = _service.broker().repository();
        const InteropContext whole{at.scope, at.nameSpace, ends ? nullptr : properties};
        for (const char* className : classNames()) {
            if (!isAssociation(className) || !isA(repository, at.nameSpace, className, question.association)) continue;
            each(whole, className, [&](InstanceObject& one) {
                const KeyBinding& first = one.path->keys[0];
                const KeyBinding& second = one.path->keys[1];
                for (const auto& [here, there] : {std::pair(&first, &second), std::pair(&second, &first)}) {
                    const PathObject& other = PathObject::of(there->data.value.ref);
                    if (!sameKeys(PathObject::of(here->data.value.ref), path) ||
                        !isRole(question.role, std::string(here->name).c_str()))
                        continue;
                    if (!ends)
                        visit(one);
                    else if (isRole(question.resultRole, std::string(there->name).c_str()) &&
                             isA(repository, at.nameSpace, other.className, question.resultClass))
                        visit(find(at, other));
                }
            });
        }
    });
}

Outcome SubscriptionProvider::associators(const CMPIContext*, const PathObject& path, const char* assocClass,
                                          const char* resultClass, const char* role, const char* resultRole,
                                          const char** properties, ResultSink& sink)
{
    return follow(path, {assocClass, resultClass, role, resultRole}, properties, true,
                  [&](InstanceObject& one) { sink.instance(one); });
}

Outcome SubscriptionProvider::associatorNames(const CMPIContext*, const PathObject& path, const char* assocClass,
                                              const char* resultClass, const char* role, const char* resultRole,
                                              ResultSink& sink)
{
    return follow(path, {assocClass, resultClass, role, resultRole}, nullptr, true,
                  [&](InstanceObject& one) { sink.objectPath(*one.path); });
}

Outcome SubscriptionProvider::references(const CMPIContext*, const PathObject& path, const char* resultClass,
                                         const char* role, const char** properties, ResultSink& sink)
{
    return follow(path, {resultClass, nullptr, role, nullptr}, properties, false,
                  [&](InstanceObject& one) { sink.instance(one); });
}

Outcome SubscriptionProvider::referenceNames(const CMPIContext*, const PathObject& path, const char* resultClass,
                                             const char* role, ResultSink& sink)
{
    return follow(path, {resultClass, nullptr, role, nullptr}, nullptr, false,
                  [&](InstanceObject& one) { sink.objectPath(*one.path); });
}

} // namespace KDV::Host
