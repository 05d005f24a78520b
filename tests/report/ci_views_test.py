#!/usr/bin/env python3
"""advzorv-report's views for CI: JSON and Markdown of the documents, code size
by section against the bar advzorv records, two links compared with the size
gate, the documents' gate, and the inputs and outputs it refuses.

Usage: ci_views_test.py ADVZORV ADVZORV_REPORT E2E_CASES DOC_DIR DEMO_LINK_INFO
"""
import datetime
import glob
import json
import os
import re
import subprocess
import sys
import tempfile
import time
import xml.etree.ElementTree as ET

import jsonschema

advzorv, report, cases, doc, demo_link = map(os.path.abspath, sys.argv[1:6])
validators = {name: jsonschema.Draft202012Validator(json.load(open(
    os.path.join(doc, "report_%s.schema.json" % name)))) for name in ("documents", "sizes", "diff")}
STAMP = 0x6912F3A0
ISO_STAMP = datetime.datetime.fromtimestamp(STAMP, datetime.timezone.utc).strftime(
    "%Y-%m-%dT%H:%M:%SZ")
failures = []


def check(ok, what):
    if not ok:
        failures.append(what)


def run(*args, cwd):
    return subprocess.run([report, *args], capture_output=True, text=True, cwd=cwd)


def write(path, text):
    with open(path, "w") as f:
        f.write(text)


def check_valid(kind, got, what):
    errors = [e.message for e in validators[kind].iter_errors(got)]
    check(not errors, "%s: not valid against the %s schema: %s" % (what, kind, errors))


def check_documents_json(work):
    """Every pair of documents the end-to-end cases expect, as JSON and Markdown."""
    pairs = 0
    for files in sorted(glob.glob(os.path.join(cases, "*", "expected", "files"))):
        names = {"advice.xml", "perf.xml"}
        if not names <= set(os.listdir(files)):
            continue
        pairs += 1
        for name in names:
            text = open(os.path.join(files, name)).read().replace("@TIMESTAMP@", hex(STAMP))
            write(os.path.join(work, name), text)
        case = files.split(os.sep)[-3]
        done = run("--json", "advice.xml", "perf.xml", cwd=work)
        check(done.returncode == 0, case + ": " + done.stderr)
        got = json.loads(done.stdout)
        check_valid("documents", got, case)
        bars = [(b.get("option_value"), int(b.get("value")), b.get("color"))
                for b in ET.parse(os.path.join(work, "perf.xml")).find("chart")]
        check([(b["key"], b["code_size"], b["color"]) for b in got["chart"]["bars"]] == bars,
              case + ": bars differ")
        check(got["best"] == next((k for k, _, c in bars if c == "green"), None), case + ": best")
        entries = [(a.get("diag_code"), a.get("advice_type"), a.get("option"), a.get("value"),
                    " ".join(a.text.split()), a.get("action", ""))
                   for a in ET.parse(os.path.join(work, "advice.xml")).findall("advice")]
        check([(e["code"], e["type"], e["option"], e["value"], e["text"], e["action"])
               for e in got["advice"]] == entries, case + ": entries differ")
        check(got["timestamps"]["results"] == {"seconds": STAMP,
                                               "iso8601": ISO_STAMP},
              case + ": time stamp %s" % got["timestamps"])
        markdown = run("--markdown", "advice.xml", "perf.xml", cwd=work).stdout
        for key, value, color in bars:
            meaning = {"green": "**best**", "red": "error"}.get(color, "other")
            check(re.search(r"^\| %s \| %d \| \u2588* \| %s \|$" % (re.escape(key), value,
                            re.escape(meaning)), markdown, re.M), case + ": Markdown bar " + key)
    check(pairs >= 3, "only %d pairs of documents among the cases" % pairs)


def link_file(path, groups, uninitialized=(), link_time=None):
    """groups: (id, name, size, component ids); a component is uninitialized
    when its id is listed in uninitialized."""
    components = sorted({c for _, _, _, ids in groups for c in ids})
    text = ["<link_info><version>1</version><link_time>%#x</link_time>"
            "<link_errors>0x0</link_errors><object_component_list>"
            % (link_time or int(time.time()) + 86400)]
    text += ["<object_component id=\"%s\"><uninitialized>%s</uninitialized></object_component>"
             % (c, "true" if c in uninitialized else "false") for c in components]
    text.append("</object_component_list><logical_group_list>")
    for gid, name, size, ids in groups:
        refs = "".join("<object_component_ref idref=\"%s\"/>" % c for c in ids)
        text.append("<logical_group id=\"%s\"><name>%s</name><size>%#x</size><contents>%s"
                    "</contents></logical_group>" % (gid, name, size, refs))
    write(path, "".join(text) + "</logical_group_list></link_info>")


