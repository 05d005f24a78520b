#!/usr/bin/env python3
"""Installs the build into a temporary prefix and packs it as a Debian package; both must hold
the programs, man pages, schemas, copyright file and changelog. The installed advzorv-series
plays a series with the installed advzorv; its documents must validate against the installed
schemas and be readable by the installed advzorv-report; the man page must list the options
--help lists. With LINTIAN, lintian must find nothing, not even a pedantic or informational tag.
Usage: install_test.py BUILD_DIR PLAY_SERIES [LINTIAN]"""
import glob, gzip, os, re, subprocess, sys, tempfile

build, play_series = map(os.path.abspath, sys.argv[1:3])
lintian = sys.argv[3] if len(sys.argv) > 3 else ""
FILES = {"bin/advzorv", "bin/advzorv-report", "bin/advzorv-series",
         "share/man/man1/advzorv.1.gz", "share/man/man1/advzorv-report.1.gz",
         "share/man/man1/advzorv-series.1.gz", "share/advzorv/advice.xsd",
         "share/advzorv/perf_results.xsd", "share/advzorv/report_documents.schema.json",
         "share/advzorv/report_sizes.schema.json", "share/advzorv/report_diff.schema.json",
         "share/doc/advzorv/changelog.gz", "share/doc/advzorv/copyright"}
failures = []


def check(ok, what):
    if not ok:
        failures.append(what)


def run(*args, **kw):
    done = subprocess.run(args, capture_output=True, text=True, **kw)
    check(done.returncode == 0, "%s: status %d\n%s%s" % (" ".join(args), done.returncode,
                                                          done.stdout, done.stderr))
    return done.stdout


def long_options(text):
    return set(re.findall(r"--[a-z_:]+(?==|\b)", text))


with tempfile.TemporaryDirectory(prefix="advzorv-install-") as tmp:
    prefix = os.path.join(tmp, "prefix")
    run("cmake", "--install", build, "--prefix", prefix)
    installed = {os.path.relpath(os.path.join(root, name), prefix)
                 for root, _, names in os.walk(prefix) for name in names}
    check(installed == FILES, "installed %s" % sorted(installed))

    work = os.path.join(tmp, "series")
    environment = {k: v for k, v in os.environ.items() if k != "ADVZORV_SERIES"}
    run("bash", play_series, os.path.join(prefix, "bin/advzorv"), work, env=environment)
    for document, schema in (("advice.xml", "advice.xsd"), ("perf_results.xml",
                                                            "perf_results.xsd")):
        run("xmllint", "--noout", "--schema", os.path.join(prefix, "share/advzorv", schema),
            os.path.join(work, document))
    run(os.path.join(prefix, "bin/advzorv-report"), "--check", "--json=report.json",
        "advice.xml", "perf_results.xml", cwd=work)
    run(sys.executable, "-c", "import json, sys, jsonschema; jsonschema.validate("
        "json.load(open(sys.argv[1])), json.load(open(sys.argv[2])))",
        os.path.join(work, "report.json"),
        os.path.join(prefix, "share/advzorv/report_documents.schema.json"))

    shown = subprocess.run([os.path.join(prefix, "bin/advzorv"), "--help"],
                           capture_output=True, text=True).stdout
    listed = [line for line in shown.splitlines() if line.startswith("  -")]
    with gzip.open(os.path.join(prefix, "share/man/man1/advzorv.1.gz"), "rt") as page:
        options = page.read().split(".SH OPTIONS")[1].split(".SH")[0].replace("\\-", "-")
    check(long_options("\n".join(listed)) == long_options(re.sub(r"^[^\\].*$", "", options,
                                                                  flags=re.M)),
          "man page OPTIONS differ from --help:\n" + options)

    run("cpack", "-G", "DEB", "--config", os.path.join(build, "CPackConfig.cmake"), "-B",
        os.path.join(tmp, "deb"))
    packages = glob.glob(os.path.join(tmp, "deb", "*.deb"))
    contents = run("dpkg-deb", "-c", *packages[:1]) if packages else ""
    packed = {line.split()[-1][len("./usr/"):] for line in contents.splitlines()
              if not line.startswith("d")}
    check(packed == FILES, "the Debian package holds %s" % sorted(packed))
    tags = run(lintian, "--pedantic", "--display-info", *packages[:1]) if lintian else ""
    check(not tags.strip(), "lintian:\n" + tags)

print("\n".join(failures) or "ok")
sys.exit(1 if failures else 0)
