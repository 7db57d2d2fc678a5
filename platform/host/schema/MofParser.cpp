#include "hostschema/MofParser.h"

namespace KDV::Host {

MofParser::MofParser(std::string_view text, const std::string& file, ClassResolver& resolver, Include include)
    : _lexer(text, file), _resolver(resolver), _include(std::move(include))
{
}

void MofParser::expected(const std::string& what) const
{
    _lexer.fail(_token.line, "expected " + what + ", found " + _token.shown());
}

bool MofParser::isWord(std::string_view word) const noexcept
{
    return _token.kind == MofTokenKind::Identifier && sameName(_token.text, word);
}

void MofParser::takeSymbol(char symbol)
{
    if (!takeIfSymbol(symbol)) expected(std::string("\"") + symbol + "\"");
}

bool MofParser::takeIfSymbol(char symbol)
{
    if (!_token.isSymbol(symbol)) return false;
    advance();
    return true;
}

std::string MofParser::takeName(const char* what)
{
    if (_token.kind != MofTokenKind::Identifier) expected(what);
    std::string name = std::move(_token.text);
    advance();
    return name;
}

void MofParser::parse()
{
    advance();
    while (_token.kind != MofTokenKind::End) {
        if (_token.kind == MofTokenKind::Pragma) {
            pragma();
            continue;
        }
        if (isWord("qualifier")) {
            qualifierDeclaration();
            continue;
        }
        QualifierList list = qualifiers();
        if (isWord("class"))
            classDeclaration(std::move(list));
        else if (isWord("instance"))
            instanceDeclaration();
        else
            expected("\"class\", \"instance\", \"qualifier\" or \"#pragma\"");
    }
}

void MofParser::pragma()
{
    const unsigned line = _token.line;
    if (!sameName(_token.text, "pragma")) expected("\"#pragma\"");
    advance();
    const std::string name = takeName("the name of a pragma");
    takeSymbol('(');
    const MofToken value = scalar();
    takeSymbol(')');
    if (!sameName(name, "include")) return;
    if (value.kind != MofTokenKind::String || value.text.empty())
        _lexer.fail(line, "expected a file name in quotes after \"include\"");
    _include(value.text, line);
}

void MofParser::aliasIfAny()
{
    if (!isWord("as")) return;
    advance();
    if (_token.kind != MofTokenKind::Alias) expected("an alias after \"as\"");
    advance();
}

void MofParser::classDeclaration(QualifierList list)
{
    ClassDeclaration declaration;
    declaration.file = _lexer.file();
    declaration.line = _token.line;
    declaration.qualifiers = std::move(list);
    advance();
    declaration.name = takeName("the name of the class");
    aliasIfAny();
    if (takeIfSymbol(':')) declaration.superclass = takeName("the name of the superclass");
    takeSymbol('{');
    while (!takeIfSymbol('}'))
        feature(declaration);
    takeSymbol(';');
    _resolver.add(std::move(declaration));
}

bool MofParser::arraySize(CMPIType& type, std::uint32_t& size)
{
    if (!takeIfSymbol('[')) return false;
    type = static_cast<CMPIType>(type | CMPI_ARRAY);
    if (_token.kind == MofTokenKind::Integer) {
        if (_token.negative || _token.number == 0 || _token.number > 0xffffffffu) expected("the size of the array");
        size = static_cast<std::uint32_t>(_token.number);
        advance();
    }
    takeSymbol(']');
    return true;
}

void MofParser::feature(ClassDeclaration& declaration)
{
    const QualifierList list = qualifiers();
    PropertyDeclaration property;
    property.line = _token.line;
    const Type declared = type();
    property.info.type = declared.type;
    property.info.referenceClass = declared.referenceClass;
    property.info.name = takeName("the name of a property or method");
    property.info.qualifiers = list;
    if (_token.isSymbol('(')) {
        MethodDeclaration newMethod;
        newMethod.line = property.line;
        newMethod.info.name = property.info.name;
        newMethod.info.returnType = declared.type;
        newMethod.info.qualifiers = list;
        method(declaration, std::move(newMethod));
        return;
    }
    arraySize(property.info.type, property.info.arraySize);
    if (property.info.type == CMPI_refA)
        _lexer.fail(property.line,
                    "the reference " + property.info.name + " is an array, which only parameters may be");
    if (takeIfSymbol('=')) {
        property.hasDefault = true;
        property.info.defaultValue = typed(literal(), property.info.type);
    }
    takeSymbol(';');
    declaration.properties.push_back(std::move(property));
}

void MofParser::method(ClassDeclaration& declaration, MethodDeclaration newMethod)
{
    takeSymbol('(');
    if (!takeIfSymbol(')')) {
        do
            newMethod.info.parameters.push_back(parameter());
        while (takeIfSymbol(','));
        takeSymbol(')');
    }
    takeSymbol(';');
    for (const MethodDeclaration& other : declaration.methods)
        if (sameName(other.info.name, newMethod.info.name))
            _lexer.fail(newMethod.line, "the method " + newMethod.info.name + " is declared twice");
    declaration.methods.push_back(std::move(newMethod));
}

ParameterInfo MofParser::parameter()
{
    ParameterInfo info;
    info.qualifiers = qualifiers();
    const Type declared = type();
    info.type = declared.type;
    info.referenceClass = declared.referenceClass;
    info.name = takeName("the name of a parameter");
    arraySize(info.type, info.arraySize);
    return info;
}

MofParser::Type MofParser::type()
{
    static constexpr std::pair<std::string_view, CMPIType> names[] = {
        {"string", CMPI_string},     {"uint16", CMPI_uint16}, {"boolean", CMPI_boolean}, {"uint32", CMPI_uint32},
        {"uint64", CMPI_uint64},     {"uint8", CMPI_uint8},   {"sint8", CMPI_sint8},     {"sint16", CMPI_sint16},
        {"sint32", CMPI_sint32},     {"sint64", CMPI_sint64}, {"real32", CMPI_real32},   {"real64", CMPI_real64},
        {"datetime", CMPI_dateTime}, {"char16", CMPI_char16},
    };
    Type result;
    if (_token.kind != MofTokenKind::Identifier) expected("a type or the name of a class");
    for (const auto& [name, code] : names)
        if (sameName(_token.text, name)) result.type = code;
    if (result.type == CMPI_null) {
        result.referenceClass = _token.text;
        advance();
        if (!isWord("ref")) expected("\"REF\" after the class name \"" + result.referenceClass + "\", or a known type");
        result.type = CMPI_ref;
    }
    advance();
    return result;
}

void MofParser::instanceDeclaration()
{
    const unsigned line = _token.line;
    advance();
    if (!isWord("of")) expected("\"of\"");
    advance();
    const std::string className = takeName("the name of a class");
    InstanceDeclaration instance;
    instance.classInfo = _resolver.nameSpace().find(className);
    if (!instance.classInfo) _lexer.fail(line, "expected an instance of a declared class, found \"" + className + "\"");
    aliasIfAny();
    takeSymbol('{');
    while (!takeIfSymbol('}')) {
        qualifiers();
        const unsigned at = _token.line;
        const std::string name = takeName("the name of a property");
        const PropertyInfo* property = instance.classInfo->findProperty(name);
        if (!property) _lexer.fail(at, "expected a property of " + className + ", found \"" + name + "\"");
        takeSymbol('=');
        instance.values.emplace_back(property, typed(literal(), property->type));
        takeSymbol(';');
    }
    takeSymbol(';');
    _resolver.addInstance(std::move(instance));
}

} // namespace KDV::Host
