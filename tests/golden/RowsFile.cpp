#include "RowsFile.h"

#include <algorithm>
#include <stdexcept>

namespace KDV::Test {
namespace {

class Reader {
public:
    explicit Reader(std::string fileName) : _fileName(std::move(fileName)) {}

    void line(const std::string& text)
    {
        ++_number;
        const std::size_t begin = text.find_first_not_of(' ');
        if (begin == std::string::npos || text[begin] == '#') return;
        if (begin == 0)
            heading(text);
        else
            content(text.substr(begin));
    }

    std::vector<GoldenCase> cases()
    {
        check(_section == Section::change && _changed, "a case without rows; write \"same\" if nothing differs");
        return std::move(_cases);
    }

private:
    enum class Section { none, given, keys, rows, change };

    [[noreturn]] void fail(const std::string& what) const
    {
        throw std::runtime_error(_fileName + ":" + std::to_string(_number) + ": " + what);
    }
    void check(bool good, const std::string& what) const
    {
        if (!good) fail(what);
    }

    void heading(const std::string& text)
    {
        if (text == "given" || text == "keys" || text == "rows") {
            check(_cases.size() <= 1, text + " after the first case");
            if (_cases.empty()) _cases.push_back({_fileName, {}, {}, {}, {}});
            _section = text == "given" ? Section::given : text == "keys" ? Section::keys : Section::rows;
            return;
        }
        const std::size_t blank = text.find(' ');
        const std::string word = text.substr(0, blank);
        check((word == "when" || word == "later") && blank != std::string::npos, "unknown heading " + word);
        check(!_cases.empty() && !_cases[0].keys.empty() && !_cases[0].rows.empty(), "no keys or rows before");
        if (_section != Section::change || _changed) {
            _cases.push_back(_cases[0]);
            _cases.back().title = _fileName + ":" + std::to_string(_number);
            _changed = false;
        }
        _section = Section::change;
        _cases.back().title += " " + text;
        addSettings(word == "when" ? _cases.back().before : _cases.back().after, text.substr(blank + 1));
    }

    void content(const std::string& text)
    {
        switch (_section) {
        case Section::given:
            addSettings(_cases[0].before, text);
            break;
        case Section::keys:
            _cases[0].keys.push_back(row(text));
            break;
        case Section::rows:
            _cases[0].rows.push_back(row(text));
            break;
        case Section::change:
            change(text);
            break;
        case Section::none:
            fail("a row without a heading");
        }
    }

    void change(const std::string& text)
    {
        _changed = true;
        GoldenCase& golden = _cases.back();
        if (text == "same") return;
        if (text.rfind("absent ", 0) == 0) {
            golden.rows.erase(find(golden.rows, text.substr(7)));
            return;
        }
        const bool isKey = text.rfind("key ", 0) == 0;
        const GoldenRow changed = row(isKey ? text.substr(4) : text);
        const auto place = find(isKey ? golden.keys : golden.rows, changed.name);
        check(place->type == changed.type, changed.name + " has the type " + place->type);
        check(place->value != changed.value, changed.name + " is what it was");
        place->value = changed.value;
    }

    std::vector<GoldenRow>::iterator find(std::vector<GoldenRow>& rows, const std::string& name) const
    {
        const auto found =
            std::find_if(rows.begin(), rows.end(), [&](const GoldenRow& candidate) { return candidate.name == name; });
        check(found != rows.end(), "no row " + name + " in the base");
        return found;
    }

    GoldenRow row(const std::string& text) const
    {
        const std::size_t type = text.find(' ');
        const std::size_t name = type == std::string::npos ? type : text.find(' ', type + 1);
        check(name != std::string::npos && name + 1 < text.size(), "expected type, name and value");
        return {text.substr(0, type), text.substr(type + 1, name - type - 1), text.substr(name + 1)};
    }

    // "field value; field value"
    void addSettings(std::vector<GoldenSetting>& settings, const std::string& text) const
    {
        std::size_t begin = 0;
        bool quoted = false;
        for (std::size_t i = 0; i <= text.size(); ++i) {
            if (i < text.size() && text[i] == '"' && (i == 0 || text[i - 1] != '\\')) quoted = !quoted;
            if (i < text.size() && (quoted || text[i] != ';')) continue;
            const std::size_t from = text.find_first_not_of(' ', begin);
            const std::size_t blank = text.find(' ', from);
            check(blank != std::string::npos && blank + 1 < i, "expected a field and its value");
            settings.push_back({text.substr(from, blank - from), text.substr(blank + 1, i - blank - 1)});
            begin = i + 1;
        }
    }

    std::string _fileName;
    std::size_t _number = 0;
    Section _section = Section::none;
    bool _changed = true;
    std::vector<GoldenCase> _cases;
};

} // namespace

std::vector<GoldenCase> readRows(std::istream& text, const std::string& fileName)
{
    Reader reader(fileName);
    for (std::string line; std::getline(text, line);)
        reader.line(line);
    return reader.cases();
}

} // namespace KDV::Test
