// The classes of all namespaces, read from MOF. The host makes one at start, loads into it from one thread, and from
// then on only reads: all look-ups are const, lock-free and allocate nothing. Errors while loading are MofError.
#pragma once

#include "hostschema/ClassInfo.h"
#include "hostschema/MofError.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace KDV::Host {

// A static instance written in MOF ("instance of ..."), values as written.
struct InstanceDeclaration {
    const ClassInfo* classInfo = nullptr;
    std::vector<std::pair<const PropertyInfo*, SchemaValue>> values;
};

class Namespace {
public:
    Namespace(const Namespace&) = delete;
    Namespace& operator=(const Namespace&) = delete;
    ~Namespace();

    const std::string& name() const noexcept { return _name; }
    const ClassInfo* find(std::string_view className) const noexcept;
    const std::vector<std::unique_ptr<ClassInfo>>& classes() const noexcept { return _classes; } // superclasses first
    // The classes below `base`, without it; null means the classes without a superclass, and below them.
    std::vector<const ClassInfo*> subclasses(const ClassInfo* base, bool deep) const;
    const std::vector<InstanceDeclaration>& instances() const noexcept { return _instances; }

private:
    friend class ClassRepository;
    friend class ClassResolver;
    explicit Namespace(std::string name) : _name(std::move(name)) {}

    std::string _name;
    std::vector<std::unique_ptr<ClassInfo>> _classes;
    std::unordered_map<std::string_view, ClassInfo*, NameHash, NameEqual> _byName;
    std::vector<QualifierInfo> _qualifiers; // those declared with "Qualifier"
    std::vector<InstanceDeclaration> _instances;
};

class ClassRepository {
public:
    ClassRepository();
    ~ClassRepository();
    ClassRepository(const ClassRepository&) = delete;
    ClassRepository& operator=(const ClassRepository&) = delete;

    // Names compare without regard to case; slashes at either end are not part of them.
    Namespace& addNamespace(std::string_view name); // the same one if it exists
    void addAlias(std::string_view alias, std::string_view name);
    const Namespace* findNamespace(std::string_view name) const noexcept;
    const std::vector<std::unique_ptr<Namespace>>& namespaces() const noexcept { return _namespaces; }
    const ClassInfo* find(std::string_view nameSpace, std::string_view className) const noexcept;
    unsigned classCount() const noexcept { return _classCount; } // all ClassInfo::number() are below it

    // Reads a MOF file or text into a namespace (made if missing). "#pragma include" is followed, relative to the file
    // that has it; a file is read once per namespace. A class must come after its superclass.
    void loadFile(const std::filesystem::path& file, std::string_view nameSpace);
    void loadText(std::string_view mof, std::string_view nameSpace, const std::string& fileName = "text");
    // Every class that a reference names must exist; called when everything is loaded.
    void checkReferences() const;

private:
    friend class ClassResolver;
    std::vector<std::unique_ptr<Namespace>> _namespaces;
    std::vector<std::pair<std::string, Namespace*>> _names; // aliases too; few, so searched in order
    unsigned _classCount = 0;
    struct Loaded;
    std::unique_ptr<Loaded> _loaded;
};

} // namespace KDV::Host
