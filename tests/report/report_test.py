#!/usr/bin/env python3
"""advzorv-report on the documents of a whole benchmark series: the terminal
report, its colours, the HTML page as a browser builds it, and bad documents.

Usage: report_test.py ADVZORV ADVZORV_REPORT PLAY_SERIES [CHROMIUM]
"""
import html.parser
import os
import pty
import re
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


class Bars(html.parser.HTMLParser):
    """Each <g class="bar"> of a page: its class, rect attributes and texts by class."""

    def __init__(self):
        super().__init__()
        self.bars, self.text_class = [], None

    def handle_starttag(self, tag, attrs):
        attrs = dict(attrs)
        if tag == "g" and "bar" in attrs.get("class", "").split():
            self.bars.append({"class": attrs["class"], "texts": {}})
        elif tag == "rect" and self.bars:
            self.bars[-1]["rect"] = attrs
        elif tag == "text" and self.bars:
            self.text_class = attrs.get("class")

    def handle_data(self, data):
        if self.text_class:
            self.bars[-1]["texts"][self.text_class] = data
            self.text_class = None


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
    for env, coloured in (({}, True), ({"NO_COLOR": "1"}, False)):
        master, slave = pty.openpty()
        environment = {k: v for k, v in os.environ.items() if k != "NO_COLOR"}
        subprocess.run([report, "advice.xml", "perf_results.xml"], cwd=work, stdout=slave,
                       env={**environment, **env})
        os.close(slave)
        out = os.read(master, 65536).decode()
        os.close(master)
        check(("\x1b[32m" in out) == coloured, "colour on a terminal with %s" % env)


def check_page(work, bars):
    page = os.path.join(work, "report.html")
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
    parser = Bars()
    parser.feed(dom)
    shown = parser.bars
    check(len(shown) == len(bars), "%d bars in the browser's DOM, %d in the document"
          % (len(shown), len(bars)))
    tallest = max(float(bar["rect"]["height"]) for bar in shown) if shown else 0
    largest = max(value for _, value, _ in bars)
    for (key, value, color), bar in zip(bars, shown):
        height = float(bar["rect"]["height"])
        check(bar["rect"]["fill"] == color, "bar %s fill %s" % (key, bar["rect"]["fill"]))
        check(abs(height - tallest * value / largest) < 0.01, "bar %s height %s" % (key, height))
        check(bar["texts"].get("key") == key and bar["texts"].get("value") == str(value),
              "bar %s labels %s" % (key, bar["texts"]))
        check(("best" in bar["class"].split()) == (color == "green"), "best mark of " + key)


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
        check(done.returncode == 1 and message in done.stderr and not done.stdout,
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
