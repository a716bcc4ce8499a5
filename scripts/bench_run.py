"""Measures what scripts/bench is asked for: prints the table and the comparison, and writes JSON.

What belongs together (a floor and what stands beside it, with the same arguments) is a family. It
runs in a process of its own, again and again, in turns with all others, so that what disturbs the
machine for a while disturbs all of them.
"""

import argparse
import datetime
import fnmatch
import json
import os
import pathlib
import platform
import re
import select
import signal
import subprocess
import sys
import tempfile
import time
from collections import defaultdict

import bench_table

MORE_THAN_A_NAME = re.compile(
    r"/(iterations|min_time|repeats):[^/]+|/(real_time|manual_time|process_time)"
)
TO_MICROSECONDS = {"ns": 1e-3, "us": 1.0, "ms": 1e3, "s": 1e6}
OF_EACH_RUN = re.compile(  # what is left is a counter of the benchmark's own
    r".*(name|_index|_time|_per_second|time_unit|run_type|repetitions|iterations|threads)$"
)
GROWTH = ("bench_pages_cold", "bench_shortcutfile_cold", "bench_mappings_cold", "bench_cluster")
FEWEST, MOST = 3, 15  # runs of a family
SHORT = 2  # seconds of a run
LONGEST_START = 60  # seconds until the first frame
SETTLING, IDLE = 2, 3  # seconds after the first frame, and for which wake-ups are counted


def fail(message):
    sys.exit(f"bench: {message}")


