#!/usr/bin/env python3
"""Which faults are made of a line, and which are not."""

import pathlib
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))
from cpp_faults import Equivalents, faults_of  # noqa: E402


def lines(body, kind=None):
    """The line with each fault that is made of it inside a function."""
    source = f"void f() {{\n{body}\n}}\n"
    return [fault.after for fault in faults_of("a/b.cpp", source) if kind in (None, fault.kind)]


class Faults(unittest.TestCase):
    def test_of_a_comparison(self):
        for sign, other in {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}.items():
            self.assertEqual(lines(f"return a {sign} b;"), [f"return a {other} b;"])

    def test_of_a_constant(self):
        self.assertEqual(sorted(lines("return 0;")), ["return 1;"])
        self.assertEqual(sorted(lines("return 7U;")), ["return 6U;", "return 8U;"])
        self.assertEqual(lines("return 0.0F;"), ["return 1.0F;"])
        self.assertEqual(lines("return 0.5;"), ["return (0.5 * 1.5);"])
        self.assertEqual(lines("return true;"), ["return false;"])

    def test_of_a_condition(self):
        self.assertEqual(lines("if (a(b))\n;"), ["if (!(a(b)))"])
        self.assertEqual(lines("if (!a)\n;"), ["if (!(!a))", "if (a)"])
        self.assertEqual(lines("return c ? a : b(1 < 2);", "branches"), ["return c ? b(1 < 2) : a;"])

    def test_of_a_statement(self):
        for statement in ("a = b;", "++a;", "a->b().c[1]++;", "a(b);", "return;", "*a += b;", "a = {1, 2};"):
            self.assertEqual(lines(statement, "statement"), [";"], statement)

    def test_are_not_made_where_nothing_is_compiled(self):
        for text in ("// a < b", "/* a < b */", 's == "a < b && 1";', '#include "a<1>.h"', "#if 1 < 2\n#endif"):
            self.assertLessEqual(len(lines(text)), 1, text)  # the first sign of the statement alone
        self.assertEqual(lines("#ifdef KA_WATCHED_MEMORY\na = 1;\n#endif"), [])
        self.assertEqual(lines("#ifdef KA_WATCHED_MEMORY\na = 1;\n#else\nb = c;\n#endif"), [";"])
        self.assertEqual(lines("#ifndef KA_WATCHED_MEMORY\nb = c;\n#else\na = 1;\n#endif"), [";"])

    def test_are_not_made_of_declarations_templates_and_checks(self):
        for text in ("A<B> a;", "const A& a(b);", "A* a;", "std::array<A, 8> a;", "A&& a(b);", "static_assert(1 < 2);",
                     "__builtin_prefetch(a + 1);", "bool a : 1;"):  # fmt: skip
            self.assertEqual(lines(text), [], text)
        self.assertEqual(faults_of("b.h", "class A {\n  A(int);\n  void b();\n  A& operator<(A);\n};\n"), [])

    def test_name_the_function_and_tell_equal_lines_apart(self):
        source = "void a::b(int c) {\n    d(e);\n    d(e);\n}\nint g() {\n    return h;\n}\n"
        found = faults_of("x/y.cpp", source)
        self.assertEqual([(fault.function, fault.line, fault.nth) for fault in found], [("a::b", 2, 1), ("a::b", 3, 2)])
        self.assertEqual(found[1].applied(source), source.replace("    d(e);\n}", "    ;\n}"))
        self.assertEqual(len({fault.key() for fault in found}), 2)


class KnownEquivalents(unittest.TestCase):
    source = "void a() {\n    if (b   < c)\n        d();\n}\n"

    def reasons(self, text):
        known = Equivalents(text)
        return [known.why(fault) for fault in faults_of("x/y.cpp", self.source)]

    def test_are_found_by_file_and_line_wherever_they_stand(self):
        self.assertIn("so it is", self.reasons("# head\n\ny.cpp\n- if (b < c)\n+ if (b <= c)\nso\nit is\n"))
        self.assertEqual(self.reasons("y.cpp\n@ a\n- if (b < c)\n+ *\nwhy\n").count("why"), 2)

    def test_are_not_found_elsewhere(self):
        for text in ("z.cpp\n- if (b < c)\n+ *\nwhy", "y.cpp\n@ e\n- if (b < c)\n+ *\nwhy", "y.cpp\n- b < c\n+ *\nwhy"):
            self.assertEqual(set(self.reasons(text)), {None}, text)

    def test_need_a_reason(self):
        self.assertRaises(ValueError, Equivalents, "y.cpp\n- if (b < c)\n+ *\n")


if __name__ == "__main__":
    unittest.main()
