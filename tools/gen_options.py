#!/usr/bin/env python3
"""Generate the X-macro table of one option family from its .opt source.

Usage: gen_options.py SOURCE.opt OUTPUT.inc

The output is one file of sections, each between #ifdef MACRO and #endif, so a
file that includes it compiles only the sections whose macros it defines (and
the file undefines them again): see options/table_builder.h.

The source holds a table header, the help classes and one record per option
(see options/optobj.opt for the format).  Everything numeric is derived here:
option ids (alphabetical order of the internal names, compared in lower case),
item values (lists numbered one after the other in row order, alphabetically
inside a list), counts, the conflict matrix.  Stored names, help texts,
argument names and class titles are scrambled with rot13.  Input errors are
reported as FILE:LINE: message and end the script with status 1.
"""
import os
import re
import shlex
import sys

from c_source import c_string, write_generated

KINDS = {
    "none": 0, "string": 1, "number": 2, "hexnum": 3, "oneof": 4,
    "string_list": 5, "number_list": 6, "oneof_list": 7,
}
PARSE_TYPES = {
    "number": 0, "number1": 1, "unsigned": 2, "text": 3, "text_list": 4,
    "bounded_number": 5, "oneof": 6, "oneof_list": 7, "number8": 8,
}
OPTIONAL_OFFSET = 9
NUMERIC_PARSE = {0, 1, 2, 5, 8}
ONEOF_PARSE = {6, 7}
# parse types a kind may use (required forms; the optional ones follow)
KIND_PARSE = {1: {3}, 2: NUMERIC_PARSE, 3: NUMERIC_PARSE, 4: {6},
              5: {4}, 6: NUMERIC_PARSE, 7: {7}}
SEVERITIES = {"remark": 4, "warning": 5, "error": 6}
CONFLICT_VALUES = (1, 2, 3)
RULE_KINDS = {"warning": 5, "error": 6}
MERGE_POLICIES = ("none", "main", "exact", "exact_notset", "or", "and", "max", "min",
                  "custom")
# policies that compare the two sides' arguments, which lists cannot do
COMPARING_POLICIES = {"exact", "exact_notset", "max", "min", "custom"}
EXPECTABLE = ("options", "items", "internal", "hidden", "persistent", "defaults",
              "arg_optional", "sort_order_500", "class_cells", "conflict_cells", "rules",
              "policies", "override_rows", "override_groups", "merge_conflict_cells",
              "passto") + tuple("policy_" + p for p in MERGE_POLICIES)
# The tools that options are handed on to (the engine's tool_name, tn_<tool>).
TOOLS = ("abszorv", "aczorv", "aczcop", "aciazorv", "aciazcop", "advzorv", "arzorv",
         "asmzorv", "cbezorv", "cbeiazorv", "cgzorv", "cgzcop", "demzorv", "diszorv",
         "lnkzorv", "embedzorv", "embedded_options", "hexzorv", "ilkzorv", "clistzorv",
         "mkzorv", "nmzorv", "ocszorv", "ofdzorv", "optzorv", "optzcop", "pddzorv",
         "pprofzorv", "clzorv", "stripzorv", "xrefzorv")
GROUP_RE = re.compile(r"^[A-Za-z][A-Za-z0-9_]*$")
CONTINUATIONS = {"end": 0, "cluster": 1, "family": 2}
# Named handlers the engine provides; "rest" ones take the rest of the token.
ACTIONS = {
    "advice_file": False, "diag_wrap": False, "open_cmd_file": False,
    "toolversion": False, "align_for_speed": False, "enum_type_int": False,
    "verbose_template": True,
    "help": False,   # the help handler: shows help instead of recording
}
HANDLER_NONE, HANDLER_ARG, HANDLER_ONEOF, HANDLER_HELP = range(4)
SIGNED_MAX = 0x7FFFFFFFFFFFFFFF
UNSIGNED_MAX = 0xFFFFFFFFFFFFFFFF
# The ids of the file options: this many from the table's first_fileopt on.
FILE_OPTION_SLOTS = 30
NAME_RE = re.compile(r"^[A-Z][A-Z0-9_]*$")


class SourceError(Exception):
    pass


def rot13(text):
    out = []
    for ch in text:
        if ch == "%":
            out.append("-")
        elif ch == "-":
            out.append("%")
        elif "a" <= ch <= "z":
            out.append(chr((ord(ch) - 97 + 13) % 26 + 97))
        elif "A" <= ch <= "Z":
            out.append(chr((ord(ch) - 65 + 13) % 26 + 65))
        else:
            out.append(ch)
    return "".join(out)


def word_ident(word):
    ident = re.sub(r"[^A-Za-z0-9]", "_", word).upper()
    return ident


class Spelling:
    def __init__(self, text, line):
        self.text = text
        self.line = line
        self.scan_only = False    # scanned, but not in alt_forms
        self.unscanned = False    # in the row, not known to the scanner
        self.shown_first = False  # the row's short_form
        self.quiet_case = False   # no case warning where the table folds
        self.continuation = None
        self.form = 0


