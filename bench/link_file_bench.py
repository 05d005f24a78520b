#!/usr/bin/env python3
"""Times whole runs of the tool on generated link files of 1, 10 and 50 MB,
each run paired with read_xml alone on the same file (the yardstick: the XML
parser into a property tree under the C library's allocator), and a run on
the bundled example paired with a C++ hello world. Prints medians of the wall
times, of the pairwise ratios and of the peak memories (the kernel's maximum
resident set of each process).

usage: link_file_bench.py [--build DIR] [--runs N] [--sizes 1,10,50]
"""
import argparse
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def run(command, cwd):
    """Wall seconds, CPU seconds and peak resident MiB of one process."""
    start = time.perf_counter()
    process = subprocess.Popen(command, cwd=cwd, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    wall = time.perf_counter() - start
    if os.waitstatus_to_exitcode(status) < 0:
        sys.exit(f"{command[0]} ended by a signal")
    return wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024


def paired(a, b, cwd, runs, before_a=lambda: None):
    """Medians of a's and b's wall time, of the ratios a/b of wall and of CPU
    time, and of the peaks: one warm-up pair first, then the two in turn."""
    rows = []
    for index in range(runs + 1):
        before_a()
        first, second = run(a, cwd), run(b, cwd)
        if index:
            rows.append((first, second))
    median = statistics.median
    return {"a": median(r[0][0] for r in rows), "b": median(r[1][0] for r in rows),
            "ratio": median(r[0][0] / r[1][0] for r in rows),
            "cpu_ratio": median(r[0][1] / r[1][1] for r in rows),
            "a_peak": median(r[0][2] for r in rows), "b_peak": median(r[1][2] for r in rows)}


def arguments(doc, sizes):
    """The options of a benchmark on generated link files: --build, --runs, --sizes."""
    parser = argparse.ArgumentParser(description=doc.splitlines()[0])
    parser.add_argument("--build", default=os.path.join(ROOT, "build"))
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--sizes", default=sizes)
    return parser.parse_args()


def generated_link_file(work, size):
    """A link file of size MB in work, the same every time."""
    link = os.path.join(work, f"link_{size}.xml")
    subprocess.run([sys.executable, os.path.join(ROOT, "bench", "gen_link_info.py"),
                    size, link, "1"], check=True)
    return link


def plain_run(tool, link):
    """A run of the tool on link without a benchmark event."""
    return [tool, "--advice_file=advice.xml", "--benchmarks_file=perf_results.xml",
            f"--xml_link_info={link}",
            f"--linker_options_file={os.path.join(ROOT, 'examples', 'demo', 'options.cmd')}"]


def main():
    args = arguments(__doc__, "1,10,50")
    tool = os.path.join(args.build, "ADVICE_PERF", "advzorv")
    alone = os.path.join(args.build, "bench", "read_xml_alone")
    hello = os.path.join(args.build, "bench", "hello_world")

    work = tempfile.mkdtemp(prefix="advzorv-bench-")
    try:
        print(f"{'link file':>10} {'tool s':>8} {'read_xml s':>10} {'ratio':>6} {'cpu ratio':>9} "
              f"{'tool MiB':>9} {'read_xml MiB':>12}")
        tool_wall = {}
        for size in args.sizes.split(","):
            link = generated_link_file(work, size)
            m = paired(plain_run(tool, link), [alone, link], work, args.runs)
            tool_wall[size] = m["a"]
            print(f"{size + ' MB':>10} {m['a']:8.3f} {m['b']:10.3f} {m['ratio']:6.2f} "
                  f"{m['cpu_ratio']:9.2f} {m['a_peak']:9.1f} {m['b_peak']:12.1f}")
        if "10" in tool_wall and "50" in tool_wall:
            print(f"growth: the 50 MB run takes {tool_wall['50'] / tool_wall['10']:.2f}x "
                  "the 10 MB run")

        # The example as a first run: rewriting existing documents adds the
        # file system's flush of replaced files, a cost of writing, not start-up.
        demo = os.path.join(work, "demo")
        shutil.copytree(os.path.join(ROOT, "examples", "demo"), demo)
        documents = ["advice.xml", "perf_results.xml"]
        example = [tool, f"--advice_file={documents[0]}", f"--benchmarks_file={documents[1]}",
                   "--xml_link_info=link_info.xml", "--linker_options_file=options.cmd"]

        def remove_documents():
            for name in documents:
                if os.path.exists(os.path.join(demo, name)):
                    os.remove(os.path.join(demo, name))

        m = paired(example, [hello], demo, max(args.runs, 20), remove_documents)
        print(f"example first run {m['a'] * 1000:.2f} ms, hello world {m['b'] * 1000:.2f} ms: "
              f"ratio {m['ratio']:.2f}, cpu ratio {m['cpu_ratio']:.2f}")
    finally:
        shutil.rmtree(work)


if __name__ == "__main__":
    main()
