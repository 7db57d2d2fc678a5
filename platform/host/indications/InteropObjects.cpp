#include "indications/InteropObjects.h"

#include "hostschema/SchemaName.h"
#include "indications/IndicationText.h"

#include <algorithm>

namespace KDV::Host {

namespace {

// Sets properties one by one, in the order of the calls, leaving out what the client did not ask for. Keys always
// count.
class Row {
public:
    Row(const InteropContext& at, const PathObject& path) : _at(at), _instance(at.scope.instance(path))
    {
        for (const KeyBinding& key : path)
            set(std::string(key.name).c_str(), &key.data.value, key.data.type);
    }
    InstanceObject& instance() { return _instance; }

    void text(const char* name, const std::string& value)
    {
        if (wants(name)) set(name, reinterpret_cast<const CMPIValue*>(value.c_str()), CMPI_chars);
    }
    void textIfAny(const char* name, const std::string& value)
    {
        if (!value.empty()) text(name, value);
    }
    void texts(const char* name, const std::vector<std::string>& values)
    {
        if (!wants(name) || values.empty()) return;
        ArrayObject& array = _at.scope.array(static_cast<CMPICount>(values.size()), CMPI_string);
        for (std::size_t i = 0; i < values.size(); ++i) {
            CMPIValue value{};
            value.string = _at.scope.string(values[i]);
            array.ft->setElementAt(&array, static_cast<CMPICount>(i), &value, CMPI_string);
        }
        CMPIValue value{};
        value.array = &array;
        set(name, &value, CMPI_stringA);
    }
    void uint16(const char* name, unsigned number)
    {
        CMPIValue value{};
        value.uint16 = static_cast<CMPIUint16>(number);
        if (wants(name)) set(name, &value, CMPI_uint16);
    }
    void uint64(const char* name, std::uint64_t number)
    {
        CMPIValue value{};
        value.uint64 = number;
        if (wants(name)) set(name, &value, CMPI_uint64);
    }
    void boolean(const char* name, bool yes)
    {
        CMPIValue value{};
        value.boolean = yes ? 1 : 0;
        if (wants(name)) set(name, &value, CMPI_boolean);
    }
    void time(const char* name, std::int64_t microseconds)
    {
        if (!wants(name)) return;
        const CMPIBroker* broker = _at.scope.broker().cmpi();
        CMPIStatus status{CMPI_RC_OK, nullptr};
        CMPIValue value{};
        value.dateTime = broker->eft->newDateTimeFromChars(broker, dateTimeText(microseconds).c_str(), &status);
        if (value.dateTime) set(name, &value, CMPI_dateTime);
    }

private:
    bool wants(const char* name) const
    {
        if (!_at.properties) return true;
        for (const char** one = _at.properties; *one; ++one)
            if (sameName(*one, name)) return true;
        return false;
    }
    // A schema that lacks a property of ours goes without it.
    void set(const char* name, const CMPIValue* value, CMPIType type)
    {
        _instance.ft->setProperty(&_instance, name, value, type);
    }

