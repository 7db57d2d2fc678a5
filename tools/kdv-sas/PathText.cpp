#include "kdv-sas/PathText.h"

#include <cctype>
#include <stdexcept>

namespace KdvSas {
namespace {

constexpr int deepest = 8; // references in references

std::string quoted(const std::string& text)
{
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') result += '\\';
        result += c;
    }
    return result + "\"";
}

class Parser {
public:
    Parser(const std::string& text, int depth) : _text(text), _depth(depth) {}

    Cim::Path path()
    {
        if (_depth > deepest) fail("fewer references in references");
        Cim::Path path;
        const std::size_t quote = _text.find('"');
        const std::size_t colon = _text.rfind(':', quote == std::string::npos ? quote : quote);
        if (colon != std::string::npos && (quote == std::string::npos || colon < quote)) {
            path.nameSpace = withoutHost(_text.substr(0, colon));
            _at = colon + 1;
        }
        path.className = name("a class name");
        if (_at == _text.size()) return path;
        take('.', "\".\" behind the class name");
        do
            path.keys.push_back(key());
        while (_at < _text.size() && (take(',', "\",\" or the end"), true));
        return path;
    }

private:
    static std::string withoutHost(const std::string& text)
    {
        if (text.compare(0, 2, "//") != 0) return text;
        const std::size_t slash = text.find('/', 2);
        return slash == std::string::npos ? "" : text.substr(slash + 1);
    }

    Cim::Key key()
    {
        Cim::Key key;
        key.name = name("a key name");
        take('=', "\"=\" behind the key name");
        if (_at < _text.size() && _text[_at] == '"') {
            key.value = text();
            if (looksLikePath(key.value))
                key.reference = std::make_shared<Cim::Path>(Parser(key.value, _depth + 1).path());
            return key;
        }
        const std::size_t end = std::min(_text.find(',', _at), _text.size());
        key.value = _text.substr(_at, end - _at);
        if (key.value.empty()) fail("a value");
        key.valueType = std::isalpha(static_cast<unsigned char>(key.value.front())) ? "boolean" : "numeric";
        _at = end;
        return key;
    }

    // A reference is written as a path in quotes: a class with a schema prefix, keys with values.
    static bool looksLikePath(const std::string& value)
    {
        const std::size_t dot = value.find('.');
        const std::size_t equal = value.find("=\"");
        const std::size_t underscore = value.find('_');
        return dot != std::string::npos && equal != std::string::npos && underscore < dot && dot < equal;
    }

    std::string text()
    {
        std::string result;
        for (++_at; _at < _text.size(); ++_at) {
            if (_text[_at] == '"') {
                ++_at;
                return result;
            }
            if (_text[_at] == '\\' && _at + 1 < _text.size()) ++_at;
            result += _text[_at];
        }
        fail("a closing quote");
    }

    std::string name(const char* what)
    {
        const std::size_t begin = _at;
        while (_at < _text.size() && (std::isalnum(static_cast<unsigned char>(_text[_at])) || _text[_at] == '_'))
            ++_at;
        if (_at == begin) fail(what);
        return _text.substr(begin, _at - begin);
    }

    void take(char c, const char* what)
    {
        if (_at >= _text.size() || _text[_at] != c) fail(what);
        ++_at;
    }

    [[noreturn]] void fail(const std::string& what) const
    {
        throw std::invalid_argument("\"" + _text + "\", character " + std::to_string(_at + 1) + ": expected " + what);
    }

    const std::string& _text;
    int _depth;
    std::size_t _at = 0;
};

} // namespace

std::string pathText(const Cim::Path& path)
{
    std::string text = path.nameSpace.empty() ? path.className : path.nameSpace + ":" + path.className;
    char separator = '.';
    for (const Cim::Key& key : path.keys) {
        text += separator + key.name + "=";
        if (key.reference)
            text += quoted(pathText(*key.reference));
        else
            text += key.valueType == "string" ? quoted(key.value) : key.value;
        separator = ',';
    }
    return text;
}

Cim::Path parsePath(const std::string& text) { return Parser(text, 0).path(); }

} // namespace KdvSas
