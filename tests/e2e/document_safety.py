#!/usr/bin/env python3
"""Whole runs that must never lose or corrupt the two documents: runs sharing
them at once, a run stopped by a file-size limit or killed while it writes, and
bytes that XML 1.0 can't carry. Usage: document_safety.py ADVZORV CASES_DIR"""
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile
import time

TEMP_FILE = re.compile(r"^\..*\.advzorv-new$")


class Project:
    def __init__(self, binary, cases, work):
        self.binary, self.work = binary, work
        inputs = os.path.join(cases, "benchmark_end_recommends_the_best_setting", "input")
        for name in ("link.xml", "options.cmd"):
            shutil.copy(os.path.join(inputs, name), work)

    def start(self, event=None, value=None, preexec=None):
        args = ["advzorv", "--advice_file=advice.xml", "--benchmarks_file=perf.xml",
                "--xml_link_info=link.xml", "--linker_options_file=options.cmd"]
        if event:
            args += [f"--benchmark:event={event}", "--benchmark:option=--opt_for_speed"]
        if value is not None:
            args.append(b"--benchmark:option_value=" + value)
        return subprocess.Popen(args, executable=self.binary, cwd=self.work,
                                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                stderr=subprocess.PIPE, preexec_fn=preexec)

    def run(self, *args, **kwargs):
        proc = self.start(*args, **kwargs)
        _, err = proc.communicate(timeout=120)
        return proc.returncode, err

    def read(self, name):
        with open(os.path.join(self.work, name), "rb") as f:
            return f.read()

    def bars(self):
        return self.read("perf.xml").count(b"<bar ")

    def strict_xml_problems(self):
        done = subprocess.run(["xmllint", "--noout", "advice.xml", "perf.xml"], cwd=self.work,
                              capture_output=True)
        return done.stderr.decode("utf-8", "replace") if done.returncode else ""

    def wait_for_writing(self, proc):
        """Returns once proc has begun to write the results document, or has ended."""
        doc = os.path.join(self.work, "perf.xml")
        before = os.stat(doc).st_mtime_ns, os.stat(doc).st_size
        while proc.poll() is None and not self.temp_files():
            now = os.stat(doc)
            if (now.st_mtime_ns, now.st_size) != before:
                return
            time.sleep(0.0002)

    def temp_files(self):
        return [name for name in os.listdir(self.work) if TEMP_FILE.match(name)]


def concurrent_appends_all_count(p, check):
    p.run("start")
    runs = [p.start("append", f"v{i}".encode()) for i in range(40)]
    statuses = [run.wait(timeout=120) for run in runs]
    check(statuses == [0] * 40, f"exit statuses {statuses}")
    check(p.bars() == 40, f"{p.bars()} bars after 40 concurrent appends")
    check(not p.strict_xml_problems(), p.strict_xml_problems())


def a_file_size_limit_leaves_both_documents_as_they_were(p, check):
    p.run("start")
    for i in range(20):  # a results document larger than the limit
        p.run("append", f"v{i}".encode())
    before = p.read("advice.xml"), p.read("perf.xml")

    def limit():
        import resource
        resource.setrlimit(resource.RLIMIT_FSIZE, (1024, resource.RLIM_INFINITY))

    status, err = p.run("end", b"second", preexec=limit)
    check(status == 1 and b"write error" in err, f"status {status}, stderr {err!r}")
    check((p.read("advice.xml"), p.read("perf.xml")) == before, "a document changed")
    check(not p.temp_files(), f"left behind: {p.temp_files()}")


def a_kill_while_writing_leaves_old_or_new(p, check):
    p.run("start")
    bars = "".join(f'\t\t<bar option_value="k{i:06}" value="{i + 1}" color="yellow"/>\n'
                   for i in range(60000))
    with open(os.path.join(p.work, "perf.xml"), "w") as f:
        f.write(f"<body><version>1</version><timestamp>0x0</timestamp><chart option="
                f'"--opt_for_speed" title="t" valueLabel="v">\n{bars}</chart></body>\n')
    rng = random.Random(7)
    for trial in range(8):
        count = p.bars()
        proc = p.start("append", f"kill{trial}".encode())
        p.wait_for_writing(proc)
        time.sleep(rng.uniform(0, 0.02))
        proc.kill()
        proc.wait()
        check(p.bars() in (count, count + 1), f"trial {trial}: {p.bars()} bars, had {count}")
        check(not p.strict_xml_problems(), f"trial {trial}: {p.strict_xml_problems()}")
    p.run("append", b"after")
    check(not p.temp_files(), f"left behind after a whole run: {p.temp_files()}")


def bytes_xml_cannot_carry_give_strict_documents(p, check):
    p.run("start")
    for _ in range(2):  # the second run finds the bar it wrote
        status, err = p.run("end", b"k\x01\xe9")
        check(status == 0, f"status {status}: {err!r}")
    check(p.bars() == 1, f"{p.bars()} bars for one key")
    check(not p.strict_xml_problems(), p.strict_xml_problems())
    check(b'option_value="k\xef\xbf\xbd\xef\xbf\xbd"' in p.read("perf.xml"), "replaced key")


def main():
    binary, cases = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
    failures = []
    for test in (concurrent_appends_all_count, a_file_size_limit_leaves_both_documents_as_they_were,
                 a_kill_while_writing_leaves_old_or_new,
                 bytes_xml_cannot_carry_give_strict_documents):
        with tempfile.TemporaryDirectory(prefix="advzorv-docs-") as work:
            def check(ok, message, name=test.__name__):
                if not ok:
                    failures.append(f"{name}: {message}")
            test(Project(binary, cases, work), check)
    print("\n".join(failures) if failures else "ok")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