class Record:
    def __init__(self, name, line):
        self.name = name
        self.line = line
        self.fields = {}
        self.spellings = []
        self.kind = 0
        self.parse = None
        self.arg = ""
        self.arg_text = None
        self.range = None
        self.flags = set()
        self.help_class = None
        self.classes = []
        self.help = ""
        self.long_help = ""
        self.items = []
        self.default_word = None
        self.default = None
        self.action = None
        self.also_sets = []
        self.deprecated = None
        self.conflict_groups = []
        self.conflicts = []
        self.rules = []
        self.sort_order = 500
        self.basic_order = 0
        self.handler = None
        self.merge = None          # merge policy word
        self.merge_pairs = []      # (word, word, merged word, line) for custom
        self.merge_group = None    # name of a group of mutually exclusive options
        self.merge_conflicts = []  # (option name, line)
        self.passto = None         # [(tool, text or None)]: handed on to these tools


class Table:
    def __init__(self):
        self.family = None
        self.debug_prefix = None
        self.class_columns = None
        self.alt_slots = None
        self.fold_case = False
        self.first_fileopt = None
        self.short_groups = {}   # first letter (lower case) -> continuation
        self.in_id_order = False  # records must stand in the order of their ids
        self.expects = []        # (what, count, line): counts the table must reach
        self.help_classes = []   # (ident, title, line)
        self.records = []


def tokens_of(path, lineno, text):
    try:
        return shlex.split(text, comments=False, posix=True)
    except ValueError as err:
        raise SourceError("%s:%d: %s" % (path, lineno, err))


def parse_source(path):
    table = Table()
    errors = []
    section = None
    record = None
    with open(path, "rb") as src:
        lines = src.read().split(b"\n")
    for lineno, line in enumerate(lines, 1):
        try:
            raw = line.decode("utf-8")
        except UnicodeDecodeError:
            errors.append("%s:%d: the line is not valid UTF-8" % (path, lineno))
            continue
        stripped = raw.strip()
        if not stripped or stripped.startswith("#"):
            continue
        where = "%s:%d" % (path, lineno)

        def fail(msg):
            errors.append("%s: %s" % (where, msg))

        try:
            toks = tokens_of(path, lineno, stripped)
        except SourceError as err:
            errors.append(str(err))
            continue
        indented = raw[0] in " \t"
        key, args = toks[0], toks[1:]
        if not indented:
            # a line at the margin closes what stood before it, good or bad
            record, section = None, None
            if key == "table" and len(args) == 1:
                table.family, section = args[0], "table"
            elif key == "table":
                fail("'table' takes the family's class name")
            elif key == "help_class" and len(args) == 2 and NAME_RE.match(args[0]):
                table.help_classes.append((args[0], args[1], lineno))
            elif key == "help_class":
                fail("'help_class' takes an upper-case name and a title")
            elif key == "option" and len(args) == 1 and NAME_RE.match(args[0]):
                record, section = Record(args[0], lineno), "option"
                table.records.append(record)
            elif key == "option":
                fail("'option' takes one upper-case internal name")
            else:
                fail("unknown section '%s'" % key)
            continue
        if section == "table":
            parse_table_line(table, key, args, lineno, fail)
        elif record is not None:
            parse_record_line(record, key, args, lineno, fail)
        else:
            fail("indented line outside a table header or option record")
    return table, errors


def parse_int(text, fail, what):
    try:
        return int(text, 0)
    except ValueError:
        fail("%s must be a number, not '%s'" % (what, text))
        return


def parse_table_line(table, key, args, lineno, fail):
    if key == "debug_prefix" and len(args) == 1:
        table.debug_prefix = args[0]
    elif key in ("class_columns", "alt_slots", "first_fileopt") and len(args) == 1:
        setattr(table, key, parse_int(args[0], fail, key))
    elif key == "fold_case" and len(args) == 1 and args[0] in ("yes", "no"):
        table.fold_case = args[0] == "yes"
    elif key == "in_id_order" and len(args) == 1 and args[0] in ("yes", "no"):
        table.in_id_order = args[0] == "yes"
    elif key == "expect" and len(args) == 2 and args[0] in EXPECTABLE:
        count = parse_int(args[1], fail, "expect")
        if count is not None:
            table.expects.append((args[0], count, lineno))
    elif key == "short_group" and len(args) >= 2 and args[0] in CONTINUATIONS:
        for letter in args[1:]:
            if len(letter) != 1:
                fail("short_group takes single characters, not '%s'" % letter)
            elif letter.lower() in table.short_groups:
                fail("character '%s' is in two short groups" % letter)
            else:
                table.short_groups[letter.lower()] = args[0]
    else:
        fail("bad table line '%s'" % " ".join([key] + args))


# Record keywords that may appear more than once in a record.
REPEATABLE = {"spelling", "also_sets", "conflicts", "conflict_group", "rule", "merge_pair",
              "merge_conflicts"}


def parse_record_line(rec, key, args, lineno, fail):
    if key in rec.fields and key not in REPEATABLE:
        fail("'%s' given twice" % key)
        return
    rec.fields[key] = lineno
    handler = RECORD_KEYWORDS.get(key)
    if handler is None or handler(rec, args, lineno, fail) is False:
        fail("bad option line '%s'" % " ".join([key] + args))


