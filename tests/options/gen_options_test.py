#!/usr/bin/env python3
"""The option table generator refuses bad sources with FILE:LINE messages, scrambles as the
engine unscrambles, and writes the manual page."""
import codecs
import os
import pathlib
import string
import subprocess
import sys
import tempfile
import unittest

GENERATOR = sys.argv.pop(1) if len(sys.argv) > 1 else "tools/gen_options.py"
sys.path.insert(0, os.path.dirname(os.path.abspath(GENERATOR)))
import gen_options  # noqa: E402  (the generator under test, beside its own modules)

HEADER = """table option_obj_x
  debug_prefix "x"
  class_columns 2
  alt_slots 1
  fold_case no
  first_fileopt 10
help_class MAIN "Main:"
"""


def record(name, *lines):
    """An option record with its required lines; the source's line 8 is its first."""
    body = "".join("  %s\n" % line for line in lines)
    return "option %s\n  spelling --%s\n  help_class MAIN\n  help \"x\"\n%s" % (
        name, name.lower(), body)


ONEOF = ("kind oneof", "parse oneof", "arg x", "items +on +off")
# What a table may expect to hold, and how many the counting case's records hold.
COUNTS = ("items 2 internal 1 hidden 1 persistent 1 defaults 1 arg_optional 1 sort_order_500 2 "
          "class_cells 1 conflict_cells 1 rules 1 policies 2 override_rows 2 override_groups 1 "
          "merge_conflict_cells 1 passto 1 policy_or 1 policy_custom 1 policy_max 0").split()
STR = ("kind string", "parse text", "arg x")

