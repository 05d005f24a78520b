#!/usr/bin/env python3
"""advzorv-report's views for CI: JSON and Markdown of the documents, code size by section
against the bar advzorv records, two links compared with the size gate, the documents' gate,
what it refuses. Usage: ci_views_test.py ADVZORV ADVZORV_REPORT E2E_CASES DOC_DIR DEMO_LINK_INFO
"""
import glob, json, jsonschema, os, re, shutil, subprocess, sys, tempfile, time
import xml.etree.ElementTree as ET

from report_checks import CURRENT, STAMP, advzorv, bars_of, check, finish, meaning, run, write, \
    write_documents

cases, doc, demo_link = map(os.path.abspath, sys.argv[3:6])
TOMORROW = int(time.time()) + 86400  # a link time past the documents', so advzorv takes its bar


def check_valid(kind, got, what):
    schema = json.load(open(os.path.join(doc, "report_%s.schema.json" % kind)))
    errors = [e.message for e in jsonschema.Draft202012Validator(schema).iter_errors(got)]
    check(not errors, "%s: not valid against the %s schema: %s" % (what, kind, errors))


def check_documents_json():
    """Every pair of documents the end-to-end cases expect, as JSON and Markdown."""
    pairs = [os.path.dirname(f) for f in sorted(glob.glob(cases + "/*/expected/files/perf.xml"))]
    check(len(pairs) >= 3, "only %d pairs of documents among the cases" % len(pairs))
    for files in pairs:
        for name in ("advice.xml", "perf.xml"):
            write(name, open(os.path.join(files, name)).read().replace("@TIMESTAMP@", hex(STAMP)))
        case = files.split(os.sep)[-3]
        done = run("--json", "advice.xml", "perf.xml")
        check(done.returncode == 0, case + ": " + done.stderr)
        got = json.loads(done.stdout)
        check_valid("documents", got, case)
        bars = bars_of("perf.xml")
        check([(b["key"], b["code_size"], b["color"]) for b in got["chart"]["bars"]] == bars and
              got["best"] == next((k for k, _, c in bars if c == "green"), None), case + ": bars")
        entries = [(a.get("diag_code"), a.get("advice_type"), a.get("option"), a.get("value"),
                    " ".join(a.text.split()), a.get("action", ""))
                   for a in ET.parse("advice.xml").findall("advice")]
        check([(e["code"], e["type"], e["option"], e["value"], e["text"], e["action"])
               for e in got["advice"]] == entries, case + ": entries differ")
        check(got["timestamps"]["results"] == {"seconds": STAMP, "iso8601": time.strftime(
              "%Y-%m-%dT%H:%M:%SZ", time.gmtime(STAMP))},
              case + ": time stamp %s" % got["timestamps"])
        markdown = run("--markdown", "advice.xml", "perf.xml").stdout
        for key, value, color in bars:
            shown = re.escape(meaning(color).replace("best", "**best**"))
            check(re.search(r"^\| %s \| %d \| \u2588* \| %s \|$" % (re.escape(key), value, shown),
                            markdown, re.M), case + ": Markdown bar " + key)


def link_file(path, groups):
    """groups: (id, name, size, components: letters, upper case when uninitialized)."""
    text = ["<link_info><version>1</version><link_time>%#x</link_time><link_errors>0x0"
            "</link_errors><object_component_list>" % TOMORROW]
    text += ['<object_component id="%s"><uninitialized>%s</uninitialized></object_component>'
             % (c, str(c.isupper()).lower()) for c in dict.fromkeys("".join(g[3] for g in groups))]
    text.append("</object_component_list><logical_group_list>")
    text += ['<logical_group id="%s"><name>%s</name><size>%#x</size><contents>%s</contents>'
             "</logical_group>" % (gid, name, size, "".join(
                 '<object_component_ref idref="%s"/>' % c for c in ids))
             for gid, name, size, ids in groups]
    write(path, "".join(text) + "</logical_group_list></link_info>")


