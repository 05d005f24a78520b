#!/usr/bin/env python3
"""Mutation testing: how many single-line faults does the test suite notice?

usage: scripts/mutate.py [--seed N] [--count N] [--changed BASE] [--only PREFIX]
                         [--timeout S] [--jobs N] [--list]

Draws a seeded random sample of lines in ADVICE_PERF/, options/, DIAG/, UTIL/
and the generators (tools/*.py): lines that the suite runs, measured once in a
--coverage build (build-mutate-cov/), or with --changed BASE the lines that
the work tree adds there since it parted from BASE; --only narrows either to
the paths that start with PREFIX.  On each line it applies
one mutant, picked at random from the operators below, rebuilds build-mutate/
(with AddressSanitizer, leak detection and UndefinedBehaviorSanitizer, as the
test command's second run, so that an overrun or a dropped free fails its test) incrementally, runs the CTest suite with a per-test
timeout until the first failure, and puts the line back (also on Ctrl-C or
SIGTERM; a run killed outright leaves a journal that the next run restores first).

A mutant is
  killed        when a test fails or times out, or the build of a generator's
                output fails;
  not compiled  when the compiler (or Python) refuses it;
  equivalent    when it compiles to the same object code as the original, or
                is listed in scripts/mutate_equivalent.txt, one per line as
                PATH:LINE:ORIGINAL \u2192 MUTANT: REASON, the lines without their
                indentation, as the report prints a survivor (the match is on
                PATH, ORIGINAL and MUTANT);
  survived      otherwise.
The score of a folder is killed / (compiled - equivalent).  The report gives
it per folder and lists every survivor as FILE:LINE: ORIGINAL -> MUTANT.

A generator mutant is first tried on the generator's own tests; if they pass
and it generates the build's files unchanged, it survives without a rebuild.
Needs ninja and, to make putting lines back cheap, ccache (scripts/setup.sh
installs both).
"""

import argparse
import base64
import hashlib
import json
import os
import random
import re
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
FOLDERS = ("ADVICE_PERF", "options", "DIAG", "UTIL", "generators")
EQUIVALENTS = os.path.join(ROOT, "scripts", "mutate_equivalent.txt")


def folder_of(path):
    top = path.split("/", 1)[0]
    return "generators" if top == "tools" else top


def in_scope(path):
    if path.startswith("tools/"):
        return path.endswith(".py") and path.count("/") == 1
    return folder_of(path) in FOLDERS and path.endswith((".cpp", ".h"))


# ---------------------------------------------------------------- operators

CMP_NEGATE = {"==": "!=", "!=": "==", "<": ">=", "<=": ">", ">": "<=", ">=": "<"}
CMP_BOUND = {"<": "<=", "<=": "<", ">": ">=", ">=": ">"}
CMP_RE = re.compile(r"(?<=[\w)\]\"' ])\s(==|!=|<=|>=|<|>)\s(?=[\w(\"'!\-+*&.:\[ ])")
INT_RE = re.compile(r"(?<![\w.'])(0[xX][0-9a-fA-F]+|\d+)([uUlL]*)(?![\w.'])")
CPP_LOGIC = {"&&": "||", "||": "&&"}
PY_LOGIC = {"and": "or", "or": "and"}
CPP_DECLARATION = re.compile(
    r"^(?:(?:const|static|constexpr|auto|unsigned|signed|struct)\s+)*[\w:]+(?:<[^;=]*>)?"
    r"[\s*&]+\w+\s*(?:=|\{|\(|;|\[)")
PY_COMPOUND = re.compile(
    r"^(def|class|if|elif|else|for|while|try|except|finally|with|return|import|from|@|"
    r"global|nonlocal|pass)\b")


def code_mask(line, python):
    """Per character: True where it is code, not a string, char literal or comment."""
    mask = [True] * len(line)
    i = 0
    quote = None
    while i < len(line):
        ch = line[i]
        if quote:
            mask[i] = False
            if ch == "\\":
                if i + 1 < len(line):
                    mask[i + 1] = False
                i += 2
                continue
            if ch == quote:
                quote = None
        elif ch in "\"'":
            quote = ch
            mask[i] = False
        elif (python and ch == "#") or (not python and line.startswith("//", i)):
            for j in range(i, len(line)):
                mask[j] = False
            break
        i += 1
    return mask


