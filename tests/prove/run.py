#!/usr/bin/env python3
"""usage: run.py TEST_PROVE PROCESSES [JOB]

Runs every sweep over all points, each in parts that are worked off by so many processes at a time, and prints one
table: a line for each job and fault, and one for each fault. Fails when there is a violation."""

import collections
import concurrent.futures
import os
import re
import subprocess
import sys
import time

LINE = "{:<18} | {:<42} | {:>6} | {:>6} | {:>4} | {:>5} | {:>5} | {}"
NOTE = """told: a call gave a status, or the process was killed; viol: violations; over: passed over by a tool, as the catalogue does;
lost: blocks lost by a fault within a flush, which was told"""


def sweeps(program, job):
    """The tests that print lines for the table; those of single findings are of no job that was asked for."""
    listed = subprocess.run([program, "--gtest_list_tests"], check=True, capture_output=True, text=True).stdout
    suite, names = "", []
    for line in listed.splitlines():
        if line.startswith("  "):
            names.append(suite + line.strip())
        elif line.endswith("."):
            suite = line
    single = re.compile(r"^Jobs\.|^Readings\.|told_where|leaves_no_array|leaves_the" + ("|^KillBetween" if job else ""))
    return [name for name in names if not single.search(name)]


def run(program, sweep, part, job):
    # What is linked at once need not be linked again in each process that is forked.
    settings = {"VAK_PROVE_ALL": "1", "VAK_PROVE_PART": part, "LD_BIND_NOW": "1"}
    if job:
        settings["VAK_PROVE_JOB"] = job
    done = subprocess.run([program, "--gtest_filter=" + sweep], env=os.environ | settings, check=False,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace")
    return done.returncode, done.stdout


class Table:
    """The lines "prove| fault | job | numbers ... | frame number frame number" that the parts print."""

    def __init__(self):
        self.totals = {}

    def add(self, output):
        for line in re.findall(r"^prove\| (.*)$", output, re.MULTILINE):
            fault, job, *numbers, frames = (word.strip() for word in line.split("|"))
            numbers = [int(number) for number in numbers]
            if job != "all":
                self.print(fault, job, numbers, frames)
                continue
            total, inside = self.totals.setdefault(fault, ([0] * len(numbers), collections.Counter()))
            total[:] = [a + b for a, b in zip(total, numbers)]
            words = frames.split()
            inside.update({frame: int(number) for frame, number in zip(words[::2], words[1::2])})

    def print_totals(self):
        for fault, (numbers, inside) in self.totals.items():
            self.print(fault, "all", numbers, " ".join(f"{frame} {n}" for frame, n in inside.items()))

    @staticmethod
    def print(fault, job, numbers, frames):
        print(LINE.format(fault, job, *numbers, frames).rstrip(), flush=True)


def main(program, processes, job=""):
    processes = int(processes)
    parts = 6 * processes
    table, failed, begin = Table(), [], time.time()
    print(LINE.format("fault", "job", "points", "told", "viol", "over", "lost", "crashes inside HDF5"))
    with concurrent.futures.ThreadPoolExecutor(processes) as pool:
        trials = [pool.submit(run, program, sweep, f"{part}/{parts}", job)
                  for sweep in sweeps(program, job) for part in range(parts)]
        for trial in trials:
            status, output = trial.result()
            table.add(output)
            if status != 0:
                failed.append("\n".join(line for line in output.splitlines() if not line.startswith("prove| ")))
    table.print_totals()
    print(NOTE)
    if "VAK_PROVE_EVERY" in os.environ:
        print(f"prove: one of {os.environ['VAK_PROVE_EVERY']} points")
    print(f"prove: {time.time() - begin:.0f} s by {processes} processes")
    if failed:
        print("\n".join(failed), file=sys.stderr)
        sys.exit("prove: there are violations")
    print("prove: no violation")


main(*sys.argv[1:])
