#include "hostxml/XmlTree.h"

#include "hostxml/RequestError.h"

#include <algorithm>
#include <array>
#include <new>

#include <expat.h>

namespace KDV::Host {

namespace {

// The elements whose content is text and nothing else; everywhere else only white space may stand between elements.
bool isTextElement(std::string_view name) { return name == "VALUE" || name == "KEYVALUE" || name == "HOST"; }

constexpr std::string_view blanks = " \t\r\n";

} // namespace

// Expat calls these; exceptions must not pass through it.
struct XmlTree::Callbacks {
    static XmlTree& tree(void* data) { return *static_cast<XmlTree*>(data); }

    template <class Body>
    static void guarded(void* data, Body body) noexcept
    {
        XmlTree& self = tree(data);
        if (self._fault >= 0) return;
        try {
            body(self);
        } catch (const std::exception&) {
            self._fault = static_cast<int>(RequestFault::NotValid);
            XML_StopParser(static_cast<XML_Parser>(self._parser), XML_FALSE);
        }
    }
    static void XMLCALL start(void* data, const char* name, const char** attributes)
    {
        guarded(data, [&](XmlTree& self) { self.start(name, attributes); });
    }
    static void XMLCALL end(void* data, const char*)
    {
        guarded(data, [](XmlTree& self) { self.end(); });
    }
    static void XMLCALL content(void* data, const char* text, int length)
    {
        guarded(data, [&](XmlTree& self) { self.content({text, static_cast<std::size_t>(length)}); });
    }
    static void XMLCALL doctype(void* data, const char*, const char*, const char*, int)
    {
        guarded(data, [](XmlTree& self) {
            self.refuse(static_cast<int>(RequestFault::NotValid), "a document type declaration is not accepted");
        });
    }
};

XmlTree::~XmlTree() { XML_ParserFree(static_cast<XML_Parser>(_parser)); }

void XmlTree::read(std::string_view document)
{
    _elements.clear();
    _attributes.clear();
    _text.clear();
    _open.clear();
    _fault = -1;
    _what.clear();
    if (!_parser)
        _parser = XML_ParserCreate(nullptr);
    else
        XML_ParserReset(static_cast<XML_Parser>(_parser), nullptr);
    auto* parser = static_cast<XML_Parser>(_parser);
    if (!parser) throw std::bad_alloc();
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, Callbacks::start, Callbacks::end);
    XML_SetCharacterDataHandler(parser, Callbacks::content);
    XML_SetStartDoctypeDeclHandler(parser, Callbacks::doctype);

    // Expat takes lengths as int; pieces also keep its own buffers small.
    constexpr std::size_t piece = 1u << 20;
    XML_Status status = XML_STATUS_OK;
    for (std::size_t at = 0; status == XML_STATUS_OK && at <= document.size(); at += piece) {
        const std::size_t size = std::min(piece, document.size() - at);
        status = XML_Parse(parser, document.data() + at, static_cast<int>(size), at + size == document.size());
        if (at + size == document.size()) break;
    }
    const std::string line = "line " + std::to_string(XML_GetCurrentLineNumber(parser)) + ": ";
    if (_fault >= 0) throw RequestError(static_cast<RequestFault>(_fault), line + _what);
    if (status != XML_STATUS_OK)
        throw RequestError(RequestFault::NotWellFormed, line + XML_ErrorString(XML_GetErrorCode(parser)));
}

bool XmlTree::attribute(std::uint32_t element, std::string_view name, std::string_view& value) const
{
    const Element& of = _elements[element];
    for (std::uint32_t i = of.firstAttribute; i != of.firstAttribute + of.attributes; ++i)
        if (view(_attributes[i].name) == name) {
            value = view(_attributes[i].value);
            return true;
        }
    return false;
}

XmlTree::Span XmlTree::keep(std::string_view text)
{
    const Span span{static_cast<std::uint32_t>(_text.size()), static_cast<std::uint32_t>(text.size())};
    _text.append(text);
    return span;
}

void XmlTree::refuse(int fault, std::string what)
{
    _fault = fault;
    _what = std::move(what);
    XML_StopParser(static_cast<XML_Parser>(_parser), XML_FALSE);
}

void XmlTree::start(const char* name, const char** attributes)
{
    constexpr int notValid = static_cast<int>(RequestFault::NotValid);
    if (_open.size() >= _limits.depth)
        return refuse(notValid, "elements are nested more than " + std::to_string(_limits.depth) + " deep");
    if (_elements.size() >= _limits.elements)
        return refuse(notValid, "more than " + std::to_string(_limits.elements) + " elements");
    const auto index = static_cast<std::uint32_t>(_elements.size());
    if (!_open.empty()) {
        Open& parent = _open.back();
        if (parent.holdsText)
            return refuse(notValid,
                          "element " + std::string(view(_elements[parent.element].name)) + " holds text only");
        (parent.lastChild == none ? _elements[parent.element].firstChild : _elements[parent.lastChild].next) = index;
        parent.lastChild = index;
    }
    Element element;
    element.name = keep(name);
    element.firstAttribute = static_cast<std::uint32_t>(_attributes.size());
    for (; *attributes; attributes += 2) {
        if (++element.attributes > _limits.attributesPerElement)
            return refuse(notValid,
                          "an element with more than " + std::to_string(_limits.attributesPerElement) + " attributes");
        Attribute attribute;
        attribute.name = keep(attributes[0]);
        attribute.value = keep(attributes[1]);
        _attributes.push_back(attribute);
    }
    element.text.begin = static_cast<std::uint32_t>(_text.size());
    element.line = static_cast<std::uint32_t>(XML_GetCurrentLineNumber(static_cast<XML_Parser>(_parser)));
    _elements.push_back(element);
    _open.push_back({index, none, isTextElement(name)});
}

void XmlTree::content(std::string_view text)
{
    if (_open.empty()) return;
    if (_open.back().holdsText) {
        // The element has no children, so its pieces of text follow each other.
        _text.append(text);
        _elements[_open.back().element].text.size += static_cast<std::uint32_t>(text.size());
    } else if (text.find_first_not_of(blanks) != text.npos) {
        refuse(static_cast<int>(RequestFault::NotValid),
               "element " + std::string(view(_elements[_open.back().element].name)) + " may not hold text");
    }
}

void XmlTree::end() { _open.pop_back(); }

} // namespace KDV::Host