def balanced(text):
    return all(text.count(a) == text.count(b) for a, b in ("()", "[]", "{}"))


def mutants_of_line(line, python):
    """Every (operator, mutated line) one operator makes of LINE."""
    stripped = line.strip()
    if not stripped or (not python and stripped.startswith(("#", "//", "/*", "*"))):
        return []
    if python and stripped.startswith(("#", '"""', "'''")):
        return []
    if not python and stripped.startswith(("static_assert", "template")):
        return []
    mask = code_mask(line, python)
    out = []

    def code_at(start, end):
        return all(mask[start:end])

    def replace(start, end, text):
        return line[:start] + text + line[end:]

    for m in CMP_RE.finditer(line):
        op = m.group(1)
        if not code_at(*m.span(1)):
            continue
        out.append(("comparison negated", replace(*m.span(1), CMP_NEGATE[op])))
        if op in CMP_BOUND:
            out.append(("bound moved", replace(*m.span(1), CMP_BOUND[op])))
    logic = PY_LOGIC if python else CPP_LOGIC
    logic_re = r"(?<=\s)(and|or)(?=\s)" if python else r"(?<=\s)(&&|\|\|)(?=\s)"
    for m in re.finditer(logic_re, line):
        if code_at(*m.span(1)):
            out.append(("and/or swapped", replace(*m.span(1), logic[m.group(1)])))
    not_re = r"\bnot\s+" if python else r"!(?=[\w(])"
    for m in re.finditer(not_re, line):
        if code_at(*m.span()):
            out.append(("negation dropped", replace(*m.span(), "")))
    if python:
        for m in re.finditer(r"(?<=\s)(not in|in)(?=\s)", line):
            in_for = re.search(r"\bfor\s+[\w\s,()]+$", line[:m.start(1)])
            if code_at(*m.span(1)) and not in_for:
                swapped = "in" if m.group(1) == "not in" else "not in"
                out.append(("membership negated", replace(*m.span(1), swapped)))
    bools = ("True", "False") if python else ("true", "false")
    for m in re.finditer(r"\b(%s|%s)\b" % bools, line):
        if code_at(*m.span()):
            other = bools[1] if m.group(1) == bools[0] else bools[0]
            out.append(("boolean flipped", replace(*m.span(), other)))
    for m in INT_RE.finditer(line):
        if not code_at(*m.span()):
            continue
        digits = m.group(1)
        base = 16 if digits[:2].lower() == "0x" else 8 if digits[:1] == "0" < digits[1:] else 10
        value = int(digits, base)
        shown = {16: hex, 8: lambda v: "0%o" % v, 10: str}[base]
        for delta in (1, -1):
            if value + delta < 0:
                continue
            new = shown(value + delta)
            out.append(("constant %+d" % delta, replace(*m.span(1), new)))
    for m in re.finditer(r"(?<=\s)([+-])(=?)(?=\s)", line):
        if code_at(*m.span(1)):
            other = "-" if m.group(1) == "+" else "+"
            out.append(("arithmetic swapped", replace(*m.span(1), other)))
    if not python:
        for m in re.finditer(r"\+\+|--", line):
            if code_at(*m.span()):
                out.append(("increment swapped",
                            replace(*m.span(), "--" if m.group() == "++" else "++")))
    out.extend(("statement deleted", d) for d in deletion(line, stripped, python))
    unique = {}
    for op, new in out:
        unique.setdefault(new, op)
    return [(op, new) for new, op in unique.items() if new != line]