# One handler per record keyword: (record, arguments, line, fail). A handler
# returns False when the arguments do not have the keyword's shape, and
# reports finer faults itself.

def rec_spelling(rec, args, lineno, fail):
    if not args or not args[0].startswith("-"):
        fail("a spelling begins with '-'")
        return
    sp = Spelling(args[0], lineno)
    for flag in args[1:]:
        if flag in ("scan_only", "unscanned", "shown_first", "quiet_case"):
            setattr(sp, flag, True)
        elif flag.startswith("continue=") and flag[9:] in CONTINUATIONS:
            sp.continuation = flag[9:]
        else:
            fail("unknown spelling flag '%s'" % flag)
    rec.spellings.append(sp)


def rec_kind(rec, args, _lineno, _fail):
    if len(args) != 1 or args[0] not in KINDS:
        return False
    rec.kind = KINDS[args[0]]


def rec_parse(rec, args, _lineno, fail):
    if not args:
        return False
    optional = args[0] == "optional"
    words = args[1:] if optional else args
    if len(words) != 1 or words[0] not in PARSE_TYPES:
        fail("unknown parse type '%s'" % " ".join(args))
        return
    rec.parse = PARSE_TYPES[words[0]] + (OPTIONAL_OFFSET if optional else 0)


def one_word(attr):
    """The handler of a keyword that stores its single argument in attr."""
    def handler(rec, args, _lineno, _fail):
        if len(args) != 1:
            return False
        setattr(rec, attr, args[0])
        return
    return handler


def one_number(attr):
    """The handler of a keyword that stores its single number in attr."""
    def handler(rec, args, _lineno, fail):
        if len(args) != 1:
            return False
        setattr(rec, attr, parse_int(args[0], fail, attr))
        return
    return handler


def rec_range(rec, args, _lineno, fail):
    if len(args) != 2:
        return False
    low = parse_int(args[0], fail, "range")
    high = parse_int(args[1], fail, "range")
    if low is not None and high is not None:
        if low > high:
            fail("range %d..%d is empty" % (low, high))
        rec.range = (low, high)


def rec_flags(rec, args, _lineno, fail):
    for flag in args:
        if flag not in ("internal", "hidden", "persistent", "arg_optional"):
            fail("unknown flag '%s'" % flag)
        rec.flags.add(flag)


def rec_help_class(rec, args, lineno, _fail):
    if len(args) != 1:
        return False
    rec.help_class = (args[0], lineno)


def rec_classes(rec, args, _lineno, fail):
    for col in args:
        value = parse_int(col, fail, "class column")
        if value is not None:
            rec.classes.append(value)


def rec_items(rec, args, _lineno, fail):
    if not args:
        return False
    for item in args:
        if len(item) < 2 or item[0] not in "+*-":
            fail("an item is a mark (+, * or -) and a word, not '%s'" % item)
        rec.items.append(item)


def rec_action(rec, args, _lineno, fail):
    if len(args) != 1:
        return False
    if args[0] not in ACTIONS:
        fail("unknown action '%s'" % args[0])
    rec.action = args[0]


def rec_also_sets(rec, args, lineno, fail):
    if not args:
        return False
    entry = {"line": lineno, "target": args[0], "word": None, "when": None,
             "by_number": None, "increment": False}
    if "=" in args[0]:
        entry["target"], entry["word"] = args[0].split("=", 1)
    rest = args[1:]
    if rest[:1] == ["when"] and len(rest) == 2:
        entry["when"] = rest[1]
    elif rest[:1] == ["by_number"] and len(rest) >= 2 and entry["word"] is None:
        entry["by_number"] = rest[1:]
    elif rest == ["increment"] and entry["word"] is None:
        entry["increment"] = True
    elif rest:
        fail("also_sets takes TARGET[=word] [when WORD | by_number WORDS... | increment]")
        return
    rec.also_sets.append(entry)


def rec_rule(rec, args, lineno, fail):
    rule = parse_rule(args, lineno)
    if rule is None:
        fail("rule takes [when WORD] with|without OPTION[=WORD,...] error|warning TEXT")
    else:
        rec.rules.append(rule)


def rec_deprecated(rec, args, _lineno, _fail):
    if len(args) != 2 or args[0] not in SEVERITIES:
        return False
    rec.deprecated = (SEVERITIES[args[0]], args[1])


def conflict_value(text, fail):
    value = parse_int(text, fail, "conflict value")
    if value is not None and value not in CONFLICT_VALUES:
        fail("conflict values are 1, 2 or 3")
    return value


def rec_conflict_group(rec, args, lineno, fail):
    if len(args) != 2:
        return False
    value = conflict_value(args[1], fail)
    if value is not None:
        rec.conflict_groups.append((args[0], value, lineno))


def rec_conflicts(rec, args, lineno, fail):
    if len(args) < 2:
        return False
    value = conflict_value(args[0], fail)
    if value is not None:
        rec.conflicts.extend((other, value, lineno) for other in args[1:])


def rec_merge(rec, args, _lineno, _fail):
    if len(args) != 1 or args[0] not in MERGE_POLICIES:
        return False
    rec.merge = args[0]


