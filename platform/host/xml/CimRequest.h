// A CIM-XML request as typed values: one operation request of DSP0201, with every name and value as the client wrote
// it. Made by readRequest(), which owns nothing of it afterwards; plain values, no lock. Nothing in here was looked up
// in a schema: types, classes and keys are checked by whoever executes it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace KDV::Host {

struct RequestPath;

enum class KeyKind { String, Boolean, Numeric, Reference };

struct RequestKey {
    std::string name; // empty if the client gave the value alone
    KeyKind kind = KeyKind::String;
    std::string type; // of KEYVALUE TYPE, where given
    std::string text;
    std::shared_ptr<const RequestPath> reference; // of KeyKind::Reference
};

// Of a class or of an instance, with as much of host and namespace as the client wrote.
struct RequestPath {
    bool isInstance = false;
    std::string host;
    std::string nameSpace; // parts joined by "/"; empty if not given
    std::string className;
    std::vector<RequestKey> keys;
};

struct RequestInstance;

enum class ValueKind { Null, Text, Texts, Path, Paths, Instance };

struct RequestValue {
    ValueKind kind = ValueKind::Null;
    std::string text;
    std::vector<std::optional<std::string>> texts; // an absent one is VALUE.NULL
    std::vector<RequestPath> paths;                // one of ValueKind::Path
    std::shared_ptr<const RequestInstance> instance;

    const RequestPath* path() const { return kind == ValueKind::Path ? &paths.front() : nullptr; }
};

struct RequestProperty {
    std::string name;
    std::string type; // "reference" for references
    bool isArray = false;
    bool embedded = false; // the text is an instance in XML
    RequestValue value;
};

struct RequestInstance {
    std::string className;
    std::optional<RequestPath> path; // of a named instance
    std::vector<RequestProperty> properties;
};

struct RequestParameter {
    std::string name;
    std::string type; // of PARAMVALUE PARAMTYPE, where given
    RequestValue value;
};

struct CimRequest {
    std::string messageId;
    bool intrinsic = true; // IMETHODCALL; else METHODCALL, which has a target
    std::string method;
    std::string nameSpace;
    RequestPath target;
    std::vector<RequestParameter> parameters;

    const RequestParameter* find(std::string_view name) const; // names without regard to case
};

} // namespace KDV::Host
