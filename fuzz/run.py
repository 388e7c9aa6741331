#!/usr/bin/env python3
"""Runs fuzz targets for so many seconds each and tells what they found, by the frame in which it happened.

A run ends at its first finding; it is started again, with what it has learnt, until the time is up. A finding whose top
frame is of this project (or that left something open) is a failure of ours; one in HDF5 or below it is counted by that frame.
Ends with status 1 when there is a finding of ours. The input of each kind of finding is kept in FOLDER/findings.
"""
import argparse
import collections
import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time

SEEDS = {"catalogue": "hdf5", "readers": "hdf5", "erase": "hdf5", "extlinks": "hdf5"}
TARGETS = ["open", "catalogue", "readers", "erase", "merge", "extlinks", "params", "frd", "mtx", "sorting"]
NO_FRAME = "no frame known"
FRAME = re.compile(r"^\s+#\d+ 0x[0-9a-f]+ (?:in )?(.*)$")
HDF5 = re.compile(r"\(.*/libhdf5[^/]*\.so")
OURS = re.compile(r"/(src|cli|fuzz)/[\w/]+\.(cpp|h):|in vak::|^vak::")
# What an allocation, a copy or the report itself went through.
PASSED_OVER = re.compile(r"^(__interceptor_|__asan_|__sanitizer|__lsan|operator new|malloc|calloc|realloc|free|mem\w+$|str\w+$"
                         r"|abort|raise|gsignal|std::|void std::|decltype|__gnu_cxx|fuzzer::|__cxa|_start|__libc)|libFuzzer|"
                         r"libc\.so|libstdc\+\+|compiler-rt|/c\+\+/\d+/|FuzzerMain|\(<unknown module>\)")


def frames(report):
    """The stack that the report begins with."""
    stack = []
    for line in report.splitlines():
        match = FRAME.match(line)
        if match:
            stack.append(match[1])
        elif stack:
            break
    return stack


def name_of(frame):
    plain = re.sub(r" (\(/|/).*$", "", frame.replace("(anonymous namespace)::", ""))
    return plain.split("(")[0].split("<")[0].strip() or frame


def cause(report):
    found = re.search(r"(?:ERROR|SUMMARY): \w+: ([\w-]+)", report)
    kind = found[1] if found else "unknown"
    if "runtime error:" in report:
        kind = "undefined-behaviour"
    return kind


def classify(report):
    """('ours' or 'HDF5', the frame's name with the kind of finding)."""
    for frame in frames(report):
        if HDF5.search(frame):
            return "HDF5", f"{name_of(frame)} ({cause(report)})"
        if PASSED_OVER.search(frame):
            continue
        if OURS.search(frame):
            return "ours", f"{name_of(frame)} ({cause(report)})"
    return "ours", f"{NO_FRAME} ({cause(report)})"