def rec_merge_pair(rec, args, lineno, _fail):
    if len(args) != 3:
        return False
    rec.merge_pairs.append((args[0], args[1], args[2], lineno))


def rec_merge_group(rec, args, _lineno, _fail):
    if len(args) != 1 or not GROUP_RE.match(args[0]) or args[0] == "none":
        return False
    rec.merge_group = args[0]


def rec_merge_conflicts(rec, args, lineno, _fail):
    if not args:
        return False
    rec.merge_conflicts.extend((other, lineno) for other in args)


def rec_passto(rec, args, _lineno, fail):
    rec.passto = []
    for entry in args:
        tool, sep, text = entry.partition("=")
        if tool not in TOOLS:
            fail("passto names unknown tool '%s'" % tool)
        elif sep and not text:
            fail("passto %s= needs a text" % tool)
        else:
            rec.passto.append((tool, text if sep else None))


RECORD_KEYWORDS = {
    "spelling": rec_spelling, "kind": rec_kind, "parse": rec_parse,
    "arg": one_word("arg"), "arg_text": one_word("arg_text"), "range": rec_range,
    "flags": rec_flags, "help_class": rec_help_class, "classes": rec_classes,
    "help": one_word("help"), "long_help": one_word("long_help"), "items": rec_items,
    "default_word": one_word("default_word"), "default": one_word("default"),
    "action": rec_action, "also_sets": rec_also_sets, "rule": rec_rule,
    "deprecated": rec_deprecated, "conflict_group": rec_conflict_group,
    "conflicts": rec_conflicts, "sort_order": one_number("sort_order"),
    "basic_order": one_number("basic_order"), "merge": rec_merge,
    "merge_pair": rec_merge_pair, "merge_group": rec_merge_group,
    "merge_conflicts": rec_merge_conflicts, "passto": rec_passto,
}


def parse_rule(args, lineno):
    """A dependency rule: [when WORD] with|without OTHER[=WORD,...] KIND TEXT."""
    rule = {"line": lineno, "when": None}
    if args[:1] == ["when"] and len(args) >= 2:
        rule["when"], args = args[1], args[2:]
    if len(args) != 4 or args[0] not in ("with", "without") or args[2] not in RULE_KINDS:
        return
    rule["relation"] = args[0]
    other, _, words = args[1].partition("=")
    rule["other"] = other
    rule["words"] = words.split(",") if words else []
    rule["severity"] = RULE_KINDS[args[2]]
    rule["text"] = args[3]
    return rule


def check_and_derive(path, table):
    errors = []

    def fail(line, msg):
        errors.append("%s:%d: %s" % (path, line, msg))

    if table.family is None:
        errors.append("%s:1: no 'table' header" % path)
        return errors
    for attr in ("debug_prefix", "class_columns", "alt_slots", "first_fileopt"):
        if getattr(table, attr) is None:
            errors.append("%s:1: table header lacks '%s'" % (path, attr))
    if not table.help_classes:
        errors.append("%s:1: no help_class declared" % path)
    if errors:
        return errors

    help_ids = {}
    for index, (ident, _title, line) in enumerate(table.help_classes):
        if ident in help_ids:
            fail(line, "help class %s declared twice" % ident)
        help_ids[ident] = index

    names = {}
    for rec in table.records:
        if rec.name in names:
            fail(rec.line, "option %s defined twice (first at line %d)"
                 % (rec.name, names[rec.name].line))
        names[rec.name] = rec
    if table.in_id_order:
        for before, after in zip(table.records, table.records[1:]):
            if after.name.lower() <= before.name.lower():
                fail(after.line, "option %s must sort after %s, which stands before it"
                     % (after.name, before.name))
    table.records.sort(key=lambda r: r.name.lower())
    for index, rec in enumerate(table.records):
        rec.id = index

    scan_texts = {}
    for rec in table.records:
        check_record(table, rec, help_ids, names, fail)
        for sp in rec.spellings:
            if sp.unscanned:
                continue
            key = sp.text.lower() if table.fold_case else sp.text
            if key in scan_texts:
                fail(sp.line, "spelling %s is already a spelling of %s"
                     % (sp.text, scan_texts[key]))
            scan_texts[key] = rec.name

    number_items(table)
    table.conflict_matrix = build_conflicts(table, names, fail)
    check_merging(table, names, fail)
    if not errors:
        check_expected_counts(table, fail)
    return errors


def check_expected_counts(table, fail):
    recs = table.records
    actual = {
        "options": len(recs),
        "items": table.item_count,
        "internal": sum("internal" in r.flags for r in recs),
        "hidden": sum("hidden" in r.flags for r in recs),
        "persistent": sum("persistent" in r.flags for r in recs),
        "defaults": sum(r.default is not None for r in recs),
        "arg_optional": sum("arg_optional" in r.flags for r in recs),
        "sort_order_500": sum(r.sort_order == 500 for r in recs),
        "class_cells": sum(len(set(r.classes)) for r in recs),
        "conflict_cells": sum(1 for row in table.conflict_matrix for v in row if v),
        "rules": sum(len(r.rules) for r in recs),
        "policies": sum(r.merge is not None for r in recs),
        "override_rows": sum(r.merge_group is not None for r in recs),
        "override_groups": len(table.merge_groups),
        "merge_conflict_cells": sum(1 for row in table.merge_conflict_matrix for v in row if v),
        "passto": sum(r.passto is not None for r in recs),
    }
    for policy in MERGE_POLICIES:
        actual["policy_" + policy] = sum(r.merge == policy for r in recs)
    for what, count, line in table.expects:
        if actual[what] < count:
            fail(line, "the table should have at least %d %s but has %d"
                 % (count, what, actual[what]))


