#!/usr/bin/env python3
"""The option table generator refuses bad sources with FILE:LINE messages."""
import os
import subprocess
import sys
import tempfile
import unittest

GENERATOR = sys.argv.pop(1) if len(sys.argv) > 1 else "tools/gen_options.py"

HEADER = """table option_obj_x
  debug_prefix "x"
  class_columns 2
  alt_slots 1
  fold_case no
  first_fileopt 10
help_class MAIN "Main:"
"""


def run(source):
    with tempfile.TemporaryDirectory() as tmp:
        path = os.path.join(tmp, "bad.opt")
        with open(path, "w") as out:
            out.write(source)
        proc = subprocess.run([sys.executable, GENERATOR, path, os.path.join(tmp, "x.inc")],
                              capture_output=True, text=True)
        return proc.returncode, proc.stderr.replace(path, "bad.opt"), sorted(os.listdir(tmp))


class BadSources(unittest.TestCase):
    def test_good_source_generates(self):
        code, err, files = run(HEADER + "option A\n  spelling --a\n  help_class MAIN\n"
                               "  help \"a\"\n")
        self.assertEqual(code, 0, err)
        self.assertIn("x.inc", files)

    def test_duplicate_option(self):
        rec = "option A\n  spelling --a\n  help_class MAIN\n  help \"a\"\n"
        code, err, _ = run(HEADER + rec + rec.replace("--a", "--b"))
        self.assertEqual(code, 1)
        self.assertIn("bad.opt:12: option A defined twice (first at line 8)", err)

    def test_unknown_kind_and_item_outside_list(self):
        code, err, _ = run(HEADER + "option A\n  spelling --a\n  kind strange\n"
                           "  help_class MAIN\n  help \"a\"\n")
        self.assertEqual(code, 1)
        self.assertIn("bad.opt:10: bad option line 'kind strange'", err)

    def test_default_word_must_be_an_item(self):
        code, err, _ = run(HEADER + "option A\n  spelling --a\n  kind oneof\n  parse oneof\n"
                           "  arg x\n  items +on +off\n  default maybe\n  help_class MAIN\n"
                           "  help \"a\"\n")
        self.assertEqual(code, 1)
        self.assertIn("bad.opt:14: default 'maybe' is no item of A", err)

    def test_conflicting_cells_and_duplicate_spelling(self):
        code, err, _ = run(HEADER +
                           "option A\n  spelling --a\n  help_class MAIN\n  help \"a\"\n"
                           "  conflicts 2 B\n  conflicts 3 B\n"
                           "option B\n  spelling --a\n  help_class MAIN\n  help \"b\"\n")
        self.assertEqual(code, 1)
        self.assertIn("bad.opt:13: conflict of A with B is both 2 and 3", err)
        self.assertIn("bad.opt:15: spelling --a is already a spelling of A", err)

    def test_word_for_an_option_without_argument(self):
        code, err, _ = run(HEADER +
                           "option A\n  spelling --a\n  help_class MAIN\n  help \"a\"\n"
                           "  also_sets B=on\n"
                           "option B\n  spelling --b\n  help_class MAIN\n  help \"b\"\n")
        self.assertEqual(code, 1)
        self.assertIn("bad.opt:12: B takes no argument, so also_sets gives it no word", err)

    def test_short_spelling_the_scanner_cannot_reach(self):
        code, err, _ = run(HEADER + "option A\n  spelling --a\n  spelling -5\n"
                           "  help_class MAIN\n  help \"a\"\n")
        self.assertEqual(code, 1)
        self.assertIn("bad.opt:10: spelling '-5' can never be scanned", err)

    def test_rule_words_must_be_items_spelled_exactly(self):
        code, err, _ = run(HEADER +
                           "option A\n  spelling --a\n  help_class MAIN\n  help \"a\"\n"
                           "  rule with B=ON error \"--b=on\"\n"
                           "  rule without C warning \"--c\"\n"
                           "  rule when x with B error \"--b\"\n"
                           "option B\n  spelling --b\n  kind oneof\n  parse oneof\n  arg x\n"
                           "  items +on +off\n  help_class MAIN\n  help \"b\"\n")
        self.assertEqual(code, 1)
        self.assertIn("bad.opt:12: 'ON' is no item of B", err)
        self.assertIn("bad.opt:13: rule names unknown option C", err)
        self.assertIn("bad.opt:14: A takes no argument, so a rule names no word of it", err)

    def test_order_and_expected_counts(self):
        rec = "option %s\n  spelling --%s\n  help_class MAIN\n  help \"x\"\n  flags hidden\n"
        ordered = HEADER.replace("fold_case no", "fold_case no\n  in_id_order yes\n"
                                 "  expect options 2\n  expect hidden 1")
        code, err, _ = run(ordered + rec % ("B", "b") + rec % ("A", "a"))
        self.assertEqual(code, 1)
        self.assertIn("bad.opt:16: option A must sort after B, which stands before it", err)
        code, err, _ = run(ordered + rec % ("A", "a") + rec % ("B", "b"))
        self.assertEqual(code, 1)
        self.assertIn("bad.opt:8: the table should have 1 hidden but has 2", err)
        self.assertNotIn("options", err)

    def test_merge_rows_that_cannot_work(self):
        code, err, _ = run(HEADER +
                           "option A\n  spelling --a unscanned\n  help_class MAIN\n"
                           "  help \"a\"\n  merge or\n"
                           "option B\n  spelling --b\n  kind string_list\n  parse text_list\n"
                           "  arg x\n  help_class MAIN\n  help \"b\"\n  merge exact\n"
                           "  merge_group solo\n"
                           "option C\n  spelling --c\n  kind oneof\n  parse oneof\n  arg x\n"
                           "  items +on +off\n  help_class MAIN\n  help \"c\"\n  merge custom\n"
                           "  merge_pair on maybe on\n"
                           "option D\n  spelling --d\n  help_class MAIN\n  help \"d\"\n"
                           "  merge_pair on off on\n")
        self.assertEqual(code, 1)
        self.assertIn("bad.opt:12: A cannot be merged: its long form is not scanned", err)
        self.assertIn("bad.opt:20: merge exact compares arguments, which list option B cannot",
                      err)
        self.assertIn("bad.opt:21: merge group solo has a single member", err)
        self.assertIn("bad.opt:31: 'maybe' is no item of C", err)
        self.assertIn("bad.opt:36: merge_pair needs 'merge custom'", err)
        code, err, _ = run(HEADER + "option A\n  spelling --a\n  help_class MAIN\n"
                           "  help \"a\"\n  merge sometimes\n")
        self.assertEqual(code, 1)
        self.assertIn("bad.opt:12: bad option line 'merge sometimes'", err)

    def test_passto_targets_and_their_count(self):
        counted = HEADER.replace("fold_case no", "fold_case no\n  expect passto 2")
        code, err, _ = run(counted + "option A\n  spelling --a\n  help_class MAIN\n"
                           "  help \"a\"\n  passto lnkzorv nosuchtool=-x\n")
        self.assertEqual(code, 1)
        self.assertIn("bad.opt:13: passto names unknown tool 'nosuchtool'", err)
        code, err, _ = run(counted + "option A\n  spelling --a\n  help_class MAIN\n"
                           "  help \"a\"\n  passto lnkzorv=-x asmzorv lnkzorv=-x\n")
        self.assertEqual(code, 1)
        self.assertIn("bad.opt:13: passto gives a tool the same text twice", err)
        code, err, _ = run(counted + "option A\n  spelling --a\n  help_class MAIN\n"
                           "  help \"a\"\n  passto\n")
        self.assertEqual(code, 1)
        self.assertIn("bad.opt:6: the table should have 2 passto but has 1", err)


if __name__ == "__main__":
    unittest.main()