class Build:
    """The programs of one revision, by their rows."""

    def __init__(self, folder, probe_folder, home):
        self.bin = pathlib.Path(folder) / "bin"
        self.probe = pathlib.Path(probe_folder) / "lib/libhostprobe.so"
        self.host_floor = pathlib.Path(probe_folder) / "bin/hostfloor"
        self.home = pathlib.Path(home)
        self.home.mkdir(mode=0o700)
        self.environment = {
            **os.environ,
            "HOME": str(self.home),
            "XDG_RUNTIME_DIR": str(self.home),
            "QT_QPA_PLATFORM": "offscreen",
            "QT_LOGGING_RULES": "*.debug=false",
            "LC_ALL": "C.UTF-8",
        }
        for name in ("XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "LD_PRELOAD"):
            self.environment.pop(name, None)
        self.recipe = None
        self.families = defaultdict(dict)  # (program, group, arguments): {row: its own name there}
        for program in sorted(self.bin.glob("bench_*")):
            if program.name.endswith("_cold"):
                stem = program.name[len("bench_") :]
                variants = self.lines(program.name, "--variants")
                names = {f"{stem}/{variant}": variant for variant in variants}
            else:
                listed = self.lines(program.name, "--benchmark_list_tests=true")
                names = {MORE_THAN_A_NAME.sub("", name): name for name in listed}
            for row, name in names.items():
                group, _, *arguments = row.split("/")
                self.families[program.name, group, "/".join(arguments)][row] = name
        for figures in (("host_start",), ("host_wakeups", "host_memory", "host_memory_peak")):
            for figure in figures:
                for variant in ("floor", "ours"):
                    self.families["mivohost", figures[0], ""][f"{figure}/{variant}"] = variant

    def lines(self, name, *arguments):
        done = subprocess.run(
            [self.bin / name, *arguments],
            env=self.environment, stdin=subprocess.DEVNULL, capture_output=True, text=True,
        )
        if done.returncode != 0:
            fail(f"{name} failed with {done.returncode}:\n{done.stderr}")
        return done.stdout.split("\n")[:-1]

    def rows(self):
        return [row for names in self.families.values() for row in names]

    def run(self, family, rows, warm):
        """{row: (value, unit, counters)} of one run; of the second one in its process if `warm`."""
        program = family[0]
        if program == "mivohost":
            measured = self.start_host() if family[1] == "host_start" else self.idle_host()
            return {row: measured[row] for row in rows}
        names = {row: self.families[family][row] for row in rows}
        if program.endswith("_cold"):
            return {row: self.run_once(program, name) for row, name in names.items()}
        chosen = "|".join(re.escape(name).replace(r"\-", "-") for name in names.values())
        with tempfile.NamedTemporaryFile(suffix=".json", dir=self.home) as out:
            self.lines(
                program,
                f"--benchmark_filter=^({chosen})$",
                "--benchmark_min_time=0.05",
                f"--benchmark_repetitions={2 if warm else 1}",
                f"--benchmark_out={out.name}",
                "--benchmark_out_format=json",
            )
            with open(out.name, encoding="utf-8") as stream:
                runs = json.load(stream)["benchmarks"]
        found = {}
        for run in runs:
            if run.get("error_occurred"):
                fail(f"{run['name']}: {run['error_message']}")
            if run["run_type"] != "iteration" or run["repetition_index"] < warm:
                continue
            counters = {k: v for k, v in run.items() if not OF_EACH_RUN.match(k)}
            microseconds = run["real_time"] * TO_MICROSECONDS[run["time_unit"]]
            found[MORE_THAN_A_NAME.sub("", run["run_name"])] = (microseconds, "us", counters)
        return found

    def run_once(self, program, variant):
        """"microseconds", or "microseconds KiB" where memory is measured too."""
        microseconds, *memory = self.lines(program, variant)[-1].split()
        return float(microseconds), "us", {"peak_KiB": int(memory[0])} if memory else {}

    def host(self, variant, recipe=False):
        """Starts mivohost or its floor: the process, microseconds to its first frame, the rest."""
        reads, writes = os.pipe()
        command = [self.bin / "mivohost"] if variant == "ours" else [self.host_floor, self.recipe]
        environment = {
            **self.environment,
            "LD_PRELOAD": str(self.probe),
            "MIVO_BENCH_PROBE": str(writes),
        }
        if recipe:
            environment["MIVO_BENCH_RECIPE"] = "1"
        began = time.monotonic_ns()
        process = subprocess.Popen(
            command, env=environment, pass_fds=[writes],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
        )
        os.close(writes)
        try:
            with os.fdopen(reads, encoding="utf-8") as stream:
                if not select.select([stream], [], [], LONGEST_START)[0]:
                    fail(f"{command[0].name} has drawn nothing for {LONGEST_START} s")
                first, _, rest = stream.read().partition("\n")
        except BaseException:
            end(process)
            raise
        if not first:
            end(process)
            fail(f"{command[0].name} ended without a frame, exit code {process.returncode}")
        return process, (int(first) - began) / 1e3, rest

    def warm_up_host(self):
        """The first start makes the files, and tells what the floor is made of."""
        process, _, recipe = self.host("ours", recipe=True)
        end(process)
        self.recipe = self.home / "recipe"
        self.recipe.write_text(recipe, encoding="utf-8")

    def start_host(self):
        if self.recipe is None:
            self.warm_up_host()
        measured = {}
        for variant in ("floor", "ours"):
            process, microseconds, _ = self.host(variant)
            end(process)
            measured[f"host_start/{variant}"] = (microseconds, "us", {})
        return measured

    def idle_host(self):
        """Both at once: they wait most of the time."""
        if self.recipe is None:
            self.warm_up_host()
        processes = {}
        measured = {}
        try:
            for variant in ("floor", "ours"):
                processes[variant] = self.host(variant)[0]
            time.sleep(SETTLING)
            before = {variant: switches(process.pid) for variant, process in processes.items()}
            time.sleep(IDLE)
            for variant, process in processes.items():
                woken = switches(process.pid) - before[variant]
                measured[f"host_wakeups/{variant}"] = (woken / IDLE, "1/s", {})
                status = figures_of(f"/proc/{process.pid}/status")
                measured[f"host_memory/{variant}"] = (status["VmRSS"], "KiB", {})
                measured[f"host_memory_peak/{variant}"] = (status["VmHWM"], "KiB", {})
        finally:
            for process in processes.values():
                end(process)
        return measured


def end(process):
    process.terminate()
    try:
        process.wait(20)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


def figures_of(file):
    """Those of a file like /proc/PID/status, in its own units."""
    lines = re.findall(r"^(\w+):\s*(\d+)", pathlib.Path(file).read_text(), re.M)
    return {name: int(figure) for name, figure in lines}


def switches(pid):
    """How often the threads of a process and of its children have waited for something."""
    count = 0
    for thread in pathlib.Path(f"/proc/{pid}/task").iterdir():
        try:
            count += figures_of(thread / "status")["voluntary_ctxt_switches"]
            count += sum(switches(child) for child in (thread / "children").read_text().split())
        except (FileNotFoundError, ProcessLookupError):
            pass  # it has just ended
    return count


def chosen_families(build, patterns, growth):
    """{family: its rows} that are asked for, each with its floor."""
    wanted = set()
    for pattern in patterns:
        if any(sign in pattern for sign in "*?["):
            found = fnmatch.filter(build.rows(), pattern)
        else:
            found = [row for row in build.rows() if pattern in row]
        if not found:
            there = bench_table.in_order(build.rows())
            print(f"bench: no row {pattern}; there are", *there, sep="\n  ", file=sys.stderr)
            sys.exit(2)
        wanted.update(found)
    families = {}
    for family, names in build.families.items():
        if not patterns and (growth or family[0] not in GROWTH):
            families[family] = list(names)
        elif wanted & names.keys():
            floors = map(bench_table.floor_of, wanted)
            families[family] = [row for row in names if row in wanted.union(floors)]
    return families


def measure(builds, families, seconds, most, results):
    """Adds to `results[build][row]` what is measured in about so many seconds: each family `most`
    times at most, and FEWEST times at least unless the time is over; then once.

    The first run of a family tells how long it takes. Where that is short it does not count, and
    the others do everything twice in their process and keep the second time, when code and fonts
    are warm.
    """
    trial, spent, last, kept = {}, defaultdict(float), defaultdict(float), defaultdict(int)
    share = seconds / len(families)
    began = time.monotonic()
    for turn in range(most + 1):
        if not sys.stderr.isatty():
            print(f"run {turn}, after {time.monotonic() - began:.0f} s", file=sys.stderr)
        for family, rows in families.items():
            enough = most if spent[family] + last[family] <= share else FEWEST
            if kept[family] >= enough:
                continue
            if kept[family] and time.monotonic() - began > seconds:
                continue
            if sys.stderr.isatty():
                at = f"{time.monotonic() - began:4.0f} s, run {turn}, {family[1]} {family[2]}"
                print(f"\r\033[K{at}", end="", file=sys.stderr)
            start = time.monotonic()
            warm = trial.get(family, SHORT) < SHORT
            turns = list(zip(builds, results))
            if turn % 2:
                turns.reverse()
            measured = [(build.run(family, rows, warm), held) for build, held in turns]
            last[family] = time.monotonic() - start
            spent[family] += last[family]
            trial.setdefault(family, last[family] / len(builds))
            if turn > 0 or trial[family] >= SHORT:
                kept[family] += 1
                for found, held in measured:
                    keep(found, held)
    if sys.stderr.isatty():
        print("\r\033[K", end="", file=sys.stderr)


def keep(measured, results):
    for row, (value, unit, counters) in measured.items():
        held = results.setdefault(row, {"unit": unit, "samples": [], "counters": {}})
        held["samples"].append(float(f"{value:.6g}"))
        for name, count in counters.items():
            held["counters"].setdefault(name, []).append(count)


def text_of(*command):
    try:
        return subprocess.run(command, capture_output=True, text=True).stdout.strip()
    except OSError:
        return ""


def machine(folder, pinned):
    cpu = re.search(r"^model name\s*: (.*)$", pathlib.Path("/proc/cpuinfo").read_text(), re.M)
    system = re.search(r'^PRETTY_NAME="(.*)"', pathlib.Path("/etc/os-release").read_text(), re.M)
    cache = pathlib.Path(folder, "CMakeCache.txt").read_text(encoding="utf-8")
    compiler = re.search(r"^CMAKE_CXX_COMPILER:[A-Z]+=(.*)$", cache, re.M)[1]
    return {
        "date": datetime.date.today().isoformat(),
        "revision": text_of("git", "describe", "--always", "--dirty"),
        "processor": cpu[1] if cpu else platform.machine(),
        "cores": os.cpu_count(),
        "cores used": 1 if pinned else len(os.sched_getaffinity(0)),
        "memory MiB": figures_of("/proc/meminfo")["MemTotal"] // 1024,
        "system": f"{system[1] if system else 'Linux'}, kernel {platform.release()}",
        "compiler": text_of(compiler, "--version").split("\n")[0],
        "Qt": text_of("qmake", "-query", "QT_VERSION"),
    }


def written(report):
    """As JSON, a row a line."""

    def lines(entries):
        return ",\n".join(f"  {json.dumps(key)}: {json.dumps(entries[key])}" for key in entries)

    def rows(held):
        return {row: held[row] for row in bench_table.in_order(held)}

    parts = {"machine": report["machine"], "rows": rows(report["rows"])}
    if "against" in report:
        parts["against"] = {"revision": report["against"]["revision"]}
        parts["rows against"] = rows(report["against"]["rows"])
    return "{\n" + ",\n".join(f'"{k}": {{\n{lines(v)}\n}}' for k, v in parts.items()) + "\n}\n"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("scratch")
    parser.add_argument("--against")
    parser.add_argument("--against-name", default="")
    parser.add_argument("--json")
    parser.add_argument("--only", action="append", default=[])
    parser.add_argument("--thorough", action="store_true")
    parser.add_argument("--growth", action="store_true")
    parser.add_argument("--all-cores", action="store_true")
    asked = parser.parse_args()
    if not asked.all_cores:
        os.sched_setaffinity(0, [min(os.sched_getaffinity(0))])

    began = time.monotonic()
    builds = [
        Build(folder, asked.build, pathlib.Path(asked.scratch, home))
        for folder, home in ((asked.build, "home"), (asked.against, "home-against"))
        if folder
    ]
    families = chosen_families(builds[0], asked.only, asked.growth)
    missing = []
    if asked.against:
        there = builds[1].families
        missing = [r for family, rows in families.items() for r in rows if r not in there[family]]
        families = {
            family: [row for row in rows if row in there[family]]
            for family, rows in families.items()
            if there[family].keys() & set(rows)
        }
        if not families:
            fail(f"{asked.against_name} has none of these rows: {', '.join(missing)}")

    seconds, most = (900, 4 * MOST) if asked.thorough else (215, MOST)
    results = [{} for _ in builds]
    growing = {family: rows for family, rows in families.items() if family[0] in GROWTH}
    others = {family: rows for family, rows in families.items() if family[0] not in GROWTH}
    for some in (others, growing):
        if some:
            measure(builds, some, seconds * len(builds), most, results)

    if asked.json:
        report = {"machine": machine(asked.build, not asked.all_cores), "rows": results[0]}
        if asked.against:
            report["against"] = {"revision": asked.against_name, "rows": results[1]}
        partial = pathlib.Path(asked.json + ".part")
        partial.write_text(written(report), encoding="utf-8")
        partial.replace(asked.json)
    bench_table.show(results[0])
    slower = []
    if asked.against:
        suspects = bench_table.suspects(results)
        again = {
            family: rows for family, rows in families.items() if suspects.intersection(rows)
        }
        fresh = [{} for _ in builds]
        if again:
            measure(builds, again, float("inf"), bench_table.FRESH, fresh)
        slower = bench_table.show_comparison(results, suspects, fresh, asked.against_name, missing)
    print(f"measured in {time.monotonic() - began:.0f} s", file=sys.stderr)
    sys.exit(3 if slower else 0)


if __name__ == "__main__":
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    try:
        main()
    except KeyboardInterrupt:
        sys.exit(130)