SIZE_CASES = [  # a link file or its groups, why each group doesn't count (None: it counts)
    ("demo", demo_link, {"lg-1": None, "lg-2": None, "lg-3": "uninitialized"}),
    ("generated", "generated.in", None),
    ("debug, uninitialized and empty groups", [
        ("g1", ".text", 5000, "a"), ("g2", ".debug_info", 700, "b"), ("g3", ".debugX", 11, "c"),
        ("g4", ".bss", 300, "D"), ("g5", ".empty", 99, ""), ("g6", ".mixed", 40, "Ef"),
        ("g7", ".debu", 8, "g")], {"g1": None, "g2": "debug", "g3": "debug", "g4": "uninitialized",
                                   "g5": "no components", "g6": "uninitialized", "g7": None}),
    ("sizes past 32 bits", [("a", ".text", 0xFFFFFF00, "a"), ("b", ".data", 0x200, "b")],
     {"a": None, "b": None}),
]


def check_sizes():
    """The sizes total is the bar advzorv records for the same link file."""
    write("options.cmd", "--opt_level=2 --opt_for_speed=3\n")
    bench = os.path.join(os.path.dirname(demo_link), "..", "..", "bench", "gen_link_info.py")
    subprocess.run([sys.executable, bench, "1", "generated.in"], check=True)  # real-shaped, 1 MB
    for name, source, reasons in SIZE_CASES:
        for stale in glob.glob("*.xml"):
            os.remove(stale)
        if isinstance(source, list):
            link_file("link_info.xml", source)
        else:
            write("link_info.xml", re.sub(r"<link_time>.*</link_time>", "<link_time>%#x</link_time>"
                                          % TOMORROW, open(source).read()))
        for event in ("start", "append"):
            subprocess.run([advzorv, "--advice_file=advice.xml", "--xml_link_info=link_info.xml",
                            "--benchmarks_file=perf_results.xml", "--benchmark:event=" + event,
                            "--linker_options_file=options.cmd", "--benchmark:option_value=1",
                            "--benchmark:option=--opt_for_speed"], capture_output=True)
        bar = ET.parse("perf_results.xml").find("chart/bar")
        bar = -1 if bar is None else int(bar.get("value"))
        done = run("sizes", "--json", "link_info.xml")
        got = json.loads(done.stdout) if done.returncode == 0 else {}
        check_valid("sizes", got, name)
        check(got.get("code_size") == bar, "%s: sum %s, bar %s" % (name, got.get("code_size"), bar))
        groups = got.get("groups", [])
        kinds, sizes = {g["id"]: g["why_not"] for g in groups}, [g["size"] for g in groups]
        check({None, "debug", "uninitialized"} <= set(kinds.values()) if reasons is None
              else kinds == reasons, "%s: reasons %s" % (name, groups))
        check(sizes == sorted(sizes, reverse=True) and sum(g["size"] for g in groups if g["counts"])
              % 2**32 == got.get("code_size"), name + ": not by size or not adding up: %s" % groups)


def check_diff():
    """Two generated links compared, and the size gate at its boundaries."""
    link_file("old.xml", [("1", ".text", 900, "a"), ("2", ".data", 100, "b"),
                          ("3", ".bss", 50, "C"), ("4", ".debug_info", 500, "d")])
    link_file("new.xml", [("1", ".text", 1060, "a"), ("2", ".data", 100, "b"),
                          ("3", ".bss", 80, "C"), ("9", ".rodata", 40, "e")])
    got = json.loads(run("diff", "--json", "old.xml", "new.xml").stdout)
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
    gates = [  # old code size 1000, new 1200 (20% more), swapped it shrinks; a line a failure
        (["--fail-over=1200"], 0, []),
        (["--fail-over=1199"], 1, ["1 byte over the budget of 1199 bytes"]),
        (["--fail-growth=20"], 0, []),
        (["--fail-growth=19.999999"], 1, ["grew by 200 bytes (20.00%), more than the allowed"]),
        (["--fail-over=0", "--fail-growth=0"], 1, ["budget of 0 bytes", "more than the allowed"]),
        (["--fail-growth=0", "new.xml", "old.xml"], 0, []),
        (["--fail-over=-1"], 2, ["--fail-over takes a number"]),
        (["--fail-growth=1.2345678"], 2, ["--fail-growth takes a percentage"]),
    ]
    for args, status, messages in gates:
        files = [] if args[-1].endswith(".xml") else ["old.xml", "new.xml"]
        done = run("diff", *args, *files)
        check(done.returncode == status and all(m in done.stderr for m in messages) and (status != 1
              or len([l for l in done.stderr.splitlines() if l]) == len(messages)), repr(done))