def deletion(line, stripped, python):
    indent = line[:len(line) - len(line.lstrip())]
    if not balanced(stripped):
        return []
    if python:
        if PY_COMPOUND.match(stripped) or stripped.endswith((":", ",", "\\", "(", "[", "{")):
            return []
        return [indent + "pass"]
    if not stripped.endswith(";") or stripped.startswith(("return", "case", "default", "}")):
        return []
    if "{" in stripped or "}" in stripped or CPP_DECLARATION.match(stripped):
        return []
    return [indent + ";"]


# ---------------------------------------------------------------- helpers

def run(cmd, timeout=None, env=None, cwd=ROOT, errors=subprocess.STDOUT):
    """Runs CMD; returns (status, its output and, unless ERRORS says otherwise, its
    error output); a timeout kills CMD's whole process group and gives status None, so a
    mutant that hangs in a grandchild leaves nothing running."""
    with subprocess.Popen(cmd, cwd=cwd, env=env, stdout=subprocess.PIPE, stderr=errors,
                          text=True, errors="replace", start_new_session=True) as proc:
        try:
            out, _ = proc.communicate(timeout=timeout)
            return proc.returncode, out
        except subprocess.TimeoutExpired:
            os.killpg(proc.pid, signal.SIGKILL)
            out, _ = proc.communicate()
            return None, out
        except BaseException:
            os.killpg(proc.pid, signal.SIGKILL)
            raise


def say(*parts):
    print(*parts, flush=True)


def die(message):
    say("mutate: " + message)
    sys.exit(1)


class Tree:
    """Writes one mutant at a time and always puts the original back."""

    def __init__(self, journal):
        self.journal = journal
        self.restore()

    def apply(self, path, original, mutated):
        with open(self.journal, "w", encoding="utf-8") as out:
            json.dump({"path": path, "text": base64.b64encode(original).decode()}, out)
        with open(os.path.join(ROOT, path), "wb") as out:
            out.write(mutated)

    def restore(self):
        if not os.path.exists(self.journal):
            return
        with open(self.journal, encoding="utf-8") as src:
            saved = json.load(src)
        with open(os.path.join(ROOT, saved["path"]), "wb") as out:
            out.write(base64.b64decode(saved["text"]))
        os.remove(self.journal)


# ---------------------------------------------------------------- builds

class Build:
    def __init__(self, args):
        self.dir = os.path.join(ROOT, args.build_dir)
        self.jobs = args.jobs
        self.timeout = args.timeout
        # As the test command's second run: out of memory is a null pointer, as the
        # tests that exhaust memory expect, and leaks fail.
        self.env = dict(os.environ, CCACHE_DIR=os.path.join(self.dir, "ccache"),
                        ASAN_OPTIONS="detect_leaks=1:allocator_may_return_null=1")

    def configure(self, extra=()):
        if os.path.exists(os.path.join(self.dir, "build.ninja")):
            return
        if not shutil.which("ninja"):
            die("needs ninja (bash scripts/setup.sh installs it)")
        cmd = ["cmake", "-S", ROOT, "-B", self.dir, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release",
               "-DCMAKE_DISABLE_FIND_PACKAGE_benchmark=ON"]
        if shutil.which("ccache"):
            cmd.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
        status, out = run(cmd + list(extra), env=self.env)
        if status != 0:
            die("cannot configure %s:\n%s" % (self.dir, out))

    def build(self, env=None):
        return run(["ninja", "-C", self.dir, "-j", str(self.jobs)], env=env or self.env)

    def test_names(self):
        status, out = run(["ctest", "--test-dir", self.dir, "--show-only=json-v1"])
        return [t["name"] for t in json.loads(out)["tests"]]

    def test(self, names=None, env=None, timeout=None):
        """(killed, how): runs the tests of these NAMES (all if None) to the first failure."""
        cmd = ["ctest", "--test-dir", self.dir, "-j", str(self.jobs), "--timeout",
               str(min(timeout or self.timeout, self.timeout)), "--stop-on-failure"]
        if names is not None:
            if not names:
                return False, ""
            cmd += ["-R", "^(%s)$" % "|".join(n.replace(".", "\\.") for n in sorted(names))]
        status, out = run(cmd, env=env or self.env)
        if status == 0:
            return False, ""
        failed = re.findall(r"\d+ - (\S+) \((Failed|Timeout|SEGFAULT|Subprocess aborted|"
                            r"Child aborted|Exception)[^)]*\)", out)
        if any(how == "Timeout" for _, how in failed):
            return True, "timeout in " + failed[0][0]
        return True, ", ".join(name for name, _ in failed[:2]) or "ctest status %s" % status

    def durations(self):
        """{test name: seconds} of a whole run of the suite, which must pass."""
        cmd = ["ctest", "--test-dir", self.dir, "-j", str(self.jobs), "--timeout",
               str(max(self.timeout, 600))]
        status, out = run(cmd, env=self.env)
        if status != 0:
            die("the suite fails without mutants:\n" + out[-3000:])
        times = {n: float(t) for n, t in
                 re.findall(r"Test +#\d+: (\S+) \.*\s+Passed\s+([\d.]+) sec", out)}
        # A slow test on a busy machine is no hang: the limit leaves the slowest
        # test three times its own time.
        self.timeout = max(self.timeout, int(3 * max(times.values(), default=0)) + 1)
        return times

    def objects(self):
        hashes = {}
        for top, _, files in os.walk(self.dir):
            if "ccache" in top.split(os.sep):
                continue
            for name in files:
                if name.endswith(".o"):
                    path = os.path.join(top, name)
                    with open(path, "rb") as obj:
                        hashes[path] = hashlib.sha1(obj.read()).hexdigest()
        return hashes

    def generator_commands(self):
        """The build's generator runs, as (cwd, argv) with the output file last."""
        status, out = run(["ninja", "-C", self.dir, "-t", "commands"])
        commands = []
        for line in out.splitlines():
            if "/tools/" not in line or ".py" not in line:
                continue
            cwd, _, command = line.partition(" && ")
            commands.append((shlex.split(cwd)[1], shlex.split(command)))
        return commands


