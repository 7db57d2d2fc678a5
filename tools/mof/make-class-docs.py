#!/usr/bin/env python3
"""Writes docs/classes.md, the class reference, from the MOF and the table of what each class publishes.

    make-class-docs.py [--check] --published FILE --output FILE MOF...

With --check nothing is written: the exit status is 1 when the file is not what would be written.
"""

import argparse
import pathlib
import sys

import classtable
import mofinfo

HEAD = """\
# Class reference

What the provider publishes in the namespace `{namespace}`: {instances} instance classes and {associations}
associations, the instance that describes the worker, and the alert. Made by `tools/mof/make-class-docs.py` from
`schema/`; change the MOF or `schema/published.json`, then run `cmake --build <tree> --target kdv_schema_docs`.

Properties stand in the order in which the class publishes them, which is the order of the lines in the class's source.
"When" says under which condition a property has a value; where it is empty, always. **Bold** properties are keys. A
property of the superclasses that is not listed is never published: it is NULL, also where the superclass has a default.
"""

GROUPS = [
    ("hba.mof", "Adapters"),
    ("volumes.mof", "Volumes and pools"),
    ("drives.mof", "Drives"),
    ("enclosures.mof", "Enclosures"),
    ("worker.mof", "The worker"),
    ("indication.mof", "The alert"),
]


def short(name):
    return name[len("KDV_SAS"):] if name.startswith("KDV_SAS") else name


def anchor(name):
    return f"[{name}](#{name.lower()})"


def cell(text):
    return text.replace("|", "\\|").replace("<", "&lt;")


def type_of(row):
    return row["type"] + ("[]" if row["array"] else "")


def end_of(row):
    """A class of the association's end as a link; CIM_ComputerSystem stands for the host's computer system."""
    return anchor(row["class"]) if row["class"].startswith("KDV_") else f"`{row['class']}`"


def property_table(schema, name, rows):
    lines = ["| Property | Type | Value | When | Meaning |", "|---|---|---|---|---|"]
    resolved = schema.resolved(name)
    for row in rows:
        element = resolved[row["name"].lower()]
        ours = element.owner.startswith("KDV_")
        title = f"**{row['name']}**" if element.is_key else row["name"]
        unit = element.qualifier("PUnit")
        meaning = (element.qualifier("Description", "") if ours else "") + (f" Unit: {unit}." if unit else "")
        when = "" if row["presence"] == "always" else row["presence"]
        cells = (title, type_of(row), cell(row["value"]), cell(when), cell(meaning.strip()))
        lines.append("| " + " | ".join(cells) + " |")
    return lines


def code_lists(schema, name, rows):
    resolved = schema.resolved(name)
    lines = []
    for row in rows:
        element = resolved[row["name"].lower()]
        if element.owner.startswith("KDV_") and any(own.qualifier("ValueMap")
                                                    for own in schema[element.owner].elements
                                                    if own.name == element.name):
            codes = ", ".join(f"{code} {text}" for code, text in element.values())
            lines.append(f"- `{row['name']}`: {codes}")
    return ["", "Codes:", ""] + lines if lines else []


def associations_of(name, schema, table):
    lines = []
    for association, rows in table.items():
        if not schema[association].is_association:
            continue
        ends = [row for row in rows if row["type"] == "reference"]
        for near, far in (ends, reversed(ends)):
            if near["class"] == name:
                lines.append(f"- {end_of(far)} through `{association}` (role {near['name']}, other role {far['name']})")
    return ["", "Leads to:", ""] + lines if lines else []


def class_section(schema, name, table):
    one = schema[name]
    parent = f"Superclass `{one.superclass}`." if one.superclass else "No superclass."
    lines = [f"### {name}", "", one.qualifier("Description"), "", parent, ""]
    lines += property_table(schema, name, table[name])
    lines += code_lists(schema, name, table[name])
    methods = schema.methods(name)
    if methods:
        lines += ["", "Methods:", ""]
        lines += [f"- `{method.type} {method.name}()`: {method.qualifier('Description')}" for method in methods]
    lines += associations_of(name, schema, table)
    return lines + [""]


