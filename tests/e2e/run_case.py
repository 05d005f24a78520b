#!/usr/bin/env python3
"""Runs the advzorv binary on one fixture directory and compares what it did.

A case directory holds:
  args              the arguments, one per line, passed as they stand (no shell); a line
                    {documents} or {files} stands for the arguments SHORTHANDS gives it
  input/            files copied into a fresh working directory, where the tool runs
  expected/status   the exit status (a number; -1 is written as 255; missing file: 0)
  expected/stdout   exact standard output (missing file: must be empty)
  expected/stderr   exact standard error (missing file: must be empty)
  expected/stderr.re, expected/stdout.re
                    instead of the exact file: a regular expression the whole stream must
                    match (for texts the system supplies, such as strerror words)
  expected/files/   files the working directory must hold afterwards, compared exactly but
                    for @TIMESTAMP@, which stands for the hexadecimal time stamp of the run
  signal            optional: the name of a signal (SIGINT, SIGTERM, ...). The tool then
                    reads its command file from the FIFO "cmd.fifo" in the working
                    directory; the signal is sent while it waits for input.
The program is started with argv[0] "advzorv", so texts that show it are stable. With a third
argument, a folder of XML Schemas, each document that the run wrote (named by --advice_file=
or --benchmarks_file=) must also validate against its schema there.
"""
import os, pathlib, re, shutil, signal, subprocess, sys, tempfile, time


def read(path):
    return pathlib.Path(path).read_bytes().decode("utf-8", "replace")


def compare_stream(case, name, actual, failures):
    exact = os.path.join(case, "expected", name)
    if os.path.exists(exact + ".re"):
        if not re.fullmatch(read(exact + ".re"), actual, re.DOTALL):
            failures.append(f"{name} does not match {exact}.re:\n{actual}")
    elif actual != (expected := read(exact) if os.path.exists(exact) else ""):
        failures.append(f"{name} differs.\n--- expected\n{expected}--- actual\n{actual}---")


def matches_document(expected, actual):
    """Whether a written document is the expected one; @TIMESTAMP@ in the expected
    text stands for any time stamp in the documents' numeric format."""
    pattern = re.escape(expected).replace(re.escape("@TIMESTAMP@"), "0x[0-9a-f]+")
    return re.fullmatch(pattern, actual) is not None


DOCUMENTS = ["--advice_file=advice.xml", "--benchmarks_file=perf.xml", "--xml_link_info=link.xml"]
SHORTHANDS = {"{documents}": DOCUMENTS,
              "{files}": [*DOCUMENTS, "--linker_options_file=options.cmd"]}
SCHEMAS = {"--advice_file=": "advice.xsd", "--benchmarks_file=": "perf_results.xsd"}


def documents_of(args, work):
    """The documents the arguments name, each with its schema and current text."""
    found = {}
    for arg in args:
        for prefix, schema in SCHEMAS.items():
            if arg.startswith(prefix):
                path = os.path.join(work, arg[len(prefix):])
                found[path] = (schema, read(path) if os.path.isfile(path) else None)
    return found


def check_schemas(schema_dir, before, after, failures):
    for path, (schema, text) in after.items():
        if text is None or text == before[path][1]:
            continue  # not written by the run
        check = subprocess.run(["xmllint", "--noout", "--schema", os.path.join(schema_dir, schema),
                                path], capture_output=True, text=True)
        if check.returncode != 0:
            failures.append(f"{os.path.basename(path)} breaks {schema}:\n{check.stderr}")


def wait_until_reading(pid):
    """Returns once the process waits in a read of a pipe (the FIFO), or after 20 s."""
    deadline = time.monotonic() + 20
    while time.monotonic() < deadline:
        with open(f"/proc/{pid}/wchan") as wchan:
            if "pipe_read" in wchan.read():
                return
        os.sched_yield()


def run_with_signal(binary, args, work, signame):
    fifo = os.path.join(work, "cmd.fifo")
    os.mkfifo(fifo)
    proc = subprocess.Popen(["advzorv", *args], executable=binary, cwd=work,
                            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE)
    # Opening the write end waits until the tool has opened the FIFO for reading.
    writer = os.open(fifo, os.O_WRONLY)
    wait_until_reading(proc.pid)
    proc.send_signal(getattr(signal, signame))
    out, err = proc.communicate(timeout=20)
    os.close(writer)
    return proc.returncode, out, err


def main():
    binary, case = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
    args_file = os.path.join(case, "args")
    lines = read(args_file).splitlines() if os.path.exists(args_file) else []
    args = [arg for line in lines for arg in SHORTHANDS.get(line, [line])]
    failures = []
    with tempfile.TemporaryDirectory(prefix="advzorv-e2e-") as tmp:
        work, inputs = os.path.join(tmp, "work"), os.path.join(case, "input")
        shutil.copytree(inputs, work) if os.path.isdir(inputs) else os.mkdir(work)
        before = documents_of(args, work)
        signal_file = os.path.join(case, "signal")
        if os.path.exists(signal_file):
            status, out, err = run_with_signal(binary, args, work, read(signal_file).strip())
        else:
            done = subprocess.run(["advzorv", *args], executable=binary, cwd=work,
                                  stdin=subprocess.DEVNULL, capture_output=True, timeout=60)
            status, out, err = done.returncode, done.stdout, done.stderr
        status_file = os.path.join(case, "expected", "status")
        expected_status = int(read(status_file)) & 0xFF if os.path.exists(status_file) else 0
        if status & 0xFF != expected_status:
            failures.append(f"exit status {status & 0xFF}, expected {expected_status}")
        compare_stream(case, "stdout", out.decode("utf-8", "replace"), failures)
        compare_stream(case, "stderr", err.decode("utf-8", "replace"), failures)
        if len(sys.argv) > 3:
            check_schemas(sys.argv[3], before, documents_of(args, work), failures)
        files = os.path.join(case, "expected", "files")
        for root, _, names in os.walk(files):
            for name in names:
                rel = os.path.relpath(os.path.join(root, name), files)
                produced = os.path.join(work, rel)
                if not os.path.exists(produced):
                    failures.append(f"{rel} was not written")
                elif not matches_document(read(os.path.join(root, name)), read(produced)):
                    failures.append(f"{rel} differs:\n{read(produced)}")
    print("\n".join([f"FAIL {os.path.basename(case)}", *failures]) if failures else
          f"ok {os.path.basename(case)}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
