#!/usr/bin/env python3
"""Times whole runs of the tool on generated link files of 1, 10 and 50 MB,
each run in a round with pugixml's parse of the same file plus the tool's sums
(the anchor) and read_xml alone (the XML parser into a property tree under the
C library's allocator); then N (2 x cores) runs of one project started at once
against the same runs on separate documents, on the 10 MB file; then a run on
the bundled example paired with a C++ hello world. Prints medians of the wall
times, of the ratios within each round and of the peak memories (the kernel's
maximum resident set of each process).

usage: link_file_bench.py [--build DIR] [--runs N] [--sizes 1,10,50] [--parallel N]
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
    return rounds([a, b], cwd, runs, before_a)[1]


def rounds(commands, cwd, runs, before_first=lambda: None):
    """For each command after the first, the medians of the first's and its
    wall time, of the ratios first/it of wall and CPU time, and of both peaks;
    one warm-up round first, then the commands in turn in each round."""
    table = []
    for index in range(runs + 1):
        before_first()
        measured = [run(command, cwd) for command in commands]
        if index:
            table.append(measured)
    median = statistics.median
    return [None] + [
        {"a": median(r[0][0] for r in table), "b": median(r[other][0] for r in table),
         "ratio": median(r[0][0] / r[other][0] for r in table),
         "cpu_ratio": median(r[0][1] / r[other][1] for r in table),
         "a_peak": median(r[0][2] for r in table), "b_peak": median(r[other][2] for r in table)}
        for other in range(1, len(commands))]


def at_once(commands):
    """Wall seconds from starting all the commands, each in its directory, to
    the end of the last."""
    start = time.perf_counter()
    processes = [subprocess.Popen(command, cwd=cwd, stdout=subprocess.DEVNULL,
                                  stderr=subprocess.DEVNULL) for command, cwd in commands]
    for process in processes:
        if process.wait() < 0:
            sys.exit(f"{commands[0][0][0]} ended by a signal")
    return time.perf_counter() - start


def parallel(tool_run, work, runs, count):
    """Medians of the wall time of count runs of one project at once, of the
    same runs on separate documents, and of the ratio within a round."""
    shared = os.path.join(work, "shared")
    separate = [os.path.join(work, f"separate_{index}") for index in range(count)]
    for directory in [shared] + separate:
        os.makedirs(directory, exist_ok=True)
    table = []
    for index in range(runs + 1):
        one = at_once([(tool_run, shared)] * count)
        apart = at_once([(tool_run, directory) for directory in separate])
        if index:
            table.append((one, apart))
    median = statistics.median
    return median(r[0] for r in table), median(r[1] for r in table), \
        median(r[0] / r[1] for r in table)


def arguments(doc, sizes, *extra):
    """The options of a benchmark on generated link files: --build, --runs,
    --sizes, and each of extra, a pair of an option's name and its settings."""
    parser = argparse.ArgumentParser(description=doc.splitlines()[0])
    parser.add_argument("--build", default=os.path.join(ROOT, "build"))
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--sizes", default=sizes)
    for name, settings in extra:
        parser.add_argument(name, **settings)
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
    args = arguments(__doc__, "1,10,50",
                     ("--parallel", {"type": int, "default": 2 * (os.cpu_count() or 1),
                                     "help": "runs started at once (default: 2 x cores)"}))
    tool = os.path.join(args.build, "ADVICE_PERF", "advzorv")
    alone = os.path.join(args.build, "bench", "read_xml_alone")
    anchor = os.path.join(args.build, "bench", "pugixml_sum")
    hello = os.path.join(args.build, "bench", "hello_world")
    if not os.path.exists(anchor):
        sys.exit(f"{anchor} is missing: install libpugixml-dev (scripts/setup.sh) and rebuild")

    work = tempfile.mkdtemp(prefix="advzorv-bench-")
    try:
        print(f"{'link file':>10} {'tool s':>7} {'pugixml s':>9} {'ratio':>5} {'cpu ratio':>9} "
              f"{'tool MiB':>8} {'pugixml MiB':>11} {'read_xml s':>10} {'read_xml MiB':>12}")
        tool_wall, links = {}, {}
        for size in args.sizes.split(","):
            link = links[size] = generated_link_file(work, size)
            _, pugi, xml = rounds([plain_run(tool, link), [anchor, link], [alone, link]], work,
                                  args.runs)
            tool_wall[size] = pugi["a"]
            print(f"{size + ' MB':>10} {pugi['a']:7.3f} {pugi['b']:9.3f} {pugi['ratio']:5.2f} "
                  f"{pugi['cpu_ratio']:9.2f} {pugi['a_peak']:8.1f} {pugi['b_peak']:11.1f} "
                  f"{xml['b']:10.3f} {xml['b_peak']:12.1f}")
        if "10" in tool_wall and "50" in tool_wall:
            print(f"growth: the 50 MB run takes {tool_wall['50'] / tool_wall['10']:.2f}x "
                  "the 10 MB run")
        if "10" in links:
            one, apart, ratio = parallel(plain_run(tool, links["10"]), work, args.runs,
                                         args.parallel)
            print(f"{args.parallel} runs at once on the 10 MB file: one project {one:.3f} s, "
                  f"separate documents {apart:.3f} s: ratio {ratio:.2f}")

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
