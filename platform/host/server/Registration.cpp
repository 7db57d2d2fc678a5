#include "hostserver/Registration.h"

#include "hostschema/SchemaName.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace KDV::Host {

namespace {

std::string trimmed(const std::string& text)
{
    constexpr const char* blanks = " \t\r";
    const std::size_t begin = text.find_first_not_of(blanks);
    return begin == text.npos ? std::string() : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

std::vector<std::string> words(const std::string& text)
{
    std::istringstream stream(text);
    std::vector<std::string> found;
    for (std::string word; stream >> word;)
        found.push_back(word);
    return found;
}

class RegistrationReader {
public:
    explicit RegistrationReader(const std::filesystem::path& file) : _file(file) {}

    std::vector<Registration> read()
    {
        std::ifstream stream(_file);
        if (!stream) throw std::runtime_error(_file.string() + ": " + std::strerror(errno));
        for (std::string text; std::getline(stream, text);) {
            ++_line;
            text = trimmed(text);
            if (text.empty() || text[0] == '#') continue;
            if (text[0] == '[')
                beginBlock(text);
            else
                readEntry(text);
        }
        checkBlock();
        return std::move(_all);
    }

private:
    [[noreturn]] void refuse(const std::string& what) const
    {
        throw std::runtime_error(_file.string() + ":" + std::to_string(_line) + ": " + what);
    }
    void beginBlock(const std::string& text)
    {
        checkBlock();
        if (text.size() < 3 || text.back() != ']') refuse("expected \"[class name]\", found \"" + text + "\"");
        _all.emplace_back();
        _all.back().className = text.substr(1, text.size() - 2);
    }
    void checkBlock() const
    {
        if (_all.empty()) return;
        const Registration& last = _all.back();
        const bool typed = last.instances || last.associations || last.methods || last.indications;
        if (last.provider.empty() || last.location.empty() || last.nameSpaces.empty() || !typed)
            refuse("the block of " + last.className + " lacks provider, location, type or namespace");
    }
    void readEntry(const std::string& text)
    {
        const std::size_t colon = text.find(':');
        if (colon == text.npos || _all.empty()) refuse("expected \"key: value\" in a block, found \"" + text + "\"");
        const std::string key = trimmed(text.substr(0, colon));
        const std::string value = trimmed(text.substr(colon + 1));
        Registration& block = _all.back();
        if (sameName(key, "provider"))
            block.provider = value;
        else if (sameName(key, "location"))
            block.location = value;
        else if (sameName(key, "namespace"))
            block.nameSpaces = words(value);
        else if (sameName(key, "type"))
            for (const std::string& word : words(value))
                readType(word, block);
        else if (!sameName(key, "unload") && !sameName(key, "group") && !sameName(key, "parameters"))
            refuse("unknown key \"" + key + "\"");
    }
    void readType(const std::string& word, Registration& block) const
    {
        if (sameName(word, "instance"))
            block.instances = true;
        else if (sameName(word, "association"))
            block.associations = true;
        else if (sameName(word, "method"))
            block.methods = true;
        else if (sameName(word, "indication"))
            block.indications = true;
        else
            refuse("unknown provider type \"" + word + "\"");
    }

    std::filesystem::path _file;
    unsigned _line = 0;
    std::vector<Registration> _all;
};

} // namespace

std::vector<Registration> readRegistrations(const std::filesystem::path& file)
{
    return RegistrationReader(file).read();
}

} // namespace KDV::Host
