#include "hostschema/ClassRepository.h"

#include "hostschema/MofParser.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <set>
#include <sstream>

namespace KDV::Host {
namespace {

constexpr unsigned deepestInclude = 16;
constexpr std::uintmax_t largestFile = 64u * 1024 * 1024;

std::string_view trimmed(std::string_view name)
{
    while (!name.empty() && name.front() == '/')
        name.remove_prefix(1);
    while (!name.empty() && name.back() == '/')
        name.remove_suffix(1);
    return name;
}

std::string contentOf(const std::filesystem::path& file)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error))
        throw MofError(file.string(), 0, "expected a MOF file, found none");
    if (std::filesystem::file_size(file, error) > largestFile || error)
        throw MofError(file.string(), 0, "expected a file of at most 64 MiB");
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    if (!in) throw MofError(file.string(), 0, std::string("cannot be read: ") + std::strerror(errno));
    return text.str();
}

} // namespace

struct ClassRepository::Loaded {
    std::set<std::pair<const Namespace*, std::string>> files;

    void file(ClassRepository& repository, Namespace& into, const std::filesystem::path& path, unsigned depth)
    {
        const std::filesystem::path real = std::filesystem::weakly_canonical(path);
        if (!files.insert({&into, real.string()}).second) return;
        const std::string mof = contentOf(path);
        text(repository, into, mof, path.string(), path.parent_path(), depth);
    }

    void text(ClassRepository& repository, Namespace& into, std::string_view mof, const std::string& name,
              const std::filesystem::path& folder, unsigned depth)
    {
        ClassResolver resolver(repository, into);
        const auto include = [&](const std::string& included, unsigned line) {
            if (depth >= deepestInclude)
                throw MofError(name, line, "expected at most 16 files that include each other");
            const std::filesystem::path path = folder / included;
            if (!std::filesystem::exists(path))
                throw MofError(name, line, "expected a file to include, found none named \"" + included + "\"");
            file(repository, into, path, depth + 1);
        };
        MofParser(mof, name, resolver, include).parse();
    }
};

Namespace::~Namespace() = default;

const ClassInfo* Namespace::find(std::string_view className) const noexcept
{
    const auto found = _byName.find(className);
    return found == _byName.end() ? nullptr : found->second;
}

std::vector<const ClassInfo*> Namespace::subclasses(const ClassInfo* base, bool deep) const
{
    std::vector<const ClassInfo*> result;
    for (const auto& info : _classes) {
        const bool below = base ? info.get() != base && info->isA(*base) : true;
        if (below && (deep || info->superclass() == base)) result.push_back(info.get());
    }
    return result;
}

ClassRepository::ClassRepository() : _loaded(std::make_unique<Loaded>()) {}
ClassRepository::~ClassRepository() = default;

Namespace& ClassRepository::addNamespace(std::string_view name)
{
    name = trimmed(name);
    for (auto& [known, nameSpace] : _names)
        if (sameName(known, name)) return *nameSpace;
    _namespaces.push_back(std::unique_ptr<Namespace>(new Namespace(std::string(name))));
    _names.emplace_back(std::string(name), _namespaces.back().get());
    return *_namespaces.back();
}

void ClassRepository::addAlias(std::string_view alias, std::string_view name)
{
    Namespace& nameSpace = addNamespace(name);
    if (!findNamespace(alias)) _names.emplace_back(std::string(trimmed(alias)), &nameSpace);
}

const Namespace* ClassRepository::findNamespace(std::string_view name) const noexcept
{
    name = trimmed(name);
    for (const auto& [known, nameSpace] : _names)
        if (sameName(known, name)) return nameSpace;
    return nullptr;
}

const ClassInfo* ClassRepository::find(std::string_view nameSpace, std::string_view className) const noexcept
{
    const Namespace* in = findNamespace(nameSpace);
    return in ? in->find(className) : nullptr;
}

void ClassRepository::loadFile(const std::filesystem::path& file, std::string_view nameSpace)
{
    _loaded->file(*this, addNamespace(nameSpace), file, 0);
}

void ClassRepository::loadText(std::string_view mof, std::string_view nameSpace, const std::string& fileName)
{
    _loaded->text(*this, addNamespace(nameSpace), mof, fileName, std::filesystem::path(fileName).parent_path(), 0);
}

void ClassRepository::checkReferences() const
{
    for (const auto& nameSpace : _namespaces)
        for (const auto& info : nameSpace->_classes)
            for (const PropertyInfo& property : info->properties()) {
                if (!property.isReference()) continue;
                const auto fail = [&](const std::string& what) {
                    throw MofError(property.file, property.line,
                                   "the reference " + info->name() + "." + property.name + " " + what);
                };
                const ClassInfo* target = nameSpace->find(property.referenceClass);
                if (!target) fail("names the class \"" + property.referenceClass + "\", which is not declared");
                const ClassInfo* above = info->superclass();
                const PropertyInfo* overridden = above ? above->findProperty(property.name) : nullptr;
                const ClassInfo* wider = overridden ? nameSpace->find(overridden->referenceClass) : nullptr;
                if (wider && !target->isA(*wider))
                    fail("names " + target->name() + ", which is not below " + wider->name() + " as in " +
                         above->name());
            }
}

} // namespace KDV::Host
