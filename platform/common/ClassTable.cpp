#include "common/ClassTable.h"

#include "cmpicpp/CmpiObjectPath.h"
#include "cmpicpp/CmpiStatus.h"
#include "common/KDVUtil.h"

#include <stdexcept>

using namespace CmpiCpp;
namespace KDV {
namespace {

// Clients choose the names that they ask for; the answers for so many of them are kept.
constexpr std::size_t askedNamesKept = 256;

} // namespace

std::string smallLetters(const char* text)
{
    std::string small(text);
    for (char& c : small)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return small;
}

bool askIsA(const CMPIBroker* broker, const std::string& nameSpace, const std::string& className, const CmpiName& asked,
            bool& known)
{
    known = false;
    if (!broker || !broker->eft->classPathIsA) return false;
    try {
        const CmpiObjectPath path = makeCmpiObjectPath(broker, nameSpace, className);
        CMPIStatus status{CMPI_RC_OK, nullptr};
        const bool isBelow = broker->eft->classPathIsA(broker, path.raw(), asked.c_str(), &status) != 0;
        known = status.rc == CMPI_RC_OK;
        return known && isBelow;
    } catch (const CmpiStatus&) {
        return false; // the server does not have the class, or not now
    }
}

ClassNumber ClassTable::number(const std::string& className)
{
    const auto place = _numbers.emplace(smallLetters(className.c_str()), static_cast<ClassNumber>(_classes.size()));
    if (place.second) {
        if (_classes.size() == unknown) throw std::length_error("too many classes");
        _classes.emplace_back(className);
    }
    return place.first->second;
}

ClassNumber ClassTable::find(const std::string& className) const
{
    const auto found = _numbers.find(smallLetters(className.c_str()));
    return found == _numbers.end() ? unknown : found->second;
}

bool ClassTable::isAnswerKnown(ClassNumber number, const CmpiName& asked) const
{
    if (asked.empty() || CmpiName(_classes[number].name) == asked) return true;
    const auto found = _answers.find(smallLetters(asked.c_str()));
    return found != _answers.end() && number < found->second.size() && found->second[number] != Answer::none;
}

bool ClassTable::isA(ClassNumber number, const CmpiName& asked)
{
    const Class& itsClass = _classes[number];
    if (asked.empty() || CmpiName(itsClass.name) == asked) return true;
    std::string name = smallLetters(asked.c_str());
    if (_answers.size() >= askedNamesKept && _answers.find(name) == _answers.end()) _answers.clear();
    std::vector<Answer>& answers = _answers[std::move(name)];
    if (answers.size() < _classes.size()) answers.resize(_classes.size(), Answer::none);
    if (answers[number] == Answer::none) {
        bool known = false;
        const bool isBelow = askIsA(KDVUtil::getBroker(), itsClass.nameSpace, itsClass.name, asked, known);
        if (known) answers[number] = isBelow ? Answer::yes : Answer::no;
    }
    return answers[number] == Answer::yes;
}

void ClassTable::askAgain()
{
    for (auto& asked : _answers)
        for (Answer& answer : asked.second)
            if (answer == Answer::no) answer = Answer::none;
}

} // namespace KDV
