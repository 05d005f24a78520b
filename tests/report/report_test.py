#!/usr/bin/env python3
"""advzorv-report on the documents of a whole benchmark series: the terminal
report, its colours, the HTML page as a browser builds it, and bad documents.

Usage: report_test.py ADVZORV ADVZORV_REPORT PLAY_SERIES [CHROMIUM]
"""
import os
import shlex
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ET

advzorv, report, play_series = map(os.path.abspath, sys.argv[1:4])
chromium = sys.argv[4] if len(sys.argv) > 4 else ""
failures = []


def check(ok, what):
    if not ok:
        failures.append(what)


def run(*args, **kw):
    return subprocess.run([report, *args], capture_output=True, text=True, **kw)


def check_terminal(work, bars, entries):
    done = run("advice.xml", "perf_results.xml", cwd=work)
    check(done.returncode == 0 and "\x1b" not in done.stdout, "plain report: " + done.stderr)
    lines = done.stdout.splitlines()
    largest = max(value for _, value, _ in bars)
    for key, value, color in bars:
        meaning = {"green": "best", "red": "error"}.get(color, "other")
        line = "  %s  %-40s %10d  %s" % (key, "#" * (value * 40 // largest), value, meaning)
        check(line in lines, "no chart line %r in\n%s" % (line, done.stdout))
    for code, advice in entries:
        text = " ".join(advice.text.split())  # as the reader trims it
        if advice.get("advice_type") == "curr_setting":
            check("  " + text in lines, "settings missing")
            continue
        check("  %s  %s" % (code, text) in lines, "entry %s missing" % code)
        wanted = "recommends %s=%s" % (advice.get("option"), advice.get("value"))
        check(wanted in done.stdout, wanted + " missing")


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
        check(("\x1b[32m" in shown) == coloured,
              "colour %s with %s, terminal %s" % (option, env, terminal))


def check_page(work, bars):
    page = os.path.join(work, "report.xhtml")  # the browser parses it as XML
    check(run("--html", page, "advice.xml", "perf_results.xml", cwd=work).returncode == 0,
          "--html failed")
    lint = subprocess.run(["xmllint", "--noout", page], capture_output=True, text=True)
    check(lint.returncode == 0, "page is not well-formed XML: " + lint.stderr)
    if not chromium:
        print("chromium not found: the page is not checked in a browser")
        return
    with tempfile.TemporaryDirectory() as profile:
        dom = subprocess.run(
            [chromium, "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
             "--no-first-run", "--disable-background-networking", "--disable-component-update",
             "--disable-sync", "--user-data-dir=" + profile, "--dump-dom", "file://" + page],
            capture_output=True, text=True, timeout=120).stdout
    svg = "{http://www.w3.org/2000/svg}"
    shown = [g for g in ET.fromstring(dom).iter(svg + "g") if "bar" in g.get("class").split()]
    check(len(shown) == len(bars), "%d bars in the browser, %d in the document"
          % (len(shown), len(bars)))
    heights = [float(g.find(svg + "rect").get("height")) for g in shown]
    largest = max(value for _, value, _ in bars)
    for (key, value, color), group, height in zip(bars, shown, heights):
        labels = {text.get("class"): text.text for text in group.iter(svg + "text")}
        check(group.find(svg + "rect").get("fill") == color, "fill of bar " + key)
        check(abs(height - max(heights) * value / largest) < 0.01, "height of bar " + key)
        check(labels.get("key") == key and labels.get("value") == str(value), str(labels))
        check(("best" in group.get("class").split()) == (color == "green"), "best mark " + key)


def check_bad_documents(work):
    with open(os.path.join(work, "broken.xml"), "w") as f:
        f.write("<body><version>1</version")
    cases = [
        (["missing.xml", "perf_results.xml"], "missing.xml: No such file or directory"),
        (["advice.xml", "broken.xml"], "broken.xml is not an advzorv results document"),
        (["advice.xml"], "expects two documents"),
    ]
    for args, message in cases:
        done = run(*args, cwd=work)
        check(done.returncode == 2 and message in done.stderr and not done.stdout,
              "%s: status %d, %r" % (args, done.returncode, done.stderr))


with tempfile.TemporaryDirectory(prefix="advzorv-report-") as work:
    subprocess.run(["bash", play_series, advzorv, work], check=True, capture_output=True)
    chart = ET.parse(os.path.join(work, "perf_results.xml")).find("chart")
    bars = [(b.get("option_value"), int(b.get("value")), b.get("color")) for b in chart]
    entries = [(a.get("diag_code"), a) for a in ET.parse(os.path.join(work, "advice.xml"))
               .findall("advice")]
    check(len(bars) == 6 and any(c == "green" for _, _, c in bars), "series: %s" % bars)
    check_terminal(work, bars, entries)
    check_colour(work)
    check_page(work, bars)
    check_bad_documents(work)

print("\n".join(failures) or "ok")
sys.exit(1 if failures else 0)