def check_record(table, rec, help_ids, names, fail):
    if not rec.spellings:
        fail(rec.line, "option %s has no spelling" % rec.name)
        return
    check_spellings(table, rec, fail)
    check_help_placement(table, rec, help_ids, fail)
    check_argument(rec, fail)
    check_items(rec, fail)
    check_also_sets(rec, names, fail)
    for rule in rec.rules:
        check_rule(rec, rule, names, fail)
    for sp in rec.spellings:
        if sp.continuation is None:
            sp.continuation = default_continuation(table, sp)


def check_spellings(table, rec, fail):
    """Checks the spellings and derives the short form and the further forms."""
    for form, sp in enumerate(rec.spellings):
        sp.form = form
        if form == 0 and (sp.scan_only or sp.shown_first):
            fail(sp.line, "the first spelling is the long form")
        if sp.quiet_case and not table.fold_case:
            fail(sp.line, "quiet_case needs a table that folds case")
        if sp.text == "-" or (sp.text.startswith("--") and len(sp.text) == 2):
            fail(sp.line, "spelling '%s' has no name" % sp.text)
        elif not sp.unscanned and not re.match(r"[-@A-Za-z]", sp.text[1]):
            # tokens that start otherwise (numbers, file names) are never options
            fail(sp.line, "spelling '%s' can never be scanned" % sp.text)
    alts = [sp for sp in rec.spellings[1:] if not sp.scan_only and not sp.unscanned]
    # form n names the n-th entry of alt_forms, so unlisted spellings come last
    for sp in rec.spellings[1 + len(alts):]:
        if not sp.scan_only and not sp.unscanned:
            fail(sp.line, "a listed spelling must come before scan_only ones")
    if len(alts) > table.alt_slots:
        fail(rec.line, "%s has %d further spellings; the table has %d slots"
             % (rec.name, len(alts), table.alt_slots))
    shown = [sp for sp in rec.spellings if sp.shown_first]
    if len(shown) > 1:
        fail(shown[1].line, "only one spelling can be shown first")
    rec.short_form = shown[0].text if shown else None
    rec.alt_forms = [sp.text for sp in alts]


def check_help_placement(table, rec, help_ids, fail):
    """Checks the help class, the class columns and the help text."""
    if rec.help_class is None:
        fail(rec.line, "%s has no help_class" % rec.name)
        rec.help_class_id = 0
    elif rec.help_class[0] not in help_ids:
        fail(rec.help_class[1], "unknown help class %s" % rec.help_class[0])
        rec.help_class_id = 0
    else:
        rec.help_class_id = help_ids[rec.help_class[0]]
    for col in rec.classes:
        if not 1 <= col < table.class_columns:
            fail(rec.fields["classes"], "class column %d outside 1..%d"
                 % (col, table.class_columns - 1))
    if not rec.help and "internal" not in rec.flags:
        fail(rec.line, "%s has no help text" % rec.name)


def check_argument(rec, fail):
    """Checks kind, parse type, argument name, range and action; derives the handler."""
    if rec.kind == 0:
        rec.handler = HANDLER_HELP if rec.action == "help" else HANDLER_NONE
        for field in ("parse", "arg", "range", "items", "default_word", "default"):
            if field in rec.fields:
                fail(rec.fields[field], "%s takes no argument, so no '%s'"
                     % (rec.name, field))
        rec.parse = 0
    else:
        if rec.parse is None:
            fail(rec.line, "%s has a kind with argument but no 'parse'" % rec.name)
            rec.parse = 0
        base = base_parse(rec)
        if base not in KIND_PARSE[rec.kind]:
            fail(rec.fields.get("parse", rec.line), "parse type does not fit kind")
        rec.handler = HANDLER_ONEOF if base in ONEOF_PARSE else HANDLER_ARG
        if not rec.arg:
            fail(rec.line, "%s takes an argument but has no 'arg' name" % rec.name)
    if rec.parse >= OPTIONAL_OFFSET:
        rec.flags.add("arg_optional")
    if rec.range is not None and base_parse(rec) not in NUMERIC_PARSE:
        fail(rec.fields["range"], "only numeric options have a range")
    # A handler without bounds of its own hands over the signed bounds, for
    # unsigned arguments too.
    rec.range_values = rec.range or (0, SIGNED_MAX)
    if rec.action and ACTIONS[rec.action] and rec.kind != 0:
        fail(rec.fields["action"], "action %s works on options without argument"
             % rec.action)


