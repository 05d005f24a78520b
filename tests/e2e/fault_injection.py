#!/usr/bin/env python3
"""Fails each system call of a run's own reading and writing in turn, with strace,
on an existing 1,000-bar results document, once on the atomic path and once in a
directory that takes no new file (the in-place path), and checks the documents
after each. EIO must leave each document byte-identical, or a complete new
version beside the old file kept as .NAME.advzorv-unreadable, or a complete new
version with every old bar; EINTR must change nothing about the run.
Usage: fault_injection.py ADVZORV CASES_DIR  (skipped, status 77, without strace)"""
import os
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ET

CALLS = ["openat", "read", "pread64", "write", "fsync", "rename", "ftruncate", "close",
         "newfstatat", "flock", "fcntl", "link", "unlink"]
# Calls a signal can interrupt, and which the tool must then simply make again.
INTERRUPTIBLE = ["openat", "read", "pread64", "write", "fsync", "rename", "ftruncate", "flock"]
DOCUMENTS = ("advice.xml", "perf.xml")
KEPT = {f".{name}.advzorv-unreadable" for name in DOCUMENTS}
OLD_KEYS = {f"k{i:04}" for i in range(1000)}
TIMESTAMP = re.compile(rb"<timestamp>0x[0-9a-f]+</timestamp>")
# Root writes in any directory: the in-place path is taken as another user.
AS_OTHER_USER = ["-u", "nobody"] if os.geteuid() == 0 else []


def args(work):
    return ["--advice_file=advice.xml", "--benchmarks_file=perf.xml", "--xml_link_info=link.xml",
            "--linker_options_file=options.cmd", "--benchmark:event=append",
            "--benchmark:option=--opt_for_speed", "--benchmark:option_value=injected"]


def pristine(binary, cases, root, in_place):
    """A project with a 1,000-bar results document; in place: a directory only
    the owner of the documents' files can't write to."""
    work = os.path.join(root, "pristine")
    os.mkdir(work)
    inputs = os.path.join(cases, "benchmark_end_recommends_the_best_setting", "input")
    for name in ("link.xml", "options.cmd"):
        shutil.copy(os.path.join(inputs, name), work)
    subprocess.run([binary, "--advice_file=advice.xml", "--benchmarks_file=perf.xml",
                    "--xml_link_info=link.xml", "--linker_options_file=options.cmd",
                    "--benchmark:event=start", "--benchmark:option=--opt_for_speed"],
                   cwd=work, check=True)
    bars = "".join(f'\t\t<bar option_value="{key}" value="{i + 1}" color="yellow"/>\n'
                   for i, key in enumerate(sorted(OLD_KEYS)))
    with open(os.path.join(work, "perf.xml"), "w") as f:
        f.write('<?xml version="1.0" encoding="utf-8"?>\n<body><version>1</version>'
                '<timestamp>0x0</timestamp><chart option="--opt_for_speed" title="t" '
                f'valueLabel="v">\n{bars}</chart></body>\n')
    for name in DOCUMENTS:
        os.chmod(os.path.join(work, name), 0o666 if in_place else 0o644)
    return work


def fresh_copy(pristine_dir, root, in_place):
    work = os.path.join(root, "run")
    if os.path.exists(work):
        os.chmod(work, 0o755)
        shutil.rmtree(work)
    shutil.copytree(pristine_dir, work)
    if in_place:
        os.chmod(work, 0o555)
    return work


def strace(binary, work, options, user):
    done = subprocess.run(["strace", "-o", "/dev/null", *user, *options, binary, *args(work)],
                          cwd=work, stdin=subprocess.DEVNULL, capture_output=True, timeout=30)
    return done.returncode, done.stderr


