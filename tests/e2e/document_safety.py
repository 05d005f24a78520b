#!/usr/bin/env python3
"""Whole runs that must never lose or corrupt the two documents (shared, stopped,
odd or unreadable), and a command file too large for a case directory.
Usage: document_safety.py ADVZORV CASES_DIR"""
import os, pathlib, random, re, resource, shutil, signal, stat, subprocess, sys, tempfile, time

TEMP_FILE = re.compile(r"^\..*\.advzorv-new(\.[0-9]+(-[0-9]+)?)?$")
UMASK = int(re.search(r"Umask:\s*([0-7]+)", open("/proc/self/status").read())[1], 8)


class Project:
    def __init__(self, binary, cases, work):
        self.binary, self.work = binary, work
        inputs = os.path.join(cases, "benchmark_end_recommends_the_best_setting", "input")
        for name in ("link.xml", "options.cmd"):
            shutil.copy(os.path.join(inputs, name), work)

    def start(self, event=None, value=None, preexec=None, docs="", wrapper=(),
              options="options.cmd"):
        args = [*wrapper, self.binary, f"--advice_file={docs}advice.xml",
                f"--benchmarks_file={docs}perf.xml", "--xml_link_info=link.xml",
                f"--linker_options_file={options}"]
        if event:
            args += [f"--benchmark:event={event}", "--benchmark:option=--opt_for_speed"]
        if value is not None:
            args.append(b"--benchmark:option_value=" + value)
        return subprocess.Popen(args, cwd=self.work,
                                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                stderr=subprocess.PIPE, preexec_fn=preexec)

    def run(self, *args, **kwargs):
        proc = self.start(*args, **kwargs)
        _, err = proc.communicate(timeout=120)
        return proc.returncode, err

    def read(self, name):
        return pathlib.Path(self.work, name).read_bytes()

    def write(self, name, content):
        pathlib.Path(self.work, name).write_bytes(content)

    def bars(self, docs=""):
        return self.read(docs + "perf.xml").count(b"<bar ")

    def strict_xml_problems(self):
        done = subprocess.run(["xmllint", "--noout", "advice.xml", "perf.xml"], cwd=self.work,
                              capture_output=True)
        return done.stderr.decode("utf-8", "replace") if done.returncode else ""

    def wait_for_writing(self, proc):
        """Returns once proc has begun to write the results document, or has ended."""
        doc = os.path.join(self.work, "perf.xml")
        state = lambda: (os.stat(doc).st_mtime_ns, os.stat(doc).st_size)
        before = state()
        while proc.poll() is None and not self.temp_files() and state() == before:
            time.sleep(0.0002)

    def temp_files(self):
        return [name for name in os.listdir(self.work) if TEMP_FILE.match(name)]

    def big_results(self, bars):
        self.run("start")
        lines = "".join(f'\t\t<bar option_value="k{i:06}" value="{i + 1}" color="yellow"/>\n'
                        for i in range(bars))
        self.write("perf.xml", b"<body><version>1</version><timestamp>0x0</timestamp><chart option="
                   b'"--opt_for_speed" title="t" valueLabel="v">\n' + lines.encode()
                   + b"</chart></body>\n")


def traced(*strace_options):
    """A wrapper that runs the tool under strace; LeakSanitizer can't work in a traced process."""
    return ("env", f"ASAN_OPTIONS={os.environ.get('ASAN_OPTIONS', '')}:detect_leaks=0",
            f"LSAN_OPTIONS={os.environ.get('LSAN_OPTIONS', '')}:detect_leaks=0", "strace", "-o",
            "/dev/null", *strace_options)


def as_nobody():  # root reads any directory
    if os.geteuid() == 0:
        os.setgid(65534)
        os.setuid(65534)


def concurrent_appends_all_count(p, check):
    """40 runs at once; 30 where the directory can't be opened for reading and
    30 where flock fails (ENOLCK, as on a network file system)."""
    no_flock = traced("-e", "trace=flock", "-e", "inject=flock:error=ENOLCK")
    for where, runs, mode, preexec, wrapper in (
            ("lockable", 40, 0o777, None, ()),
            ("unreadable directory", 30, 0o333, as_nobody, ()),
            ("no flock", 30, 0o777, None, no_flock)):
        docs = os.path.join(p.work, "docs")
        os.mkdir(docs)
        os.chmod(docs, 0o777)
        p.run("start", docs="docs/", preexec=preexec, wrapper=wrapper)
        modes = {oct(stat.S_IMODE(os.stat(f"{docs}/{name}").st_mode)) for name in os.listdir(docs)}
        check(modes == {oct(0o666 & ~UMASK)}, f"{where}: new documents' modes {modes}")
        os.chmod(docs, mode)
        procs = [p.start("append", f"v{i}".encode(), docs="docs/", preexec=preexec, wrapper=wrapper)
                 for i in range(runs)]
        statuses = [proc.wait(timeout=120) for proc in procs]
        os.chmod(docs, 0o777)
        check(statuses == [0] * runs, f"{where}: exit statuses {statuses}")
        check(p.bars("docs/") == runs, f"{where}: {p.bars('docs/')} bars after {runs} appends")
        check(sorted(os.listdir(docs)) == ["advice.xml", "perf.xml"], f"{where}: {os.listdir(docs)}")
        shutil.rmtree(docs)


