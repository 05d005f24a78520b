"""What the report tests share: advzorv and advzorv-report (the first two arguments), runs."""
import os, pathlib, subprocess, sys
import xml.etree.ElementTree as ET
from xml.sax.saxutils import escape, quoteattr

advzorv, report = map(os.path.abspath, sys.argv[1:3])
failures = []
STAMP = 0x6900a1b2
CURRENT = ("00000", "curr_setting", "", "",
           "advice: Current optimization/debug settings:  --opt_level=2  --opt_for_speed=2")


def check(ok, what):
    if not ok:
        failures.append(what)


def run(*args, cwd=None, env=None):
    return subprocess.run([report, *args], capture_output=True, text=True, cwd=cwd,
                          env={**os.environ, "TZ": "UTC", **(env or {})})


def write(path, text):
    pathlib.Path(path).write_text(text)


def write_documents(work, bars, advice=(CURRENT,)):
    """An advice and a results document as advzorv writes them."""
    os.makedirs(work, exist_ok=True)
    head = "<body><version>1</version><timestamp>%#x</timestamp>" % STAMP
    write(os.path.join(work, "advice.xml"), head + "".join(
        '<advice diag_code="%s" advice_type="%s" option="%s" value="%s">%s</advice>'
        % (*entry[:4], escape(entry[4])) for entry in advice) + "</body>")
    write(os.path.join(work, "perf_results.xml"), head + '<chart option="--opt_for_speed" title='
          '"Vary Size vs Speed Setting" valueLabel="Code Size (bytes)">%s</chart></body>' % "".join(
              '<bar option_value=%s value="%d" color="%s"/>' % (quoteattr(k), v, c)
              for k, v, c in bars))


def bars_of(results):
    return [(b.get("option_value"), int(b.get("value")), b.get("color"))
            for b in ET.parse(results).find("chart")]


def meaning(color):
    return {"green": "best", "red": "error"}.get(color, "other")


def finish():
    print("\n".join(failures) or "ok")
    sys.exit(1 if failures else 0)
