#!/usr/bin/env python3
"""Generate the diagnostics catalogue from DIAG/messages.def.

Usage: gen_diag.py CATALOGUE OUTPUT.inc

Validates the catalogue and writes one X-macro file of two sections, each
between #ifdef MACRO and #endif, so a file that includes it compiles only the
section whose macro it defines (and the file undefines it again):
  DIAG_ROW(code, severity, internal, non_discretionary, std_msg)
      one per row, in table order
  DIAG_CLASS(name, row_index, code, form, uses, field...)
      one per row that has a class; the fields (str or u32) follow the
      placeholders of std_msg, uses is the number of placeholders
Errors are reported as "file:line: message" and end with exit status 1.
"""

import os
import re
import sys

from c_source import c_string, write_generated

SEVERITIES = ("suppressed", "no_error", "advice", "debug", "remark",
              "warning", "error", "fatal")
FLAGS = ("internal", "non_discretionary")
FORMS = ("pattern", "one_arg", "base_ops", "paren")
FIELD_OF_CONVERSION = {"s": "str", "u": "u32"}
INT32_MAX = 2**31 - 1

ROW_RE = re.compile(r"(\S+)\s+(\S+)\s+(\S+)\s+(\S+)\s+(\S+)\s+(.*)$")
IDENT_RE = re.compile(r"[A-Za-z_][A-Za-z0-9_]*$")
# Names that DIAG/message_class.h and DIAG/catalogue.h already use in namespace DIAG.
RESERVED_NAMES = ("message", "form", "str", "u32", "catalogue_codes", "catalogue_rows",
                  "codes_ascend_to_terminator")


class CatalogueError(Exception):
    pass


class Row:
    def __init__(self, code, severity, flags, cls, form, text):
        self.code = code
        self.severity = severity
        self.flags = flags
        self.cls = cls
        self.form = form
        self.text = text  # None for a row without text
        self.fields = placeholders(text) if text is not None else []


def parse_literal(literal):
    """The bytes of a double-quoted literal that allows only \\" and \\\\."""
    if len(literal) < 2 or literal[0] != '"' or literal[-1] != '"':
        raise CatalogueError("std_msg must be a double-quoted literal or none")
    body = literal[1:-1]
    out = []
    i = 0
    while i < len(body):
        ch = body[i]
        if ch == "\\":
            if i + 1 >= len(body) or body[i + 1] not in '"\\':
                raise CatalogueError("only \\\" and \\\\ may be escaped in std_msg")
            out.append(body[i + 1])
            i += 2
            continue
        if ch == '"':
            raise CatalogueError("unescaped double quote inside std_msg")
        out.append(ch)
        i += 1
    return "".join(out)


def placeholders(text):
    """Field types of the placeholders of a printf format, in order."""
    fields = []
    for conv in re.findall(r"%(.?)", text, re.S):
        if conv == "%":
            continue
        if conv not in FIELD_OF_CONVERSION:
            raise CatalogueError(
                "placeholder '%%%s' in std_msg: only %%s and %%u are allowed" % conv)
        fields.append(FIELD_OF_CONVERSION[conv])
    return fields


def parse_flags(word):
    if word == "-":
        return set()
    flags = word.split(",")
    for flag in flags:
        if flag not in FLAGS:
            raise CatalogueError("unknown flag '%s'" % flag)
    if len(set(flags)) != len(flags):
        raise CatalogueError("flag repeated in '%s'" % word)
    return set(flags)


