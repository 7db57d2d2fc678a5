"""Holds the MOF against the written-down expectation and against what the classes publish."""

import unittest

from support import expected, load, our_classes, published, superclass_properties, type_text

INTEGER_TOP = {"uint8": 255, "uint16": 65535, "uint32": 4294967295}

# Local 16-bit numbers that count or name something of their own instead of being codes.
PLAIN_NUMBERS = {"WorkerPollInterval", "WorkerPollIntervalStagger", "VariableTypes"}


class Declarations(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.schema = load()
        cls.expected = expected()
        cls.published = published()

    def test_exactly_the_expected_classes_are_declared(self):
        names = [one.name for one in self.expected]
        self.assertEqual(len(names), 78)
        self.assertEqual(len(set(names)), 78)
        self.assertEqual(sorted(one.name for one in our_classes(self.schema)), sorted(names + ["KDV_ComputerSystem"]))

    def test_counts_are_thirty_instance_classes_and_forty_six_associations(self):
        associations = [one for one in our_classes(self.schema) if one.is_association]
        indications = [one for one in our_classes(self.schema) if one.is_indication]
        self.assertEqual(len(associations), 46)
        self.assertEqual([one.name for one in indications], ["KDV_SASIndication"])
        self.assertEqual(len(our_classes(self.schema)) - 46 - 1 - len(["worker", "computer system"]), 30)

    def test_every_class_has_its_superclass(self):
        for one in self.expected:
            with self.subTest(one.name):
                self.assertEqual(self.schema[one.name].superclass, one.superclass)

    def test_the_computer_system_is_a_computer_system(self):
        self.assertEqual(self.schema["KDV_ComputerSystem"].superclass, "CIM_ComputerSystem")

    def test_every_class_has_exactly_its_keys(self):
        for one in self.expected:
            with self.subTest(one.name):
                keys = [element.name for element in self.schema.resolved(one.name).values() if element.is_key]
                self.assertEqual(sorted(keys), sorted(one.keys))

    def test_local_properties_are_the_expected_ones_with_their_types(self):
        for one in self.expected:
            above = superclass_properties(self.schema, one.name)
            local = {element.name: type_text(element) for element in self.schema[one.name].elements
                     if element.kind != "method" and element.name.lower() not in above}
            with self.subTest(one.name):
                self.assertEqual(local, one.local)

    def test_roles_lead_to_the_expected_classes(self):
        for one in self.expected:
            if one.association:
                references = [(element.name, element.reference_class)
                              for element in self.schema[one.name].local("reference")]
                with self.subTest(one.name):
                    self.assertEqual(references, one.roles)

    def test_further_association_properties_come_from_the_superclass(self):
        for one in self.expected:
            if one.association:
                above = superclass_properties(self.schema, one.name)
                further = {row["name"]: row["type"] + ("[]" if row["array"] else "")
                           for row in self.published[one.name] if row["type"] != "reference"}
                with self.subTest(one.name):
                    self.assertEqual(further, one.further)
                    self.assertEqual({name: type_text(above[name.lower()]) for name in further}, one.further)

    def test_every_expected_default_is_overridden_to_null(self):
        for one in self.expected:
            if not one.association:
                nulls = [element.name for element in self.schema[one.name].elements
                         if element.has_default and element.default is None]
                with self.subTest(one.name):
                    self.assertEqual(sorted(nulls), sorted(one.nulls))

    def test_no_default_reaches_clients_for_a_property_that_is_never_published(self):
        table = dict(self.published)
        table["KDV_ComputerSystem"] = [{"name": "CreationClassName"}, {"name": "Name"}]
        checked = 0
        for name, rows in table.items():
            names = {row["name"].lower() for row in rows}
            for key, element in self.schema.resolved(name).items():
                if key not in names and element.has_default:
                    checked += 1
                    with self.subTest(f"{name}.{element.name}"):
                        self.assertIsNone(element.default)
        # Beside those of the table: SpaceLimit of two associations and four of the computer system.
        self.assertEqual(checked, sum(len(one.nulls) for one in self.expected) + 2 + 4)

    def test_null_overrides_hide_only_superclass_defaults(self):
        for one in our_classes(self.schema):
            above = superclass_properties(self.schema, one.name)
            for element in one.elements:
                if element.has_default:
                    with self.subTest(f"{one.name}.{element.name}"):
                        self.assertIsNone(element.default)
                        self.assertTrue(above[element.name.lower()].has_default)

    def test_every_published_property_is_declared_with_its_type(self):
        self.assertEqual(list(self.published), [one for one in self.published if one in self.schema])
        self.assertEqual(sorted(self.published), sorted(one.name for one in self.expected))
        for name, rows in self.published.items():
            resolved = self.schema.resolved(name)
            self.assertEqual(len({row["name"].lower() for row in rows}), len(rows), name)
            self.assertTrue(rows, name)
            for row in rows:
                with self.subTest(f"{name}.{row['name']}"):
                    element = resolved[row["name"].lower()]
                    self.assertEqual(element.name, row["name"])
                    self.assertEqual((element.type, element.array), (row["type"], row["array"]))
                    self.assertEqual(element.reference_class, row.get("class"))
                    self.assertTrue(row["value"] and row["presence"])

    def test_every_key_is_published(self):
        for name, rows in self.published.items():
            names = {row["name"] for row in rows}
            keys = {element.name for element in self.schema.resolved(name).values() if element.is_key}
            with self.subTest(name):
                self.assertLessEqual(keys, names)

    def test_every_declared_property_that_is_not_null_is_published(self):
        for name, rows in self.published.items():
            names = {row["name"] for row in rows}
            for element in self.schema[name].elements:
                if element.kind != "method" and not element.has_default:
                    with self.subTest(f"{name}.{element.name}"):
                        self.assertIn(element.name, names)

    def test_redeclared_properties_name_what_they_override_and_keep_its_type(self):
        for one in our_classes(self.schema):
            above = superclass_properties(self.schema, one.name)
            for element in one.elements:
                with self.subTest(f"{one.name}.{element.name}"):
                    inherited = above.get(element.name.lower())
                    if inherited is None:
                        self.assertIsNone(element.qualifier("Override"))
                    else:
                        self.assertEqual(element.qualifier("Override"), inherited.name)
                        self.assertEqual(element.name, inherited.name)
                        self.assertEqual((element.type, element.array), (inherited.type, inherited.array))
                        self.assertEqual(element.is_key, inherited.is_key)

    def test_reference_classes_lie_below_those_of_the_superclass(self):
        checked = 0
        for one in self.schema.classes:
            above = superclass_properties(self.schema, one.name)
            for element in one.local("reference"):
                self.assertIn(element.reference_class, self.schema)
                if element.name.lower() in above:
                    checked += 1
                    with self.subTest(f"{one.name}.{element.name}"):
                        self.assertTrue(
                            self.schema.is_a(element.reference_class, above[element.name.lower()].reference_class))
        self.assertGreaterEqual(checked, 92)

    def test_only_the_worker_has_a_method(self):
        methods = [(one.name, element.type, element.name) for one in our_classes(self.schema)
                   for element in one.local("method")]
        self.assertEqual(methods, [("KDV_AutoStartSASHBA", "uint32", "PerformWork")])


class Qualifiers(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.schema = load()

    def test_every_class_and_every_declared_property_is_described(self):
        for one in our_classes(self.schema):
            with self.subTest(one.name):
                self.assertTrue(one.qualifier("Description"))
                self.assertEqual(one.qualifier("Version"), "1.0.0")
            for element in one.elements:
                if element.kind != "reference" and not element.has_default:
                    with self.subTest(f"{one.name}.{element.name}"):
                        self.assertTrue(element.qualifier("Description"))

    def test_codes_and_their_texts_go_together(self):
        checked = 0
        for one in our_classes(self.schema):
            for element in one.elements:
                codes, texts = element.qualifier("ValueMap"), element.qualifier("Values")
                if codes is None:
                    self.assertIsNone(texts)
                    continue
                checked += 1
                with self.subTest(f"{one.name}.{element.name}"):
                    self.assertEqual(len(codes), len(texts))
                    self.assertEqual(len(set(codes)), len(codes))
                    self.assertEqual(len(set(texts)), len(texts))
                    for code in codes:
                        bounds = [int(part) for part in code.split("..")]
                        self.assertEqual(bounds, sorted(bounds))
                        self.assertLessEqual(bounds[-1], INTEGER_TOP[element.type])
        self.assertGreater(checked, 25)

    def test_every_local_sixteen_bit_code_has_texts(self):
        for one in our_classes(self.schema):
            above = superclass_properties(self.schema, one.name)
            for element in one.elements:
                if element.type == "uint16" and element.name.lower() not in above \
                        and element.name not in PLAIN_NUMBERS:
                    with self.subTest(f"{one.name}.{element.name}"):
                        self.assertTrue(element.qualifier("ValueMap"))

    def test_vendor_status_values_are_named(self):
        processor = self.schema.resolved("KDV_SASStorageEnclosureProcessor")["operationalstatus"]
        codes = dict(processor.values())
        self.assertEqual([code for code in codes if int(code) >= 32768], [str(code) for code in range(32768, 32780)])
        self.assertEqual([codes[str(code)] for code in (32769, 32774, 32777)],
                         ["Fan OK", "Power Supply OK", "Temperature OK"])
        drive = dict(self.schema.resolved("KDV_SASDiskDrive")["operationalstatus"].values())
        self.assertEqual([code for code in drive if int(code) >= 32768], ["32774", "32775"])

    def test_qualifiers_stand_only_where_their_scope_allows(self):
        for one in self.schema.classes:
            scopes = {"association" if one.is_association else "indication" if one.is_indication else "class"}
            for title in one.qualifiers:
                with self.subTest(f"{one.name} {title}"):
                    self.assertTrue(scopes & set(self.schema.qualifiers[title]["scope"]) or title == "indication")
            for element in one.elements:
                for title in element.qualifiers:
                    with self.subTest(f"{one.name}.{element.name} {title}"):
                        self.assertIn(element.kind, self.schema.qualifiers[title]["scope"])

    def test_association_comes_first_in_the_qualifier_list(self):
        for one in self.schema.classes:
            for title in ("association", "indication"):
                if title in one.qualifiers:
                    with self.subTest(one.name):
                        self.assertEqual(next(iter(one.qualifiers)), title)


if __name__ == "__main__":
    unittest.main()
