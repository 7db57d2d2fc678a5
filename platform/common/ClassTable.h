// The classes that a collection has met, as small numbers: those of its objects and those of fixed ends. Knows which
// objects are of which class and, by asking the broker once and keeping the answer, which class is below which. Belongs
// to the collection's index; not locked.
#pragma once

#include "cmpi/Broker.h"
#include "cmpicpp/CmpiName.h"
#include "common/IdList.h"

#include <cstdint>
#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

namespace KDV {

using ClassNumber = std::uint16_t;

class ClassTable {
public:
    struct Class {
        explicit Class(std::string itsName) : name(std::move(itsName)) {}
        std::string name;
        std::string nameSpace; // empty until somebody saw a path of the class
        IdList objects;
        std::uint32_t associations = 0; // so many of them
    };

    static constexpr ClassNumber unknown = 0xffff;

    ClassNumber number(const std::string& className); // a new one when it was not met before
    ClassNumber find(const std::string& className) const;
    Class& operator[](ClassNumber number) { return _classes[number]; }
    const Class& operator[](ClassNumber number) const { return _classes[number]; }
    std::size_t size() const noexcept { return _classes.size(); }

    // Is the class the asked one or below it? Empty text asks for nothing. Where the broker cannot tell, equal names
    // decide. The class's namespace must be known.
    bool isA(ClassNumber number, const CmpiCpp::CmpiName& asked);
    // A broker says no also when it does not know the class yet: what it denied is asked again from here on.
    void askAgain();
    bool isAnswerKnown(ClassNumber number, const CmpiCpp::CmpiName& asked) const;

private:
    enum class Answer : std::uint8_t { none, no, yes };

    std::deque<Class> _classes;
    std::unordered_map<std::string, ClassNumber> _numbers;         // by name in small letters
    std::unordered_map<std::string, std::vector<Answer>> _answers; // by asked name in small letters
};

// What the broker says; false in known when it cannot tell.
bool askIsA(const CMPIBroker* broker, const std::string& nameSpace, const std::string& className,
            const CmpiCpp::CmpiName& asked, bool& known);

// ASCII letters to small ones, as CIM names are compared.
std::string smallLetters(const char* text);

} // namespace KDV