# ---------------------------------------------------------------- coverage

TRACER = r'''
import atexit, json, os, sys
_root = os.environ["MUTATE_PY_ROOT"]
_hits = set()
def _local(frame, event, arg):
    if event == "line":
        _hits.add((frame.f_code.co_filename, frame.f_lineno))
    return _local
def _global(frame, event, arg):
    return _local if frame.f_code.co_filename.startswith(_root) else None
def _save():
    with open(os.path.join(os.environ["MUTATE_PY_HITS"], "%d.json" % os.getpid()), "w") as out:
        json.dump(sorted(_hits), out)
sys.settrace(_global)
atexit.register(_save)
'''


def tree_digest():
    """A digest of every tracked file that can change what a test runs."""
    status, out = run(["git", "ls-files", "-z"])
    digest = hashlib.sha1()
    for path in sorted(out.split("\0")):
        full = os.path.join(ROOT, path)
        if path and not path.startswith("scripts/") and os.path.isfile(full):
            with open(full, "rb") as src:
                digest.update(path.encode() + src.read())
    return digest.hexdigest()


def gcov_lines(top_dir):
    """{path: set of lines} that the .gcda files under TOP_DIR count; removes them."""
    lines = {}
    for top, _, files in os.walk(top_dir):
        gcdas = [os.path.join(top, f) for f in files if f.endswith(".gcda")]
        if not gcdas:
            continue
        status, out = run(["gcov", "--json-format", "--stdout"] + gcdas, cwd=top,
                          errors=subprocess.DEVNULL)
        for doc in out.splitlines():
            if doc.startswith("{"):
                for entry in json.loads(doc)["files"]:
                    path = os.path.relpath(os.path.join(top, entry["file"]), ROOT)
                    if in_scope(path):
                        lines.setdefault(path, set()).update(
                            l["line_number"] for l in entry["lines"] if l["count"] > 0)
        for gcda in gcdas:
            os.remove(gcda)
    return lines


