#!/usr/bin/env python3
"""Reads MOF (DSP0004) into plain objects, for the generators and checks around the schema.

It reads what the schema files use: pragmas, qualifier declarations, classes with properties, references and methods.
Instances and compiler directives other than include and locale are refused. Errors name file and line.

    mofinfo.py FILE...      prints what the files declare as JSON
"""

import json
import pathlib
import re
import sys

TOKEN = re.compile(
    r"""(?P<space>[ \t\r\n]+)
      | (?P<comment>//[^\n]*|/\*.*?\*/)
      | (?P<string>"(?:[^"\\\n]|\\.)*")
      | (?P<number>[+-]?(?:0[xX][0-9a-fA-F]+|\d+(?:\.\d+)?))
      | (?P<name>[A-Za-z_][A-Za-z0-9_]*)
      | (?P<pragma>\#pragma\b)
      | (?P<sign>[\[\](){}:;,=])""",
    re.VERBOSE | re.DOTALL,
)
TYPES = {"uint8", "uint16", "uint32", "uint64", "sint8", "sint16", "sint32", "sint64", "real32", "real64",
         "boolean", "string", "datetime", "char16"}
ESCAPES = {"n": "\n", "t": "\t", "r": "\r", "b": "\b", "f": "\f"}


class MofError(Exception):
    """Something in a MOF file that cannot be read."""


class Element:
    """A property, a reference or a method."""

    def __init__(self, name, kind, qualifiers, place):
        self.name = name
        self.kind = kind                  # "property", "reference", "method"
        self.type = None                  # "reference" for references
        self.reference_class = None
        self.array = False
        self.has_default = False
        self.default = None
        self.qualifiers = qualifiers
        self.place = place
        self.owner = None                 # name of the class that declares it

    def qualifier(self, name, otherwise=None):
        return self.qualifiers.get(name.lower(), otherwise)

    @property
    def is_key(self):
        return bool(self.qualifier("Key"))

    def values(self):
        """Pairs of code and text; a property whose values are texts itself has the code as its text."""
        codes = self.qualifier("ValueMap")
        texts = self.qualifier("Values")
        if codes is None:
            codes = [str(number) for number in range(len(texts or []))]
        return list(zip(codes, texts if texts is not None else codes))


class Class:
    def __init__(self, name, superclass, qualifiers, place):
        self.name = name
        self.superclass = superclass
        self.qualifiers = qualifiers
        self.elements = []
        self.place = place

    def qualifier(self, name, otherwise=None):
        return self.qualifiers.get(name.lower(), otherwise)

    @property
    def is_association(self):
        return bool(self.qualifier("Association"))

    @property
    def is_indication(self):
        return bool(self.qualifier("Indication"))

    def local(self, kind=None):
        return [one for one in self.elements if kind is None or one.kind == kind]


class Schema:
    """All classes that were read, by name without regard to case, in order of declaration."""

    def __init__(self):
        self.qualifiers = {}
        self._classes = {}

    @property
    def classes(self):
        return list(self._classes.values())

    def add(self, one):
        if one.name.lower() in self._classes:
            raise MofError(f"{one.place}: class {one.name} is declared twice")
        self._classes[one.name.lower()] = one

    def __contains__(self, name):
        return name.lower() in self._classes

    def __getitem__(self, name):
        return self._classes[name.lower()]

    def chain(self, name):
        """The class and its superclasses, most derived first."""
        result = []
        while name is not None:
            if name.lower() not in self._classes:
                raise MofError(f"{result[-1].place if result else 'schema'}: class {name} is not declared")
            result.append(self[name])
            if len(result) > len(self._classes):
                raise MofError(f"class {name} is its own superclass")
            name = result[-1].superclass
        return result

    def is_a(self, name, ancestor):
        return any(one.name.lower() == ancestor.lower() for one in self.chain(name))

    def resolved(self, name):
        """Properties and references of the class with what it inherits: name, nearest declaration, with the
        qualifiers that flow down merged in, superclass's first."""
        result = {}
        for one in reversed(self.chain(name)):
            for element in one.elements:
                if element.kind == "method":
                    continue
                key = element.name.lower()
                above = result.get(key)
                merged = Element(element.name, element.kind, dict(element.qualifiers), element.place)
                merged.type, merged.array = element.type, element.array
                merged.reference_class, merged.owner = element.reference_class, element.owner
                merged.has_default, merged.default = element.has_default, element.default
                if above is not None:
                    for title, value in above.qualifiers.items():
                        # Override itself stays with its class; texts for values make no sense with another map.
                        if title == "override" or (title == "values" and "valuemap" in merged.qualifiers):
                            continue
                        merged.qualifiers.setdefault(title, value)
                    if not element.has_default:
                        merged.has_default, merged.default = above.has_default, above.default
                result[key] = merged
        return result

    def methods(self, name):
        return [element for one in self.chain(name) for element in one.elements if element.kind == "method"]