# Each case: the source (behind HEADER; a "table" line in it reopens the
# header; bytes stand alone), and every message the generator must print,
# without its "bad.opt:" (none: it generates).
CASES = [
    (b"", ["1: no 'table' header"]), (HEADER.replace("  fold_case no\n", "").encode(), []),
    (b"  spelling --a\n", ["1: indented line outside a table header or option record"]),
    (b"table option_obj_x\n", ["1: no help_class declared"] + ["1: table header lacks '%s'" % f
     for f in ("debug_prefix", "class_columns", "alt_slots", "first_fileopt")]),
    (b"table \xe9\n", ["1: the line is not valid UTF-8"]),
    (record("A") + record("A"), ["12: option A defined twice (first at line 8)",
                                 "13: spelling --a is already a spelling of A"]),
    (record("A", *ONEOF, "default maybe"), ["16: default 'maybe' is no item of A"]),
    (record("B", "spelling --a") + record("A", "conflicts 2 B", "conflicts 3 B"),
     ["18: conflict of A with B is both 2 and 3", "12: spelling --a is already a spelling of A"]),
    (record("A", "spelling -5"), ["12: spelling '-5' can never be scanned"]),
    (record("A", "rule with B=ON error \"--b=on\"", "rule without C warning \"--c\"",
            "rule when x with B error \"--b\"") + record("B", *ONEOF),
     ["12: 'ON' is no item of B", "13: rule names unknown option C",
      "14: A takes no argument, so a rule names no word of it"]),
    (record("A", "merge or").replace("--a\n", "--a unscanned\n", 1)
     + record("B", "kind string_list", "parse text_list", "arg x", "merge exact",
              "merge_group solo")
     + record("C", *ONEOF, "merge custom", "merge_pair on maybe on")
     + record("D", "merge_pair on off on")
     + record("E", "kind number_list", "parse number", "arg x", "merge max"),
     ["12: A cannot be merged: its long form is not scanned",
      "20: merge exact compares arguments, which list option B cannot",
      "21: merge group solo has a single member", "31: 'maybe' is no item of C",
      "36: merge_pair needs 'merge custom'",
      "44: merge max compares arguments, which list option E cannot"]),
    (record("A", "merge sometimes"), ["12: bad option line 'merge sometimes'"]),
    (record("A", "passto lnkzorv nosuchtool=-x asmzorv="),
     ["12: passto names unknown tool 'nosuchtool'", "12: passto asmzorv= needs a text"]),
    (record("A", "passto lnkzorv=-x asmzorv lnkzorv=-x"),
     ["12: passto gives a tool the same text twice"]),
    ("table option_obj_x\n  in_id_order yes\n  fold_case yes\n" + record("B")
     + record("A", "spelling --A") + record("A"),
     ["15: option A must sort after B, which stands before it", "20: option A defined twice "
      "(first at line 15)", "20: option A must sort after A, which stands before it"]
     + ["%d: spelling --%s is already a spelling of A" % p for p in ((19, "A"), (21, "a"))]),
    ("table option_obj_x\n  expect options 3\n" + "".join("  expect %s 9\n" % w
                                                           for w in COUNTS[::2])
     + record("A", "flags hidden persistent internal", "classes 1", "merge or", "merge_group g",
              "passto", "conflicts 1 B", "merge_conflicts B", 'rule without B warning "x"',
              "sort_order 1")
     + record("B", "kind oneof", "parse optional oneof", "arg x", "items +on +off", "default on",
              "merge_group g", "merge custom", "merge_pair on off on") + record("C"),
     ["%d: the table should have at least 9 %s but has %s" % (10 + i, w, n)
      for i, (w, n) in enumerate(zip(COUNTS[::2], COUNTS[1::2]))]),
    ("table a b\nhelp_class lower \"x\"\noption lower\nfrobnicate\n  spelling --x\n"
     "table option_obj_x\n  class_columns x\n  short_group cluster a\n  short_group end A ab\n"
     "  bad_key 1\n" + record("A", "spelling x", "spelling --a2 continue=weird", "parse optional nothing",
                                "range 5 1", "flags odd", "items + x", "action fly",
                                "also_sets B=on sometimes", "rule when", "conflicts 4 B",
                                "kind flag", "kind flag", 'arg "x', "deprecated odd x", "conflicts 2"),
     ["8: 'table' takes the family's class name", "35: bad option line 'deprecated odd x'",
      "9: 'help_class' takes an upper-case name and a title", "36: bad option line 'conflicts 2'",
      "10: 'option' takes one upper-case internal name", "11: unknown section 'frobnicate'",
      "12: indented line outside a table header or option record",
      "14: class_columns must be a number, not 'x'", "16: character 'A' is in two short groups",
      "16: short_group takes single characters, not 'ab'", "17: bad table line 'bad_key 1'",
      "22: a spelling begins with '-'", "23: unknown spelling flag 'continue=weird'",
      "24: unknown parse type 'optional nothing'", "25: range 5..1 is empty",
      "26: unknown flag 'odd'", "27: an item is a mark (+, * or -) and a word, not 'x'",
      "28: unknown action 'fly'", "27: an item is a mark (+, * or -) and a word, not '+'",
      "29: also_sets takes TARGET[=word] [when WORD | by_number WORDS... | increment]",
      "30: rule takes [when WORD] with|without OPTION[=WORD,...] error|warning TEXT",
      "31: conflict values are 1, 2 or 3", "32: bad option line 'kind flag'",
      "33: 'kind' given twice", "34: No closing quotation"]),
    ('help_class MAIN "again"\noption NOSP\n  help_class MAIN\n  help "x"\n'
     "option NOHELP\n  spelling --nohelp\n"
     + record("A", "spelling -b quiet_case", "spelling --", "spelling -c scan_only", "spelling -d",
              "classes 0 2", "arg x", "items +a", "default_word a", "default a")
     + record("B", "spelling -e shown_first", "spelling -f shown_first", "kind string",
              "parse unsigned").replace("--b\n", "--b shown_first\n")
     + record("C", *STR, "range 2 2", "action verbose_template").replace("MAIN", "NONE")
     + record("D", "kind oneof_list", "parse oneof_list", "arg x", "default_word on",
              "conflicts 1 D Z", "conflict_group g 1", "conflict_group h 1", "merge_conflicts D Z")
     + record("E", *STR, "items +a -A +a-b +a_b", "also_sets Z", "also_sets D=z=z",
              "also_sets A when q", "also_sets A by_number a", "also_sets A increment",
              "conflict_group g 2", "merge custom")
     + record("F", "merge max") + record("G", "kind number", "arg x"),
     ["8: help class MAIN declared twice", "9: option NOSP has no spelling",
      "12: NOHELP has no help_class", "12: NOHELP has no help text",
      "14: A has 3 further spellings; the table has 1 slots",
      "18: quiet_case needs a table that folds case", "19: spelling '--' has no name",
      "21: a listed spelling must come before scan_only ones", "22: class column 0 outside 1..1",
      "22: class column 2 outside 1..1", "23: A takes no argument, so no 'arg'",
      "24: A takes no argument, so no 'items'", "25: A takes no argument, so no 'default_word'",
      "26: A takes no argument, so no 'default'", "24: only one-of options have items",
      "25: default_word needs an optional argument", "26: constructor defaults are one-of words",
      "27: B has 2 further spellings; the table has 1 slots",
      "27: B takes an argument but has no 'arg' name", "28: the first spelling is the long form",
      "31: only one spelling can be shown first", "34: parse type does not fit kind",
      "37: unknown help class NONE", "42: only numeric options have a range",
      "43: action verbose_template works on options without argument",
      "44: one-of option D has no items", "51: default_word 'on' is no item of D",
      "51: default_word needs an optional argument", "52: D cannot conflict with itself",
      "52: conflicts names unknown option Z", "54: conflict group h has a single member",
      "55: D cannot conflict with itself", "55: merge_conflicts names unknown option Z",
      "63: only one-of options have items", "63: an item word appears twice",
      "63: two item words give the same constant", "64: also_sets names unknown option Z",
      "65: 'z=z' is no item of D", "66: 'q' is no item of E",
      "67: A takes no argument, so also_sets gives it no word",
      "67: by_number needs a numeric option", "68: increment needs a numeric target",
      "69: conflict group g has mixed values", "70: merge custom needs a one-of option",
      "70: merge custom needs merge_pair lines", "75: merge max needs an option with argument",
      "76: G has a kind with argument but no 'parse'"]),
]


