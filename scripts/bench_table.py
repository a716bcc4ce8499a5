"""Prints the table of scripts/bench out of the folder of its results."""

import glob
import json
import re
import statistics
import sys
from collections import defaultdict

NOT_A_NAME = re.compile(r"/(iterations|min_time|repeats):[^/]+|/(real_time|manual_time|process_time)")
UNITS = {"ns": 1e-3, "us": 1.0, "ms": 1e3, "s": 1e6}

microseconds = defaultdict(list)
for file in glob.glob(sys.argv[1] + "/*.json"):
    with open(file, encoding="utf-8") as stream:
        for run in json.load(stream)["benchmarks"]:
            if run["run_type"] == "iteration":
                name = NOT_A_NAME.sub("", run["run_name"])
                microseconds[name].append(run["real_time"] * UNITS[run["time_unit"]])
for file in glob.glob(sys.argv[1] + "/cold.txt"):
    with open(file, encoding="utf-8") as stream:
        for line in stream:
            name, value = line.split()
            microseconds[name].append(float(value))

# "group/variant[/arguments]" is compared with "group/floor[/arguments]".
print(f"{'benchmark':42} {'runs':>4} {'median us':>12} {'to floor':>9}")
for name in sorted(microseconds, key=lambda n: (n.split("/")[0], "/floor" not in n, n)):
    group, _, *arguments = name.split("/")
    floor = microseconds.get("/".join([group, "floor", *arguments]))
    median = statistics.median(microseconds[name])
    ratio = f"{median / statistics.median(floor):8.2f}x" if floor else "        ?"
    print(f"{name:42} {len(microseconds[name]):4} {median:12.3f} {ratio}")