class Reader:
    def __init__(self, schema, path):
        self.schema = schema
        self.path = pathlib.Path(path)
        try:
            self.text = self.path.read_text(encoding="utf-8")
        except OSError as error:
            raise MofError(f"{path}: {error.strerror}") from error
        self.tokens = list(self._scan())
        self.at = 0

    def _scan(self):
        position, line = 0, 1
        while position < len(self.text):
            match = TOKEN.match(self.text, position)
            if match is None:
                raise MofError(f"{self.path}:{line}: unexpected character {self.text[position]!r}")
            if match.lastgroup not in ("space", "comment"):
                yield match.lastgroup, match.group(), line
            line += match.group().count("\n")
            position = match.end()
        yield "end", "", line

    def place(self):
        return f"{self.path}:{self.tokens[self.at][2]}"

    def fail(self, expected):
        found = self.tokens[self.at][1] or "end of file"
        raise MofError(f"{self.place()}: expected {expected}, found {found}")

    def peek(self, text):
        return self.tokens[self.at][1].lower() == text.lower() and self.tokens[self.at][0] != "string"

    def accept(self, text):
        if self.peek(text):
            self.at += 1
            return True
        return False

    def expect(self, text):
        if not self.accept(text):
            self.fail(f"'{text}'")

    def take(self, group, what):
        kind, text, _ = self.tokens[self.at]
        if kind != group:
            self.fail(what)
        self.at += 1
        return text

    def read(self):
        while self.tokens[self.at][0] != "end":
            if self.tokens[self.at][0] == "pragma":
                self.pragma()
            elif self.peek("qualifier"):
                self.qualifier_declaration()
            else:
                self.class_declaration()

    def pragma(self):
        self.at += 1
        name = self.take("name", "the name of a pragma").lower()
        self.expect("(")
        value = self.string()
        self.expect(")")
        if name == "include":
            Reader(self.schema, self.path.parent / value).read()
        elif name != "locale":
            raise MofError(f"{self.place()}: pragma {name} is not known")

    def string(self):
        parts = [self.take("string", "a string")]
        while self.tokens[self.at][0] == "string":
            parts.append(self.take("string", "a string"))
        return "".join(re.sub(r"\\(.)", lambda m: ESCAPES.get(m.group(1), m.group(1)), part[1:-1]) for part in parts)

    def value(self):
        kind, text, _ = self.tokens[self.at]
        if kind == "string":
            return self.string()
        if kind == "number":
            self.at += 1
            return float(text) if "." in text else int(text, 0) if "x" in text.lower() else int(text)
        if self.accept("true"):
            return True
        if self.accept("false"):
            return False
        if self.accept("null"):
            return None
        if self.accept("{"):
            items = []
            while not self.accept("}"):
                items.append(self.value())
                if not self.peek("}"):
                    self.expect(",")
            return items
        return self.fail("a value")

    def names(self):
        self.expect("(")
        result = [self.take("name", "a name")]
        while self.accept(","):
            result.append(self.take("name", "a name"))
        self.expect(")")
        return result

    def qualifier_declaration(self):
        self.at += 1
        place = self.place()
        name = self.take("name", "the name of a qualifier")
        self.expect(":")
        declaration = {"name": name, "type": self.take("name", "a type").lower(), "array": False, "default": None}
        if declaration["type"] not in TYPES:
            raise MofError(f"{place}: type {declaration['type']} is not known")
        if self.accept("["):
            self.expect("]")
            declaration["array"] = True
        if self.accept("="):
            declaration["default"] = self.value()
        while self.accept(","):
            title = self.take("name", "Scope or Flavor").lower()
            if title not in ("scope", "flavor"):
                raise MofError(f"{place}: expected Scope or Flavor, found {title}")
            declaration[title] = [one.lower() for one in self.names()]
        self.expect(";")
        if name.lower() in self.schema.qualifiers:
            raise MofError(f"{place}: qualifier {name} is declared twice")
        self.schema.qualifiers[name.lower()] = declaration

    def qualifier_list(self):
        result = {}
        if not self.accept("["):
            return result
        while True:
            place = self.place()
            name = self.take("name", "the name of a qualifier")
            if self.accept("("):
                value = self.value()
                self.expect(")")
            elif self.peek("{"):
                value = self.value()
            else:
                value = True
            if name.lower() in result:
                raise MofError(f"{place}: qualifier {name} is given twice")
            if self.schema.qualifiers and name.lower() not in self.schema.qualifiers:
                raise MofError(f"{place}: qualifier {name} is not declared")
            result[name.lower()] = value
            if not self.accept(","):
                break
        self.expect("]")
        return result

    def class_declaration(self):
        qualifiers = self.qualifier_list()
        place = self.place()
        self.expect("class")
        name = self.take("name", "the name of a class")
        superclass = self.take("name", "the name of the superclass") if self.accept(":") else None
        result = Class(name, superclass, qualifiers, place)
        self.expect("{")
        while not self.accept("}"):
            element = self.element()
            element.owner = name
            if any(other.name.lower() == element.name.lower() for other in result.elements):
                raise MofError(f"{element.place}: {name}.{element.name} is declared twice")
            result.elements.append(element)
        self.expect(";")
        self.schema.add(result)

    def element(self):
        qualifiers = self.qualifier_list()
        place = self.place()
        type_name = self.take("name", "a type")
        if self.accept("ref"):
            result = Element(self.take("name", "the name of a reference"), "reference", qualifiers, place)
            result.type, result.reference_class = "reference", type_name
        else:
            if type_name.lower() not in TYPES:
                raise MofError(f"{place}: type {type_name} is not known")
            result = Element(self.take("name", "the name of a property"), "property", qualifiers, place)
            result.type = type_name.lower()
        if self.accept("("):
            result.kind = "method"
            while not self.accept(")"):
                self.at += 1
                if self.tokens[self.at][0] == "end":
                    self.fail("')'")
        elif self.accept("["):
            if self.tokens[self.at][0] == "number":
                self.at += 1
            self.expect("]")
            result.array = True
        if self.accept("="):
            result.has_default, result.default = True, self.value()
        self.expect(";")
        return result


def load(*paths):
    """The schema that the files declare, read in this order."""
    schema = Schema()
    for path in paths:
        Reader(schema, path).read()
    return schema


def as_plain(schema):
    """What was read, as JSON can hold it."""
    return {
        one.name: {
            "superclass": one.superclass,
            "qualifiers": one.qualifiers,
            "elements": [
                {"name": element.name, "kind": element.kind, "type": element.type, "array": element.array,
                 **({"class": element.reference_class} if element.reference_class else {}),
                 **({"default": element.default} if element.has_default else {}),
                 "qualifiers": element.qualifiers}
                for element in one.elements
            ],
        }
        for one in schema.classes
    }


def main():
    if len(sys.argv) < 2:
        print(__doc__, file=sys.stderr)
        return 2
    try:
        json.dump(as_plain(load(*sys.argv[1:])), sys.stdout, indent=1)
    except MofError as error:
        print(error, file=sys.stderr)
        return 1
    print()
    return 0


if __name__ == "__main__":
    sys.exit(main())
