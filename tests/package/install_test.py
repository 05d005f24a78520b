#!/usr/bin/env python3
"""Installs the build into a temporary prefix and packs it as a Debian package;
both must hold the programs, man pages and schemas (XML and JSON). The installed advzorv plays
a benchmark series whose documents must validate against the installed schemas
and be readable by the installed advzorv-report; the man page must list the
options --help lists.

Usage: install_test.py BUILD_DIR PLAY_SERIES
"""
import glob
import os
import re
import subprocess
import sys
import tempfile

build, play_series = map(os.path.abspath, sys.argv[1:3])
FILES = {"bin/advzorv", "bin/advzorv-report", "share/man/man1/advzorv.1",
         "share/man/man1/advzorv-report.1", "share/advzorv/advice.xsd",
         "share/advzorv/perf_results.xsd", "share/advzorv/report_documents.schema.json",
         "share/advzorv/report_sizes.schema.json", "share/advzorv/report_diff.schema.json"}
failures = []


def run(*args, **kw):
    done = subprocess.run(args, capture_output=True, text=True, **kw)
    if done.returncode != 0:
        failures.append("%s: status %d\n%s%s" % (" ".join(args), done.returncode, done.stdout,
                                                 done.stderr))
    return done.stdout


def long_options(text):
    return set(re.findall(r"--[a-z_:]+(?==|\b)", text))


with tempfile.TemporaryDirectory(prefix="advzorv-install-") as tmp:
    prefix = os.path.join(tmp, "prefix")
    run("cmake", "--install", build, "--prefix", prefix)
    installed = {os.path.relpath(os.path.join(root, name), prefix)
                 for root, _, names in os.walk(prefix) for name in names}
    if installed != FILES:
        failures.append("installed %s" % sorted(installed))

    work = os.path.join(tmp, "series")
    run("bash", play_series, os.path.join(prefix, "bin/advzorv"), work)
    for document, schema in (("advice.xml", "advice.xsd"), ("perf_results.xml",
                                                            "perf_results.xsd")):
        run("xmllint", "--noout", "--schema", os.path.join(prefix, "share/advzorv", schema),
            os.path.join(work, document))
    run(os.path.join(prefix, "bin/advzorv-report"), "advice.xml", "perf_results.xml", cwd=work)
    run(os.path.join(prefix, "bin/advzorv-report"), "--check", "--json=report.json",
        "advice.xml", "perf_results.xml", cwd=work)
    run(sys.executable, "-c", "import json, sys, jsonschema; jsonschema.validate("
        "json.load(open(sys.argv[1])), json.load(open(sys.argv[2])))",
        os.path.join(work, "report.json"),
        os.path.join(prefix, "share/advzorv/report_documents.schema.json"))

    shown = subprocess.run([os.path.join(prefix, "bin/advzorv"), "--help"],
                           capture_output=True, text=True).stdout
    listed = [line for line in shown.splitlines() if line.startswith("  -")]
    with open(os.path.join(prefix, "share/man/man1/advzorv.1")) as page:
        options = page.read().split(".SH OPTIONS")[1].split(".SH")[0].replace("\\-", "-")
    if long_options("\n".join(listed)) != long_options(re.sub(r"^[^\\].*$", "", options,
                                                              flags=re.M)):
        failures.append("man page OPTIONS differ from --help:\n" + options)

    run("cpack", "-G", "DEB", "--config", os.path.join(build, "CPackConfig.cmake"), "-B",
        os.path.join(tmp, "deb"))
    packages = glob.glob(os.path.join(tmp, "deb", "*.deb"))
    contents = run("dpkg-deb", "-c", *packages[:1]) if packages else ""
    packed = {line.split()[-1][len("./usr/"):] for line in contents.splitlines()
              if not line.startswith("d")}
    if packed != FILES:
        failures.append("the Debian package holds %s" % sorted(packed))

print("\n".join(failures) or "ok")
sys.exit(1 if failures else 0)