def python_lines(hits_dir):
    """{path: set of lines} that the traced Python processes ran; removes their records."""
    lines = {}
    for name in os.listdir(hits_dir):
        with open(os.path.join(hits_dir, name), encoding="utf-8") as src:
            for filename, line in json.load(src):
                lines.setdefault(os.path.relpath(filename, ROOT), set()).add(line)
        os.remove(os.path.join(hits_dir, name))
    return lines


BUILD = "(the build)"


def coverage(args):
    """{path: {line: names of the tests that run it}}, the build counting as a test named
    BUILD; measured one test at a time in a --coverage build and cached per state of the
    tracked files."""
    cov = Build(args)
    cov.dir = os.path.join(ROOT, args.build_dir + "-cov")
    cov.env["CCACHE_DISABLE"] = "1"
    cov.timeout = max(cov.timeout, 300)
    cache = os.path.join(cov.dir, "coverage.json")
    digest = tree_digest()
    if os.path.exists(cache):
        with open(cache, encoding="utf-8") as src:
            saved = json.load(src)
        if saved["digest"] == digest:
            return {p: {int(l): set(t) for l, t in lines.items()}
                    for p, lines in saved["lines"].items()}
    say("mutate: measuring which test runs which line in %s" % cov.dir)
    cov.configure(["-DCMAKE_CXX_FLAGS_RELEASE=-O0 --coverage",
                   "-DCMAKE_EXE_LINKER_FLAGS=--coverage"])
    trace_dir = os.path.join(cov.dir, "pytrace")
    hits_dir = os.path.join(trace_dir, "hits")
    shutil.rmtree(hits_dir, ignore_errors=True)
    os.makedirs(hits_dir)
    with open(os.path.join(trace_dir, "sitecustomize.py"), "w", encoding="utf-8") as out:
        out.write(TRACER)
    # GCOV_ERROR_FILE: counts that a test's file-size limit keeps from being written
    # complain there, not into a stream the test compares.
    env = dict(cov.env, PYTHONPATH=trace_dir, MUTATE_PY_ROOT=os.path.join(ROOT, "tools"),
               MUTATE_PY_HITS=hits_dir, GCOV_ERROR_FILE=os.devnull)
    status, out = cov.build()
    if status != 0:
        die("the coverage build fails:\n" + out[-3000:])
    with tempfile.TemporaryDirectory() as scratch:
        for cwd, argv in cov.generator_commands():
            run(argv[:-1] + [os.path.join(scratch, "out")], cwd=cwd, env=env)
    table = {}

    def record(test, lines):
        for path, numbers in lines.items():
            if in_scope(path):
                for number in numbers:
                    table.setdefault(path, {}).setdefault(number, set()).add(test)

    record(BUILD, python_lines(hits_dir))
    for top, _, files in os.walk(cov.dir):
        for name in files:
            if name.endswith(".gcda"):
                os.remove(os.path.join(top, name))
    for name in cov.test_names():
        killed, how = cov.test([name], env=env)
        if killed:
            # e.g. a file-size limit that also stops the coverage counts being written
            say("mutate: %s fails in the coverage build; what it ran may be missing" % name)
        record(name, gcov_lines(cov.dir))
        record(name, python_lines(hits_dir))
    with open(cache, "w", encoding="utf-8") as out:
        json.dump({"digest": digest, "lines": {
            p: {l: sorted(t) for l, t in lines.items()} for p, lines in table.items()}}, out)
    return table


def changed_lines(base):
    """The lines the work tree adds since it parted from BASE."""
    status, fork = run(["git", "merge-base", base, "HEAD"], errors=subprocess.DEVNULL)
    if status != 0:
        die("no common history with %s" % base)
    status, out = run(["git", "diff", "-U0", fork.strip(), "--", "ADVICE_PERF", "options",
                       "DIAG", "UTIL", "tools"])
    if status != 0:
        die("git diff %s failed:\n%s" % (base, out))
    lines, path = {}, None
    for line in out.splitlines():
        if line.startswith("+++ "):
            path = line[6:] if line.startswith("+++ b/") else None
        m = re.match(r"@@ -\S+ \+(\d+)(?:,(\d+))? @@", line)
        if m and path and in_scope(path):
            first, count = int(m.group(1)), int(m.group(2) or 1)
            lines.setdefault(path, set()).update(range(first, first + count))
    return lines


