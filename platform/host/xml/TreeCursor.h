// A place in an XmlTree, for reading it by the rules of the DTD: each question either has its answer or is a
// RequestError that names the element and its line. Lives shorter than its tree.
#pragma once

#include "hostxml/RequestError.h"
#include "hostxml/XmlTree.h"

#include <string>
#include <string_view>

namespace KDV::Host {

class TreeCursor {
public:
    explicit TreeCursor(const XmlTree& tree) : TreeCursor(tree, tree.root()) {}

    explicit operator bool() const noexcept { return _at != XmlTree::none; }
    std::string_view name() const { return _tree->name(_at); }
    std::string_view text() const { return _tree->text(_at); }
    bool is(std::string_view element) const { return name() == element; }

    TreeCursor child() const { return {*_tree, _tree->at(_at).firstChild}; }
    TreeCursor next() const { return {*_tree, _tree->at(_at).next}; }

    // The only child; any other number of children is an error.
    TreeCursor only() const { return firstOf(1); }
    // The first of exactly `count` children.
    TreeCursor firstOf(unsigned count) const
    {
        unsigned found = 0;
        for (TreeCursor at = child(); at; at = at.next())
            ++found;
        if (found != count)
            refuse("must hold " + std::to_string(count) + (count == 1 ? " element" : " elements") + ", not " +
                   std::to_string(found));
        return child();
    }
    const TreeCursor& expect(std::string_view element) const
    {
        if (!is(element)) refuse("stands where " + std::string(element) + " must");
        return *this;
    }
    void expectNoChildren() const
    {
        if (child()) refuse("must be empty");
    }
    std::string_view required(std::string_view attributeName) const
    {
        std::string_view value;
        if (!_tree->attribute(_at, attributeName, value)) refuse("lacks the attribute " + std::string(attributeName));
        return value;
    }
    std::string_view attribute(std::string_view attributeName, std::string_view otherwise) const
    {
        std::string_view value = otherwise;
        _tree->attribute(_at, attributeName, value);
        return value;
    }
    [[noreturn]] void refuse(const std::string& what) const
    {
        throw RequestError(RequestFault::NotLooselyValid, "line " + std::to_string(_tree->at(_at).line) + ": element " +
                                                              std::string(name()) + " " + what);
    }

private:
    TreeCursor(const XmlTree& tree, std::uint32_t at) : _tree(&tree), _at(at) {}

    const XmlTree* _tree;
    std::uint32_t _at;
};

} // namespace KDV::Host
