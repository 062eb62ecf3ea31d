"""What the mutator makes of small sources."""

import unittest

from mutator import mutants_of


def changes(source, *kinds):
    """(kind, changed source) of the mutants of a file with this source; of these kinds only, if any are named."""
    return [(m.kind, m.applied_to(source)) for m in mutants_of({"src/a.cpp": source}) if not kinds or m.kind in kinds]


class TheMutator(unittest.TestCase):
    def test_moves_comparisons_to_their_neighbours(self):
        self.assertEqual(changes("bool a = b < c;\n"), [("comparison", "bool a = b <= c;\n")])
        self.assertEqual(changes("bool a = b == c;\n"), [("comparison", "bool a = b != c;\n")])

    def test_leaves_brackets_of_templates_and_names_of_operators_alone(self):
        self.assertEqual(changes("template <typename T> bool operator==(std::vector<T> a, T&& b);\n"), [])

    def test_turns_arithmetic_round(self):
        self.assertEqual(changes("int a = b + c;\n"), [("arithmetic", "int a = b - c;\n")])
        self.assertEqual(changes("int a = b % c;\n"), [("arithmetic", "int a = b / c;\n")])

    def test_takes_nothing_from_texts(self):
        self.assertEqual(changes('auto a = b + "";\n'), [])

    def test_adds_one_to_constants(self):
        self.assertEqual(changes("int a = 1'000;\n"), [("constant", "int a = 1001;\n")])
        self.assertEqual(changes("unsigned a = 0x7fU;\n"), [("constant", "unsigned a = 0x80U;\n")])
        self.assertEqual(changes("bool a = true;\n"), [("constant", "bool a = false;\n")])

    def test_leaves_the_sizes_of_buffers_alone(self):
        self.assertEqual(changes("char text[32];\n"), [])

    def test_deletes_statements(self):
        self.assertEqual(changes("void a()\n{\n    b();\n}\n"), [("deleted", "void a()\n{\n    ;\n}\n")])
        self.assertEqual(changes("void a()\n{\n    for (;;)\n        b();\n}\n"),
                         [("deleted", "void a()\n{\n    ;\n}\n")])

    def test_deletes_no_part_of_a_statement(self):
        self.assertEqual(changes("void a()\n{\n    b = c ? D{} : D{e};\n}\n", "deleted"),
                         [("deleted", "void a()\n{\n    ;\n}\n")])
        self.assertEqual(changes("void a()\n{\n    do {\n    } while (b);\n}\n", "deleted"), [])

    def test_keeps_declarations_that_others_need(self):
        self.assertEqual(changes("void a();\nstruct B\n{\n    int c;\n};\n"), [])
        self.assertEqual(changes("void a()\n{\n    const int b = c;\n    return b;\n}\n", "deleted"), [])

    def test_deletes_objects_that_live_for_their_end(self):
        self.assertEqual(changes("void a()\n{\n    const Keeper keeper;\n    return b;\n}\n", "deleted"),
                         [("deleted", "void a()\n{\n    ;\n    return b;\n}\n")])

    def test_negates_conditions(self):
        self.assertEqual(changes("void a()\n{\n    if (b)\n        return;\n}\n", "condition"),
                         [("condition", "void a()\n{\n    if (!(b))\n        return;\n}\n")])
        self.assertEqual(changes("bool a = b && c;\n"), [("condition", "bool a = b || c;\n")])

    def test_negates_no_equality_that_it_has_changed_already(self):
        self.assertEqual(changes("void a()\n{\n    if (b == c)\n        return;\n}\n"),
                         [("comparison", "void a()\n{\n    if (b != c)\n        return;\n}\n")])

    def test_swaps_the_arguments_of_calls(self):
        self.assertEqual(changes("void a()\n{\n    b(c, d);\n}\n", "swapped"),
                         [("swapped", "void a()\n{\n    b(d, c);\n}\n")])

    def test_swaps_no_parameters_and_nothing_that_cannot_stand_for_the_other(self):
        self.assertEqual(changes("void a(int b, char c);\n"), [])
        self.assertEqual(changes("void a()\n{\n    b = std::max(c, d);\n}\n", "swapped"), [])
        for call in ("b([] {}, c)", 'b(1, "")', "b(c, std::memory_order_relaxed)"):
            self.assertEqual(changes(f"void a()\n{{\n    {call};\n}}\n", "swapped"), [])

    def test_returns_an_empty_value(self):
        self.assertEqual(changes("int a()\n{\n    return b;\n}\n"), [("return", "int a()\n{\n    return {};\n}\n")])
        self.assertEqual(changes("bool a()\n{\n    return false;\n}\n", "return"), [])

    def test_takes_the_next_enumerator(self):
        enumeration = "enum class A { b, c, };\n"
        self.assertEqual(changes(enumeration + "A d = A::b;\n"), [("enumerator", enumeration + "A d = A::c;\n")])
        self.assertEqual(changes(enumeration + "A d = A::c;\n"), [("enumerator", enumeration + "A d = A::b;\n")])

    def test_changes_one_character_of_a_text_and_no_part_of_an_escape_or_conversion(self):
        self.assertEqual(changes('auto a = "b";\n'), [("text", 'auto a = "X";\n')])
        self.assertEqual(changes('auto a = "\\n%2dX\\033";\n'), [("text", 'auto a = "\\n%2dY\\033";\n')])
        self.assertEqual(changes("char a = 'b';\n"), [("text", "char a = 'X';\n")])

    def test_lets_go_of_locks_at_once(self):
        lock = "const std::lock_guard<std::mutex> lock(m);"
        self.assertEqual(changes(f"void a()\n{{\n    {lock}\n    b = c;\n}}\n", "lock"),
                         [("lock", f"void a()\n{{\n    {{ {lock} }}\n    b = c;\n}}\n")])

    def test_leaves_comments_directives_attributes_and_checks_of_the_compiler_alone(self):
        self.assertEqual(changes("// a == 1\n/* b < 2 */\n#if c == 3\n#endif\n[[gnu::format(printf, 6, 7)]] void d();\n"
                                 "static_assert(N > 0, \"e\");\nextern \"C\" {\n}\n"), [])

    def test_names_mutants_by_what_they_change_and_not_by_where_they_stand(self):
        names = [m.name for m in mutants_of({"src/a.cpp": "int a = 1;\nbool b = c < d;\n"})]
        self.assertEqual(names, ["src/a.cpp constant int a = [1 -> 2];",
                                 "src/a.cpp comparison bool b = c [< -> <=] d;"])
        self.assertEqual(names, [m.name for m in mutants_of({"src/a.cpp": "\n\nint a = 1;\n\n  bool b = c < d;\n"})])

    def test_tells_equal_changes_apart(self):
        self.assertEqual([m.name for m in mutants_of({"src/a.cpp": "int a = 1;\nint a = 1;\n"})],
                         ["src/a.cpp constant int a = [1 -> 2];", "src/a.cpp constant int a = [1 -> 2]; #2"])


unittest.main()
