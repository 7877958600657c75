"""Which changes scripts/mutations.py makes of a source: mutations_test.py FOLDER_OF_SCRIPTS"""

import sys
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, sys.argv.pop(1))
from mutations import in_order_of, mutants_of  # noqa: E402

# What it is, a source, and all its changes.
TABLE = [
    ("a condition", "void F() { if (a < b) ++c; }",
     ["'a < b' -> '!(a < b)'", "'<' -> '<='", "'<' -> '>='", "'++' -> '--'"]),
    ("behind a statement of its own", "void F() { while (G(); a == b) {} }",
     ["'a == b' -> '!(a == b)'", "'==' -> '!='"]),
    ("one that declares", "void F() { if (auto a = G()) {} }", []),
    ("a choice", "void F() { x = a && G(b, c) ? d : e; }",
     ["'a && G(b, c)' -> '!(a && G(b, c))'", "'&&' -> '||'", "'b, c' -> 'c, b'"]),
    ("arithmetic", "int F() { return a + b * *c << -d; }",
     ["'+' -> '-'", "'*' -> '/'", "'<<' -> '>>'"]),
    ("numbers", "int a[] = {0, 1, 0x1fU, 010, 1'000};",
     ["'0' -> '1'", "'1' -> '0'", "'1' -> '2'", "'0x1fU' -> '0x0U'", "'0x1fU' -> '0x1eU'",
      "'0x1fU' -> '0x20U'", "'010' -> '0'", "'010' -> '7'", "'010' -> '9'", "'1'000' -> '0'",
      "'1'000' -> '1001'", "'1'000' -> '999'"]),
    ("fractions", "double a[] = {0.0, 1e-7};",
     ["'0.0' -> '(0.0 + 1)'", "'1e-7' -> '(1e-7 + 1)'", "'1e-7' -> '0.0'"]),
    ("texts", r'''auto a = {"-z-", L"\n9", R"x(-)x", "\x41", ""}; char b = 'a';''',
     ["""'"-z-"' -> '"-a-"'""", r"""'L"\n9"' -> 'L"\n0"'""", """'R"x(-)x"' -> 'R"x(~)x"'""",
      "''a'' -> ''b''"]),
    ("calls", "void F() {\n  a.B(c)->D();\n  if (e) ::G<int>();\n  const X h(i, j);\n"
     "  k = L();\nm:\n  N();\n}",
     ["'a.B(c)->D()' -> ''", "'e' -> '!(e)'", "'::G<int>()' -> ''", "'i, j' -> 'j, i'",
      "'N()' -> ''"]),
    ("arguments", "void F() { x = G(a, a, b.c, d->e, 1, f); }",
     ["'a, b.c' -> 'b.c, a'", "'b.c, d->e' -> 'd->e, b.c'", "'1' -> '0'", "'1' -> '2'"]),
    ("results",
     "Status F() { return G(); }\nbool H() { return false; }\nvoid I(Status) { return; }",
     ["'G()' -> 'Status::kOk'", "'false' -> 'true'"]),
    ("beside brackets that are none", "bool operator<(A);\nint a = 1;\nbool operator>(A);",
     ["'1' -> '0'", "'1' -> '2'"]),
    ("the same twice on a line", "int F() { return a - b - c; }", ["'-' -> '+'", "'-' -> '+' #2"]),
    ("nothing", '// 1\n#define A 2 \\\n  + 3\n/* "4" */ static_assert(5 < 6);\n'
     '[[deprecated("7")]] A<8, B<9>> a;\nbool operator++(const A& a, A&& b);\nextern "C" void F();',
     []),
]  # fmt: skip


class MutationsTest(unittest.TestCase):
    def test_changes(self):
        for name, source, expected in TABLE:
            with self.subTest(name):
                changes = [mutant.change for mutant in mutants_of("a.cpp", source)]
                self.assertEqual(changes, expected)

    def test_lines_stay_where_they_are(self):
        source = "void F() {\n  G(a,\n    b);\n}\n"
        removed, swapped = mutants_of("a.cpp", source)
        self.assertEqual((removed.line, removed.text, removed.new), (2, "G(a,", "\n"))
        self.assertEqual(swapped.new, "b,\n    a")

    def test_order_is_the_seeds(self):
        first = [f"int a{i} = 1;\n" for i in range(9)]
        order = in_order_of("1", mutants_of("a.cpp", "".join(first)))
        self.assertEqual(order, in_order_of("1", reversed(order)))
        self.assertNotEqual(order, in_order_of("2", order))
        # Each line once, then again.
        self.assertEqual({mutant.line for mutant in order[:9]}, set(range(1, 10)))
        # Another line moves no mutant but its own.
        longer = in_order_of("1", mutants_of("a.cpp", "".join(["int b = 1;\n"] + first)))
        told = [[mutant.change + mutant.text for mutant in mutants] for mutants in (order, longer)]
        self.assertEqual(told[0], [text for text in told[1] if " b " not in text])


if __name__ == "__main__":
    unittest.main()