def check_items(rec, fail):
    """Checks the one-of words and the defaults that name them."""
    has_list = rec.kind in (4, 7)
    if has_list and not rec.items:
        fail(rec.line, "one-of option %s has no items" % rec.name)
    if rec.items and not has_list:
        fail(rec.fields["items"], "only one-of options have items")
    words = [item[1:] for item in rec.items]
    lowered = [w.lower() for w in words]
    if len(set(lowered)) != len(lowered):
        fail(rec.fields.get("items", rec.line), "an item word appears twice")
    idents = [word_ident(w) for w in words]
    if len(set(idents)) != len(idents):
        fail(rec.fields.get("items", rec.line), "two item words give the same constant")
    for field in ("default_word", "default"):
        word = getattr(rec, field)
        if word is not None and has_list and word.lower() not in lowered:
            fail(rec.fields[field], "%s '%s' is no item of %s" % (field, word, rec.name))
    if rec.default_word is not None and rec.parse < OPTIONAL_OFFSET:
        fail(rec.fields["default_word"], "default_word needs an optional argument")
    if rec.default is not None and not has_list:
        fail(rec.fields["default"], "constructor defaults are one-of words")


def check_also_sets(rec, names, fail):
    lowered = [item[1:].lower() for item in rec.items]
    for entry in rec.also_sets:
        target = names.get(entry["target"])
        if target is None:
            fail(entry["line"], "also_sets names unknown option %s" % entry["target"])
            continue
        words = ([entry["word"]] if entry["word"] else []) + (entry["by_number"] or [])
        if words and target.kind == 0:
            fail(entry["line"], "%s takes no argument, so also_sets gives it no word"
                 % target.name)
        for word in words:
            if target.kind in (4, 7) and word.lower() not in [i[1:].lower() for i in target.items]:
                fail(entry["line"], "'%s' is no item of %s" % (word, target.name))
        if entry["when"] and entry["when"].lower() not in lowered:
            fail(entry["line"], "'%s' is no item of %s" % (entry["when"], rec.name))
        if entry["by_number"] and rec.kind not in (2, 3):
            fail(entry["line"], "by_number needs a numeric option")
        if entry["increment"] and target.kind not in (2, 3):
            fail(entry["line"], "increment needs a numeric target")


def check_rule(rec, rule, names, fail):
    other = names.get(rule["other"])
    if other is None:
        fail(rule["line"], "rule names unknown option %s" % rule["other"])
        return
    for owner, words in ((rec, [rule["when"]] if rule["when"] else []), (other, rule["words"])):
        if words and owner.kind == 0:
            fail(rule["line"], "%s takes no argument, so a rule names no word of it"
                 % owner.name)
        items = [i[1:] for i in owner.items]
        for word in words:
            # rules compare exactly, so a word must be spelled as its item is
            if owner.items and word not in items:
                fail(rule["line"], "'%s' is no item of %s" % (word, owner.name))


def base_parse(rec):
    return rec.parse % OPTIONAL_OFFSET


def default_continuation(table, sp):
    scan = sp.text[1:]
    if scan.startswith("-"):
        return "end"
    group = table.short_groups.get(scan[0].lower(), "cluster")
    if group == "family" and len(scan) == 1:
        return "cluster"   # a family's base hands the rest back to the scan
    return group


def number_items(table):
    value = 1
    for rec in table.records:
        words = sorted(item[1:] for item in rec.items)
        rec.item_values = {}
        for word in words:
            rec.item_values[word] = value
            value += 1
    table.item_count = value - 1


def build_conflicts(table, names, fail):
    size = len(table.records)
    matrix = [[0] * size for _ in range(size)]

    def put(row, col, value, line):
        if row is col:
            fail(line, "%s cannot conflict with itself" % row.name)
            return
        old = matrix[row.id][col.id]
        if old not in (0, value):
            fail(line, "conflict of %s with %s is both %d and %d"
                 % (row.name, col.name, old, value))
        matrix[row.id][col.id] = value

    groups = {}
    for rec in table.records:
        for group, value, line in rec.conflict_groups:
            groups.setdefault(group, []).append((rec, value, line))
    for group, members in groups.items():
        values = {value for _rec, value, _line in members}
        if len(values) > 1:
            fail(members[-1][2], "conflict group %s has mixed values" % group)
        if len(members) < 2:
            fail(members[0][2], "conflict group %s has a single member" % group)
        for rec, value, line in members:
            for other, _v, _l in members:
                if other is not rec:
                    put(rec, other, value, line)
    for rec in table.records:
        for other_name, value, line in rec.conflicts:
            other = names.get(other_name)
            if other is None:
                fail(line, "conflicts names unknown option %s" % other_name)
            else:
                put(rec, other, value, line)
    return matrix