def in_future(path, source):
    """The link file source as if linked now, so advzorv takes its bar."""
    text = open(source).read()
    write(path, re.sub(r"<link_time>.*</link_time>",
                       "<link_time>%#x</link_time>" % (int(time.time()) + 86400), text))


def generated(path):
    """A real-shaped 1 MB link file, as the benchmarks generate it."""
    bench = os.path.join(os.path.dirname(demo_link), "..", "..", "bench", "gen_link_info.py")
    subprocess.run([sys.executable, bench, "1", path + ".generated"], check=True)
    in_future(path, path + ".generated")


# Link files and the reason each group doesn't count (None: it counts); the
# generated file is only checked to hold each kind of group.
SIZE_CASES = [
    ("demo", lambda p: in_future(p, demo_link),
     {"lg-1": None, "lg-2": None, "lg-3": "uninitialized"}),
    ("generated", generated, None),
    ("debug, uninitialized and empty groups", lambda p: link_file(p, [
        ("g1", ".text", 5000, ["c1"]), ("g2", ".debug_info", 700, ["c2"]),
        ("g3", ".debugX", 11, ["c3"]), ("g4", ".bss", 300, ["c4"]), ("g5", ".empty", 99, []),
        ("g6", ".mixed", 40, ["c5", "c6"]), ("g7", ".debu", 8, ["c7"]),
    ], uninitialized={"c4", "c5"}), {"g1": None, "g2": "debug", "g3": "debug",
                                     "g4": "uninitialized", "g5": "no components",
                                     "g6": "uninitialized", "g7": None}),
    ("sizes past 32 bits", lambda p: link_file(p, [
        ("a", ".text", 0xFFFFFF00, ["c1"]), ("b", ".data", 0x200, ["c2"])]),
     {"a": None, "b": None}),
]


def check_sizes(work):
    """The sizes total is the bar advzorv records for the same link file."""
    write(os.path.join(work, "options.cmd"), "--opt_level=2 --opt_for_speed=3\n")
    for name, make, reasons in SIZE_CASES:
        for stale in ("advice.xml", "perf_results.xml"):
            if os.path.exists(os.path.join(work, stale)):
                os.remove(os.path.join(work, stale))
        make(os.path.join(work, "link_info.xml"))
        for event in ("start", "append"):
            subprocess.run([advzorv, "--advice_file=advice.xml",
                            "--benchmarks_file=perf_results.xml", "--xml_link_info=link_info.xml",
                            "--linker_options_file=options.cmd", "--benchmark:event=" + event,
                            "--benchmark:option=--opt_for_speed",
                            "--benchmark:option_value=1"], cwd=work, capture_output=True)
        bar = ET.parse(os.path.join(work, "perf_results.xml")).find("chart/bar")
        done = run("sizes", "--json", "link_info.xml", cwd=work)
        got = json.loads(done.stdout) if done.returncode == 0 else {}
        check_valid("sizes", got, name)
        check(bar is not None and got.get("code_size") == int(bar.get("value")),
              "%s: sizes total %s, bar %s" % (name, got.get("code_size"),
                                              None if bar is None else bar.get("value")))
        groups = got.get("groups", [])
        kinds = {g["id"]: g["why_not"] for g in groups}
        if reasons is None:
            check({None, "debug", "uninitialized"} <= set(kinds.values()),
                  name + ": not every kind of group")
        else:
            check(kinds == reasons, "%s: reasons %s" % (name, groups))
        check(sum(g["size"] for g in groups if g["counts"]) % 2**32 == got.get("code_size"),
              name + ": the counted groups don't add up to the total")
        check([g["size"] for g in groups] == sorted((g["size"] for g in groups), reverse=True),
              name + ": not sorted by size")


