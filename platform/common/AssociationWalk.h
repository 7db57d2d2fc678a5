// One association request: walks the associations that can answer for a path and tells which do and with what. Lives
// for the request, under the provider's lock.
#pragma once

#include "cmpicpp/CmpiObjectPath.h"
#include "common/CollectionIndex.h"

#include <cstdint>
#include <optional>
#include <utility>

namespace KDV {

class AssociationWalk {
public:
    AssociationWalk(CollectionIndex& index, const CmpiCpp::CmpiObjectPath& given, const AssociationFilter& filter);

    // Calls answer(association id, path of the other end) for each answer, in order of creation.
    template <class Answer>
    void forEach(Answer answer)
    {
        for (const std::uint32_t id : _index.associationsAt(_node, _filter)) {
            std::optional<CmpiCpp::CmpiObjectPath> other = otherEnd(id);
            if (other) answer(id, std::move(*other));
        }
    }

    // The object that publishes the other end of an answer: the first visible one with its path; none when the
    // collection has no such object.
    std::uint32_t publisher(std::uint32_t association, const CmpiCpp::CmpiObjectPath& other) const;

private:
    std::optional<CmpiCpp::CmpiObjectPath> otherEnd(std::uint32_t id); // none: does not answer
    bool passes(std::uint32_t association, const CmpiCpp::CmpiObjectPath& other);
    bool hasRoles(std::uint32_t association, const CmpiCpp::CmpiObjectPath& other) const;
    bool isHidden(const CollectionIndex::End& end) const;
    bool isHidden(const CmpiCpp::CmpiObjectPath& path) const;

    CollectionIndex& _index;
    const CmpiCpp::CmpiObjectPath& _given;
    const AssociationFilter& _filter;
    std::uint32_t _node;
};

// The first visible instance with exactly this path; none when there is none.
std::uint32_t firstVisibleAt(const CollectionIndex& index, const CmpiCpp::CmpiObjectPath& path);

} // namespace KDV
