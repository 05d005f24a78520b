#!/usr/bin/env python3
"""Times advzorv-report sizes and diff on generated link files, each run paired
with a plain run of the tool on the same file: both read it with the tool's
reader, so the ratio shows what the views add. Prints medians of the wall
times, of the pairwise ratios and of the peak memories.

usage: report_sizes_bench.py [--build DIR] [--runs N] [--sizes 10,50]
"""
import argparse
import os
import shutil
import subprocess
import sys
import tempfile

from link_file_bench import ROOT, paired


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", default=os.path.join(ROOT, "build"))
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--sizes", default="10,50")
    args = parser.parse_args()
    tool = os.path.join(args.build, "ADVICE_PERF", "advzorv")
    report = os.path.join(args.build, "programs", "report", "advzorv-report")
    options = os.path.join(ROOT, "examples", "demo", "options.cmd")
    work = tempfile.mkdtemp(prefix="advzorv-bench-")
    try:
        print(f"{'link file':>10} {'view':>6} {'report s':>9} {'tool s':>7} {'ratio':>6} "
              f"{'report MiB':>10} {'tool MiB':>9}")
        for size in args.sizes.split(","):
            link = os.path.join(work, f"link_{size}.xml")
            subprocess.run([sys.executable, os.path.join(ROOT, "bench", "gen_link_info.py"),
                            size, link, "1"], check=True)
            whole = [tool, "--advice_file=advice.xml", "--benchmarks_file=perf_results.xml",
                     f"--xml_link_info={link}", f"--linker_options_file={options}"]
            # diff reads the file twice, so it is paired with the tool's run and
            # counted against twice that run's time.
            for view, command, reads in (("sizes", [report, "sizes", "--json", link], 1),
                                         ("diff", [report, "diff", "--json", link, link], 2)):
                m = paired(command, whole, work, args.runs)
                print(f"{size + ' MB':>10} {view:>6} {m['a']:9.3f} {m['b']:7.3f} "
                      f"{m['ratio'] / reads:6.2f} {m['a_peak']:10.1f} {m['b_peak']:9.1f}")
    finally:
        shutil.rmtree(work)


if __name__ == "__main__":
    main()
