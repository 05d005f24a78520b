#!/usr/bin/env python3
"""advzorv-series end to end: each case plays a series of fake builds in a scratch directory.
Usage: series_test.py ADVZORV_SERIES ADVZORV FAKE_BUILD SCHEMA_DIR outcomes|stops"""
import json, os, shlex, shutil, signal, subprocess, sys, tempfile, time
import xml.etree.ElementTree as ET

series, advzorv, fake_build, schema_dir = map(os.path.abspath, sys.argv[1:5])
group = sys.argv[5]
FILES = ["--advice_file=advice.xml", "--benchmarks_file=perf_results.xml",
         "--xml_link_info=link_info.xml", "--linker_options_file=options.cmd"]
COMMAND = ["--", fake_build, "{value}", "{setting}", "opt={option}", "{other}{"]
failures = []


def check(ok, what):
    if not ok:
        failures.append(what)


def start(work, args, env):
    environment = {k: v for k, v in os.environ.items() if not k.startswith("FAKE_")}
    return subprocess.Popen([series, "--advzorv=" + advzorv, *args, *FILES, *COMMAND], cwd=work,
                            env={**environment, "CI": "1", **env}, text=True,
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE)


def chart(work):
    """The bars as {key: colour}, or None when there is no results document."""
    path = os.path.join(work, "perf_results.xml")
    return {bar.get("option_value"): bar.get("color") for bar in
            ET.parse(path).find("chart")} if os.path.exists(path) else None


def recommended(work):
    path = os.path.join(work, "advice.xml")
    return [(a.get("diag_code"), a.get("value")) for a in (ET.parse(path).findall(
        "advice") if os.path.exists(path) else []) if a.get("advice_type") == "build_results"]


def builds(work):
    path = os.path.join(work, "fake_build.record")
    return open(path).read().splitlines() if os.path.exists(path) else []


def check_documents_valid(name, work):
    for document in ("advice", "perf_results") if shutil.which("xmllint") else ():
        path = os.path.join(work, document + ".xml")
        lint = subprocess.run(["xmllint", "--noout", "--schema", os.path.join(
            schema_dir, document + ".xsd"), path], capture_output=True, text=True)
        check(not os.path.exists(path) or lint.returncode == 0,
              "%s: %s is not valid: %s" % (name, document, lint.stderr))


def record_line(value, option="--opt_for_speed"):
    setting = "%s=%s" % (option, value)
    return "%s %s opt=%s {other}{|%s|%s|%s" % (value, setting, option, value, option, setting)


Y, G, R, C = "yellow", "green", "red", "cyan"
SPEED = ["0", "1", "2", "3", "4", "5"]


def no_bar_at_2(name, env, *messages):
    """The build at 2 gives no bar: the series stops there, or kept going builds 3 as well."""
    args = ["--option=--opt_for_speed", "--values=0,1,2,3"]
    return [(name, args, env, 1, list(messages), {"0": Y, "1": G}, SPEED[:3], [], []),
            (name + ", keep going", args + ["--keep-going"], env, 1,
             [*messages, "the chart holds no bar for --opt_for_speed=2"], {"0": Y, "1": Y, "3": G},
             SPEED[:4], [], [])]


def refused(name, args, message, status=1):
    return (name, args, {}, status, [message], None, [], [], [])