def check_merging(table, names, fail):
    """Checks the merge policies, override groups, merge conflicts and hand-on
    entries, derives the groups (in the order of their first member) and the
    merge conflict matrix."""
    table.merge_groups = {}
    size = len(table.records)
    table.merge_conflict_matrix = [[0] * size for _ in range(size)]
    for rec in table.records:
        line = rec.fields.get("merge", rec.line)
        scanned = rec.spellings and not rec.spellings[0].unscanned
        # merging hands an option over as its exported (long) form, a token
        if (rec.merge not in (None, "none") or rec.merge_group) and not scanned:
            fail(line, "%s cannot be merged: its long form is not scanned" % rec.name)
        if rec.merge in COMPARING_POLICIES and rec.kind in (5, 6, 7):
            fail(line, "merge %s compares arguments, which list option %s cannot"
                 % (rec.merge, rec.name))
        if rec.merge in ("max", "min") and rec.kind == 0:
            fail(line, "merge %s needs an option with argument" % rec.merge)
        if rec.merge == "custom":
            if rec.kind != 4:
                fail(line, "merge custom needs a one-of option")
            if not rec.merge_pairs:
                fail(line, "merge custom needs merge_pair lines")
        elif rec.merge_pairs:
            fail(rec.merge_pairs[0][3], "merge_pair needs 'merge custom'")
        items = {item[1:] for item in rec.items}
        for pair in rec.merge_pairs:
            for word in pair[:3]:
                if rec.kind == 4 and word not in items:
                    fail(pair[3], "'%s' is no item of %s" % (word, rec.name))
        if rec.merge_group:
            table.merge_groups.setdefault(rec.merge_group, []).append(rec)
        for other_name, line in rec.merge_conflicts:
            other = names.get(other_name)
            if other is None:
                fail(line, "merge_conflicts names unknown option %s" % other_name)
            elif other is rec:
                fail(line, "%s cannot conflict with itself" % rec.name)
            else:
                table.merge_conflict_matrix[rec.id][other.id] = 3
        if rec.passto and len(set(rec.passto)) != len(rec.passto):
            fail(rec.fields["passto"], "passto gives a tool the same text twice")
    for group, members in table.merge_groups.items():
        if len(members) < 2:
            fail(members[0].fields["merge_group"], "merge group %s has a single member" % group)


# ---------------------------------------------------------------- emitters

def u64(value):
    return "0x%XULL" % (value & UNSIGNED_MAX)


def bool_c(flag):
    return "true" if flag else "false"


# One emitter per section of the generated file: (table) -> lines. A section
# is compiled only where its macro is defined; the file undefines it after.

def facts_section(table):
    return ["TABLE_FACTS(%d, %d, %d, %d, %d, %d, %s, %s, %d)" % (
        len(table.records), table.class_columns, len(table.help_classes), table.alt_slots,
        table.first_fileopt, table.first_fileopt + FILE_OPTION_SLOTS - 1,
        bool_c(table.fold_case), c_string(table.debug_prefix), table.item_count)]


def help_class_section(table):
    return ["HELP_CLASS(%s, %s)" % (ident, c_string(rot13(title)))
            for ident, title, _line in table.help_classes]


def item_list_section(table):
    return ["ITEM_LIST(%s%s)" % (r.name, "".join(
        ", OO_ITEM(%s, %d)" % (c_string(item), r.item_values[item[1:]]) for item in r.items))
        for r in table.records if r.items]


def item_value_section(table):
    return ["ITEM_VALUE(%s, %s, %d)" % (r.name, word_ident(item[1:]), r.item_values[item[1:]])
            for r in table.records for item in r.items]


def option_row(r):
    return "OPTION_ROW(%s, %s, %s, %d, %s, %s, %s, %s, %s, %s, %s, %d, %s, %d)" % (
        r.name, c_string(rot13(r.spellings[0].text)),
        c_string(rot13(r.short_form)) if r.short_form else "nullptr",
        r.basic_order, c_string(rot13(r.arg_text if r.arg_text is not None else r.arg)),
        bool_c("arg_optional" in r.flags), c_string(rot13(r.help)),
        c_string(rot13(r.long_help)), bool_c("internal" in r.flags),
        bool_c("hidden" in r.flags), bool_c("persistent" in r.flags),
        r.help_class_id, "OO_%s_ITEMLIST" % r.name if r.items else "nullptr", r.sort_order)


def scan_section(table):
    scan = []
    for r in table.records:
        for sp in r.spellings:
            if not sp.unscanned:
                text = sp.text[1:]
                scan.append((text.lower() if table.fold_case else text, text, r, sp))
    scan.sort(key=lambda entry: entry[0])
    lines = []
    for _key, text, r, sp in scan:
        low, high = r.range_values
        lines.append("SCAN_ROW(%s, %s, %d, %d, %d, %s, %s, %s, %s, %s, %d, %s, %s)" % (
            c_string(text), r.name, sp.form, r.handler, r.parse,
            c_string(rot13(r.arg)), u64(low), u64(high),
            c_string(r.default_word), bool_c(table.fold_case and not sp.quiet_case),
            CONTINUATIONS[sp.continuation],
            "none" if r.action in (None, "help") else r.action,
            bool_c(bool(r.action and ACTIONS[r.action]))))
    return lines


def also_sets_section(table):
    return ["ALSO_SETS(%s, %s, %s, %s, %s, %s)" % (
        r.name, e["target"], c_string(e["word"]), c_string(e["when"]),
        c_string(",".join(e["by_number"])) if e["by_number"] else "nullptr",
        bool_c(e["increment"])) for r in table.records for e in r.also_sets]


