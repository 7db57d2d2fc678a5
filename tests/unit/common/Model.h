// A small world for tests of the collection: classes, a broker, stand-in instances whose keys lie in bytes that a test
// can change, and associations of every kind that the collection knows. Stand-ins count how often they are asked.
#pragma once

#include "broker/Broker.h"
#include "broker/CollectingSink.h"
#include "broker/RequestScope.h"
#include "broker/ResultObject.h"
#include "common/CmpiManagedInstanceAssociation.h"
#include "common/CmpiManagedInstanceCollection.h"

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace KDV {

inline const std::string modelNameSpace = "root/vnr";

// How often stand-ins were asked, and which were destroyed in which order.
struct Asked {
    std::size_t paths = 0;
    std::size_t instances = 0;
    std::size_t associated = 0;
    std::size_t sum() const { return paths + instances + associated; }
    std::vector<std::string> destroyed;
};

// The bytes that a stand-in reads its keys from, as a record has them.
struct KeyRecord {
    char id[12] = {};
    char sub[8] = {};
};

void setText(char* field, std::size_t size, const std::string& text);

class StandIn : public CmpiManagedInstance {
public:
    StandIn(Asked& asked, const std::string& className, const KeyRecord& record, std::string label);
    ~StandIn() override;
    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;
    const std::string& label() const { return _label; }

private:
    Asked& _asked;
    const KeyRecord& _record;
    std::string _label;
};

// What kind of association the collection is shown.
enum class LinkKind {
    declared,   // its ends are declared and its keys are the two references
    undeclared, // the same, but it does not declare them
    tagged,     // has a third key, so it cannot declare them
};

class StandInLink : public CmpiManagedInstanceAssociation {
public:
    StandInLink(Asked& asked, LinkKind kind, const std::string& className, const End& first, const End& second,
                std::string label, std::unique_ptr<CmpiCpp::CmpiObjectPath> fixed = nullptr);
    ~StandInLink() override;
    CmpiCpp::CmpiObjectPath getPath() const override;
    CmpiCpp::CmpiInstance getInstance() override;
    CmpiCpp::CmpiObjectPath getAssociatedPath(const CmpiCpp::CmpiObjectPath& given) const override;

    const End& first() const { return _first; }
    const End& second() const { return _second; }
    bool declares() const { return _kind == LinkKind::declared; }
    const std::string& label() const { return _label; }
    static CmpiCpp::CmpiObjectPath pathOf(const End& end);

private:
    Asked& _asked;
    LinkKind _kind;
    std::string _label;
    std::unique_ptr<CmpiCpp::CmpiObjectPath> _fixed;
    End _first;
    End _second;
};

// Repository, broker and a scope on the calling thread.
class Model {
public:
    explicit Model(Host::Profile profile = Host::Profile::Standard);
    ~Model();

    const CMPIBroker* cmpi() const { return _broker.cmpi(); }
    Host::Broker& broker() { return _broker; }
    static CmpiCpp::CmpiObjectPath path(const std::string& className, const std::string& id,
                                        const std::string& sub = "", const std::string& nameSpace = modelNameSpace);

private:
    Host::ClassRepository _repository;
    Host::Broker _broker;
    Host::RequestScope _scope;
};

// A path as sinks of the broker write it.
std::string textOf(const CmpiCpp::CmpiObjectPath& path);

// The operations of a collection with their answers as texts: labels of instances, texts of paths.
using Texts = std::vector<std::string>;

struct Filter {
    std::string associationClass, resultClass, role, resultRole;
};

class Client {
public:
    Client(Model& model, CmpiManagedInstanceCollection& collection) : _model(model), _collection(collection) {}
    Texts enumerate(const std::string& className);
    Texts enumerateNames(const std::string& className);
    Texts get(const CmpiCpp::CmpiObjectPath& path); // empty when not found
    Texts associators(const CmpiCpp::CmpiObjectPath& path, const Filter& filter = {});
    Texts associatorNames(const CmpiCpp::CmpiObjectPath& path, const Filter& filter = {});
    Texts references(const CmpiCpp::CmpiObjectPath& path, const Filter& filter = {});
    Texts referenceNames(const CmpiCpp::CmpiObjectPath& path, const Filter& filter = {});
    std::vector<Host::CollectedInstance> instances; // of the last call
    const char* const* properties = nullptr;

private:
    Texts instancesFrom(const std::function<void(const CmpiCpp::CmpiInstanceResult&)>& call);
    Texts pathsFrom(const std::function<void(const CmpiCpp::CmpiObjectPathResult&)>& call);

    Model& _model;
    CmpiManagedInstanceCollection& _collection;
};

} // namespace KDV