def unserved_section(schema, table):
    lines = []
    for one in schema.classes:
        if one.name.startswith("KDV_") and one.name not in table:
            keys = ", ".join(element.name for element in schema.resolved(one.name).values() if element.is_key)
            lines += [f"### {one.name}", "", one.qualifier("Description"), "",
                      f"Superclass `{one.superclass}`. Keys: {keys}. Named in paths, served by nobody.", ""]
    return lines


def association_table(schema, table):
    lines = ["## Associations", "",
             "Both roles are the keys of an association. Further properties follow them in the order given. Every one"
             " exists once for each pair of linked instances.", "",
             "| Class | Superclass | First role: end | Second role: end | Further properties | Meaning |",
             "|---|---|---|---|---|---|"]
    for name, rows in table.items():
        if not schema[name].is_association:
            continue
        ends = [f"{row['name']}: {end_of(row)}" for row in rows if row["type"] == "reference"]
        further = "; ".join(f"{row['name']} {type_of(row)} = {row['value']}"
                            for row in rows if row["type"] != "reference")
        lines.append(f"| <a id=\"{name.lower()}\"></a>{name} | {schema[name].superclass} | {ends[0]} | {ends[1]} | "
                     f"{cell(further)} | {cell(schema[name].qualifier('Description'))} |")
    return lines + [""]


def diagram(schema, table):
    lines = ["## The model at a glance", "",
             "An arrow is an association, from its first role to its second. Class names are without `KDV_SAS`.", "",
             "```mermaid", "flowchart LR", "    Host[CIM_ComputerSystem]"]
    for number, (file, title) in enumerate(GROUPS):
        members = [one.name for one in schema.classes
                   if one.name.startswith("KDV_SAS") and one.name in table and not one.is_association
                   and not one.is_indication and pathlib.Path(one.place.rsplit(":", 1)[0]).name == file]
        if members:
            lines.append(f"    subgraph G{number} [{title}]")
            lines += [f"        {short(name)}" for name in members]
            lines.append("    end")
    for name, rows in table.items():
        if schema[name].is_association:
            ends = ["Host" if row["class"].startswith("CIM_") else short(row["class"])
                    for row in rows if row["type"] == "reference"]
            lines.append(f"    {ends[0]} --> {ends[1]}")
    return lines + ["```", ""]


def document(schema, table):
    kinds = [classtable.provider_types(schema, name) for name in table]
    lines = [HEAD.format(namespace=classtable.NAMESPACE,
                         instances=sum(types == ["instance"] for types in kinds),
                         associations=sum("association" in types for types in kinds))]
    lines += diagram(schema, table)
    for file, title in GROUPS:
        lines += [f"## {title}", ""]
        for one in schema.classes:
            if one.name in table and pathlib.Path(one.place.rsplit(":", 1)[0]).name == file:
                lines += class_section(schema, one.name, table)
        if file == GROUPS[0][0]:
            lines += unserved_section(schema, table)
    lines += association_table(schema, table)
    return "\n".join(lines).rstrip() + "\n"


def main():
    parser = argparse.ArgumentParser(description="write the class reference")
    parser.add_argument("--check", action="store_true", help="compare instead of writing")
    parser.add_argument("--published", required=True)
    parser.add_argument("--output", required=True, type=pathlib.Path)
    parser.add_argument("mof", nargs="+")
    arguments = parser.parse_args()
    try:
        schema = mofinfo.load(*arguments.mof)
    except mofinfo.MofError as error:
        print(error, file=sys.stderr)
        return 1
    text = document(schema, classtable.published(arguments.published))
    if arguments.check:
        if not arguments.output.is_file() or arguments.output.read_text(encoding="utf-8") != text:
            print(f"{arguments.output} is stale: build the target kdv_schema_docs", file=sys.stderr)
            return 1
        return 0
    arguments.output.write_text(text, encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