def depend_rule_section(table):
    rules = [(r, rule) for r in table.records for rule in r.rules]
    return ["DEPEND_RULE(%d, %s, %s, %s, %s, %s, %d%s)" % (
        index, r.name, c_string(rule["when"]), bool_c(rule["relation"] == "with"),
        rule["other"], c_string(rule["text"]), rule["severity"],
        "".join(", " + c_string(w) for w in rule["words"]))
        for index, (r, rule) in enumerate(rules)]


def merge_facts_section(table):
    recs = table.records
    return ["MERGE_FACTS(%d, %d, %d)" % (
        sum(r.merge is not None for r in recs), sum(r.merge_group is not None for r in recs),
        sum(r.passto is not None for r in recs))]


def merge_group_section(table):
    return ["MERGE_GROUP(%s, %s)" % (group, ", ".join("OO_MEMBER(%s)" % m.name for m in members))
            for group, members in table.merge_groups.items()]


def merge_pair_section(table):
    return ["MERGE_PAIRS(%s%s)" % (r.name, "".join(
        ", OO_PAIR(%d, %d, %d)" % tuple(r.item_values[w] for w in pair[:3])
        for pair in r.merge_pairs)) for r in table.records if r.merge_pairs]


def merge_row(r):
    return "MERGE_ROW(%s, %s, %s, %s)" % (
        r.name, r.merge or "unset", "OO_%s_PAIRS" % r.name if r.merge_pairs else "nullptr",
        r.merge_group or "none")


def passto_row(r):
    return "PASSTO_ROW(%s%s)" % (r.name, "".join(
        ", OO_HAND(%s, %s)" % (tool, c_string(rot13(text or r.spellings[0].text)))
        for tool, text in r.passto))


def matrix_section(macro, matrix):
    return ["%s(%s)" % (macro, ", ".join(str(v) for v in row)) for row in matrix]


def per_record(row):
    """A section of one line per record (in id order), made by row(record)."""
    return lambda table: [row(r) for r in table.records]


SECTIONS = (
    ("TABLE_FACTS", facts_section),
    ("OPTION_ID", per_record(lambda r: "OPTION_ID(%s)" % r.name)),
    ("HELP_CLASS", help_class_section),
    ("ALT_FORMS", per_record(lambda r: "ALT_FORMS(%s%s)" % (
        r.name, "".join(", " + c_string(rot13(a)) for a in r.alt_forms)))),
    ("ITEM_LIST", item_list_section),
    ("ITEM_VALUE", item_value_section),
    ("OPTION_ROW", per_record(option_row)),
    ("OPTION_TXT", per_record(lambda r: "OPTION_TXT(%s)" % c_string(rot13(r.spellings[0].text)))),
    ("ENUM_TXT", per_record(lambda r: "ENUM_TXT(%s)" % c_string(rot13(r.name)))),
    ("PARM_TYPE", per_record(lambda r: "PARM_TYPE(%d)" % r.kind)),
    ("CLASS_ROW", lambda t: ["CLASS_ROW(%s)" % ", ".join(
        "1" if c in r.classes else "0" for c in range(t.class_columns)) for r in t.records]),
    ("CONFLICT_ROW", lambda t: matrix_section("CONFLICT_ROW", t.conflict_matrix)),
    ("SCAN_ROW", scan_section),
    ("OPTION_DEFAULT", lambda t: ["OPTION_DEFAULT(%s, %s)" % (r.name, c_string(r.default))
                                  for r in t.records if r.default is not None]),
    ("ALSO_SETS", also_sets_section),
    ("DEPEND_RULE", depend_rule_section),
    ("MERGE_FACTS", merge_facts_section),
    ("MERGE_GROUP", merge_group_section),
    ("MERGE_PAIRS", merge_pair_section),
    ("MERGE_ROW", per_record(merge_row)),
    ("MERGE_CONFLICT_ROW",
     lambda t: matrix_section("MERGE_CONFLICT_ROW", t.merge_conflict_matrix)),
    ("PASSTO_ROW", lambda t: [passto_row(r) for r in t.records if r.passto is not None]),
    ("DEPRECATION", lambda t: ["DEPRECATION(%s, %d, %s)" % (
        r.name, r.deprecated[0], c_string(r.deprecated[1])) for r in t.records if r.deprecated]),
)


def generate(table, path, source):
    """Writes the table as one file of sections, each guarded by its macro."""
    lines = []
    for macro, emitter in SECTIONS:
        lines += ["#ifdef " + macro] + emitter(table) + ["#undef " + macro, "#endif"]
    write_generated(path, "gen_options.py", source, lines)


def main(argv):
    if len(argv) != 3:
        sys.stderr.write("usage: gen_options.py SOURCE.opt OUTPUT.inc\n")
        return 2
    source, output = argv[1:]
    try:
        table, errors = parse_source(source)
    except OSError as err:
        sys.stderr.write("%s:0: cannot read: %s\n" % (source, err.strerror))
        return 1
    if not errors:
        errors = check_and_derive(source, table)
    if errors:
        sys.stderr.write("\n".join(errors) + "\n")
        return 1
    os.makedirs(os.path.dirname(output) or ".", exist_ok=True)
    generate(table, output, os.path.basename(source))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
