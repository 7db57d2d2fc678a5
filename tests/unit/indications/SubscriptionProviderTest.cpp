#include "ServiceFixture.h"

using namespace KDV::Host;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

// Speaks to the provider as the server does: with paths and instances of one scope, in the interop namespace.
class SubscriptionProviderTest : public ServiceFixture {
protected:
    SubscriptionProviderTest() { begin(); }

    using Texts = std::vector<std::pair<std::string, std::string>>;
    InstanceObject& instance(RequestScope& scope, const char* className, const Texts& texts)
    {
        InstanceObject& made = scope.instance(scope.path(nameSpace, className));
        for (const auto& [name, value] : texts) {
            const CMPIStatus status = made.ft->setProperty(
                &made, name.c_str(), reinterpret_cast<const CMPIValue*>(value.c_str()), CMPI_chars);
            EXPECT_EQ(status.rc, CMPI_RC_OK) << name;
        }
        return made;
    }
    static void setNumber(InstanceObject& made, const char* name, std::uint64_t number, CMPIType type)
    {
        CMPIValue value{};
        value.uint64 = number; // little-endian: the smaller types read the same bytes
        EXPECT_EQ(made.ft->setProperty(&made, name, &value, type).rc, CMPI_RC_OK) << name;
    }
    static void setReference(InstanceObject& made, const char* name, PathObject& to)
    {
        CMPIValue value{};
        value.ref = &to;
        EXPECT_EQ(made.ft->setProperty(&made, name, &value, CMPI_ref).rc, CMPI_RC_OK) << name;
    }
    static void setSourceNamespaces(RequestScope& scope, InstanceObject& made, const char* name)
    {
        ArrayObject& array = scope.array(1, CMPI_string);
        CMPIValue value{};
        value.string = scope.string(name);
        array.ft->setElementAt(&array, 0, &value, CMPI_string);
        value.array = &array;
        EXPECT_EQ(made.ft->setProperty(&made, "SourceNamespaces", &value, CMPI_stringA).rc, CMPI_RC_OK);
    }
    Outcome create(InstanceObject& made)
    {
        sink = CollectingSink();
        return provider->createInstance(nullptr, *made.path, made, sink);
    }
    std::string createDestination(const Texts& texts, const char* className = InteropClass::destination)
    {
        RequestScope scope(*broker, nameSpace);
        const Outcome outcome = create(instance(scope, className, texts));
        EXPECT_EQ(outcome.rc, CMPI_RC_OK) << outcome.message;
        return sink.paths.empty() ? "" : sink.paths[0];
    }
    PathObject& pathOf(RequestScope& scope, const ElementKey& key)
    {
        return elementPath(InteropContext{scope, nameSpace}, key);
    }
    Outcome subscribe(RequestScope& scope, const ElementKey& filter, const ElementKey& handler,
                      const char* className = InteropClass::collectionSubscription)
    {
        InstanceObject& made = instance(scope, className, {});
        setReference(made, "Filter", pathOf(scope, filter));
        setReference(made, "Handler", pathOf(scope, handler));
        return create(made);
    }
    std::vector<std::string> names(const char* className)
    {
        RequestScope scope(*broker, nameSpace);
        sink = CollectingSink();
        EXPECT_EQ(provider->enumerateInstanceNames(nullptr, scope.path(nameSpace, className), sink).rc, CMPI_RC_OK);
        return sink.paths;
    }

    std::string nameSpace = "interop";
    CollectingSink sink;
};

} // namespace

