#!/usr/bin/env python3
"""Writes the registration of the provider for a CIM server, from the MOF and the table of published classes.

    make-registration.py {sfcb|pegasus} --published FILE --output FILE MOF...

The MOF files are read in the given order: superclasses first.
"""

import argparse
import pathlib
import sys

import classtable
import mofinfo

# PG_ProviderCapabilities.ProviderType
PEGASUS_TYPES = {"instance": 2, "association": 3, "indication": 4, "method": 5}


def sfcb(classes):
    blocks = []
    for name, types in classes:
        # A provider that the server unloads when idle would end the alerts without a word.
        blocks.append(
            f"[{name}]\n"
            f"   provider: {classtable.PROVIDER}\n"
            f"   location: {classtable.LIBRARY}\n"
            f"   type: {' '.join(types)}\n"
            f"   namespace: {classtable.NAMESPACE}\n"
            "   unload: never\n"
        )
    return "\n".join(blocks)


def pegasus(classes):
    module = classtable.PROVIDER + "Module"
    parts = [
        "// Registers the SAS storage provider with OpenPegasus. Load it into the namespace root/PG_InterOp.\n"
        "// UserContext 5: the provider runs as the server's own user, in one process for all clients. With the\n"
        "// default every client user would get a provider, and a reading of the hardware, of its own.\n",
        "instance of PG_ProviderModule\n{\n"
        f'    Name = "{module}";\n'
        '    Vendor = "ZT";\n'
        '    Version = "1.0.0";\n'
        '    InterfaceType = "CMPI";\n'
        '    InterfaceVersion = "2.0.0";\n'
        f'    Location = "{classtable.LIBRARY}";\n'
        "    UserContext = 5;\n};\n",
        "instance of PG_Provider\n{\n"
        f'    ProviderModuleName = "{module}";\n'
        f'    Name = "{classtable.PROVIDER}";\n}};\n',
    ]
    for name, types in classes:
        numbers = ", ".join(str(PEGASUS_TYPES[one]) for one in types)
        parts.append(
            "instance of PG_ProviderCapabilities\n{\n"
            f'    ProviderModuleName = "{module}";\n'
            f'    ProviderName = "{classtable.PROVIDER}";\n'
            f'    CapabilityID = "{name}";\n'
            f'    ClassName = "{name}";\n'
            f'    Namespaces = {{"{classtable.NAMESPACE}"}};\n'
            f"    ProviderType = {{{numbers}}};\n"
            "    SupportedProperties = NULL;\n"
            "    SupportedMethods = NULL;\n};\n"
        )
    return "\n".join(parts)


def main():
    parser = argparse.ArgumentParser(description="write the registration of the provider")
    parser.add_argument("server", choices=("sfcb", "pegasus"))
    parser.add_argument("--published", required=True)
    parser.add_argument("--output", required=True, type=pathlib.Path)
    parser.add_argument("mof", nargs="+")
    arguments = parser.parse_args()
    try:
        schema = mofinfo.load(*arguments.mof)
    except mofinfo.MofError as error:
        print(error, file=sys.stderr)
        return 1
    classes = classtable.served(schema, classtable.published(arguments.published))
    text = sfcb(classes) if arguments.server == "sfcb" else pegasus(classes)
    arguments.output.write_text(text, encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