# ---------------------------------------------------------------- sample

def sample(lines, seed, count):
    """(path, line number, operator, original, mutated) for COUNT random covered lines."""
    candidates = []
    for path in sorted(lines):
        with open(os.path.join(ROOT, path), encoding="utf-8") as src:
            text = src.read().split("\n")
        for number in sorted(lines[path]):
            if 0 < number <= len(text):
                options = mutants_of_line(text[number - 1], path.endswith(".py"))
                if options:
                    candidates.append((path, number, text[number - 1], options))
    rng = random.Random(seed)
    picked = rng.sample(candidates, min(count, len(candidates)))
    result = []
    for path, number, original, options in sorted(picked, key=lambda c: (c[0], c[1])):
        op, mutated = rng.choice(options)
        result.append((path, number, op, original, mutated))
    return result


def shown(original, mutated):
    return "%s \u2192 %s" % (original.strip(), mutated.strip())


def read_equivalents():
    known = set()
    if os.path.exists(EQUIVALENTS):
        with open(EQUIVALENTS, encoding="utf-8") as src:
            for raw in src:
                entry = raw.strip()
                if not entry or entry.startswith("#"):
                    continue
                where, _, _ = entry.rpartition(": ")
                path, _, rest = where.partition(":")
                _, _, mutant = rest.partition(":")
                known.add((path, mutant.strip()))
    return known


# ---------------------------------------------------------------- one mutant

class Suite:
    """Runs, for one mutated line, the tests that run it, the quick ones first, then
    the rest."""

    QUICK = 2.0  # seconds

    def __init__(self, build, table, durations):
        self.build = build
        self.table = table
        self.durations = durations

    def run(self, path=None, line=None):
        """A C++ line that no test runs (a changed one) gets the whole suite, since
        it may still count at compile time; a generator line gets the tests that run
        it, the build being judged apart.  Coverage misses what a process that ends
        by _exit or by a signal ran, so a C++ mutant that the tests running its line
        let pass meets the rest of the suite before it counts as a survivor."""
        everything = set(self.durations)
        names, rest = everything, set()
        if path is not None:
            covering = self.table.get(path, {}).get(line, set()) & everything
            if covering or path.endswith(".py"):
                names = covering
                rest = set() if path.endswith(".py") else everything - covering
        for group in (names, rest):
            quick = {n for n in group if self.durations[n] < self.QUICK}
            # A quick test that takes ten times as long as it may hangs.
            for part, timeout in ((quick, 10 * self.QUICK), (group - quick, None)):
                killed, how = self.build.test(part, timeout=timeout)
                if killed:
                    return "killed", how
        return "survived", ""


def judge(build, suite, tree, mutant, reference, generators):
    """One of: ('killed', how), ('survived', ''), ('not compiled', ''), ('equivalent', why)."""
    path, number, _, original, mutated = mutant
    full = os.path.join(ROOT, path)
    with open(full, "rb") as src:
        before = src.read()
    lines = before.decode("utf-8").split("\n")
    if number > len(lines) or lines[number - 1] != original:
        return "skipped", "the line changed since the sample was drawn"
    lines[number - 1] = mutated
    after = "\n".join(lines).encode("utf-8")
    python = path.endswith(".py")
    if python:
        try:
            compile(after, full, "exec")
        except SyntaxError:
            return "not compiled", ""
    tree.apply(path, before, after)
    try:
        if python:
            verdict = suite.run(path, number)
            if verdict[0] == "killed":
                return verdict
            changed = False
            with tempfile.TemporaryDirectory() as scratch:
                out = os.path.join(scratch, "out")
                for cwd, argv in generators:
                    status, text = run(argv[:-1] + [out], cwd=cwd)
                    if status != 0:
                        return "killed", "the build (%s)" % os.path.basename(argv[-1])
                    with open(out, "rb") as new, open(argv[-1], "rb") as old:
                        changed = changed or new.read() != old.read()
            if not changed:
                return "survived", ""
        status, out = build.build()
        if status != 0:
            return ("killed", "the build") if python else ("not compiled", "")
        if build.objects() == reference:
            return "equivalent", "same object code"
        return suite.run() if python else suite.run(path, number)
    finally:
        tree.restore()


