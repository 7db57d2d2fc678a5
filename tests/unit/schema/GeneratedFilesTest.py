"""Checks what is made from the MOF: the bundle, the registrations, the core MOF and the class reference."""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

from support import CORE, OURS, PUBLISHED, SHARE, SOURCE, TOOLS, expected, load, mofinfo, our_classes, published

PEGASUS_TYPES = {"2": "instance", "3": "association", "4": "indication", "5": "method"}


def expected_types():
    """By class name; written out here, not taken from the generator."""
    result = {}
    for one in expected():
        result[one.name] = ["instance", "association"] if one.association else ["instance"]
    result["KDV_AutoStartSASHBA"] = ["instance", "method"]
    result["KDV_SASIndication"] = ["indication"]
    return result


def run(tool, *arguments):
    return subprocess.run([sys.executable, str(TOOLS / tool), *map(str, arguments)], capture_output=True, text=True,
                          check=False)


class Bundle(unittest.TestCase):
    def test_the_bundle_holds_all_our_classes_and_none_of_the_superclasses(self):
        text = (SHARE / "kdv-sas.mof").read_text(encoding="utf-8")
        self.assertNotIn("#pragma include", text)
        declared = re.findall(r"^class (\w+)", text, re.MULTILINE)
        self.assertEqual(declared, [one.name for one in our_classes(load())])
        self.assertEqual(len(declared), 79)

    def test_the_bundle_says_what_the_sources_say(self):
        bundled = mofinfo.load(SHARE / "core" / "cim-core.mof", SHARE / "kdv-sas.mof")
        self.assertEqual(mofinfo.as_plain(bundled), mofinfo.as_plain(load()))


class SfcbRegistration(unittest.TestCase):
    def blocks(self):
        text = (SHARE / "kdv-sas.reg").read_text(encoding="utf-8")
        return [(name, dict(re.findall(r"^\s+(\w+): (.*)$", body, re.MULTILINE)))
                for name, body in re.findall(r"^\[(\w+)\]\n((?:[ ]+.*\n?)+)", text, re.MULTILINE)]

    def test_every_class_is_registered_once_with_its_types(self):
        types = [(name, fields["type"].split()) for name, fields in self.blocks()]
        self.assertEqual(len(types), 78)
        self.assertEqual(dict(types), expected_types())

    def test_every_block_names_provider_library_namespace_and_stays_loaded(self):
        for name, fields in self.blocks():
            with self.subTest(name):
                self.assertEqual(
                    {key: value for key, value in fields.items() if key != "type"},
                    {"provider": "KDVSASHBA", "location": "KDVSASHBAProvider", "namespace": "root/vnr",
                     "unload": "never"})


class PegasusRegistration(unittest.TestCase):
    def setUp(self):
        text = (SHARE / "kdv-sas-pegasus.mof").read_text(encoding="utf-8")
        self.instances = [(name, dict(re.findall(r"^\s+(\w+) = (.*);$", body, re.MULTILINE)))
                          for name, body in re.findall(r"^instance of (\w+)\n\{\n(.*?)^\};", text,
                                                       re.MULTILINE | re.DOTALL)]

    def of(self, name):
        return [fields for one, fields in self.instances if one == name]

    def test_one_module_and_one_provider_are_declared(self):
        (module,), (provider,) = self.of("PG_ProviderModule"), self.of("PG_Provider")
        self.assertEqual(module["Location"], '"KDVSASHBAProvider"')
        self.assertEqual(module["InterfaceType"], '"CMPI"')
        self.assertEqual(provider["Name"], '"KDVSASHBA"')
        self.assertEqual(provider["ProviderModuleName"], module["Name"])

    def test_every_class_is_registered_once_with_its_types(self):
        found = {}
        for fields in self.of("PG_ProviderCapabilities"):
            name = fields["ClassName"].strip('"')
            self.assertNotIn(name, found)
            self.assertEqual(fields["Namespaces"], '{"root/vnr"}')
            self.assertEqual(fields["ProviderName"], '"KDVSASHBA"')
            found[name] = [PEGASUS_TYPES[one] for one in re.findall(r"\d", fields["ProviderType"])]
        self.assertEqual(found, expected_types())

    def test_capability_identifiers_are_unique(self):
        identifiers = [fields["CapabilityID"] for fields in self.of("PG_ProviderCapabilities")]
        self.assertEqual(len(set(identifiers)), 78)
        self.assertEqual(len(identifiers), 78)


