#!/usr/bin/env python3
"""advzorv-report on a benchmark series and on documents made here (30 long keys, an empty
chart, builds that all failed, odd keys): the terminal report, its colours, the HTML page in a
browser. Usage: report_test.py ADVZORV ADVZORV_REPORT PLAY_SERIES [CHROMIUM NODE]
Set ADVZORV_SCREENSHOTS to a directory to keep screenshots of the pages."""
import json, os, shlex, subprocess, sys, tempfile, time, unicodedata
import xml.etree.ElementTree as ET

from report_checks import CURRENT, STAMP, advzorv, bars_of, check, finish, meaning, report, run, \
    write_documents

chromium, node = (sys.argv[4:6] + ["", ""])[:2]
here = os.path.dirname(os.path.abspath(__file__))
STAMP_TEXT = time.strftime("%Y-%m-%d %H:%M:%S UTC", time.gmtime(STAMP))  # the report runs in UTC
HEAD = ["Advice document written:  " + STAMP_TEXT, "Results document written: " + STAMP_TEXT, "",
        "Current settings:", "  --opt_level      2", "  --opt_for_speed  2"]
CHART = "Vary Size vs Speed Setting (--opt_for_speed), Code Size (bytes):"  # labels read back
TUNED = ("advice #27011-D: Tunewise completed and best results were obtained with speed vs size "
         "setting %s (--opt_for_speed=%s).")


def tuned(value):
    return ("27011", "build_results", "--opt_for_speed", value, TUNED % (value, value))


def numeric_order(bars):
    numeric = all(k.lstrip("+-").replace(".", "", 1).isdigit() for k, _, _ in bars)
    bars = sorted(bars, key=lambda b: b[0].encode())
    return sorted(bars, key=lambda b: float(b[0])) if numeric else bars