class BadSources(unittest.TestCase):
    def test_each_fault_is_named_with_its_line(self):
        for source, messages in CASES:
            with self.subTest(source=source), tempfile.TemporaryDirectory() as tmp:
                path, output = os.path.join(tmp, "bad.opt"), os.path.join(tmp, "out", "x.inc")
                text = source if isinstance(source, bytes) else (HEADER + source).encode()
                pathlib.Path(path).write_bytes(text)
                proc = subprocess.run([sys.executable, GENERATOR, path, output],
                                      capture_output=True, text=True)
                self.assertEqual((proc.returncode, os.path.exists(output)),
                                 (1, False) if messages else (0, True))
                self.assertEqual(sorted(proc.stderr.replace(path, "bad.opt").splitlines()),
                                 sorted("bad.opt:" + m for m in messages))


class Scrambling(unittest.TestCase):
    def test_rot13_is_pythons_with_dash_and_percent_swapped(self):
        text = string.ascii_letters + string.digits + "-%_ :"
        self.assertEqual(gen_options.rot13(text), codecs.encode(text, "rot13").translate(
            str.maketrans("-%", "%-")))


class ManPage(unittest.TestCase):
    def test_listed_options_are_written_in_roff(self):
        source = HEADER + record("A", 'long_help ".a\\\\b"') + record("B", *ONEOF, "sort_order 1")
        source += record("C", "flags hidden")
        with tempfile.TemporaryDirectory() as tmp:
            paths = [os.path.join(tmp, name) for name in ("a.opt", "in", "page")]
            for path, text in zip(paths, (source, "@VERSION@\n@OPTIONS@\n")):
                pathlib.Path(path).write_text(text)
            tool = os.path.join(os.path.dirname(GENERATOR), "gen_manpage.py")
            subprocess.run([sys.executable, tool, paths[0], paths[1], "9.9", paths[2]], check=True)
            with open(paths[2]) as page:
                self.assertEqual(page.read(), "9.9\n.SS Main\n.TP\n\\fB\\-\\-b\\fR=\\fIx\\fR\nx\n.br\n"
                                 "Values: on, off.\n.TP\n\\fB\\-\\-a\\fR\n\\&.a\\eb\n")


if __name__ == "__main__":
    unittest.main()
