#!/usr/bin/env python3
"""Prints what ctest's report in JUnit's form says of each entry, and why tests were skipped."""
import re
import sys
import xml.etree.ElementTree as ElementTree

rows, reasons = [], []
for entry in ElementTree.parse(sys.argv[1]).getroot().iter("testcase"):
    output = entry.findtext("system-out") or ""
    counts = [len(re.findall(rf"^\[ *{word} *\] \S+\.\S+.* \(\d+ ms\)$", output, re.MULTILINE))
              for word in ("OK", "SKIPPED", "FAILED")]
    if not any(counts):  # a program of one test
        counts = [entry.get("status") == "run", entry.get("status") in ("notrun", "disabled"),
                  entry.get("status") == "fail"]
    elif entry.get("status") == "fail" and not counts[2]:
        counts[2] = 1  # it did not come to its end
    rows.append((entry.get("name"), *map(int, counts)))
    for reason, test in re.findall(
            r": Skipped\n(.*)\n\n?(?:.*\n)*?\[ *SKIPPED *\] (\S+)", output):
        reasons.append((test, reason))
print(f"{'':32}passed skipped failed")
for name, *counts in [*sorted(rows), ("all", *(sum(row[i] for row in rows) for i in (1, 2, 3)))]:
    print(f"{name:32}" + "".join(f"{count or '-':>7}" for count in counts))
for test, reason in sorted(set(reasons)):
    print(f"skipped: {test}: {reason}")