def parse_row(content):
    match = ROW_RE.match(content)
    if not match:
        raise CatalogueError(
            "expected: code severity flags class form std_msg")
    code_word, severity, flag_word, cls, form, literal = match.groups()
    if not re.fullmatch(r"[0-9]+", code_word):
        raise CatalogueError("code '%s' is not a number" % code_word)
    code = int(code_word)
    if code == 0 or code > INT32_MAX:
        raise CatalogueError("code %d out of range 1..%d" % (code, INT32_MAX))
    if severity not in SEVERITIES:
        raise CatalogueError("unknown severity '%s'" % severity)
    flags = parse_flags(flag_word)
    text = None if literal == "none" else parse_literal(literal)
    if cls == "-":
        if form != "-":
            raise CatalogueError("form '%s' given for a row without class" % form)
        cls = None
    else:
        if not IDENT_RE.match(cls):
            raise CatalogueError("class name '%s' is not an identifier" % cls)
        if cls in RESERVED_NAMES:
            raise CatalogueError("class name '%s' is reserved" % cls)
        if form not in FORMS:
            raise CatalogueError("unknown form '%s'" % form)
        if text is None:
            raise CatalogueError("class %s needs a std_msg" % cls)
    row = Row(code, severity, flags, cls, form, text)
    check_form(row)
    return row


def check_form(row):
    if row.cls is None:
        return
    if row.form == "one_arg":
        if len(set(row.fields)) != 1:
            raise CatalogueError(
                "form one_arg needs placeholders that are all of one type")
    if row.form == "paren" and row.fields != ["str"]:
        raise CatalogueError("form paren needs exactly one %s placeholder")


def read_catalogue(path):
    rows = []
    errors = []
    seen_classes = {}
    with open(path, "rb") as source:
        for lineno, raw in enumerate(source, start=1):
            try:
                content = raw.decode("utf-8").rstrip("\n")
            except UnicodeDecodeError:
                errors.append("%s:%d: the line is not valid UTF-8" % (path, lineno))
                continue
            if not content.strip() or content.lstrip().startswith("#"):
                continue
            try:
                row = parse_row(content.strip())
            except CatalogueError as err:
                errors.append("%s:%d: %s" % (path, lineno, err))
                continue
            if rows and row.code <= rows[-1].code:
                what = "duplicate" if row.code == rows[-1].code else "out of order"
                errors.append("%s:%d: code %d is %s (previous row has %d)"
                              % (path, lineno, row.code, what, rows[-1].code))
            if row.cls is not None:
                if row.cls in seen_classes:
                    errors.append("%s:%d: class %s already used on line %d"
                                  % (path, lineno, row.cls, seen_classes[row.cls]))
                seen_classes[row.cls] = lineno
            rows.append(row)
    if not rows and not errors:
        errors.append("%s:1: the catalogue has no rows" % path)
    return rows, errors


def rows_inc(rows):
    lines = []
    for row in rows:
        text = "nullptr" if row.text is None else c_string(row.text)
        lines.append("DIAG_ROW(%d, %s, %s, %s, %s)" % (
            row.code, row.severity,
            "true" if "internal" in row.flags else "false",
            "true" if "non_discretionary" in row.flags else "false",
            text))
    return lines


def classes_inc(rows):
    lines = []
    for index, row in enumerate(rows):
        if row.cls is None:
            continue
        fields = row.fields[:1] if row.form == "one_arg" else row.fields
        args = [row.cls, str(index), str(row.code), row.form,
                str(len(row.fields))] + fields
        lines.append("DIAG_CLASS(%s)" % ", ".join(args))
    return lines


def sectioned(rows):
    lines = ["#if !defined(DIAG_ROW) && !defined(DIAG_CLASS)",
             '#error "define DIAG_ROW or DIAG_CLASS before including this file"',
             "#endif"]
    for macro, section in (("DIAG_ROW", rows_inc), ("DIAG_CLASS", classes_inc)):
        lines += ["#ifdef " + macro] + section(rows) + ["#undef " + macro, "#endif"]
    return lines


def main(argv):
    if len(argv) != 3:
        sys.stderr.write("usage: gen_diag.py CATALOGUE OUTPUT.inc\n")
        return 2
    source, output = argv[1], argv[2]
    try:
        rows, errors = read_catalogue(source)
    except OSError as err:
        sys.stderr.write("%s: cannot read: %s\n" % (source, err.strerror))
        return 1
    if errors:
        sys.stderr.write("\n".join(errors) + "\n")
        return 1
    os.makedirs(os.path.dirname(output) or ".", exist_ok=True)
    write_generated(output, "gen_diag.py", os.path.basename(source), sectioned(rows))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
