// An XML document of the CIM-XML vocabulary as a tree, read with Expat: elements in document order in one block, their
// texts and attributes in another. DOCTYPE is refused, and with it every entity of one's own; depth, number of elements
// and of attributes are limited. One tree serves many documents: it keeps its memory. Errors are RequestError.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace KDV::Host {

struct XmlLimits {
    unsigned depth = 64;
    unsigned elements = 200'000;
    unsigned attributesPerElement = 32;
};

class XmlTree {
public:
    static constexpr std::uint32_t none = UINT32_MAX;

    struct Span {
        std::uint32_t begin = 0;
        std::uint32_t size = 0;
    };
    struct Attribute {
        Span name;
        Span value;
    };
    struct Element {
        Span name;
        Span text; // empty for elements that hold elements
        std::uint32_t firstAttribute = 0;
        std::uint32_t attributes = 0;
        std::uint32_t firstChild = none;
        std::uint32_t next = none; // sibling
        std::uint32_t line = 0;
    };

    explicit XmlTree(XmlLimits limits = {}) : _limits(limits) {}
    XmlTree(const XmlTree&) = delete;
    XmlTree& operator=(const XmlTree&) = delete;
    ~XmlTree();

    // Reads a whole document in place of the last one.
    void read(std::string_view document);

    std::uint32_t root() const noexcept { return 0; }
    const Element& at(std::uint32_t element) const { return _elements[element]; }
    std::string_view name(std::uint32_t element) const { return view(_elements[element].name); }
    std::string_view text(std::uint32_t element) const { return view(_elements[element].text); }
    // The attribute's value, or null if it is not there (names are those of the DTD, in their case).
    bool attribute(std::uint32_t element, std::string_view name, std::string_view& value) const;

private:
    struct Callbacks;
    friend struct Callbacks;
    std::string_view view(Span span) const { return std::string_view(_text).substr(span.begin, span.size); }
    Span keep(std::string_view text);
    void start(const char* name, const char** attributes);
    void content(std::string_view text);
    void end();
    void refuse(int fault, std::string what);

    XmlLimits _limits;
    void* _parser = nullptr; // an XML_Parser
    std::vector<Element> _elements;
    std::vector<Attribute> _attributes;
    std::string _text;
    struct Open {
        std::uint32_t element;
        std::uint32_t lastChild;
        bool holdsText;
    };
    std::vector<Open> _open;
    int _fault = -1; // a RequestFault found inside a callback, where nothing may be thrown
    std::string _what;
};

} // namespace KDV::Host
