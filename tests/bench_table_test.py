"""What scripts/bench tells of a row beside its floor; and, with --against, of two revisions: each
row's samples of this one and of the other, and whether it is told as slower, as faster, or not at
all."""

import contextlib
import io
import pathlib
import random
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "scripts"))
import bench_table

disturbed = {"open/floor": {"samples": [10, 90, 11]}, "open/ours": {"samples": [12, 99, 30]}}
assert bench_table.ratio_of(disturbed, "open/ours") == 1.2
assert bench_table.ratio_of({"start/ours": {"samples": [1]}}, "start/ours") is None

random.seed(1)
ROWS = {  # row: (factor to the other revision, noise, what is told)
    "open/ours": (1.2, 0.05, "slower"),
    "start/ours": (1.3, 0.05, "slower"),  # slow, so that there was no time for three runs
    "load/ours/100": (0.8, 0.05, "faster"),
    **{f"call/ours/{number}": (1.0, 0.2, None) for number in range(40)},
    "save/ours": (1.01, 0.001, None),  # always slower, but by next to nothing
    "open/floor": (1.2, 0.01, None),
}


def measured(runs):
    def samples(factor, noise):
        return [100 * factor * random.lognormvariate(0, noise) for _ in range(runs)]

    return [
        {row: {"unit": "us", "samples": samples(f if mine else 1, n), "counters": {}}
         for row, (f, n, _) in ROWS.items()}
        for mine in (True, False)
    ]


told = io.StringIO()
screened = measured(8)
for one in screened:
    del one["start/ours"]["samples"][2:]
with contextlib.redirect_stdout(told):
    slower = bench_table.show_comparison(
        screened, bench_table.suspects(screened), measured(bench_table.FRESH), "REV", ["new/ours"]
    )
lines = told.getvalue().splitlines()
for row, (_, _, word) in ROWS.items():
    found = [line.split(":")[0] for line in lines if f" {row}:" in line]
    assert found == ([word] if word else []), f"{row}: {found}\n{told.getvalue()}"
assert sorted(slower) == ["open/ours", "start/ours"], slower
assert "not in REV: new/ours" in lines, lines
