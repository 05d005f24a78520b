#!/usr/bin/env python3
"""Runs the catalogue generator on small catalogues; argv[1] is gen_diag.py."""

import os
import subprocess
import sys
import tempfile
import unittest

GENERATOR = sys.argv.pop(1) if len(sys.argv) > 1 else "tools/gen_diag.py"
GOOD = ('10  error   -                  -        -        "plain \\\\ %s"\n'
        '11  advice  non_discretionary  twice    one_arg  "%s and %s, 100%%"\n'
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
        self.assertEqual(len(result.stderr.splitlines()), len(messages), result.stderr)
        for message in messages:
            self.assertIn("%s:%s" % (self.source, message), result.stderr)
        self.assertFalse(os.path.exists(self.output))

    def test_good_catalogue_gives_rows_and_classes(self):
        top = '13 remark - - - ""\n2147483647 debug - - - none\n'
        self.assertEqual(self.generate("# comment\n\n" + GOOD + top).returncode, 0)
        self.assertEqual(self.generated("DIAG_ROW("), [
            'DIAG_ROW(10, error, false, false, "plain \\\\ %s")',
            'DIAG_ROW(11, advice, false, true, "%s and %s, 100%%")',
            'DIAG_ROW(12, fatal, true, false, "from %u to %u in \\"%s\\"")',
            'DIAG_ROW(13, remark, false, false, "")',
            'DIAG_ROW(2147483647, debug, false, false, nullptr)'])
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
            b'11 error  -        twice pattern  "b"\n'
            b'20 error  -  -  -  "a \\n"\n' b'21 error  -  -  -  "a"b"\n'
            b'22 error  internal,internal  -  -  "x"\n' b'23 error  -\n'
            b'2x error  -  -  -  "x"\n' b'0  error  -  -  -  "x"\n'
            b'2147483648 error  -  -  -  "x"\n' b'24 error  -  -  pattern  "x"\n'
            b'25 error  -  1c  pattern  "x"\n' b'26 error  -  c  pattern  none\n'
            b'27 error  -  d  one_arg  "x"\n' b'28 error  -  e  one_arg  "%s %u"\n'
            b'29 error  -  -  -  "100%"\n' b'30 error  -  -  -  "\n' b'31 error - - - "a\\"\n',
            "4: code 12 is duplicate (previous row has 12)", "5: unknown severity 'loud'",
            "6: unknown flag 'special'", "7: unknown form 'odd'", "8: placeholder '%d'",
            "9: form paren needs exactly one %s", "10: std_msg must be",
            "11: class name 'str' is reserved", "12: the line is not valid UTF-8",
            "13: code 11 is out of order", "13: class twice already used on line 2",
            "14: only \\\" and", "15: unescaped double quote", "16: flag repeated",
            "17: expected: code", "18: code '2x' is not", "19: code 0 out of range",
            "20: code 2147483648 out", "21: form 'pattern' given for a row without",
            "22: class name '1c' is not", "23: class c needs a std_msg",
            "24: form one_arg needs", "25: form one_arg needs", "26: placeholder '%'",
            "27: std_msg must be", "28: only \\\" and")
        self.expect_failure("# nothing else\n", "1: the catalogue has no rows")


if __name__ == "__main__":
    unittest.main()