    const InteropContext& _at;
    InstanceObject& _instance;
};

void addReference(PathObject& path, const char* name, PathObject& to)
{
    CMPIValue value{};
    value.ref = &to;
    path.addKey(name, value, CMPI_ref);
}

} // namespace

ElementKey collectionKey(const std::string& instanceId) { return {{}, {}, InteropClass::collection, instanceId}; }

PathObject& elementPath(const InteropContext& at, const ElementKey& key)
{
    PathObject& path = at.scope.path(at.nameSpace, key.className);
    if (key.className == InteropClass::collection) {
        path.addTextKey("InstanceID", key.name);
        return path;
    }
    path.addTextKey("SystemCreationClassName", key.systemClass);
    path.addTextKey("SystemName", key.systemName);
    path.addTextKey("CreationClassName", key.className);
    path.addTextKey("Name", key.name);
    return path;
}

PathObject& subscriptionPath(const InteropContext& at, const SubscriptionKey& key)
{
    const bool collection = key.filter.className == InteropClass::collection;
    PathObject& path =
        at.scope.path(at.nameSpace, collection ? InteropClass::collectionSubscription : InteropClass::subscription);
    addReference(path, "Filter", elementPath(at, key.filter));
    addReference(path, "Handler", elementPath(at, key.handler));
    return path;
}

PathObject& memberPath(const InteropContext& at, const FilterCollectionRecord& collection, const ElementKey& filter)
{
    PathObject& path = at.scope.path(at.nameSpace, InteropClass::member);
    addReference(path, "Collection", elementPath(at, collectionKey(collection.instanceId)));
    addReference(path, "Member", elementPath(at, filter));
    return path;
}

InstanceObject& filterInstance(const InteropContext& at, const FilterRecord& filter)
{
    Row row(at, elementPath(at, filter.key));
    row.textIfAny("ElementName", filter.elementName);
    row.textIfAny("Description", filter.description);
    if (filter.sourceNamespace) row.text("SourceNamespace", *filter.sourceNamespace);
    row.texts("SourceNamespaces", filter.sourceNamespaces);
    row.boolean("IndividualSubscriptionSupported", true);
    row.text("Query", filter.query);
    row.text("QueryLanguage", filter.queryLanguage);
    return row.instance();
}

InstanceObject& destinationInstance(const InteropContext& at, const DestinationRecord& destination)
{
    Row row(at, elementPath(at, destination.key));
    row.textIfAny("ElementName", destination.elementName);
    row.textIfAny("Description", destination.description);
    row.uint16("PersistenceType", static_cast<unsigned>(destination.persistence));
    row.text("Destination", destination.url);
    row.uint16("Protocol", 2); // CIM-XML
    row.textIfAny("Owner", destination.owner);
    return row.instance();
}

InstanceObject& collectionInstance(const InteropContext& at, const FilterCollectionRecord& collection)
{
    Row row(at, elementPath(at, collectionKey(collection.instanceId)));
    row.textIfAny("ElementName", collection.elementName);
    row.text("CollectionName", collection.collectionName);
    return row.instance();
}

InstanceObject& subscriptionInstance(const InteropContext& at, const SubscriptionView& subscription, std::int64_t now)
{
    const SubscriptionRecord& record = subscription.record;
    Row row(at, subscriptionPath(at, record.key));
    row.uint16("OnFatalErrorPolicy", static_cast<unsigned>(record.policy));
    if (record.failureTriggerSeconds) row.uint64("FailureTriggerTimeInterval", *record.failureTriggerSeconds);
    const auto state = !record.enabled         ? SubscriptionStateValue::Disabled
                       : subscription.degraded ? SubscriptionStateValue::EnabledDegraded
                                               : SubscriptionStateValue::Enabled;
    row.uint16("SubscriptionState", static_cast<unsigned>(state));
    row.time("TimeOfLastStateChange", record.stateChanged);
    if (record.durationSeconds) {
        const std::int64_t passed = std::max<std::int64_t>(0, (now - record.started) / 1'000'000);
        const std::uint64_t gone = std::min(*record.durationSeconds, static_cast<std::uint64_t>(passed));
        row.uint64("SubscriptionDuration", *record.durationSeconds);
        row.time("SubscriptionStartTime", record.started);
        row.uint64("SubscriptionTimeRemaining", *record.durationSeconds - gone);
    } else {
        row.time("SubscriptionStartTime", record.started);
    }
    row.uint16("RepeatNotificationPolicy", 2); // none
    row.textIfAny("SubscriptionInfo", record.info);
    return row.instance();
}

InstanceObject& memberInstance(const InteropContext& at, const FilterCollectionRecord& collection,
                               const ElementKey& filter)
{
    return Row(at, memberPath(at, collection, filter)).instance();
}

} // namespace KDV::Host