def a_file_size_limit_leaves_both_documents_as_they_were(p, check):
    p.run("start")
    for i in range(20):  # a results document larger than the limit
        p.run("append", f"v{i}".encode())
    before = p.read("advice.xml"), p.read("perf.xml")
    status, err = p.run("end", b"second", preexec=lambda: resource.setrlimit(
        resource.RLIMIT_FSIZE, (1024, resource.RLIM_INFINITY)))
    check(status == 1 and b"write error" in err, f"status {status}, stderr {err!r}")
    check((p.read("advice.xml"), p.read("perf.xml")) == before, "a document changed")
    check(not p.temp_files(), f"left behind: {p.temp_files()}")


def a_kill_or_signal_while_writing_leaves_old_or_new(p, check):
    """kill -9 may leave a new file for the next run to remove; SIGUSR1, which
    the tool doesn't handle, waits until the document is whole."""
    p.big_results(60000)
    rng = random.Random(7)
    for trial, sig in enumerate([signal.SIGUSR1] * 4 + [signal.SIGKILL] * 8):
        count = p.bars()
        proc = p.start("append", f"kill{trial}".encode())
        p.wait_for_writing(proc)
        time.sleep(rng.uniform(0, 0.02))
        proc.send_signal(sig)
        proc.wait()
        check(p.bars() in (count, count + 1), f"trial {trial}: {p.bars()} bars, had {count}")
        check(not p.strict_xml_problems(), f"trial {trial}: {p.strict_xml_problems()}")
        check(sig == signal.SIGKILL or not p.temp_files(), f"{sig}: left {p.temp_files()}")
    p.run("append", b"after")
    check(not p.temp_files(), f"left behind after a whole run: {p.temp_files()}")


def documents_that_are_no_regular_files_stay(p, check):
    """A FIFO without a reader makes the run fail at once; a device is written to."""
    fifo = os.path.join(p.work, "perf.xml")
    os.mkfifo(fifo)
    status, err = p.run()
    check(status == 1 and b"perf.xml: cannot open file" in err and stat.S_ISFIFO(os.stat(fifo).st_mode),
          f"FIFO: {status} {err!r}")
    if os.geteuid() == 0:  # only root makes device nodes
        os.remove(fifo)
        os.mknod(fifo, 0o666 | stat.S_IFCHR, os.makedev(1, 3))  # a null device
        status, err = p.run()
        check(status == 0 and stat.S_ISCHR(os.stat(fifo).st_mode), f"device: {status} {err!r}")


def a_four_mib_word_is_ignored_and_the_options_around_it_read(p, check):
    p.write("long.cmd", b"-O3 " + b"w" * (4 << 20) + b" --opt_for_speed=4\n")
    status, err = p.run(options="long.cmd")
    with_word, strip = p.read("advice.xml"), re.compile(rb"<timestamp>[^<]*</timestamp>")
    p.run()  # options.cmd holds the same options without the word
    check(status == 0 and re.fullmatch(rb">> Ignoring non-option input: [^\n]* w{4194304}\n", err)
          and strip.sub(b"", with_word) == strip.sub(b"", p.read("advice.xml")), f"{status} {err[:99]!r}")


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
                 a_kill_or_signal_while_writing_leaves_old_or_new,
                 documents_that_are_no_regular_files_stay,
                 a_four_mib_word_is_ignored_and_the_options_around_it_read,
                 bytes_xml_cannot_carry_give_strict_documents):
        with tempfile.TemporaryDirectory(prefix="advzorv-docs-") as work:
            os.chmod(work, 0o755)
            def check(ok, message, name=test.__name__):
                if not ok:
                    failures.append(f"{name}: {message}")
            test(Project(binary, cases, work), check)
    print("\n".join(failures) or "ok")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
