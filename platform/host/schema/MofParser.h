// Reads one MOF text (DSP0004, annex A) and adds what it declares to a namespace through a ClassResolver. Recursion
// goes no deeper than the grammar, which nests declarations three deep; includes are handed to the caller. MofError.
#pragma once

#include "hostschema/ClassResolver.h"
#include "hostschema/MofLexer.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace KDV::Host {

class MofParser {
public:
    using Include = std::function<void(const std::string& file, unsigned line)>;

    MofParser(std::string_view text, const std::string& file, ClassResolver& resolver, Include include);
    void parse();

private:
    // A value as written, before its type is known.
    struct Literal {
        bool isArray = false;
        bool isNull = false;
        std::vector<MofToken> tokens; // one, or the elements
    };
    struct Type {
        CMPIType type = CMPI_null;
        std::string referenceClass;
    };

    void advance() { _token = _lexer.next(); }
    [[noreturn]] void expected(const std::string& what) const;
    bool isWord(std::string_view word) const noexcept;
    void takeSymbol(char symbol);
    bool takeIfSymbol(char symbol);
    std::string takeName(const char* what);

    void pragma();
    void qualifierDeclaration();
    void skipList();
    void flavors(QualifierInfo& qualifier, bool inParentheses);
    bool flavor(QualifierInfo& qualifier);
    QualifierList qualifiers();
    QualifierInfo qualifier();
    void classDeclaration(QualifierList qualifiers);
    void feature(ClassDeclaration& declaration);
    void method(ClassDeclaration& declaration, MethodDeclaration method);
    ParameterInfo parameter();
    void instanceDeclaration();
    Type type();
    bool arraySize(CMPIType& type, std::uint32_t& size);
    void aliasIfAny();

    Literal literal();
    MofToken scalar();
    SchemaValue typed(const Literal& literal, CMPIType type) const;
    SchemaValue typed(const MofToken& token, CMPIType type) const;
    SchemaValue inferred(const Literal& literal) const;

    MofLexer _lexer;
    MofToken _token;
    ClassResolver& _resolver;
    Include _include;
};

} // namespace KDV::Host