def check_diff(work):
    """Two generated links compared, and the size gate at its boundaries."""
    link_file(os.path.join(work, "old.xml"), [
        ("1", ".text", 900, ["a"]), ("2", ".data", 100, ["b"]), ("3", ".bss", 50, ["c"]),
        ("4", ".debug_info", 500, ["d"])], uninitialized={"c"})
    link_file(os.path.join(work, "new.xml"), [
        ("1", ".text", 1060, ["a"]), ("2", ".data", 100, ["b"]), ("3", ".bss", 80, ["c"]),
        ("9", ".rodata", 40, ["e"])], uninitialized={"c"})
    got = json.loads(run("diff", "--json", "old.xml", "new.xml", cwd=work).stdout)
    check_valid("diff", got, "diff")
    rows = [(s["name"], s["old_size"], s["new_size"], s["delta"], s["change"], s["counts"])
            for s in got["sections"]]
    check(rows == [(".debug_info", 500, None, -500, "went", False),
                   (".text", 900, 1060, 160, "grew", True),
                   (".rodata", None, 40, 40, "appeared", True),
                   (".bss", 50, 80, 30, "grew", False),
                   (".data", 100, 100, 0, "same", True)], "diff rows %s" % rows)
    check((got["old_code_size"], got["new_code_size"], got["code_size_delta"],
           got["code_size_percent"]) == (1000, 1200, 200, 20.0), "diff totals %s" % got)
    gates = [  # old code size 1000, new 1200: 200 bytes, 20% more
        (["--fail-over=1200"], 0, ""),
        (["--fail-over=1199"], 1, "1 byte over the budget of 1199 bytes"),
        (["--fail-growth=20"], 0, ""),
        (["--fail-growth=19.999999"], 1, "grew by 200 bytes (20.00%), more than the allowed"),
        (["--fail-growth=20.000001", "--fail-over=5000"], 0, ""),
        (["--fail-over=0", "--fail-growth=0"], 1, "budget of 0 bytes"),
        (["--fail-over=-1"], 2, "--fail-over takes a number"),
        (["--fail-growth=1.2345678"], 2, "--fail-growth takes a percentage"),
    ]
    for args, status, message in gates:
        done = run("diff", *args, "old.xml", "new.xml", cwd=work)
        check(done.returncode == status and message in done.stderr,
              "diff %s: status %d, %r" % (args, done.returncode, done.stderr))
    shrunk = run("diff", "--fail-growth=0", "new.xml", "old.xml", cwd=work)
    check(shrunk.returncode == 0, "a shrinking code size failed the growth gate")
    check(len([l for l in run("diff", "--fail-over=1", "--fail-growth=1", "old.xml", "new.xml",
                              cwd=work).stderr.splitlines() if l]) == 2, "one line per gate")


def check_gate_on_documents(work, series):
    """--check on documents that fail it in each way, and on a good series."""
    def documents(bar_colors, entries=True):
        advice = ET.parse(os.path.join(series, "advice.xml"))
        if not entries:
            for entry in advice.getroot().findall("advice"):
                advice.getroot().remove(entry)
        results = ET.parse(os.path.join(series, "perf_results.xml"))
        chart = results.find("chart")
        for bar in list(chart):
            chart.remove(bar)
        for i, color in enumerate(bar_colors):
            ET.SubElement(chart, "bar", option_value=str(i), value="100", color=color)
        advice.write(os.path.join(work, "a.xml"))
        results.write(os.path.join(work, "r.xml"))

    table = [
        (["yellow", "green", "red"], True, 0, []),
        (["red", "red"], True, 1, ["every bar of the chart linked with errors"]),
        ([], True, 1, ["the chart holds no bar"]),
        (["green"], False, 1, ["the advice document holds no entry"]),
        ([], False, 1, ["the chart holds no bar", "the advice document holds no entry"]),
    ]
    for colors, entries, status, lines in table:
        documents(colors, entries)
        done = run("--check", "--json=out.json", "a.xml", "r.xml", cwd=work)
        check(done.returncode == status and
              done.stderr.splitlines() == ["advzorv-report: " + l for l in lines],
              "--check on %s: status %d, %r" % (colors, done.returncode, done.stderr))


def check_markdown_syntax_in_text(work, series):
    """Text that Markdown would read as syntax keeps a table row whole and
    shows as written."""
    results = ET.parse(os.path.join(series, "perf_results.xml"))
    results.find("chart/bar").set("option_value", "a|b<i>*x*")
    results.write(os.path.join(work, "r.xml"))
    advice = ET.parse(os.path.join(series, "advice.xml"))
    advice.getroot().findall("advice")[-1].text = "see <script>x</script> | `c` _u_\nnext"
    advice.write(os.path.join(work, "a.xml"))
    shown = run("--markdown", "a.xml", "r.xml", cwd=work).stdout
    rows = [l for l in shown.splitlines() if l.startswith("|")]
    cells = [len(re.split(r"(?<!\\)\|", row)) - 2 for row in rows]
    check(len(rows) == 8 and set(cells) == {4}, "table rows %s" % rows)
    check("<script>" not in shown and "a\\|b\\<i\\>\\*x\\*" in shown and "next" in shown,
          "Markdown of text with syntax:\n" + shown)


