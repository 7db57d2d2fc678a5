// What a CIM server sends, as plain values: object paths and instances. Texts are UTF-8 as received.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace Cim {

struct Path;

struct Key {
    std::string name;
    std::string value;
    std::string valueType = "string"; // string, numeric or boolean
    std::shared_ptr<Path> reference;  // instead of the value
};

struct Path {
    std::string className;
    std::string nameSpace; // empty when the server left it out
    std::vector<Key> keys;

    const std::string& key(const std::string& name) const; // empty when there is none
};

struct Property {
    std::string name;
    std::string type; // "reference" for references
    bool isArray = false;
    bool isNull = true;
    std::vector<std::string> values;
    std::shared_ptr<Path> reference;
};

struct Instance {
    std::string className;
    Path path;
    std::vector<Property> properties;

    const Property* find(const std::string& name) const;
    std::string text(const std::string& name) const; // first value; empty when null or absent
    unsigned long number(const std::string& name, unsigned long otherwise) const;
    std::vector<unsigned long> numbers(const std::string& name) const;
};

// Names compare without regard to ASCII case.
bool sameName(const std::string& a, const std::string& b);

} // namespace Cim
