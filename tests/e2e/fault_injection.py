#!/usr/bin/env python3
"""Fails each call of a run's reading and writing in turn (strace), on the atomic and
the in-place path. After EIO a document is byte-identical, or complete with every old
bar, or complete beside its old file kept; after EINTR, what a run without the fault
writes. Usage: fault_injection.py ADVZORV CASES_DIR (status 77: no strace)"""
import os, re, shutil, sys, tempfile
import xml.etree.ElementTree as ET

from document_safety import Project, traced

CALLS = ["openat", "read", "pread64", "write", "fsync", "rename", "ftruncate", "close",
         "newfstatat", "flock", "fcntl", "link", "unlink"]
INTERRUPTIBLE = ["openat", "read", "pread64", "write", "fsync", "rename", "ftruncate", "flock"]
DOCUMENTS = ("advice.xml", "perf.xml")
OLD_KEYS = {f"k{i:06}" for i in range(1000)}
TIMESTAMP = re.compile(rb"<timestamp>0x[0-9a-f]+</timestamp>")


def documents(work):
    return {name: open(os.path.join(work, name), "rb").read() for name in DOCUMENTS}


class Runs:
    """Runs in fresh copies of a project with a 1,000-bar results document; in place,
    in a directory they can't write (root runs them as nobody)."""

    def __init__(self, binary, cases, origin, in_place):
        self.binary, self.cases, self.origin, self.work = binary, cases, origin, origin + "-run"
        self.in_place = in_place
        self.user = ["-u", "nobody"] if in_place and os.geteuid() == 0 else []
        os.mkdir(origin)
        Project(binary, cases, origin).big_results(len(OLD_KEYS))
        for name in DOCUMENTS:
            os.chmod(os.path.join(origin, name), 0o666)
        self.old = documents(origin)

    def run(self, *strace_options):
        if os.path.exists(self.work):
            os.chmod(self.work, 0o755)
            shutil.rmtree(self.work)
        shutil.copytree(self.origin, self.work)
        project = Project(self.binary, self.cases, self.work)
        os.chmod(self.work, 0o555 if self.in_place else 0o755)
        return project.run("append", b"new", wrapper=traced(*self.user, *strace_options))

    def calls(self):
        """Per call, how many come before the command file is opened and after; the new
        file's openat number; whether the directory is fsynced once for each document renamed."""
        self.run("-o", self.origin + ".log", "-e", "trace=" + ",".join(CALLS))
        before, after, new_file, log = {}, {}, None, open(self.origin + ".log").read()
        for line in log.splitlines():
            call = line.split("(", 1)[0]
            counts = after if after or '"options.cmd"' in line else before
            counts[call] = counts.get(call, 0) + 1
            if new_file is None and call == "openat" and "advzorv-new" in line:
                new_file = counts[call] + before.get(call, 0)
        synced = re.findall(r'^openat\(AT_FDCWD, "\.", \S*O_DIRECTORY\S*\) += (\d+)\nfsync\(\1\) += 0$',
                            log, re.M)
        return before, after, new_file, len(synced) == (0 if self.in_place else len(DOCUMENTS))

    def problems(self, clean, errno):
        names = set(os.listdir(self.work))
        kept = {name: f".{name}.advzorv-unreadable" for name in DOCUMENTS}
        extra = names - set(os.listdir(self.origin)) - set(kept.values())
        found = [f"left behind: {sorted(extra)}"] if extra else []
        for name, text in documents(self.work).items():
            if errno == "EINTR":
                if TIMESTAMP.sub(b"", text) != TIMESTAMP.sub(b"", clean[name]) or kept[name] in names:
                    found.append(f"{name} is not what a run without the fault writes")
            elif kept[name] in names and \
                    open(os.path.join(self.work, kept[name]), "rb").read() != self.old[name]:
                found.append(f"{kept[name]} is not the old {name}")
            elif text != self.old[name]:
                try:
                    root = ET.fromstring(text)
                except ET.ParseError as e:
                    found.append(f"{name} is not well-formed: {e}")
                    continue
                keys = {bar.get("option_value") for bar in root.iter("bar")}
                if root.find("timestamp") is None or (
                        name == "perf.xml" and kept[name] not in names and not OLD_KEYS <= keys):
                    found.append(f"{name} is incomplete, or lost bars without keeping its old file")
        return found


def main():
    binary, cases = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
    if not shutil.which("strace"):
        print("strace is not installed: skipped")
        return 77
    failures = []
    with tempfile.TemporaryDirectory(prefix="advzorv-faults-") as root:
        os.chmod(root, 0o755)
        for path in ("atomic", "in-place"):
            runs = Runs(binary, cases, os.path.join(root, path), path == "in-place")
            before, after, new_file, synced = runs.calls()
            failures += [] if synced else [f"{path}: a document renamed without a sync of its directory"]
            status, err = runs.run()
            clean = documents(runs.work)
            failures += [f"{path}: without faults, status {status}: {err!r}"] if status else []
            for errno, calls in (("EIO", CALLS), ("EINTR", INTERRUPTIBLE)):
                for call in calls:
                    for nth in range(1, after.get(call, 0) + 1):
                        when = before.get(call, 0) + nth
                        status, err = runs.run("-e", f"trace={call}", "-e",
                                               f"inject={call}:error={errno}:when={when}")
                        found = runs.problems(clean, errno)
                        if status not in ((0,) if errno == "EINTR" else (0, 1)):
                            found.append(f"status {status}: {err.decode(errors='replace')}")
                        failures += [f"{path}, {errno} on {call} #{nth}: {p}" for p in found]
            # What a failed creation of the new file is called.
            for errno, message in (("ENOSPC", b"write error"), ("EIO", b"cannot open file")):
                status, err = runs.run("-e", "trace=openat", "-e",
                                       f"inject=openat:error={errno}:when={new_file}")
                if path == "atomic" and (status != 1 or b"perf.xml: " + message not in err):
                    failures.append(f"{errno} on the new file: status {status}, {err[:200]!r}")
    print("\n".join(failures) if failures else "ok")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
