#!/usr/bin/env python3
"""Fill the OPTIONS section of a man page from an option table source.

Usage: gen_manpage.py SOURCE.opt TEMPLATE VERSION OUT

The template is roff text; "@OPTIONS@" in it becomes one entry per option that
--help lists (neither hidden nor internal), grouped by help class in the order
--help shows them, and "@VERSION@" becomes VERSION.  Errors in the source are
reported as by gen_options.py.
"""
import sys

from gen_options import check_and_derive, parse_source


def roff(text):
    """Text for a roff line: backslashes escaped, no control character first."""
    text = text.replace("\\", "\\e")
    return "\\&" + text if text[:1] in (".", "'") else text


def option_forms(rec):
    """The spellings as --help shows them, with the argument."""
    forms = [rec.short_form] if rec.short_form else []
    forms += [f for f in [rec.spellings[0].text] + rec.alt_forms if f not in forms]
    shown = ", ".join("\\fB%s\\fR" % roff(f).replace("-", "\\-") for f in forms)
    arg = rec.arg_text if rec.arg_text is not None else rec.arg
    if arg:
        arg = "=\\fI%s\\fR" % roff(arg)
        shown += "[%s]" % arg if "arg_optional" in rec.flags else arg
    return shown


def options_section(table):
    lines = []
    for index, (_ident, title, _line) in enumerate(table.help_classes):
        shown = [r for r in table.records if r.help_class_id == index
                 and not ({"hidden", "internal"} & r.flags)]
        if not shown:
            continue
        lines += [".SS " + roff(title.rstrip(":"))]
        for rec in sorted(shown, key=lambda r: r.sort_order):
            lines += [".TP", option_forms(rec), roff(rec.long_help or rec.help)]
            listed = [item[1:] for item in rec.items if item[0] == "+"]
            if listed:
                lines += [".br", "Values: " + ", ".join(roff(w) for w in listed) + "."]
    return "\n".join(lines)


def main(argv):
    if len(argv) != 5:
        sys.stderr.write("usage: gen_manpage.py SOURCE.opt TEMPLATE VERSION OUT\n")
        return 2
    source, template, version, out = argv[1:]
    table, errors = parse_source(source)
    errors = errors or check_and_derive(source, table)
    if errors:
        sys.stderr.write("\n".join(errors) + "\n")
        return 1
    with open(template, encoding="utf-8") as src:
        page = src.read()
    page = page.replace("@OPTIONS@", options_section(table)).replace("@VERSION@", version)
    with open(out, "w", encoding="utf-8") as dst:
        dst.write(page)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