# name, arguments, environment, status, messages (in stderr), bars (None: no
# document), values built, build_results advice [(code, value)], shown (in stdout)
OUTCOMES = [
    ("the table's values of --opt_for_speed, one bar each, best green",
     ["--option=--opt_for_speed", "--html=page.xhtml", "--export-json=series.json",
      "--export-markdown=series.md"], {"FAKE_RED": "5"}, 0,
     ["[6/6] --opt_for_speed=5"], dict(zip(SPEED, [Y, Y, Y, Y, G, R])), SPEED,
     [("27011", "4")], ["27011", "recommends --opt_for_speed=4", "best"]),
    ("-O varies --opt_level over the table's words", ["--option=-O"], {}, 0, [],
     dict.fromkeys(["off", "0", "1", "2", "3", "4"], C), ["off", "0", "1", "2", "3", "4"], [],
     ["Vary Optimization Level"]),
    *no_bar_at_2("a failed build", {"FAKE_FAIL": "2"}, "fake build failed at 2",
                 "the build at --opt_for_speed=2 failed with status 2"),
    *no_bar_at_2("a link file the build left alone", {"FAKE_STALE": "2"},
                 "link_info.xml was not rewritten by the build at --opt_for_speed=2"),
    *no_bar_at_2("a link file that isn't XML", {"FAKE_GARBAGE": "2"},
                 "link_info.xml from the build at --opt_for_speed=2 is not well-formed link "
                 "information"),
    ("no link file at all", ["--option=--opt_for_speed", "--values=0,1"], {"FAKE_STALE": "0"}, 1,
     ["link_info.xml was not written by the build at --opt_for_speed=0: no bar"], {}, ["0"], [],
     []),
    ("a link older than the results document", ["--option=--opt_for_speed", "--values=0,1"],
     {"FAKE_OLD": "1"}, 1,
     ["link_info.xml was not rewritten by the build at --opt_for_speed=1 (link time 0x10 is "
      "older than the results document's 0x"], {"0": G}, ["0", "1"], [], []),
    ("a link with nothing to count", ["--option=--opt_for_speed", "--values=0,1"],
     {"FAKE_EMPTY": "1"}, 1, ["from the build at --opt_for_speed=1 gives a code size of 0"],
     {"0": G}, ["0", "1"], [], []),
    ("a series kept going ends though its last build gives no bar",
     ["--option=--opt_for_speed", "--values=0,1,2", "--keep-going"],
     {"FAKE_GARBAGE": "2", "FAKE_OPTIONS": "--opt_for_speed=0"}, 1,
     ["the chart holds no bar for --opt_for_speed=2"], {"0": Y, "1": G}, ["0", "1", "2"],
     [("27011", "1")], []),
    refused("a value the table refuses", ["--option=--opt_for_speed", "--values=0,6"],
            "argument to option --opt_for_speed (0-5) is out of range"),
    refused("a value given twice", ["--option=--opt_for_speed", "--values=1,2,1"],
            "value 1 of --opt_for_speed is given twice"),
    refused("an option the table doesn't know", ["--option=--fastest"],
            "--fastest is no option of the compiler shell"),
    refused("an option of the series it doesn't know, as usage",
            ["--option=--opt_for_speed", "--fast"], "not expected: -- --fast", status=2),
]


def check_outcomes():
    for (name, args, env, status, messages, bars, values, advice, shown) in OUTCOMES:
        with tempfile.TemporaryDirectory(prefix="advzorv-series-") as work:
            run = start(work, args, env)
            out, err = run.communicate(timeout=120)
            check(run.returncode == status, "%s: status %d\n%s" % (name, run.returncode, err))
            check(all(m in err for m in messages), "%s: %r? stderr:\n%s" % (name, messages, err))
            check(chart(work) == bars, "%s: chart %s" % (name, chart(work)))
            option = {"-O": "--opt_level"}.get(args[0][len("--option="):], "--opt_for_speed")
            check(builds(work) == [record_line(v, option) for v in values],
                  "%s: builds %s" % (name, builds(work)))
            check(recommended(work) == advice, "%s: advice %s" % (name, recommended(work)))
            check(all(t in out for t in shown), "%s: %r? stdout:\n%s" % (name, shown, out))
            check_exports(name, work, args)
            check_documents_valid(name, work)


def check_exports(name, work, args):
    """The views asked for hold the chart that the results document holds."""
    files = dict(arg[2:].split("=", 1) for arg in args if "=" in arg)
    bars = chart(work)
    if "html" in files:
        ET.parse(os.path.join(work, files["html"]))  # well-formed XHTML
    if "export-json" in files:
        exported = json.load(open(os.path.join(work, files["export-json"])))
        shown = {bar["key"]: bar["color"] for bar in exported["chart"]["bars"]}
        check(shown == bars, "%s: JSON bars %s" % (name, shown))
        check(exported["best"] == next((k for k, c in bars.items() if c == G), ""),
              "%s: JSON best %r" % (name, exported["best"]))
    if "export-markdown" in files:
        rows = [row for row in open(os.path.join(work, files["export-markdown"]))
                if row.startswith("| ")]
        for key in bars:
            check(any(row.startswith("| %s | " % key) for row in rows),
                  "%s: no Markdown row of bar %s" % (name, key))


