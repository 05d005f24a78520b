#!/usr/bin/env python3
"""Runs the catalogue generator on small catalogues; argv[1] is gen_diag.py."""

import os
import subprocess
import sys
import tempfile
import unittest

GENERATOR = sys.argv.pop(1) if len(sys.argv) > 1 else "tools/gen_diag.py"
GOOD = ('10  error   -                  -        -        "plain %s"\n'
        '11  advice  non_discretionary  twice    one_arg  "%s and %s"\n'
        '12  fatal   internal           numbers  pattern  "from %u to %u in \\"%s\\""\n')


class GeneratorTest(unittest.TestCase):
    def generate(self, catalogue):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.source = os.path.join(scratch.name, "cat.def")
        self.output = os.path.join(scratch.name, "out", "messages.inc")
        with open(self.source, "wb") as out:
            out.write(catalogue if isinstance(catalogue, bytes) else catalogue.encode("utf-8"))
        return subprocess.run([sys.executable, GENERATOR, self.source, self.output],
                              capture_output=True, text=True, check=False)

    def generated(self, prefix):
        with open(self.output, encoding="utf-8") as inc:
            return [l for l in inc.read().splitlines() if l.startswith(prefix)]

    def expect_failure(self, catalogue, *messages):
        result = self.generate(catalogue)
        self.assertEqual(result.returncode, 1, result.stderr)
        for message in messages:
            self.assertIn("%s:%s" % (self.source, message), result.stderr)
        self.assertFalse(os.path.exists(self.output))

    def test_good_catalogue_gives_rows_and_classes(self):
        self.assertEqual(self.generate("# comment\n\n" + GOOD).returncode, 0)
        self.assertEqual(self.generated("DIAG_ROW("), [
            'DIAG_ROW(10, error, false, false, "plain %s")',
            'DIAG_ROW(11, advice, false, true, "%s and %s")',
            'DIAG_ROW(12, fatal, true, false, "from %u to %u in \\"%s\\"")'])
        self.assertEqual(self.generated("DIAG_CLASS("), [
            "DIAG_CLASS(twice, 1, 11, one_arg, 2, str)",
            "DIAG_CLASS(numbers, 2, 12, pattern, 3, u32, u32, str)"])

    def test_bad_rows_are_reported_by_line(self):
        self.expect_failure(
            GOOD.encode() + b'12  error  -  -  -  "again"\n'
            b'5  loud   -        -     -        "x"\n'
            b'13 error  special  -     -        "x"\n'
            b'14 error  -        a     odd      "x"\n'
            b'15 error  -        b     pattern  "%d items"\n'
            b'16 error  -        twice paren    "%u"\n'
            b'17 error  -        -     -        "unterminated\n'
            b'18 error  -        str   pattern  "x"\n'
            b'19 error  -        -     -        "caf\xe9"\n'
            b'11 error  -        twice pattern  "b"\n',
            "4: code 12 is duplicate", "5: unknown severity 'loud'",
            "6: unknown flag 'special'", "7: unknown form 'odd'", "8: placeholder '%d'",
            "9: form paren needs exactly one %s", "10: std_msg must be",
            "11: class name 'str' is reserved", "12: the line is not valid UTF-8",
            "13: code 11 is out of order", "13: class twice already used on line 2")


if __name__ == "__main__":
    unittest.main()