class Target:
    def __init__(self, name, build, folder):
        self.name = name
        self.program = build / f"fuzz_{name}"
        self.seeds = folder / "seeds" / SEEDS.get(name, name)
        self.corpus = folder / "corpus" / name
        self.findings = folder / "findings" / name
        for place in (self.corpus, self.findings):
            place.mkdir(parents=True, exist_ok=True)
        self.runs = 0
        self.found = collections.Counter()

    def command(self, seconds, artifacts):
        return [str(self.program), f"-max_total_time={seconds}", "-close_fd_mask=3", "-print_final_stats=1", "-timeout=10",
                "-rss_limit_mb=1500", "-malloc_limit_mb=256", "-max_len=262144", "-reload=0", "-verbosity=1",
                f"-artifact_prefix={artifacts}/", str(self.corpus), str(self.seeds)]

    def environment(self, work):
        # HDF5 gives up memory of files that it cannot close; the rest of what is lost is ours.
        quiet = pathlib.Path(work, "leaks")
        quiet.write_text("leak:libhdf5\n")
        return dict(os.environ, TMPDIR=work, LSAN_OPTIONS=f"suppressions={quiet}:print_suppressions=0",
                    ASAN_OPTIONS="quarantine_size_mb=16:detect_leaks=1:allocator_may_return_null=1",
                    UBSAN_OPTIONS="print_stacktrace=1")

    def run_once(self, seconds):
        with tempfile.TemporaryDirectory(prefix="vak_fuzz.", dir=memory_folder()) as work:
            environment = self.environment(work)
            done = subprocess.run(self.command(seconds, work), env=environment, capture_output=True, check=False)
            report = done.stderr.decode(errors="replace")
            counted = re.search(r"number_of_executed_units: (\d+)", report)
            self.runs += int(counted[1]) if counted else 0
            if done.returncode != 0:
                self.keep(self.with_frames(report, work, environment), work)
            return done.returncode

    def with_frames(self, report, work, environment):
        """Who took too much memory at once is told only where what the process has is not seen to be too much first."""
        inputs = [path for path in pathlib.Path(work).glob("oom-*") if path.is_file()]
        if not classify(report)[1].startswith(NO_FRAME) or not inputs:
            return report
        command = [str(self.program), "-rss_limit_mb=6000", "-malloc_limit_mb=256", "-timeout=10", "-runs=1", str(inputs[0])]
        again = subprocess.run(command, env=environment, capture_output=True, check=False).stderr.decode(errors="replace")
        return report if classify(again)[1].startswith(NO_FRAME) else again

    def keep(self, report, work):
        whose, where = classify(report)
        self.found[whose, where] += 1
        if self.found[whose, where] > 1:
            return
        name = re.sub(r"\W+", "_", f"{whose} {where}").strip("_")
        (self.findings / f"{name}.txt").write_text(report)
        for artifact in pathlib.Path(work).iterdir():
            if artifact.is_file() and artifact.name != "leaks":
                shutil.copy(artifact, self.findings / name)

    def run(self, seconds):
        end = time.monotonic() + seconds
        while (left := int(end - time.monotonic() + 0.5)) > 0:
            self.run_once(left)
        return self


def memory_folder():
    return "/dev/shm" if os.access("/dev/shm", os.W_OK) else None


def table(targets):
    print(f"{'target':<10} {'runs':>9}  findings")
    for target in targets:
        print(f"{target.name:<10} {target.runs:>9}  {'' if target.found else 'none'}")
        for (whose, where), count in sorted(target.found.items(), reverse=True):
            print(f"{'':<20}  {whose}: {where} x {count}")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", default="build/fuzz/fuzz", type=pathlib.Path, help="where the targets are")
    parser.add_argument("--folder", default="build/fuzz/found", type=pathlib.Path, help="for seeds, corpus and findings")
    parser.add_argument("--seconds", default=10, type=float, help="for each target")
    parser.add_argument("--hours", type=float, help="for all of them together")
    parser.add_argument("--jobs", default=2, type=int, help="targets at once")
    parser.add_argument("targets", nargs="*", default=TARGETS)
    asked = parser.parse_args()
    seconds = asked.hours * 3600 * asked.jobs / len(asked.targets) if asked.hours else asked.seconds
    shutil.rmtree(asked.folder / "seeds", ignore_errors=True)
    subprocess.run([asked.build / "make_seeds", asked.folder / "seeds"], check=True)
    targets = [Target(name, asked.build, asked.folder) for name in asked.targets]
    with concurrent.futures.ThreadPoolExecutor(asked.jobs) as pool:
        for done in pool.map(lambda target: target.run(seconds), targets):
            table([done])
            sys.stdout.flush()
    ours = sum(n for target in targets for (whose, _), n in target.found.items() if whose == "ours")
    print(f"fuzz: {sum(t.runs for t in targets)} runs, {ours} findings of ours, "
          f"{sum(t.found.total() for t in targets) - ours} in HDF5")
    return 1 if ours else 0


if __name__ == "__main__":
    sys.exit(main())