# How progress is shown: live on a terminal (script(1) gives one), plain in a
# log or under CI. name, on a terminal, environment, wanted, unwanted (in stderr)
PROGRESS = [
    ("terminal", True, {}, ["\x1b[K[2/3] --opt_for_speed=1  ", " to go"], []),
    ("terminal under CI", True, {"CI": "1"}, ["[3/3] --opt_for_speed=2  "], ["\x1b"]),
    ("log", False, {}, ["[1/3] --opt_for_speed=0  ", "built\n[2/3]"], ["\r", "\x1b"]),
]


def check_progress():
    command = [series, "--advzorv=" + advzorv, "--option=--opt_for_speed", "--values=0,1,2",
               *FILES, *COMMAND]
    for name, on_terminal, env, wanted, unwanted in PROGRESS:
        environment = {k: v for k, v in os.environ.items() if k != "CI"}
        with tempfile.TemporaryDirectory(prefix="advzorv-series-") as work:
            line = " ".join(shlex.quote(word) for word in command) + " 2>&1 >/dev/null"
            shown = subprocess.run(["script", "-qec", line, "/dev/null"] if on_terminal else
                                   ["sh", "-c", line], cwd=work, env={**environment, **env},
                                   capture_output=True, text=True).stdout
            for text in wanted + unwanted:
                check((text in shown) == (text in wanted),
                      "progress on a %s: %r (un)wanted in %r" % (name, text, shown))


def live_processes_of_group(pgid):
    found = []
    for pid in filter(str.isdigit, os.listdir("/proc")):
        try:
            state, _, group = open("/proc/%s/stat" % pid).read().rsplit(")", 1)[1].split()[:3]
            found += [pid] if state != "Z" and int(group) == pgid else []
        except OSError:
            pass
    return found


# A stop during the third build: that build and everything it started ends,
# nothing is recorded for it, the documents stay whole.
STOPS = [(signal.SIGINT, 130, "SIGINT"), (signal.SIGTERM, 143, "SIGTERM")]


def check_stops():
    for sig, status, name in STOPS:
        with tempfile.TemporaryDirectory(prefix="advzorv-series-") as work:
            run = start(work, ["--option=--opt_for_speed"], {"FAKE_SLEEP": "2"})
            pid_file, deadline = os.path.join(work, "fake_build.pid"), time.monotonic() + 60
            while not os.path.exists(pid_file) and time.monotonic() < deadline:
                time.sleep(0.05)
            time.sleep(0.05)  # the pid is written before the shell sleeps
            if not os.path.exists(pid_file):
                run.kill()  # the third build never started: reading the pid fails the test
            build_pid = int(open(pid_file).read())
            run.send_signal(sig)
            sent = time.monotonic()
            _, err = run.communicate(timeout=30)
            took = time.monotonic() - sent
            check(took < 5, "%s: the series took %.1f s to stop" % (name, took))
            check(run.returncode == status, "%s: status %d\n%s" % (name, run.returncode, err))
            check("stopped by %s; recorded --opt_for_speed=0, 1" % name in err, name + ": " + err)
            check(chart(work) == {"0": Y, "1": G}, "%s: chart %s" % (name, chart(work)))
            check(len(builds(work)) == 3, "%s: builds %s" % (name, builds(work)))
            check(not live_processes_of_group(build_pid), "%s: the build's processes live on: %s"
                  % (name, live_processes_of_group(build_pid)))
            check(os.listdir(work).count("advice.xml") == 1 and
                  not [f for f in os.listdir(work) if ".advzorv-new" in f],
                  "%s: files %s" % (name, os.listdir(work)))
            check_documents_valid(name, work)


{"outcomes": lambda: (check_outcomes(), check_progress()), "stops": check_stops}[group]()
print("\n".join(failures) or "ok")
sys.exit(1 if failures else 0)
