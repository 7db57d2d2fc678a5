// The half of InteropObjects that reads what clients write.
#include "broker/CollectingSink.h"
#include "hostschema/SchemaName.h"
#include "indications/InteropObjects.h"
#include "indications/Refusal.h"

#include <atomic>

namespace KDV::Host {

namespace {

constexpr std::size_t maxText = 1024;

[[noreturn]] void refuse(const std::string& what) { throw Refusal(CMPI_RC_ERR_INVALID_PARAMETER, what); }

std::string checkedText(std::string_view name, std::string_view text, std::size_t limit = maxText)
{
    if (text.size() > limit) refuse(std::string(name) + " has at most " + std::to_string(limit) + " bytes");
    return std::string(text);
}

// The properties that a client gave, by name.
class Given {
public:
    explicit Given(const InstanceObject& instance) : _instance(instance) {}

    const PropertyEntry* find(const char* name) const
    {
        const PropertyEntry* entry = _instance.find(name);
        return entry && !entry->isNull() && !entry->preset ? entry : nullptr;
    }
    bool has(const char* name) const { return find(name) != nullptr; }
    std::string text(const char* name, std::size_t limit = maxText) const
    {
        const PropertyEntry* entry = find(name);
        if (!entry) return {};
        if (entry->type != CMPI_string) refuse(std::string(name) + " must be a text");
        return checkedText(name, textOf(entry->value), limit);
    }
    std::string required(const char* name, std::size_t limit = maxText) const
    {
        std::string value = text(name, limit);
        if (value.empty()) refuse(std::string(name) + " is missing");
        return value;
    }
    std::optional<std::uint64_t> number(const char* name) const
    {
        const PropertyEntry* entry = find(name);
        if (!entry) return std::nullopt;
        if (entry->type == CMPI_uint16) return entry->value.uint16;
        if (entry->type == CMPI_uint64) return entry->value.uint64;
        refuse(std::string(name) + " must be a number");
    }
    std::vector<std::string> texts(const char* name) const
    {
        std::vector<std::string> values;
        const PropertyEntry* entry = find(name);
        if (!entry) return values;
        if (entry->type != CMPI_stringA) refuse(std::string(name) + " must be a list of texts");
        for (const CMPIData& element : ArrayObject::of(entry->value.array)) {
            if (isNull(element) || values.size() == 16) refuse(std::string(name) + " holds NULL or more than 16 texts");
            values.push_back(checkedText(name, textOf(element.value)));
        }
        return values;
    }
    const PathObject& reference(const char* name) const
    {
        const PropertyEntry* entry = find(name);
        if (!entry || entry->type != CMPI_ref || !entry->value.ref) refuse(std::string(name) + " must be a reference");
        return PathObject::of(entry->value.ref);
    }

private:
    const InstanceObject& _instance;
};

std::string madeName(const IndicationService& service)
{
    static std::atomic<unsigned> count{0};
    return "KDV:" + std::to_string(service.now()) + '-' + std::to_string(++count);
}

ElementKey newKey(const InstanceObject& instance, const IndicationService& service)
{
    const Given given(instance);
    const std::string className =
        instance.classInfo ? instance.classInfo->name() : std::string(instance.path->className);
    ElementKey key{given.text("SystemCreationClassName"), given.text("SystemName"), className, given.text("Name")};
    if (const std::string creation = given.text("CreationClassName");
        !creation.empty() && !sameName(creation, className))
        refuse("CreationClassName must be " + className);
    if (key.systemClass.empty()) key.systemClass = service.options().systemClass;
    if (key.systemName.empty()) key.systemName = service.options().systemName;
    if (key.name.empty()) key.name = madeName(service);
    return key;
}

std::string keyText(const PathObject& path, const char* name)
{
    const KeyBinding* key = path.findKey(name);
    if (!key || isNull(key->data) || key->data.type != CMPI_string)
        refuse("key " + std::string(name) + " is missing in the path of " + std::string(path.className));
    return std::string(textOf(key->data.value));
}

std::string classNameOf(const PathObject& path)
{
    for (const char* known :
         {InteropClass::filter, InteropClass::destination, InteropClass::handler, InteropClass::collection})
        if (sameName(path.className, known)) return known;
    refuse(std::string(path.className) + " is no class of filters, collections or listener destinations");
}

const PathObject& keyReference(const PathObject& path, const char* name)
{
    const KeyBinding* key = path.findKey(name);
    if (!key || isNull(key->data) || key->data.type != CMPI_ref || !key->data.value.ref)
        refuse("key " + std::string(name) + " is missing in the path of " + std::string(path.className));
    return PathObject::of(key->data.value.ref);
}

SubscriptionKey joined(const PathObject& filter, const PathObject& handler)
{
    SubscriptionKey key{elementKeyOf(filter), elementKeyOf(handler)};
    const std::string& of = key.filter.className;
    if (of != InteropClass::filter && of != InteropClass::collection)
        refuse("Filter must name a filter or a collection of filters");
    if (key.handler.className != InteropClass::destination && key.handler.className != InteropClass::handler)
        refuse("Handler must name a listener destination");
    return key;
}

FatalErrorPolicy policyOf(std::uint64_t number)
{
    if (number < 2 || number > 4) refuse("OnFatalErrorPolicy is 2 (ignore), 3 (disable) or 4 (remove)");
    return static_cast<FatalErrorPolicy>(number);
}

bool enabledBy(std::uint64_t state)
{
    if (state != 2 && state != 4) refuse("SubscriptionState can be set to 2 (enabled) or 4 (disabled)");
    return state == 2;
}

bool counts(const char** properties, const std::string& name)
{
    if (!properties) return true;
    for (const char** one = properties; *one; ++one)
        if (sameName(*one, name)) return true;
    return false;
}

bool isChange(const InstanceObject& current, const PropertyEntry& entry)
{
    const PropertyEntry* before = current.find(entry.property->name);
    if (!before || before->isNull() || entry.isNull()) return !entry.isNull() || (before && !before->isNull());
    if (entry.type == CMPI_ref) // host and namespace may be written or not
        return !(elementKeyOf(PathObject::of(entry.value.ref)) == elementKeyOf(PathObject::of(before->value.ref)));
    return valueText(before->data()) != valueText(entry.data());
}

template <class Exception>
void eachChange(const InstanceObject& current, const InstanceObject& given, const char** properties,
                Exception&& mayChange)
{
    for (const PropertyEntry& entry : given.properties()) {
        const std::string& name = entry.property->name;
        if (entry.preset || !counts(properties, name) || mayChange(name) || !isChange(current, entry)) continue;
        throw Refusal(CMPI_RC_ERR_NOT_SUPPORTED, name + " cannot be changed");
    }
}

} // namespace

ElementKey elementKeyOf(const PathObject& path)
{
    const std::string className = classNameOf(path);
    if (className == InteropClass::collection) return collectionKey(keyText(path, "InstanceID"));
    ElementKey key{keyText(path, "SystemCreationClassName"), keyText(path, "SystemName"), className,
                   keyText(path, "Name")};
    if (!sameName(keyText(path, "CreationClassName"), className)) refuse("CreationClassName must be " + className);
    return key;
}

SubscriptionKey subscriptionKeyOf(const PathObject& path)
{
    return joined(keyReference(path, "Filter"), keyReference(path, "Handler"));
}

FilterRecord newFilter(const InstanceObject& instance, const IndicationService& service)
{
    const Given given(instance);
    FilterRecord filter;
    filter.key = newKey(instance, service);
    filter.query = given.required("Query", Query::maxLength);
    filter.queryLanguage = given.required("QueryLanguage");
    if (given.has("SourceNamespace")) filter.sourceNamespace = given.text("SourceNamespace");
    filter.sourceNamespaces = given.texts("SourceNamespaces");
    filter.elementName = given.text("ElementName");
    filter.description = given.text("Description");
    if (const PropertyEntry* individual = given.find("IndividualSubscriptionSupported"))
        if (individual->value.boolean == 0)
            throw Refusal(CMPI_RC_ERR_NOT_SUPPORTED, "filters here can be subscribed to one by one");
    return filter;
}

DestinationRecord newDestination(const InstanceObject& instance, const IndicationService& service)
{
    const Given given(instance);
    DestinationRecord destination;
    destination.key = newKey(instance, service);
    destination.url = given.required("Destination", 2048);
    destination.elementName = given.text("ElementName");
    destination.description = given.text("Description");
    destination.owner = given.text("Owner");
    const std::uint64_t persistence = given.number("PersistenceType").value_or(2);
    if (persistence != 2 && persistence != 3) refuse("PersistenceType is 2 (permanent) or 3 (transient)");
    destination.persistence = static_cast<Persistence>(persistence);
    if (given.number("Protocol").value_or(2) != 2) refuse("Protocol can only be 2 (CIM-XML)");
    // They would be readable by every client and would stand on disk.
    if (given.has("username") || given.has("password"))
        throw Refusal(CMPI_RC_ERR_NOT_SUPPORTED, "this server keeps no credentials for listeners");
    return destination;
}

SubscriptionRecord newSubscription(const InstanceObject& instance)
{
    const Given given(instance);
    SubscriptionRecord subscription;
    subscription.key = joined(given.reference("Filter"), given.reference("Handler"));
    const bool collection = subscription.key.filter.className == InteropClass::collection;
    subscription.className = collection ? InteropClass::collectionSubscription : InteropClass::subscription;
    if (!sameName(instance.path->className, subscription.className))
        refuse("the filter of a " + std::string(instance.path->className) + " must be of another class");
    subscription.policy = policyOf(given.number("OnFatalErrorPolicy").value_or(2));
    subscription.failureTriggerSeconds = given.number("FailureTriggerTimeInterval");
    subscription.durationSeconds = given.number("SubscriptionDuration");
    subscription.enabled = enabledBy(given.number("SubscriptionState").value_or(2));
    subscription.info = given.text("SubscriptionInfo");
    const std::uint64_t repeat = given.number("RepeatNotificationPolicy").value_or(2);
    const PropertyEntry* alert = given.find("AlertOnStateChange");
    if ((repeat != 0 && repeat != 2) || (alert && alert->value.boolean != 0))
        throw Refusal(CMPI_RC_ERR_NOT_SUPPORTED, "indications are neither held back nor repeated here, and state "
                                                 "changes of subscriptions raise none");
    return subscription;
}

SubscriptionRecord changedSubscription(const SubscriptionRecord& record, const InstanceObject& current,
                                       const InstanceObject& instance, const char** properties)
{
    SubscriptionRecord next = record;
    const Given given(instance);
    const auto number = [&](const char* name) {
        return counts(properties, name) ? given.number(name) : std::optional<std::uint64_t>();
    };
    // A degraded subscription is read as 3 and comes back as 3.
    if (const auto state = number("SubscriptionState"); state && *state != 3) next.enabled = enabledBy(*state);
    if (const auto policy = number("OnFatalErrorPolicy")) next.policy = policyOf(*policy);
    if (const auto trigger = number("FailureTriggerTimeInterval")) next.failureTriggerSeconds = trigger;
    if (const auto duration = number("SubscriptionDuration")) next.durationSeconds = duration;
    eachChange(current, instance, properties, [](const std::string& name) {
        for (const char* free : {"SubscriptionState", "OnFatalErrorPolicy", "FailureTriggerTimeInterval",
                                 "SubscriptionDuration", "SubscriptionTimeRemaining"})
            if (sameName(name, free)) return true;
        return false;
    });
    return next;
}

void refuseChanges(const InstanceObject& current, const InstanceObject& given, const char** properties)
{
    eachChange(current, given, properties, [](const std::string&) { return false; });
}

} // namespace KDV::Host
