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


def record(name, *lines):
    """An option record with its required lines; the source's line 8 is its first."""
    body = "".join("  %s\n" % line for line in lines)
    return "option %s\n  spelling --%s\n  help_class MAIN\n  help \"x\"\n%s" % (
        name, name.lower(), body)


ONEOF = ("kind oneof", "parse oneof", "arg x", "items +on +off")

# Each case: the source (behind HEADER; a "table" line in it reopens the
# header), and every message the generator must print (none: it generates).
CASES = [
    (record("A"), []),
    (record("A") + record("A"), ["bad.opt:12: option A defined twice (first at line 8)",
                                 "bad.opt:13: spelling --a is already a spelling of A"]),
    (record("A", "kind strange"), ["bad.opt:12: bad option line 'kind strange'"]),
    (record("A", *ONEOF, "default maybe"), ["bad.opt:16: default 'maybe' is no item of A"]),
    (record("A", "conflicts 2 B", "conflicts 3 B") + record("B", "spelling --a"),
     ["bad.opt:13: conflict of A with B is both 2 and 3",
      "bad.opt:18: spelling --a is already a spelling of A"]),
    (record("A", "also_sets B=on") + record("B"),
     ["bad.opt:12: B takes no argument, so also_sets gives it no word"]),
    (record("A", "spelling -5"), ["bad.opt:12: spelling '-5' can never be scanned"]),
    (record("A", "rule with B=ON error \"--b=on\"", "rule without C warning \"--c\"",
            "rule when x with B error \"--b\"") + record("B", *ONEOF),
     ["bad.opt:12: 'ON' is no item of B", "bad.opt:13: rule names unknown option C",
      "bad.opt:14: A takes no argument, so a rule names no word of it"]),
    (record("A", "merge or").replace("--a\n", "--a unscanned\n", 1)
     + record("B", "kind string_list", "parse text_list", "arg x", "merge exact",
              "merge_group solo")
     + record("C", *ONEOF, "merge custom", "merge_pair on maybe on")
     + record("D", "merge_pair on off on"),
     ["bad.opt:12: A cannot be merged: its long form is not scanned",
      "bad.opt:20: merge exact compares arguments, which list option B cannot",
      "bad.opt:21: merge group solo has a single member", "bad.opt:31: 'maybe' is no item of C",
      "bad.opt:36: merge_pair needs 'merge custom'"]),
    (record("A", "merge sometimes"), ["bad.opt:12: bad option line 'merge sometimes'"]),
    (record("A", "passto lnkzorv nosuchtool=-x"),
     ["bad.opt:12: passto names unknown tool 'nosuchtool'"]),
    (record("A", "passto lnkzorv=-x asmzorv lnkzorv=-x"),
     ["bad.opt:12: passto gives a tool the same text twice"]),
    ("table option_obj_x\n  in_id_order yes\n" + record("B") + record("A"),
     ["bad.opt:14: option A must sort after B, which stands before it"]),
    ("table option_obj_x\n  expect options 1\n  expect hidden 3\n  expect passto 2\n"
     + record("A", "flags hidden", "passto") + record("B", "flags hidden"),
     ["bad.opt:10: the table should have at least 3 hidden but has 2",
      "bad.opt:11: the table should have at least 2 passto but has 1"]),
]


def run(source):
    with tempfile.TemporaryDirectory() as tmp:
        path = os.path.join(tmp, "bad.opt")
        with open(path, "w") as out:
            out.write(HEADER + source)
        proc = subprocess.run([sys.executable, GENERATOR, path, os.path.join(tmp, "x.inc")],
                              capture_output=True, text=True)
        return proc.returncode, proc.stderr.replace(path, "bad.opt"), sorted(os.listdir(tmp))


class BadSources(unittest.TestCase):
    def test_each_fault_is_named_with_its_line(self):
        for source, messages in CASES:
            with self.subTest(source=source):
                code, err, files = run(source)
                self.assertEqual((code, "x.inc" in files), (1, False) if messages else (0, True))
                self.assertEqual(sorted(err.splitlines()), sorted(messages))


if __name__ == "__main__":
    unittest.main()