def check_terminal(work):
    best = "Best: the largest code size among the builds whose link reported no errors."
    cases = [  # bars, the lines under them
        ([("0", 300, "yellow"), ("10", 900, "green"), ("2", 500, "yellow")], [best]),
        ([("b", 300, "yellow"), ("a", 900, "red")], [best]),
        ([(k, 10, "yellow") for k in ("2", "10", "-1", "1.5", "02", "+3")], [best]),  # ties: text
        ([], ["  No bars: the chart holds no build yet.", best]),
        ([("1", 20, "red"), ("3", 40, "red")],
         ["  Every build of this series linked with errors, so none is the best.", best]),
    ]
    for bars, tail in cases:
        write_documents(work, bars)
        done = run("advice.xml", "perf_results.xml", cwd=work, env={"COLUMNS": "80"})
        lines = done.stdout.splitlines()
        width = max([len(k) for k, _, _ in bars], default=0)
        largest = max([v for _, v, _ in bars], default=1)
        expected = ["  %-*s  %-40s %10d  %s" % (width, k, "#" * (v * 40 // largest), v, meaning(c))
                    for k, v, c in numeric_order(bars)]
        check(done.returncode == 0 and "\x1b" not in done.stdout and lines[:6] == HEAD and
              lines[-len(expected) - len(tail) - 1:] == [CHART] + expected + tail,
              "report of %s:\n%s" % (bars, done.stdout))

    # Keys line up by the columns a terminal gives them, not by bytes.
    write_documents(work, [("é", 10, "yellow"), ("日本", 20, "green"), ("ab", 5, "yellow"),
                           ("e\u0301\u0301", 7, "red"), ("🚀", 8, "yellow")])
    shown = run("advice.xml", "perf_results.xml", cwd=work).stdout.splitlines()
    starts = {sum(0 if unicodedata.combining(c) else 1 + (unicodedata.east_asian_width(c) in "WF")
                  for c in line[:line.index("#")]) for line in shown if "#" in line}
    check(len(starts) == 1, "unaligned keys:\n" + "\n".join(shown))

    # Advice wraps at COLUMNS, between words only.
    write_documents(work, [], [CURRENT, tuned("4")])
    for columns in ("30", "50", "200"):
        shown = run("advice.xml", "perf_results.xml", cwd=work, env={"COLUMNS": columns}).stdout
        block = shown.split("Advice:\n")[1].split("\n\n")[0].splitlines()
        check(max(map(len, block)) <= max(int(columns), 29) and
              " ".join(" ".join(block).split()) == "27011 " + TUNED % (4, 4) +
              " recommends --opt_for_speed=4", "advice at %s columns:\n%s" % (columns, shown))


def check_colour(work):
    environment = {k: v for k, v in os.environ.items() if k not in ("NO_COLOR", "TERM")}
    table = [  # --color, environment, on a terminal, coloured
        ([], {"TERM": "xterm"}, True, True),
        ([], {"TERM": "xterm", "NO_COLOR": "1"}, True, False),
        ([], {"TERM": "dumb"}, True, False),
        (["--color=never"], {"TERM": "xterm"}, True, False),
        (["--color=always"], {"TERM": "dumb", "NO_COLOR": "1"}, False, True),
        (["--color=auto"], {"TERM": "xterm"}, False, False),
    ]
    for option, env, terminal, coloured in table:
        command = [report, *option, "advice.xml", "perf_results.xml"]
        if terminal:  # script(1) gives the report a terminal
            command = ["script", "-qec", " ".join(map(shlex.quote, command)), "/dev/null"]
        shown = subprocess.run(command, cwd=work, capture_output=True, text=True,
                               env={**environment, **env}).stdout
        check(("\x1b[32m" in shown) == coloured, "colour: %s" % [option, env, terminal])


def make_page(work, name, bars):
    """The page (.xhtml: parsed as XML), well-formed, every bar in its data table in order."""
    page = os.path.join(work, name + ".xhtml")
    done = run("--html", page, "advice.xml", "perf_results.xml", cwd=work)
    lint = subprocess.run(["xmllint", "--noout", page], capture_output=True, text=True)
    check(done.returncode == 0 and lint.returncode == 0, "--html: " + done.stderr + lint.stderr)
    x = "{http://www.w3.org/1999/xhtml}"
    tables = [t for t in ET.parse(page).iter(x + "table")
              if t.find(x + "caption").text.endswith("the bars as data")]
    rows = [[cell.text for cell in row] for t in tables for row in t.iter(x + "tr")][1:]
    check(rows == [[k, str(v), meaning(c)] for k, v, c in numeric_order(bars)],
          "data table of %s: %s" % (page, rows))
    return page


def check_pages(work, series_bars):
    long_keys = [("build %02d" % n + " with a longer name than a chart has room for" * 2,
                  20000 + 997 * n, {7: "red", 12: "green", 21: "red"}.get(n, "yellow"))
                 for n in range(30)]
    made = {"example": make_page(work, "example", series_bars)}
    made_here = {"long": (long_keys,), "empty": ([],), "errors": (
        [("0", 900, "red"), ("1", 950, "red"), ("2", 990, "red")], [CURRENT, tuned("")])}
    for name, documents in made_here.items():
        write_documents(os.path.join(work, name), *documents)
        made[name] = make_page(os.path.join(work, name), name, documents[0])
    if not (chromium and node and os.path.isdir(os.path.join(here, "node_modules"))):
        print("no chromium, node or tests/report/node_modules: no browser checks (see setup.sh)")
        return
    done = subprocess.run([node, os.path.join(here, "browser_check.js"), chromium, os.environ.get(
                           "ADVZORV_SCREENSHOTS", "-"), *made.values()], capture_output=True,
                          text=True, timeout=600,
                          env={**os.environ, "NODE_PATH": os.path.join(here, "node_modules")})
    check(done.returncode == 0, "browser check: " + done.stderr)
    results = json.loads(done.stdout or "{}")
    for name, page in made.items():
        check(len(results.get(page, {})) == 2, "no browser results for " + name)
        for width, found in results.get(page, {}).items():  # axe-core, layout, fills, focused key
            check([found[f] for f in ("violations", "outside", "low_contrast")] == [[], [], []] and
                  found["shortened"] in (None, {"full_on_focus": True}),
                  "%s at %s px: %s" % (name, width, found))
    check(results[made["long"]]["360"]["shortened"] is not None, "long keys are not shortened")


with tempfile.TemporaryDirectory(prefix="advzorv-report-") as work:
    subprocess.run(["bash", sys.argv[3], advzorv, work], check=True, capture_output=True)
    bars = bars_of(os.path.join(work, "perf_results.xml"))
    check(len(bars) == 6 and any(c == "green" for _, _, c in bars), "series: %s" % bars)
    check_colour(work)
    check_pages(work, bars)
    check_terminal(os.path.join(work, "made"))
finish()
