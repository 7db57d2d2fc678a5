#include "Walk.h"

#include <map>
#include <set>

using namespace CmpiCpp;
namespace KDV {
namespace {

// The model's classes and what is above each.
const std::map<std::string, std::string> superclasses = {{"T_Disk", "T_Base"},
                                                         {"T_FastDisk", "T_Disk"},
                                                         {"T_System", "T_Base"},
                                                         {"T_Outside", "T_Base"},
                                                         {"T_FastLink", "T_Link"}};

bool isA(std::string className, const std::string& asked)
{
    while (CmpiName(className) != CmpiName(asked)) {
        const auto above = superclasses.find(className);
        if (above == superclasses.end()) return asked.empty();
        className = above->second;
    }
    return true;
}

std::string labelled(const CmpiObjectPath& path, const std::string& label)
{
    return textOf(path) + " \"" + label + "\"";
}

} // namespace

Texts Walk::enumerate(const std::string& className) const
{
    Texts texts;
    for (const Object& o : objects)
        if (o.object->isVisible() && isA(o.object->getClassName(), className))
            texts.push_back(labelled(o.object->getPath(), o.label));
    return texts;
}

Texts Walk::enumerateNames(const std::string& className) const
{
    Texts texts;
    for (const Object& o : objects)
        if (o.object->isVisible() && isA(o.object->getClassName(), className))
            texts.push_back(textOf(o.object->getPath()));
    return texts;
}

Texts Walk::get(const CmpiObjectPath& path) const
{
    for (const Object& o : objects)
        if (o.object->isVisible() && o.object->getPath() == path) return {labelled(o.object->getPath(), o.label)};
    return {};
}

const Walk::Object* Walk::firstAt(const CmpiObjectPath& path) const
{
    for (const Object& o : objects)
        if (!o.link && o.object->isVisible() && o.object->getPath() == path) return &o;
    return nullptr;
}

bool Walk::isHidden(const CmpiObjectPath& path) const
{
    bool hidden = false;
    for (const Object& o : objects) {
        if (o.link || o.object->getPath() != path) continue;
        if (o.object->isVisible()) return false;
        hidden = true;
    }
    return hidden;
}

// An end that is declared is that object, whatever others have its path; else its path is all that is known.
bool Walk::isEndHidden(const StandInLink& link, const StandInLink::End& end) const
{
    return link.declares() && end.instance ? !end.instance->isVisible() : isHidden(StandInLink::pathOf(end));
}

bool Walk::hasRoles(const StandInLink& link, const CmpiObjectPath& given, const CmpiObjectPath& other,
                    const Filter& filter)
{
    const auto matches = [&](const StandInLink::End& mine, const StandInLink::End& theirs) {
        return StandInLink::pathOf(mine) == given && StandInLink::pathOf(theirs) == other &&
               (filter.role.empty() || CmpiName(filter.role) == CmpiName(mine.role)) &&
               (filter.resultRole.empty() || CmpiName(filter.resultRole) == CmpiName(theirs.role));
    };
    return matches(link.first(), link.second()) || matches(link.second(), link.first());
}

std::vector<Walk::Answer> Walk::answers(const CmpiObjectPath& given, const Filter& filter) const
{
    std::vector<Answer> found;
    for (const Object& o : objects) {
        if (!o.link || !o.object->isVisible() || isEndHidden(*o.link, o.link->first()) ||
            isEndHidden(*o.link, o.link->second()))
            continue;
        CmpiObjectPath other = o.link->getAssociatedPath(given);
        if (!other.empty() && isA(o.object->getClassName(), filter.associationClass) &&
            isA(other.getClassName(), filter.resultClass) && hasRoles(*o.link, given, other, filter))
            found.push_back({&o, std::move(other)});
    }
    return found;
}

Texts Walk::associators(const CmpiObjectPath& path, const Filter& filter) const
{
    Texts texts;
    for (const Answer& answer : answers(path, filter)) {
        const Object* const publisher = firstAt(answer.other);
        texts.push_back(publisher ? labelled(publisher->object->getPath(), publisher->label)
                                  : textOf(answer.other) + " no label");
    }
    return texts;
}

Texts Walk::associatorNames(const CmpiObjectPath& path, const Filter& filter) const
{
    Texts texts;
    for (const Answer& answer : answers(path, filter))
        texts.push_back(textOf(answer.other));
    return texts;
}

Texts Walk::references(const CmpiObjectPath& path, const Filter& filter) const
{
    Texts texts;
    for (const Answer& answer : answers(path, {filter.associationClass, {}, filter.role, {}}))
        texts.push_back(labelled(answer.association->object->getPath(), answer.association->label));
    return texts;
}

Texts Walk::referenceNames(const CmpiObjectPath& path, const Filter& filter) const
{
    Texts texts;
    for (const Answer& answer : answers(path, {filter.associationClass, {}, filter.role, {}}))
        texts.push_back(textOf(answer.association->object->getPath()));
    return texts;
}

std::vector<std::string> Walk::survivors() const
{
    std::set<const CmpiManagedInstance*> gone;
    for (const Object& o : objects)
        if (!o.object->isVisible()) gone.insert(o.object);
    std::vector<std::string> left;
    for (const Object& o : objects) {
        const bool endGone = o.link && o.link->declares() &&
                             (gone.count(o.link->first().instance) || gone.count(o.link->second().instance));
        if (!gone.count(o.object) && !endGone) left.push_back(o.label);
    }
    return left;
}

} // namespace KDV
