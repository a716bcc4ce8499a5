"""What scripts/bench says of its results: the table, and what differs between two revisions.

Results are {row: {"unit": ..., "samples": [...], "counters": {name: [...]}}}. A row
"group/variant[/arguments]" is compared with "group/floor[/arguments]".
"""

from math import comb
from operator import truediv
from statistics import median

LEAST = 1.03  # a smaller factor is not told
SUSPICIOUS = 0.125  # by chance at most; 3 of 3 pairs are enough
FRESH = 15  # runs of each revision that decide
OF_FRESH = 13  # of them have to agree: by chance they do so in 0.4 % of all cases


def floor_of(row):
    group, _, *arguments = row.split("/")
    return "/".join([group, "floor", *arguments])


def in_order(rows):
    """The floor first, numbers by their value."""
    key = lambda part: [int(n) if n.isdigit() else 0 for n in part.replace("x", "/").split("/")]
    return sorted(
        rows, key=lambda r: (r.split("/")[0], key("/".join(r.split("/")[2:])), r != floor_of(r), r)
    )


def median_of(results, row):
    return median(results[row]["samples"])


def ratio_of(results, row):
    """To its floor, or nothing: the median of the runs, in each of which both are disturbed alike."""
    floors = results.get(floor_of(row), {"samples": [0]})["samples"]
    return median(map(truediv, results[row]["samples"], floors)) if all(floors) else None


def show(results):
    print(f"{'benchmark':44} {'runs':>4} {'median':>14} {'to floor':>13}")
    for row in in_order(results):
        held = results[row]
        ratio = ratio_of(results, row)
        counters = ", ".join(f"{name} {median(c):.4g}" for name, c in held["counters"].items())
        print(
            f"{row:44} {len(held['samples']):4} {median_of(results, row):14,.3f} {held['unit']:3}"
            f" {f'{ratio:8.2f}x' if ratio else '        ?'}  {counters}".rstrip()
        )


def compared(ours, theirs):
    """Of pairs that were measured in turns: the median factor, and how many were slower, faster."""
    pairs = list(zip(ours, theirs))
    # Next to nothing is as much as nothing: a machine that waits has no wake-ups.
    factors = [(mine or 1e-3) / (other or 1e-3) for mine, other in pairs]
    return (
        median(factors),
        sum(mine > other for mine, other in pairs),
        sum(mine < other for mine, other in pairs),
    )


def by_chance(agree, pairs):
    """How probable it is that so many of the pairs or more agree where nothing differs."""
    return sum(comb(pairs, count) for count in range(agree, pairs + 1)) / 2**pairs


def suspects(results):
    """Rows that may differ, which fresh runs have to confirm."""
    found = set()
    for row, held in results[0].items():
        samples = held["samples"], results[1][row]["samples"]
        factor, slower, faster = compared(*samples)
        pairs = len(samples[0])
        # So few as are slow, or came last, cannot say it, nor that nothing differs.
        enough = 2**-pairs > SUSPICIOUS or by_chance(max(slower, faster), pairs) <= SUSPICIOUS
        if row != floor_of(row) and enough and not 1 / LEAST < factor < LEAST:
            found.add(row)
    return found


def show_comparison(results, suspected, fresh, name, missing):
    """The rows that became slower."""
    found = {"slower": [], "faster": []}
    for row in in_order(suspected):
        factor, slower, faster = compared(fresh[0][row]["samples"], fresh[1][row]["samples"])
        if factor >= LEAST and slower >= OF_FRESH:
            found["slower"].append((row, factor, slower))
        elif factor <= 1 / LEAST and faster >= OF_FRESH:
            found["faster"].append((row, factor, faster))
    compared_rows = [row for row in results[0] if row != floor_of(row)]
    print(f"\nagainst {name}: {len(compared_rows)} rows, {len(suspected)} of them looked again at")
    for word, rows in found.items():
        for row, factor, agree in rows:
            print(f"{word}: {row}: {factor:.2f} times as much, in {agree} of {FRESH} pairs")
        if not rows:
            print(f"{word}: none")
    for row in missing:
        print(f"not in {name}: {row}")
    return [row for row, *_ in found["slower"]]