def summarize(results):
    say("\n%-12s %8s %13s %11s %7s %9s %7s" % ("folder", "mutants", "not compiled",
                                                "equivalent", "killed", "survived", "score"))
    totals = [0] * 5
    for folder in FOLDERS + ("all",):
        rows = [r for m, r in results if folder in ("all", folder_of(m[0]))]
        counts = [len(rows)] + [sum(1 for v, _ in rows if v == kind)
                                for kind in ("not compiled", "equivalent", "killed", "survived")]
        if folder != "all":
            totals = [a + b for a, b in zip(totals, counts)]
        scored = counts[3] + counts[4]
        score = "%.1f%%" % (100.0 * counts[3] / scored) if scored else "-"
        say("%-12s %8d %13d %11d %7d %9d %7s" % tuple([folder] + counts + [score]))
    survivors = [m for m, (v, _) in results if v == "survived"]
    if survivors:
        say("\nsurvivors:")
    for path, number, op, original, mutated in survivors:
        say("%s:%d: %s" % (path, number, shown(original, mutated)))


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--count", type=int, default=150, help="mutants to try")
    parser.add_argument("--changed", metavar="BASE", help="sample the lines changed since BASE")
    parser.add_argument("--only", metavar="PREFIX", action="append",
                        help="sample only files whose path starts with PREFIX (repeatable)")
    parser.add_argument("--timeout", type=int, default=60, help="seconds per test, at least (default 60; three times the slowest test's time without mutants if that is more)")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--build-dir", default="build-mutate")
    parser.add_argument("--list", action="store_true", help="print the sample, run nothing")
    args = parser.parse_args()
    signal.signal(signal.SIGTERM, signal.default_int_handler)

    build = Build(args)
    os.makedirs(build.dir, exist_ok=True)
    tree = Tree(os.path.join(build.dir, "mutate-journal.json"))
    table = coverage(args)
    lines = changed_lines(args.changed) if args.changed else table
    if args.only:
        lines = {p: l for p, l in lines.items() if p.startswith(tuple(args.only))}
    mutants = sample(lines, args.seed, args.count)
    if args.list:
        for path, number, op, original, mutated in mutants:
            say("%s:%d: [%s] %s \u2192 %s" % (path, number, op, original.strip(),
                                              mutated.strip()))
        return
    build.configure(["-DADVZORV_SANITIZE=ON", "-DCMAKE_CXX_FLAGS_RELEASE=-O1"])
    status, out = build.build()
    if status != 0:
        die("the build fails without mutants:\n" + out[-3000:])
    durations = build.durations()
    suite = Suite(build, table, durations)
    reference = build.objects()
    generators = build.generator_commands()
    equivalents = read_equivalents()
    results = []
    start = time.time()
    try:
        for index, mutant in enumerate(mutants, 1):
            path, number, op, original, mutated = mutant
            if (path, shown(original, mutated)) in equivalents:
                verdict = ("equivalent", "listed")
            else:
                verdict = judge(build, suite, tree, mutant, reference, generators)
            results.append((mutant, verdict))
            eta = (time.time() - start) / index * (len(mutants) - index)
            say("[%d/%d %4.0fs left] %s:%d %s: %s%s" % (
                index, len(mutants), eta, path, number, op, verdict[0],
                " (%s)" % verdict[1] if verdict[1] else ""))
    except KeyboardInterrupt:
        say("mutate: interrupted; the tree is restored")
    finally:
        tree.restore()
    say("\nseed %d, %d mutants in %.0f s" % (args.seed, len(results), time.time() - start))
    summarize(results)


if __name__ == "__main__":
    main()
