// The part of the MOF reader that deals with qualifiers: their declarations, flavors and uses.
#include "hostschema/MofParser.h"

namespace KDV::Host {
namespace {

// What the standard declares for its own qualifiers, for texts that use them without their declarations.
bool restrictedByNature(std::string_view name)
{
    for (std::string_view restricted : {"Abstract", "Override", "Terminal", "Version", "Deprecated", "Experimental"})
        if (sameName(name, restricted)) return true;
    return false;
}

} // namespace

// "Scope(class, any)": names only, of no use after loading.
void MofParser::skipList()
{
    takeSymbol('(');
    do
        takeName("a scope");
    while (takeIfSymbol(','));
    takeSymbol(')');
}

bool MofParser::flavor(QualifierInfo& qualifier)
{
    if (isWord("EnableOverride"))
        qualifier.overridable = true;
    else if (isWord("DisableOverride"))
        qualifier.overridable = false;
    else if (isWord("ToSubclass"))
        qualifier.toSubclass = true;
    else if (isWord("Restricted"))
        qualifier.toSubclass = false;
    else if (isWord("Translatable"))
        qualifier.translatable = true;
    else if (!isWord("ToInstance") && !isWord("Amended"))
        return false;
    advance();
    return true;
}

void MofParser::flavors(QualifierInfo& qualifier, bool inParentheses)
{
    if (inParentheses) takeSymbol('(');
    do {
        if (!flavor(qualifier)) expected("a flavor of the qualifier");
    } while (inParentheses ? takeIfSymbol(',') : _token.kind == MofTokenKind::Identifier);
    if (inParentheses) takeSymbol(')');
}

void MofParser::qualifierDeclaration()
{
    advance();
    QualifierInfo declared;
    declared.name = takeName("the name of a qualifier");
    takeSymbol(':');
    declared.value.type = type().type;
    std::uint32_t size = 0;
    arraySize(declared.value.type, size);
    if (takeIfSymbol('=')) declared.value = typed(literal(), declared.value.type);
    bool scope = false;
    while (takeIfSymbol(',')) {
        if (isWord("scope")) {
            scope = true;
            advance();
            skipList();
        } else if (isWord("flavor")) {
            advance();
            flavors(declared, true);
        } else {
            expected("\"Scope\" or \"Flavor\"");
        }
    }
    if (!scope) expected("\"Scope\"");
    takeSymbol(';');
    _resolver.addQualifier(std::move(declared));
}

QualifierList MofParser::qualifiers()
{
    QualifierList list;
    if (!takeIfSymbol('[')) return list;
    do {
        const unsigned line = _token.line;
        QualifierInfo one = qualifier();
        if (list.find(one.name)) _lexer.fail(line, "the qualifier " + one.name + " is written twice");
        list.add(std::move(one));
    } while (takeIfSymbol(','));
    takeSymbol(']');
    return list;
}

QualifierInfo MofParser::qualifier()
{
    QualifierInfo used;
    used.name = takeName("the name of a qualifier");
    const QualifierInfo* declared = _resolver.qualifier(used.name);
    if (declared) {
        used.overridable = declared->overridable;
        used.toSubclass = declared->toSubclass;
        used.translatable = declared->translatable;
    } else {
        used.toSubclass = !restrictedByNature(used.name);
    }
    const bool inParentheses = _token.isSymbol('(');
    if (inParentheses || _token.isSymbol('{')) {
        if (inParentheses) advance();
        const Literal written = literal();
        if (inParentheses) takeSymbol(')');
        used.value = declared ? typed(written, declared->value.type) : inferred(written);
    } else {
        // A name alone means TRUE for booleans; for other types a value is needed.
        if (declared && declared->value.type != CMPI_boolean) expected("a value for the qualifier " + used.name);
        used.value.type = CMPI_boolean;
        used.value.isNull = false;
        used.value.number.boolean = 1;
    }
    if (takeIfSymbol(':')) flavors(used, false);
    return used;
}

} // namespace KDV::Host
