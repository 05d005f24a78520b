#!/usr/bin/env python3
"""Times advzorv-report sizes and diff on generated link files, each run paired
with a plain run of the tool on the same file: both read it with the tool's
reader, so the ratio shows what the views add. Prints medians of the wall
times, of the pairwise ratios and of the peak memories.

usage: report_sizes_bench.py [--build DIR] [--runs N] [--sizes 10,50]
"""
import os
import shutil
import tempfile

from link_file_bench import arguments, generated_link_file, paired, plain_run


def main():
    args = arguments(__doc__, "10,50")
    tool = os.path.join(args.build, "ADVICE_PERF", "advzorv")
    report = os.path.join(args.build, "programs", "report", "advzorv-report")
    work = tempfile.mkdtemp(prefix="advzorv-bench-")
    try:
        print(f"{'link file':>10} {'view':>6} {'report s':>9} {'tool s':>7} {'ratio':>6} "
              f"{'report MiB':>10} {'tool MiB':>9}")
        for size in args.sizes.split(","):
            link = generated_link_file(work, size)
            # diff reads the file twice: its ratio is to twice the tool's run.
            for view, command, reads in (("sizes", [report, "sizes", "--json", link], 1),
                                         ("diff", [report, "diff", "--json", link, link], 2)):
                m = paired(command, plain_run(tool, link), work, args.runs)
                print(f"{size + ' MB':>10} {view:>6} {m['a']:9.3f} {m['b']:7.3f} "
                      f"{m['ratio'] / reads:6.2f} {m['a_peak']:10.1f} {m['b_peak']:9.1f}")
    finally:
        shutil.rmtree(work)


if __name__ == "__main__":
    main()