def calls_of_run(binary, work, user):
    """For each call, how many the process makes before its command file is
    opened (loading and start-up), and how many after."""
    log = os.path.join(os.path.dirname(work), "trace.log")
    subprocess.run(["strace", "-o", log, *user, "-e", "trace=" + ",".join(CALLS), binary,
                    *args(work)], cwd=work, check=True, capture_output=True)
    before, after, started, new_file = {}, {}, False, None
    with open(log) as f:
        for line in f:
            call = line.split("(", 1)[0]
            started = started or (call == "openat" and '"options.cmd"' in line)
            counts = after if started else before
            counts[call] = counts.get(call, 0) + 1
            if new_file is None and call == "openat" and "advzorv-new" in line:
                new_file = counts[call] + before.get(call, 0)
    return before, after, new_file


def problems(work, old, clean, errno):
    found = []
    names = set(os.listdir(work))
    extra = names - set(os.listdir(os.path.dirname(work) + "/pristine")) - KEPT
    if extra:
        found.append(f"left behind: {sorted(extra)}")
    for name in DOCUMENTS:
        text = open(os.path.join(work, name), "rb").read()
        kept = f".{name}.advzorv-unreadable"
        if errno == "EINTR":
            if TIMESTAMP.sub(b"", text) != TIMESTAMP.sub(b"", clean[name]) or kept in names:
                found.append(f"{name} is not what a run without the fault writes")
            continue
        if kept in names and open(os.path.join(work, kept), "rb").read() != old[name]:
            found.append(f"{kept} is not the old {name}")
        if text == old[name]:
            continue
        try:
            root = ET.fromstring(text)
        except ET.ParseError as e:
            found.append(f"{name} is not well-formed: {e}")
            continue
        if root.find("timestamp") is None:
            found.append(f"{name} is no complete document")
        keys = {bar.get("option_value") for bar in root.iter("bar")}
        if name == "perf.xml" and kept not in names and not OLD_KEYS <= keys:
            found.append("perf.xml lost bars without keeping its old file")
    return found


def main():
    binary, cases = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
    if not shutil.which("strace"):
        print("strace is not installed: skipped")
        return 77
    failures, runs = [], 0
    for in_place in (False, True):
        path = "in place" if in_place else "atomic"
        user = AS_OTHER_USER if in_place else []
        with tempfile.TemporaryDirectory(prefix="advzorv-faults-") as root:
            os.chmod(root, 0o755)
            origin = pristine(binary, cases, root, in_place)
            old = {name: open(os.path.join(origin, name), "rb").read() for name in DOCUMENTS}
            work = fresh_copy(origin, root, in_place)
            before, after, new_file = calls_of_run(binary, work, user)
            work = fresh_copy(origin, root, in_place)
            status, err = strace(binary, work, [], user)
            if status != 0:
                failures.append(f"{path}: a run without faults ended with {status}: {err!r}")
                continue
            clean = {name: open(os.path.join(work, name), "rb").read() for name in DOCUMENTS}
            for errno, calls in (("EIO", CALLS), ("EINTR", INTERRUPTIBLE)):
                for call in calls:
                    for nth in range(1, after.get(call, 0) + 1):
                        work = fresh_copy(origin, root, in_place)
                        when = before.get(call, 0) + nth
                        status, err = strace(binary, work, [
                            "-e", f"trace={call}", "-e", f"inject={call}:error={errno}:when={when}"], user)
                        runs += 1
                        wanted = (0,) if errno == "EINTR" else (0, 1)
                        found = problems(work, old, clean, errno)
                        if status not in wanted:
                            found.append(f"status {status}: {err.decode(errors='replace')}")
                        failures += [f"{path}, {errno} on {call} #{nth}: {p}" for p in found]
            # What a failed creation of the new file is called.
            for errno, message in (("ENOSPC", b"write error"), ("EDQUOT", b"write error"),
                                   ("EIO", b"cannot open file")):
                if in_place:
                    break
                work = fresh_copy(origin, root, in_place)
                status, err = strace(binary, work, [
                    "-e", "trace=openat", "-e", f"inject=openat:error={errno}:when={new_file}"], user)
                if status != 1 or b"perf.xml: " + message not in err:
                    failures.append(f"{errno} on the new file: status {status}, {err[:200]!r}")
    print("\n".join(failures) if failures else f"ok: {runs} runs")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
