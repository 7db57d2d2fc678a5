#include "hosttest/ReplyChecker.h"

#include "hosttest/DtdRules.h"

#include <map>
#include <memory>
#include <regex.h>
#include <stdexcept>
#include <vector>

#include <expat.h>

namespace KDV::Host::Test {

namespace {

// The content expression over names that end with ";": "A,B*" becomes "^((A;)(B;)*)$".
std::string expressionOf(const std::string& content)
{
    std::string expression = "^(";
    std::string name;
    const auto flush = [&] {
        if (!name.empty()) expression += "(" + name + ";)";
        name.clear();
    };
    for (char c : content) {
        const bool partOfName = (c >= 'A' && c <= 'Z') || c == '.';
        if (partOfName) {
            name += c == '.' ? std::string("[.]") : std::string(1, c);
            continue;
        }
        flush();
        if (c != ',') expression += c;
    }
    flush();
    return expression + ")$";
}

// A POSIX expression: the compiler of the sanitizers' builds takes offence at the standard library's.
class Content {
public:
    explicit Content(const std::string& expression)
    {
        if (::regcomp(&_compiled, expression.c_str(), REG_EXTENDED | REG_NOSUB) != 0)
            throw std::logic_error("no expression: " + expression);
    }
    ~Content() { ::regfree(&_compiled); }
    Content(const Content&) = delete;
    Content& operator=(const Content&) = delete;
    bool matches(const std::string& children) const
    {
        return ::regexec(&_compiled, children.c_str(), 0, nullptr, 0) == 0;
    }

private:
    regex_t _compiled;
};

struct Rule {
    const ElementRule* element;
    std::shared_ptr<const Content> content;
};

const std::map<std::string, Rule>& rulesByName()
{
    static const std::map<std::string, Rule> rules = [] {
        std::map<std::string, Rule> all;
        for (const ElementRule& rule : dtdRules())
            all[rule.name] = {
                &rule, std::make_shared<const Content>(expressionOf(rule.content == "#PCDATA" ? "" : rule.content))};
        return all;
    }();
    return rules;
}

class Checker {
public:
    std::string check(const std::string& document)
    {
        const std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)> parser(
            XML_ParserCreate(nullptr), &XML_ParserFree);
        _parser = parser.get();
        XML_SetUserData(_parser, this);
        XML_SetElementHandler(
            _parser, [](void* self, const char* name, const char** given) { of(self).start(name, given); },
            [](void* self, const char*) { of(self).end(); });
        XML_SetCharacterDataHandler(_parser, [](void* self, const char* text, int length) {
            of(self).content({text, static_cast<std::size_t>(length)});
        });
        const auto status = XML_Parse(_parser, document.data(), static_cast<int>(document.size()), 1);
        if (_wrong.empty() && status != XML_STATUS_OK) wrong(XML_ErrorString(XML_GetErrorCode(_parser)));
        return _wrong;
    }

private:
    struct Open {
        const Rule* rule;
        std::string children;
    };
    static Checker& of(void* self) { return *static_cast<Checker*>(self); }

    void wrong(const std::string& what)
    {
        if (_wrong.empty()) _wrong = "line " + std::to_string(XML_GetCurrentLineNumber(_parser)) + ": " + what;
    }
    void start(const std::string& name, const char** given)
    {
        const auto found = rulesByName().find(name);
        if (found == rulesByName().end()) wrong("unknown element " + name);
        if (!_open.empty()) {
            // Every rule that allows three equal elements in a row allows any number of them.
            Open& parent = _open.back();
            const std::string child = name + ";";
            const std::string three = child + child + child;
            const bool repeats =
                parent.children.size() >= three.size() &&
                parent.children.compare(parent.children.size() - three.size(), three.size(), three) == 0;
            if (!repeats) parent.children += child;
        }
        _open.push_back({found == rulesByName().end() ? nullptr : &found->second, {}});
        if (_open.back().rule) checkAttributes(*_open.back().rule->element, given);
    }
    void checkAttributes(const ElementRule& rule, const char** given)
    {
        std::map<std::string, std::string> attributes;
        for (; *given; given += 2)
            attributes[given[0]] = given[1];
        for (const AttributeRule& each : rule.attributes) {
            const auto found = attributes.find(each.name);
            if (found == attributes.end()) {
                if (each.required) wrong(rule.name + " lacks " + each.name);
                continue;
            }
            if (!each.values.empty() && ("|" + each.values + "|").find("|" + found->second + "|") == std::string::npos)
                wrong(rule.name + " has " + each.name + "=\"" + found->second + "\"");
            attributes.erase(found);
        }
        if (!attributes.empty()) wrong(rule.name + " has no attribute " + attributes.begin()->first);
    }
    void content(const std::string& text)
    {
        if (_open.empty() || !_open.back().rule || _open.back().rule->element->content == "#PCDATA") return;
        if (text.find_first_not_of(" \t\r\n") != text.npos) wrong("text inside " + _open.back().rule->element->name);
    }
    void end()
    {
        const Open last = std::move(_open.back());
        _open.pop_back();
        if (last.rule && !last.rule->content->matches(last.children))
            wrong(last.rule->element->name + " holds \"" + last.children + "\"");
    }

    XML_Parser _parser = nullptr;
    std::vector<Open> _open;
    std::string _wrong;
};

} // namespace

std::string checkReply(const std::string& document) { return Checker().check(document); }

} // namespace KDV::Host::Test