def check_refusals(work, series):
    """Swapped, foreign and missing inputs and outputs over inputs: status 2,
    a message naming the file, and every input left as it was."""
    for name in ("advice.xml", "perf_results.xml", "link_info.xml"):
        write(os.path.join(work, name), open(os.path.join(series, name)).read())
    foreign = glob.glob(os.path.join(cases, "*", "expected", "files", "advice.xml"))
    foreign = [f for f in foreign if not os.path.exists(os.path.join(os.path.dirname(f),
                                                                     "perf.xml"))]
    check(foreign, "no case expects a foreign document")
    for path in foreign:
        write(os.path.join(work, "foreign.xml"), open(path).read())
    refused = [
        (["perf_results.xml", "advice.xml"],
         "perf_results.xml is an advzorv results document, not the advice document"),
        (["advice.xml", "advice.xml"],
         "advice.xml is an advzorv advice document, not the results document"),
        (["foreign.xml", "perf_results.xml"], "foreign.xml is not a valid advice document"),
        (["advice.xml", "link_info.xml"], "link_info.xml is not a valid results document"),
        (["advice.xml", "missing.xml"], "missing.xml: No such file or directory"),
        (["--html", "advice.xml", "advice.xml", "perf_results.xml"], "over the input advice.xml"),
        (["--json=./perf_results.xml", "advice.xml", "perf_results.xml"], "over the input"),
        (["--markdown=-", "advice.xml", "perf_results.xml"], "not -"),
        (["--json", "--markdown", "advice.xml", "perf_results.xml"], "only one view"),
        (["--json=x", "--markdown=./x", "advice.xml", "perf_results.xml"], "the same file"),
        (["--color=sometimes", "advice.xml", "perf_results.xml"], "--color"),
        (["advice.xml", "perf_results.xml", "third.xml"], "see --help"),
        (["sizes", "advice.xml"], "advice.xml is not valid link information"),
        (["sizes", "--json=link_info.xml", "link_info.xml"], "over the input link_info.xml"),
        (["diff", "link_info.xml", "missing.xml"], "missing.xml"),
        (["diff", "link_info.xml", "foreign.xml"], "foreign.xml is not valid link information"),
        (["--check", "sizes", "link_info.xml"], "go without sizes and diff"),
        (["sizes"], "sizes expects one link information file"),
        (["diff", "link_info.xml"], "diff expects two link information files"),
    ]
    before = {n: open(os.path.join(work, n)).read() for n in os.listdir(work)}
    for args, message in refused:
        done = run(*args, cwd=work)
        check(done.returncode == 2 and message in done.stderr and not done.stdout,
              "%s: status %d, %r" % (args, done.returncode, done.stderr))
    after = {n: open(os.path.join(work, n)).read() for n in os.listdir(work)}
    check(after == before, "a refused run changed the files: %s" % sorted(set(after) ^ set(before)))
    done = run("--html", "page.xhtml", "--json=page.json", "--markdown", "advice.xml",
               "perf_results.xml", cwd=work)
    check(done.returncode == 0 and done.stdout.startswith("## ") and
          all(os.path.getsize(os.path.join(work, f)) for f in ("page.xhtml", "page.json")),
          "--html with --json and --markdown: %r" % done.stderr)
    os.rename(os.path.join(work, "advice.xml"), os.path.join(work, "--check"))
    done = run("--", "--check", "perf_results.xml", cwd=work)
    check(done.returncode == 0 and "Advice:" in done.stdout, "-- does not end the options")
    done = run("diff", "--help", cwd=work)
    check(done.returncode == 0 and "--fail-growth" in done.stdout, "diff --help")
    done = run("--version", cwd=work)
    check(done.returncode == 0 and re.fullmatch(r"advzorv-report \d+\.\d+\.\d+\n", done.stdout),
          "--version: %r" % done.stdout)


with tempfile.TemporaryDirectory(prefix="advzorv-ci-") as tmp:
    series = os.path.join(tmp, "series")
    subprocess.run(["bash", os.path.join(os.path.dirname(demo_link), "..", "play_series.sh"),
                    advzorv, series], check=True, capture_output=True)
    for group in (check_documents_json, check_sizes, check_diff):
        os.mkdir(os.path.join(tmp, group.__name__))
        group(os.path.join(tmp, group.__name__))
    for group in (check_gate_on_documents, check_markdown_syntax_in_text, check_refusals):
        os.mkdir(os.path.join(tmp, group.__name__))
        group(os.path.join(tmp, group.__name__), series)

print("\n".join(failures) or "ok")
sys.exit(1 if failures else 0)