def check_gate_on_documents():
    """--check on documents that fail it in each way, and on good ones."""
    table = [  # bar colours, advice entries kept, status, messages
        (["yellow", "green", "red"], True, 0, []),
        (["red", "red"], True, 1, ["every bar of the chart linked with errors"]),
        ([], True, 1, ["the chart holds no bar"]),
        ([], False, 1, ["the chart holds no bar", "the advice document holds no entry"]),
    ]
    for colors, entries, status, lines in table:
        write_documents(".", [(k, 9, c) for k, c in zip("0123", colors)], [CURRENT] * entries)
        done = run("--check", "--json=out.json", "advice.xml", "perf_results.xml")
        check((done.returncode, done.stderr.splitlines()) ==
              (status, ["advzorv-report: " + l for l in lines]), "--check: %r" % done)


def check_markdown_syntax_in_text():
    """Text that Markdown would read as syntax keeps a table row whole and shows as written."""
    bars = [("a|b<i>*x*", 10, "green"), ("2", 5, "yellow"), ("3", 7, "red")]
    write_documents(".", bars, [CURRENT, ("27011", "build_results", "--opt_for_speed", "4",
                                           "see <script>x</script> | `c` _u_\nnext")])
    shown = run("--markdown", "advice.xml", "perf_results.xml").stdout
    cells = [len(re.split(r"(?<!\\)\|", l)) - 2 for l in shown.splitlines() if l.startswith("|")]
    check(cells == [4] * (len(bars) + 2), "table rows of %s" % shown)
    check("<script>" not in shown and "a\\|b\\<i\\>\\*x\\*" in shown and "next" in shown,
          "Markdown of text with syntax:\n" + shown)


def check_refusals():
    """Swapped, foreign and missing inputs and outputs over inputs: status 2,
    a message naming the file, and every input left as it was."""
    write_documents(".", [("0", 900, "green"), ("1", 950, "red")])
    link_file("link_info.xml", [("1", ".text", 900, "a")])
    foreign = [f for f in glob.glob(os.path.join(cases, "*", "expected", "files", "advice.xml"))
               if not os.path.exists(os.path.join(os.path.dirname(f), "perf.xml"))]
    shutil.copy(foreign[-1], "foreign.xml")  # an IndexError when no case expects one
    write("broken.xml", "<body><version>1</version")
    before = {n: open(n).read() for n in os.listdir()}
    for args, message in [
        (["perf_results.xml", "advice.xml"],
         "perf_results.xml is an advzorv results document, not the advice document"),
        (["advice.xml", "advice.xml"],
         "advice.xml is an advzorv advice document, not the results document"),
        (["foreign.xml", "perf_results.xml"], "foreign.xml is not a valid advice document"),
        (["advice.xml", "link_info.xml"], "link_info.xml is not a valid results document"),
        (["advice.xml", "missing.xml"], "missing.xml: No such file or directory"),
        (["advice.xml", "broken.xml"], "broken.xml is not an advzorv results document"),
        (["advice.xml"], "expects two documents"),
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
        (["--check", "sizes", "link_info.xml"], "go without sizes and diff"),
        (["sizes"], "sizes expects one link information file"),
        (["diff", "link_info.xml"], "diff expects two link information files"),
    ]:
        done = run(*args)
        check(done.returncode == 2 and message in done.stderr and not done.stdout, repr(done))
    after = {n: open(n).read() for n in os.listdir()}
    check(after == before, "a refused run changed the files: %s" % sorted(set(after) ^ set(before)))
    shutil.copy("advice.xml", "--check")
    accepted = [  # arguments, what the output starts with
        (["--html", "p.xhtml", "--json=j", "--markdown", "advice.xml", "perf_results.xml"], "## "),
        (["--", "--check", "perf_results.xml"], r"(?s).*Advice:"),
        (["diff", "--help"], r"(?s).*--fail-growth"),
        (["--version"], r"advzorv-report \d+\.\d+\.\d+\n\Z"),
    ]
    for args, shown in accepted:
        done = run(*args)
        check(done.returncode == 0 and re.match(shown, done.stdout), "%s: %r" % (args, done))
    check(all(os.path.getsize(f) for f in ("p.xhtml", "j")),
          "--html with --json and --markdown wrote nothing")


with tempfile.TemporaryDirectory(prefix="advzorv-ci-") as tmp:
    for group in (check_documents_json, check_sizes, check_diff, check_gate_on_documents,
                  check_markdown_syntax_in_text, check_refusals):
        os.mkdir(directory := os.path.join(tmp, group.__name__))
        os.chdir(directory)
        group()
finish()
