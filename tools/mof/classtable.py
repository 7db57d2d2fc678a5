"""The classes that the provider serves, and as what: the one place that the registration files, the class reference
and the tests take it from.

A class is served when published.json lists what it publishes. As what follows from its MOF: an indication as
indications; an association as instances and associations; anything else as instances, and as methods when it
declares one.
"""

import json
import pathlib

PROVIDER = "KDVSASHBA"
LIBRARY = "KDVSASHBAProvider"
NAMESPACE = "root/vnr"


def published(path):
    """Class name to the ordered list of what it publishes."""
    return json.loads(pathlib.Path(path).read_text(encoding="utf-8"))


def provider_types(schema, name):
    if schema[name].is_indication:
        return ["indication"]
    types = ["instance"]
    if schema[name].is_association:
        types.append("association")
    if schema.methods(name):
        types.append("method")
    return types


def served(schema, table):
    """Pairs of class name and provider types, in the order of the table."""
    return [(name, provider_types(schema, name)) for name in table]
