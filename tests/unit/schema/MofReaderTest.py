"""The reader behind the generators: what it understands, and that mistakes are reported with file and line."""

import pathlib
import tempfile
import unittest

from support import mofinfo


class MofReader(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def write(self, text, name="test.mof"):
        path = pathlib.Path(self.folder.name) / name
        path.write_text(text, encoding="utf-8")
        return path

    def read(self, text):
        return mofinfo.load(self.write(text))

    def fails_with(self, text, message):
        with self.assertRaises(mofinfo.MofError) as caught:
            self.read(text)
        self.assertIn(message, str(caught.exception))

    def test_reads_properties_references_arrays_defaults_and_methods(self):
        schema = self.read("""
            class A { [Key] string Name; uint16 Codes[]; sint8 Low = -3; boolean On = true; uint32 Mask = 0x10; };
            [Association] class B : A { [Key, Override("Name")] string Name = NULL; A REF End; uint32 Go(); };""")
        plain = mofinfo.as_plain(schema)
        self.assertEqual([(one["name"], one["type"], one["array"], one.get("default", "none"))
                          for one in plain["A"]["elements"]],
                         [("Name", "string", False, "none"), ("Codes", "uint16", True, "none"),
                          ("Low", "sint8", False, -3), ("On", "boolean", False, True), ("Mask", "uint32", False, 16)])
        self.assertEqual([(one["kind"], one.get("default", "none")) for one in plain["B"]["elements"]],
                         [("property", None), ("reference", "none"), ("method", "none")])

    def test_joins_neighbouring_strings_and_reads_escapes(self):
        schema = self.read('[Description("a \\"b\\" "\n  "c\\\\d")] class A { };')
        self.assertEqual(schema["A"].qualifier("Description"), 'a "b" c\\d')

    def test_comments_and_quotes_inside_strings_do_not_confuse_it(self):
        schema = self.read('/* class X\n{ */ // class Y {\n[Description("// no comment")] class A { };')
        self.assertEqual([one.name for one in schema.classes], ["A"])
        self.assertEqual(schema["A"].qualifier("Description"), "// no comment")

    def test_follows_includes_beside_the_including_file(self):
        self.write("class A { };", "a.mof")
        schema = self.read('#pragma include ("a.mof")\nclass B : A { };')
        self.assertEqual([one.name for one in schema.chain("B")], ["B", "A"])

    def test_names_compare_without_regard_to_case(self):
        schema = self.read("class Base { string Name; }; class Sub : BASE { };")
        self.assertTrue(schema.is_a("sub", "base"))
        self.assertIn("name", schema.resolved("SUB"))

    def test_an_override_keeps_key_and_replaces_codes_and_default(self):
        schema = self.read("""
            class A { [Key, ValueMap{"1"}, Values{"One"}] uint16 N = 1; };
            class B : A { [Override("N"), ValueMap{"2"}, Values{"Two"}] uint16 N = NULL; };""")
        element = schema.resolved("B")["n"]
        self.assertTrue(element.is_key)
        self.assertEqual(element.values(), [("2", "Two")])
        self.assertTrue(element.has_default)
        self.assertIsNone(element.default)

    def test_reports_a_missing_semicolon_with_file_and_line(self):
        self.fails_with("class A\n{\n    string Name\n};\n", "test.mof:4: expected ';', found }")

    def test_reports_an_unknown_type(self):
        self.fails_with("class A {\n uint128 N;\n};", "test.mof:2: type uint128 is not known")

    def test_reports_a_class_declared_twice(self):
        self.fails_with("class A { };\nclass a { };", "test.mof:2: class a is declared twice")

    def test_reports_a_property_declared_twice(self):
        self.fails_with("class A {\n string N;\n string n;\n};", "test.mof:3: A.n is declared twice")

    def test_reports_an_undeclared_qualifier(self):
        self.fails_with("Qualifier Key : boolean = false, Scope(property);\nclass A {\n [Kay] string N;\n};",
                        "test.mof:3: qualifier Kay is not declared")

    def test_reports_an_unclosed_class_and_a_stray_character(self):
        self.fails_with("class A {\n string N;\n", "test.mof:3: expected a type, found end of file")
        self.fails_with("class A { };\n%", "test.mof:2: unexpected character '%'")

    def test_reports_a_missing_include(self):
        self.fails_with('#pragma include ("none.mof")', "none.mof: No such file or directory")

    def test_reports_a_missing_superclass(self):
        schema = self.read("class A : Nobody { };")
        with self.assertRaisesRegex(mofinfo.MofError, r"test\.mof:1: class Nobody is not declared"):
            schema.chain("A")


if __name__ == "__main__":
    unittest.main()