class Unserved(unittest.TestCase):
    def test_the_computer_system_is_registered_nowhere(self):
        for file in ("kdv-sas.reg", "kdv-sas-pegasus.mof"):
            with self.subTest(file):
                self.assertNotIn("KDV_ComputerSystem", (SHARE / file).read_text(encoding="utf-8"))


class KeptFiles(unittest.TestCase):
    """Files that are made from others but kept in the tree."""

    DOCS = SOURCE / "docs" / "classes.md"
    FACTS = SOURCE / "schema" / "core" / "cim-facts.json"

    def test_the_core_mof_is_what_the_facts_give(self):
        result = run("make-core.py", "--check", self.FACTS, CORE)
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_the_class_reference_is_what_the_mof_gives(self):
        result = run("make-class-docs.py", "--check", "--published", PUBLISHED, "--output", self.DOCS, CORE, OURS)
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_a_stale_file_is_noticed(self):
        with tempfile.TemporaryDirectory() as folder:
            for kept, tool, before, after in (
                    (CORE, "make-core.py", [self.FACTS], []),
                    (self.DOCS, "make-class-docs.py", ["--published", PUBLISHED, "--output"], [CORE, OURS])):
                copy = pathlib.Path(folder) / kept.name
                copy.write_text(kept.read_text(encoding="utf-8").replace("CIM_DiskDrive", "CIM_DiscDrive"),
                                encoding="utf-8")
                result = run(tool, "--check", *before, copy, *after)
                self.assertEqual(result.returncode, 1)
                self.assertIn("is stale", result.stderr)

    def test_the_core_mof_holds_no_prose(self):
        for one in mofinfo.load(CORE).classes:
            for element in [one, *one.elements]:
                with self.subTest(f"{one.name} {element.name}"):
                    self.assertIsNone(element.qualifier("Description"))

    def test_property_rows_of_the_reference_stand_in_published_order(self):
        text = self.DOCS.read_text(encoding="utf-8")
        sections = dict(re.findall(r"^### (\w+)\n(.*?)(?=^##|\Z)", text, re.MULTILINE | re.DOTALL))
        row = re.compile(r"^\| (\**\w+\**) \| \w+(?:\[\])? \|", re.MULTILINE)
        shown = {name: [cell.strip("*") for cell in row.findall(body) if cell != "Property"]
                 for name, body in sections.items()}
        for line in re.findall(r'^\| <a id="\w+"></a>.*$', text, re.MULTILINE):
            name, _, first, second, further, _ = [cell.strip() for cell in line.strip("|").split("|")]
            shown[name.split(">")[-1]] = [first.split(":")[0], second.split(":")[0],
                                          *re.findall(r"(\w+) \w+(?:\[\])? = ", further)]
        for name, rows in published().items():
            with self.subTest(name):
                self.assertEqual(shown[name], [row["name"] for row in rows])


class HostClasses(unittest.TestCase):
    def test_the_core_has_what_the_host_serves_itself(self):
        core = mofinfo.load(CORE)
        for name in ("__Namespace", "CIM_Namespace", "CIM_ObjectManager", "CIM_RegisteredProfile",
                     "CIM_ElementConformsToProfile", "CIM_ReferencedProfile", "CIM_IndicationFilter",
                     "CIM_ListenerDestinationCIMXML", "CIM_IndicationHandlerCIMXML", "CIM_IndicationSubscription",
                     "CIM_FilterCollection", "CIM_FilterCollectionSubscription", "CIM_MemberOfCollection",
                     "CIM_HostedService", "CIM_IndicationService", "CIM_AlertIndication"):
            with self.subTest(name):
                self.assertTrue(core.chain(name))

    def test_the_alert_has_what_listeners_read(self):
        alert = mofinfo.load(CORE).resolved("CIM_AlertIndication")
        types = {"IndicationIdentifier": "string", "IndicationTime": "datetime", "SequenceContext": "string",
                 "SequenceNumber": "sint64", "OwningEntity": "string", "MessageID": "string",
                 "MessageArguments": "string", "SystemName": "string", "AlertType": "uint16",
                 "PerceivedSeverity": "uint16", "ProbableCause": "uint16"}
        self.assertEqual({name: alert[name.lower()].type for name in types}, types)
        self.assertTrue(alert["messagearguments"].array)
        self.assertEqual(dict(alert["perceivedseverity"].values())["6"], "Critical")
        self.assertEqual(dict(alert["probablecause"].values())["94"], "Fan Failure")


if __name__ == "__main__":
    unittest.main()
