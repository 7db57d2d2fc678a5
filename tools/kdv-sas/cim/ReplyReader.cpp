#include "cim/ReplyReader.h"

#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <utility>

#include <climits>
#include <expat.h>

namespace Cim {
namespace {

constexpr std::size_t deepest = 64;

const char* attribute(const char** attributes, const char* name)
{
    for (; *attributes; attributes += 2)
        if (std::strcmp(attributes[0], name) == 0) return attributes[1];
    return "";
}

} // namespace

struct ReplyReader::State {
    XML_Parser parser = XML_ParserCreate(nullptr);
    std::size_t depth = 0;
    std::string failure;
    Reply reply;

    std::string text;                    // of the element that is open
    std::vector<Path> open;              // instance names that are open, outermost first
    std::vector<std::string> nameSpaces; // of the namespace path that was read last
    bool inInstance = false;
    bool inProperty = false;
    Path lastPath; // waits for the instance that it names
    bool hasLastPath = false;
    bool hasContent = false; // a response or an export call, without which any document would pass for an empty reply

    ~State() { XML_ParserFree(parser); }

    void start(const std::string& name, const char** attributes);
    void end(const std::string& name);
    void startKey(const char** attributes);
    void endPath();
    void startProperty(const char** attributes, bool isArray, const char* type);

    void refuse(const char* why)
    {
        failure = why;
        XML_StopParser(parser, XML_FALSE);
    }

    std::string nameSpace() const
    {
        std::string joined;
        for (const std::string& part : nameSpaces)
            joined += (joined.empty() ? "" : "/") + part;
        return joined;
    }