TEST_F(SubscriptionProviderTest, FillsInTheKeysThatAClientLeavesOut)
{
    const std::string path = createDestination({{"Destination", "http://d/"}, {"Name", "d"}});
    EXPECT_THAT(path, HasSubstr("interop:CIM_ListenerDestinationCIMXML."));
    EXPECT_THAT(path, HasSubstr("SystemCreationClassName=\"CIM_ComputerSystem\""));
    EXPECT_THAT(path, HasSubstr("SystemName=\"testhost\""));
    EXPECT_THAT(path, HasSubstr("CreationClassName=\"CIM_ListenerDestinationCIMXML\""));
    EXPECT_THAT(path, HasSubstr("Name=\"d\""));
    const std::string unnamed = createDestination({{"Destination", "http://d/"}});
    EXPECT_NE(unnamed, createDestination({{"Destination", "http://d/"}}));
    const std::string own = createDestination({{"Destination", "http://d/"},
                                               {"Name", "d"},
                                               {"SystemName", "client"},
                                               {"SystemCreationClassName", "X"},
                                               {"CreationClassName", "cim_listenerdestinationcimxml"}});
    EXPECT_THAT(own, HasSubstr("SystemName=\"client\""));
    EXPECT_EQ(names(InteropClass::destination).size(), 4u);
    EXPECT_THAT(names(InteropClass::handler), IsEmpty());
    createDestination({{"Destination", "http://d/"}, {"Name", "d"}, {"Owner", "me"}}, InteropClass::handler);
    EXPECT_EQ(names(InteropClass::handler).size(), 1u);
}

TEST_F(SubscriptionProviderTest, GivesBackWhatWasCreated)
{
    RequestScope scope(*broker, nameSpace);
    InstanceObject& made = instance(scope, InteropClass::filter,
                                    {{"Name", "f"},
                                     {"ElementName", "mine"},
                                     {"SourceNamespace", "root/vnr"},
                                     {"Query", "SELECT * FROM KDV_SASIndication"},
                                     {"QueryLanguage", "WQL"}});
    setSourceNamespaces(scope, made, "root/vnr");
    ASSERT_EQ(create(made).rc, CMPI_RC_OK);
    EXPECT_EQ(create(made).rc, CMPI_RC_ERR_ALREADY_EXISTS);
    sink = CollectingSink();
    PathObject& path = pathOf(scope, key(InteropClass::filter, "f"));
    ASSERT_EQ(provider->getInstance(nullptr, path, nullptr, sink).rc, CMPI_RC_OK);
    ASSERT_EQ(sink.instances.size(), 1u);
    EXPECT_EQ(sink.instances[0].value("Name"), "\"f\"");
    EXPECT_EQ(sink.instances[0].value("ElementName"), "\"mine\"");
    EXPECT_EQ(sink.instances[0].value("Query"), "\"SELECT * FROM KDV_SASIndication\"");
    EXPECT_EQ(sink.instances[0].value("QueryLanguage"), "\"WQL\"");
    EXPECT_EQ(sink.instances[0].value("SourceNamespaces"), "{\"root/vnr\"}");
    const char* wanted[] = {"query", nullptr};
    sink = CollectingSink();
    ASSERT_EQ(provider->getInstance(nullptr, path, wanted, sink).rc, CMPI_RC_OK);
    EXPECT_EQ(sink.instances[0].properties.size(), 5u); // and the keys
    sink = CollectingSink();
    EXPECT_EQ(provider->getInstance(nullptr, pathOf(scope, key(InteropClass::filter, "F")), nullptr, sink).rc,
              CMPI_RC_ERR_NOT_FOUND);
    sink = CollectingSink();
    EXPECT_EQ(provider->enumerateInstances(nullptr, scope.path(nameSpace, InteropClass::filter), nullptr, sink).rc,
              CMPI_RC_OK);
    EXPECT_EQ(sink.instances.size(), 2u); // the static one too
}

