// The answers that the collection must give, found the plain way: by asking every object there is, in order of
// creation. Knows nothing of indexes; classes and ends come from the model.
#pragma once

#include "Model.h"

#include <string>
#include <vector>

namespace KDV {

class Walk {
public:
    struct Object {
        CmpiManagedInstance* object;
        StandInLink* link; // null: an instance
        std::string label;
    };
    std::vector<Object> objects; // in order of creation

    Texts enumerate(const std::string& className) const;
    Texts enumerateNames(const std::string& className) const;
    Texts get(const CmpiCpp::CmpiObjectPath& path) const;
    Texts associators(const CmpiCpp::CmpiObjectPath& path, const Filter& filter) const;
    Texts associatorNames(const CmpiCpp::CmpiObjectPath& path, const Filter& filter) const;
    Texts references(const CmpiCpp::CmpiObjectPath& path, const Filter& filter) const;
    Texts referenceNames(const CmpiCpp::CmpiObjectPath& path, const Filter& filter) const;

    // Those that a cleanup leaves.
    std::vector<std::string> survivors() const;

private:
    struct Answer {
        const Object* association;
        CmpiCpp::CmpiObjectPath other;
    };
    std::vector<Answer> answers(const CmpiCpp::CmpiObjectPath& given, const Filter& filter) const;
    const Object* firstAt(const CmpiCpp::CmpiObjectPath& path) const;
    bool isHidden(const CmpiCpp::CmpiObjectPath& path) const;
    bool isEndHidden(const StandInLink& link, const StandInLink::End& end) const;
    static bool hasRoles(const StandInLink& link, const CmpiCpp::CmpiObjectPath& given,
                         const CmpiCpp::CmpiObjectPath& other, const Filter& filter);
};

} // namespace KDV