    static void onStart(void* data, const char* name, const char** attributes)
    {
        State& state = *static_cast<State*>(data);
        if (++state.depth > deepest) return state.refuse("nested too deeply");
        if (state.depth == 1 && std::strcmp(name, "CIM") != 0) return state.refuse("the document is none of CIM");
        state.start(name, attributes);
        state.text.clear();
    }
    static void onEnd(void* data, const char* name)
    {
        State& state = *static_cast<State*>(data);
        --state.depth;
        state.end(name);
        state.text.clear();
    }
    static void onText(void* data, const char* bytes, int count)
    {
        static_cast<State*>(data)->text.append(bytes, static_cast<std::size_t>(count));
    }
    static void onDoctype(void* data, const char*, const char*, const char*, int)
    {
        static_cast<State*>(data)->refuse("DOCTYPE is not taken");
    }
};

void ReplyReader::State::start(const std::string& name, const char** attributes)
{
    if (name == "MESSAGE") {
        reply.messageId = attribute(attributes, "ID");
    } else if (name == "IMETHODRESPONSE" || name == "METHODRESPONSE") {
        hasContent = true;
    } else if (name == "EXPMETHODCALL") {
        hasContent = true;
        reply.exportMethod = attribute(attributes, "NAME");
    } else if (name == "ERROR") {
        reply.error = Reply::Error{std::atoi(attribute(attributes, "CODE")), attribute(attributes, "DESCRIPTION")};
    } else if (name == "LOCALNAMESPACEPATH") {
        nameSpaces.clear();
    } else if (name == "NAMESPACE") {
        nameSpaces.emplace_back(attribute(attributes, "NAME"));
    } else if (name == "INSTANCENAME") {
        Path path;
        path.className = attribute(attributes, "CLASSNAME");
        path.nameSpace = nameSpace();
        open.push_back(std::move(path));
    } else if (name == "KEYBINDING" && !open.empty()) {
        startKey(attributes);
    } else if (name == "KEYVALUE" && !open.empty() && !open.back().keys.empty()) {
        const char* type = attribute(attributes, "VALUETYPE");
        open.back().keys.back().valueType = *type ? type : "string";
    } else if (name == "INSTANCE" && !inProperty) {
        reply.instances.emplace_back();
        reply.instances.back().className = attribute(attributes, "CLASSNAME");
        if (hasLastPath) reply.instances.back().path = std::move(lastPath);
        hasLastPath = false;
        inInstance = true;
    } else if (inInstance && name == "PROPERTY") {
        startProperty(attributes, false, attribute(attributes, "TYPE"));
    } else if (inInstance && name == "PROPERTY.ARRAY") {
        startProperty(attributes, true, attribute(attributes, "TYPE"));
    } else if (inInstance && name == "PROPERTY.REFERENCE") {
        startProperty(attributes, false, "reference");
    }
}

void ReplyReader::State::startKey(const char** attributes)
{
    Key key;
    key.name = attribute(attributes, "NAME");
    open.back().keys.push_back(std::move(key));
}

void ReplyReader::State::startProperty(const char** attributes, bool isArray, const char* type)
{
    Property property;
    property.name = attribute(attributes, "NAME");
    property.type = type;
    property.isArray = isArray;
    reply.instances.back().properties.push_back(std::move(property));
    inProperty = true;
}

void ReplyReader::State::end(const std::string& name)
{
    if (name == "KEYVALUE" && !open.empty() && !open.back().keys.empty()) {
        open.back().keys.back().value = text;
    } else if (name == "INSTANCENAME") {
        endPath();
    } else if (name == "VALUE" && inProperty) {
        Property& property = reply.instances.back().properties.back();
        property.values.push_back(text);
        property.isNull = false;
    } else if (name == "VALUE.ARRAY" && inProperty) {
        reply.instances.back().properties.back().isNull = false;
    } else if (name == "PROPERTY" || name == "PROPERTY.ARRAY" || name == "PROPERTY.REFERENCE") {
        inProperty = false;
    } else if (name == "INSTANCE" && !inProperty) {
        inInstance = false;
    } else if (name == "VALUE.REFERENCE" || name == "INSTANCEPATH" || name == "LOCALINSTANCEPATH") {
        nameSpaces.clear();
    }
}

void ReplyReader::State::endPath()
{
    Path path = std::move(open.back());
    open.pop_back();
    if (!open.empty() && !open.back().keys.empty()) {
        open.back().keys.back().reference = std::make_shared<Path>(std::move(path));
    } else if (inProperty) {
        Property& property = reply.instances.back().properties.back();
        property.reference = std::make_shared<Path>(std::move(path));
        property.isNull = false;
    } else {
        reply.paths.push_back(path);
        lastPath = std::move(path);
        hasLastPath = true;
    }
}

ReplyReader::ReplyReader() : _state(std::make_unique<State>())
{
    if (!_state->parser) throw std::bad_alloc();
    XML_SetUserData(_state->parser, _state.get());
    XML_SetElementHandler(_state->parser, State::onStart, State::onEnd);
    XML_SetCharacterDataHandler(_state->parser, State::onText);
    XML_SetStartDoctypeDeclHandler(_state->parser, State::onDoctype);
}

ReplyReader::~ReplyReader() = default;

void ReplyReader::feed(const char* bytes, std::size_t count)
{
    while (count > 0) {
        const int piece = static_cast<int>(std::min<std::size_t>(count, INT_MAX / 2));
        if (XML_Parse(_state->parser, bytes, piece, XML_FALSE) == XML_STATUS_ERROR)
            throw std::runtime_error(
                "line " + std::to_string(XML_GetCurrentLineNumber(_state->parser)) + ": " +
                (_state->failure.empty() ? XML_ErrorString(XML_GetErrorCode(_state->parser)) : _state->failure));
        bytes += piece;
        count -= static_cast<std::size_t>(piece);
    }
}

Reply ReplyReader::finish()
{
    if (XML_Parse(_state->parser, "", 0, XML_TRUE) == XML_STATUS_ERROR)
        throw std::runtime_error("the message ends early");
    if (!_state->hasContent) throw std::runtime_error("no response in the message");
    return std::move(_state->reply);
}

} // namespace Cim