TEST_F(SubscriptionProviderTest, RefusesInstancesThatMakeNoSense)
{
    struct Case {
        const char* className;
        Texts texts;
        int rc;
    };
    const std::string query = "SELECT * FROM KDV_SASIndication";
    const std::vector<Case> cases{
        {InteropClass::destination, {}, CMPI_RC_ERR_INVALID_PARAMETER},
        {InteropClass::destination, {{"Destination", "ftp://x"}}, CMPI_RC_ERR_INVALID_PARAMETER},
        {InteropClass::destination, {{"Destination", "http://u:p@x"}}, CMPI_RC_ERR_INVALID_PARAMETER},
        {InteropClass::destination, {{"Destination", "http://x"}, {"password", "p"}}, CMPI_RC_ERR_NOT_SUPPORTED},
        {InteropClass::destination,
         {{"Destination", "http://x"}, {"CreationClassName", "Y"}},
         CMPI_RC_ERR_INVALID_PARAMETER},
        {InteropClass::destination,
         {{"Destination", "http://x"}, {"Name", std::string(2'000, 'x')}},
         CMPI_RC_ERR_INVALID_PARAMETER},
        {InteropClass::filter, {{"QueryLanguage", "WQL"}}, CMPI_RC_ERR_INVALID_PARAMETER},
        {InteropClass::filter, {{"Query", query}}, CMPI_RC_ERR_INVALID_PARAMETER},
        {InteropClass::filter, {{"Query", query}, {"QueryLanguage", "SQL"}}, CMPI_RC_ERR_QUERY_LANGUAGE_NOT_SUPPORTED},
        {InteropClass::filter, {{"Query", "SELECT"}, {"QueryLanguage", "WQL"}}, CMPI_RC_ERR_INVALID_QUERY},
        {InteropClass::subscription, {}, CMPI_RC_ERR_INVALID_PARAMETER},
        {InteropClass::collection, {{"InstanceID", "x"}}, CMPI_RC_ERR_NOT_SUPPORTED},
    };
    for (const Case& one : cases) {
        RequestScope scope(*broker, nameSpace);
        const Outcome outcome = create(instance(scope, one.className, one.texts));
        EXPECT_EQ(outcome.rc, one.rc) << one.className << ": " << outcome.message;
        EXPECT_NE(outcome.message, "");
    }
    RequestScope scope(*broker, nameSpace);
    InstanceObject& persistence = instance(scope, InteropClass::destination, {{"Destination", "http://x"}});
    setNumber(persistence, "PersistenceType", 1, CMPI_uint16);
    EXPECT_EQ(create(persistence).rc, CMPI_RC_ERR_INVALID_PARAMETER);
    EXPECT_THAT(service->destinations(), IsEmpty());
    EXPECT_EQ(service->filters().size(), 1u);
}

TEST_F(SubscriptionProviderTest, SubscribesToTheReadyCollectionAndToItsFilter)
{
    createDestination({{"Destination", "http://d/"}, {"Name", "d"}});
    const ElementKey handler = key(InteropClass::destination, "d");
    const ElementKey ready = key(InteropClass::filter, staticName);
    RequestScope scope(*broker, nameSpace);
    ASSERT_EQ(subscribe(scope, collectionKey(staticName), handler).rc, CMPI_RC_OK);
    EXPECT_THAT(sink.paths, ElementsAre(HasSubstr("CIM_FilterCollectionSubscription.")));
    ASSERT_EQ(subscribe(scope, ready, handler, InteropClass::subscription).rc, CMPI_RC_OK);
    EXPECT_EQ(subscribe(scope, ready, handler, InteropClass::subscription).rc, CMPI_RC_ERR_ALREADY_EXISTS);
    EXPECT_EQ(subscribe(scope, key(InteropClass::filter, "none"), handler, InteropClass::subscription).rc,
              CMPI_RC_ERR_NOT_FOUND);
    EXPECT_EQ(subscribe(scope, collectionKey("none"), handler).rc, CMPI_RC_ERR_NOT_FOUND);
    EXPECT_EQ(subscribe(scope, ready, key(InteropClass::destination, "none"), InteropClass::subscription).rc,
              CMPI_RC_ERR_NOT_FOUND);

    sink = CollectingSink();
    ASSERT_EQ(
        provider->enumerateInstances(nullptr, scope.path(nameSpace, InteropClass::subscription), nullptr, sink).rc,
        CMPI_RC_OK);
    ASSERT_EQ(sink.instances.size(), 1u);
    EXPECT_EQ(sink.instances[0].value("SubscriptionState"), "2");
    EXPECT_EQ(sink.instances[0].value("OnFatalErrorPolicy"), "2");
    EXPECT_THAT(sink.instances[0].value("SubscriptionStartTime"), HasSubstr("20270115080000.000000+000"));
    EXPECT_THAT(sink.instances[0].value("Filter"), HasSubstr(staticName));
}

TEST_F(SubscriptionProviderTest, DeletesOnlyWhatIsItsClientsAndNotInUse)
{
    createDestination({{"Destination", "http://d/"}, {"Name", "d"}});
    const ElementKey handler = key(InteropClass::destination, "d");
    RequestScope scope(*broker, nameSpace);
    ASSERT_EQ(subscribe(scope, collectionKey(staticName), handler).rc, CMPI_RC_OK);
    PathObject& destinationPath = pathOf(scope, handler);
    const Outcome inUse = provider->deleteInstance(nullptr, destinationPath);
    EXPECT_EQ(inUse.rc, CMPI_RC_ERR_FAILED);
    EXPECT_THAT(inUse.message, HasSubstr("is used by"));
    EXPECT_EQ(provider->deleteInstance(nullptr, pathOf(scope, key(InteropClass::filter, staticName))).rc,
              CMPI_RC_ERR_FAILED);
    EXPECT_EQ(provider->deleteInstance(nullptr, pathOf(scope, collectionKey(staticName))).rc, CMPI_RC_ERR_FAILED);

    // As clients write it: with the other name of the namespace inside the references.
    nameSpace = "root/interop";
    PathObject& path = subscriptionPath(InteropContext{scope, nameSpace}, toCollection("d").key);
    EXPECT_EQ(provider->deleteInstance(nullptr, path).rc, CMPI_RC_OK);
    EXPECT_EQ(provider->deleteInstance(nullptr, path).rc, CMPI_RC_ERR_NOT_FOUND);
    EXPECT_EQ(provider->deleteInstance(nullptr, destinationPath).rc, CMPI_RC_OK);
    EXPECT_EQ(provider->deleteInstance(nullptr, destinationPath).rc, CMPI_RC_ERR_NOT_FOUND);
    EXPECT_EQ(recorder->calls().back(), "disable");
    // A path without all of its keys names nothing.
    EXPECT_EQ(provider->deleteInstance(nullptr, scope.path(nameSpace, InteropClass::subscription)).rc,
              CMPI_RC_ERR_NOT_FOUND);
}

TEST_F(SubscriptionProviderTest, ChangesTheStateOfASubscriptionAndNothingElseOfNote)
{
    createDestination({{"Destination", "http://d/"}, {"Name", "d"}});
    RequestScope scope(*broker, nameSpace);
    ASSERT_EQ(subscribe(scope, collectionKey(staticName), key(InteropClass::destination, "d")).rc, CMPI_RC_OK);
    PathObject& path = subscriptionPath(InteropContext{scope, nameSpace}, toCollection("d").key);
    InstanceObject& change = scope.instance(path);
    setNumber(change, "SubscriptionState", 4, CMPI_uint16);
    setNumber(change, "OnFatalErrorPolicy", 4, CMPI_uint16);
    const char* onlyState[] = {"SubscriptionState", nullptr};
    ASSERT_EQ(provider->modifyInstance(nullptr, path, change, onlyState).rc, CMPI_RC_OK);
    EXPECT_FALSE(service->subscriptions()[0].record.enabled);
    EXPECT_EQ(service->subscriptions()[0].record.policy, FatalErrorPolicy::Ignore);
    setNumber(change, "SubscriptionState", 2, CMPI_uint16);
    ASSERT_EQ(provider->modifyInstance(nullptr, path, change, nullptr).rc, CMPI_RC_OK);
    EXPECT_TRUE(service->subscriptions()[0].record.enabled);
    EXPECT_EQ(service->subscriptions()[0].record.policy, FatalErrorPolicy::Remove);
    setNumber(change, "SubscriptionState", 1, CMPI_uint16);
    EXPECT_EQ(provider->modifyInstance(nullptr, path, change, nullptr).rc, CMPI_RC_ERR_INVALID_PARAMETER);

    InstanceObject& other = scope.instance(path);
    setNumber(other, "RepeatNotificationPolicy", 2, CMPI_uint16); // as it is
    EXPECT_EQ(provider->modifyInstance(nullptr, path, other, nullptr).rc, CMPI_RC_OK);
    setNumber(other, "RepeatNotificationPolicy", 3, CMPI_uint16);
    EXPECT_EQ(provider->modifyInstance(nullptr, path, other, nullptr).rc, CMPI_RC_ERR_NOT_SUPPORTED);

    PathObject& destinationPath = pathOf(scope, key(InteropClass::destination, "d"));
    InstanceObject& moved = scope.instance(destinationPath);
    const std::string url = "http://elsewhere/";
    moved.ft->setProperty(&moved, "Destination", reinterpret_cast<const CMPIValue*>(url.c_str()), CMPI_chars);
    EXPECT_EQ(provider->modifyInstance(nullptr, destinationPath, moved, nullptr).rc, CMPI_RC_ERR_NOT_SUPPORTED);
    EXPECT_EQ(service->destinations()[0].url, "http://d/");
}

TEST_F(SubscriptionProviderTest, FollowsSubscriptionsAndMembershipsAsAssociations)
{
    createDestination({{"Destination", "http://d/"}, {"Name", "d"}});
    RequestScope scope(*broker, nameSpace);
    const ElementKey handler = key(InteropClass::destination, "d");
    ASSERT_EQ(subscribe(scope, collectionKey(staticName), handler).rc, CMPI_RC_OK);
    ASSERT_EQ(subscribe(scope, key(InteropClass::filter, staticName), handler, InteropClass::subscription).rc,
              CMPI_RC_OK);
    const auto ends = [&](const ElementKey& from, const char* association, const char* result, const char* role,
                          const char* resultRole) {
        sink = CollectingSink();
        EXPECT_EQ(
            provider->associatorNames(nullptr, pathOf(scope, from), association, result, role, resultRole, sink).rc,
            CMPI_RC_OK);
        std::vector<std::string> classes;
        for (const std::string& path : sink.paths)
            classes.push_back(path.substr(path.find(':') + 1, path.find('.') - path.find(':') - 1));
        return classes;
    };
    EXPECT_THAT(ends(handler, nullptr, nullptr, nullptr, nullptr),
                UnorderedElementsAre(InteropClass::filter, InteropClass::collection));
    EXPECT_THAT(ends(handler, InteropClass::subscription, "", "", ""), ElementsAre(InteropClass::filter));
    EXPECT_THAT(ends(handler, "CIM_AbstractIndicationSubscription", "CIM_Collection", "handler", "FILTER"),
                ElementsAre(InteropClass::collection));
    EXPECT_THAT(ends(handler, nullptr, nullptr, "Filter", nullptr), IsEmpty());
    EXPECT_THAT(ends(handler, nullptr, "CIM_Nothing", nullptr, nullptr), IsEmpty());
    EXPECT_THAT(ends(collectionKey(staticName), InteropClass::member, nullptr, nullptr, nullptr),
                ElementsAre(InteropClass::filter));
    sink = CollectingSink();
    EXPECT_EQ(provider->references(nullptr, pathOf(scope, handler), nullptr, nullptr, nullptr, sink).rc, CMPI_RC_OK);
    EXPECT_EQ(sink.instances.size(), 2u);
    sink = CollectingSink();
    EXPECT_EQ(provider
                  ->referenceNames(nullptr, pathOf(scope, collectionKey(staticName)), InteropClass::member,
                                   "Collection", sink)
                  .rc,
              CMPI_RC_OK);
    EXPECT_EQ(sink.paths.size(), 1u);
    sink = CollectingSink();
    const char* wanted[] = {"Destination", nullptr};
    EXPECT_EQ(provider
                  ->associators(nullptr, pathOf(scope, collectionKey(staticName)), nullptr, nullptr, nullptr, "Handler",
                                wanted, sink)
                  .rc,
              CMPI_RC_OK);
    ASSERT_EQ(sink.instances.size(), 1u);
    EXPECT_EQ(sink.instances[0].value("Destination"), "\"http://d/\"");
    EXPECT_EQ(sink.instances[0].value("PersistenceType"), "absent");
}

TEST_F(SubscriptionProviderTest, SaysWhichClassesItServes)
{
    for (const char* name : SubscriptionProvider::classNames()) {
        const ClassInfo* found = repository.find("interop", name);
        ASSERT_NE(found, nullptr) << name;
        EXPECT_EQ(found->isAssociation(), SubscriptionProvider::isAssociation(name)) << name;
    }
}
