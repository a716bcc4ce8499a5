"""Makes the figures of docs/performance.md and its plots from what scripts/bench --growth --json
wrote, and keeps that as docs/performance.json. With --check it only fails where the document says
anything else than docs/performance.json.

What the document says stands between "<!-- figures: NAME -->" and "<!-- end of figures -->".
"""

import json
import math
import pathlib
import re
import shutil
import subprocess
import sys
from statistics import median

import bench_table

DOCS = pathlib.Path(__file__).resolve().parent.parent / "docs"
DOCUMENT = DOCS / "performance.md"
KEPT = DOCS / "performance.json"
MARKED = re.compile(r"(<!-- figures: (\w+) -->\n).*?(<!-- end of figures -->)", re.DOTALL)
FLOOR = "floor"

# For each growth: its rows' group, what stands beside the floor, how the plot names these and the
# size, and which two sizes say how it goes on.
GROWTHS = {
    "pages": (
        "pages_cold", {"ours": "the library"}, "raw Qt", "pages", ("50", "200"), "20,000",
    ),
    "shortcuts": (
        "shortcutfile_cold", {"ours": "the library"}, "bare RapidJSON", "shortcuts",
        ("100000", "1000000"), "100,000,000",
    ),
    "mappings": (
        "mappings_cold", {"first_sight": "first sight", "all_boxes": "all boxes made"}, "raw Qt",
        "mappings times devices", ("20x10", "20x100"), "20 x 10,000",
    ),
}
COLOURS = {FLOOR: "#6b7280", "ours": "#1d64b4", "first_sight": "#1d64b4", "all_boxes": "#b4530f"}
PLOT_STYLE = """
set terminal svg size 900,380 font 'Noto Sans,13' background '#ffffff'
set output '{file}'
set decimalsign '.'
set logscale xy
set format x '%.0s%c'
set format y '%g'
set border 3 lc rgb '#1f2937'
set grid lc rgb '#e3e6ea' lt 1
set tics nomirror textcolor rgb '#1f2937'
set xlabel textcolor rgb '#1f2937'
set title textcolor rgb '#1f2937'
set key top left reverse Left textcolor rgb '#1f2937'
set multiplot layout 1,2 margins 0.07,0.98,0.17,0.88 spacing 0.09
"""


def digits(value):
    """Three that count."""
    if value == 0:
        return "0"
    places = max(0, 2 - math.floor(math.log10(abs(value))))
    return f"{round(value, places) if places else round(value):,.{min(places, 4)}f}"


def duration(microseconds):
    for unit, factor, most in (("us", 1, 1e3), ("ms", 1e3, 1e6), ("s", 1e6, 600e6)):
        if microseconds < most:
            return f"{digits(microseconds / factor)} {unit}"
    return f"{digits(microseconds / 60e6)} min"


def size(kibibytes):
    for unit, factor in (("KiB", 1), ("MiB", 1024), ("GiB", 1024**2)):
        if kibibytes < 1000 * factor or unit == "GiB":
            return f"{digits(kibibytes / factor)} {unit}"


def amount(value, unit):
    return {"us": duration, "KiB": size}.get(unit, lambda v: f"{digits(v)} {unit}")(value)


def table(head, lines):
    rule = ["---"] + ["---:"] * (len(head) - 1)
    return "".join("| " + " | ".join(line) + " |\n" for line in [head, rule, *lines])


def machine_text(machine):
    return (
        f"Taken on {machine['date']} of revision {machine['revision']}: {machine['processor']}, "
        f"{machine['cores']} cores of which {machine['cores used']} used, "
        f"{digits(machine['memory MiB'] / 1024)} GiB of memory; {machine['system']}; "
        f"{machine['compiler']}, release build; Qt {machine['Qt']}, offscreen.\n"
    )


def rows_text(rows, names):
    lines = []
    for row in names:
        if row == bench_table.floor_of(row):
            continue
        held = rows[row]
        ratio = bench_table.ratio_of(rows, row)
        floor = rows.get(bench_table.floor_of(row))
        lines.append([
            f"`{row}`",
            amount(median(held["samples"]), held["unit"]),
            amount(median(floor["samples"]), floor["unit"]) if floor else "-",
            f"{ratio:.2f}" if ratio else "-",
        ])
    return table(["row", "takes", "its floor", "ratio"], lines)


def count_of(argument):
    return math.prod(int(number) for number in argument.split("x"))


class Growth:
    def __init__(self, rows, name):
        self.name = name
        self.group, self.variants, floor, self.what, self.last, self.hundredfold = GROWTHS[name]
        self.rows = rows
        group = [row.split("/") for row in rows if row.startswith(self.group + "/")]
        arguments = {argument for _, _, argument in group}
        self.sizes = sorted(arguments, key=lambda a: (count_of(a), a))
        self.names = {FLOOR: floor, **self.variants}

    def of(self, variant, argument):
        """Microseconds and KiB."""
        held = self.rows[f"{self.group}/{variant}/{argument}"]
        return median(held["samples"]), median(held["counters"]["peak_KiB"])

    def text(self):
        head = [self.what.replace(" times ", " x ")]
        for kind in ("time", "memory"):
            head += [f"{kind}, {name}" for name in self.names.values()]
        lines = []
        for argument in self.sizes:
            times, peaks = zip(*(self.of(variant, argument) for variant in self.names))
            shown = " x ".join(f"{int(number):,}" for number in argument.split("x"))
            lines.append([shown, *map(duration, times), *map(size, peaks)])
        larger = [self.hundred_times(variant) for variant in self.names]
        times = [duration(time) for (time, _), _ in larger]
        peaks = [size(kib) for _, (kib, _) in larger]
        lines.append([f"*{cell}*" for cell in (self.hundredfold, *times, *peaks)])
        powers = ", ".join(
            f"{name} {of_time:.2f} and {of_memory:.2f}"
            for name, ((_, of_time), (_, of_memory)) in zip(self.names.values(), larger)
        )
        less, more = (argument.replace("x", " x ") for argument in self.last)
        return (
            table(head, lines)
            + f"\nBetween {less} and {more}, time and memory follow these powers of the size: "
            + f"{powers}.\n"
        )

    def hundred_times(self, variant):
        """(what a hundred times the largest size takes, the power) of time and of memory."""
        less, more = map(count_of, self.last)
        ends = []
        for before, after in zip(*(self.of(variant, argument) for argument in self.last)):
            power = math.log(max(after, 1) / max(before, 1)) / math.log(more / less)
            line = after + 99 * more * (after - before) / (more - less)
            ends.append((max(line, after * 100**power, after), power))
        return ends

    def plot(self, file):
        """Two panels side by side, dark on white, so that it can be read on any page."""
        panels = []
        kinds = ("milliseconds", 1e3), ("MiB more at the peak", 1024)
        for column, (label, factor) in enumerate(kinds):
            series = []
            for variant, name in self.names.items():
                line = "dt 2 pt 5" if variant == FLOOR else "dt 1 pt 7"
                series.append(
                    f"'-' using 1:2 with linespoints lw 2 ps 0.5 {line}"
                    f" lc rgb '{COLOURS[variant]}' title '{name}'"
                )
            data = ""
            for variant in self.names:
                for argument in self.sizes:
                    value = self.of(variant, argument)[column] / factor
                    if value > 0:
                        data += f"{count_of(argument)} {value}\n"
                data += "e\n"
            panels.append(
                f"set xlabel '{self.what}'\nset title '{label}' font ',14'\nplot "
                + ", ".join(series) + "\n" + data
            )
        script = PLOT_STYLE.format(file=file) + "".join(panels) + "unset multiplot\n"
        subprocess.run(["gnuplot"], input=script, text=True, check=True)
        lines = [line.rstrip() for line in file.read_text(encoding="utf-8").splitlines()]
        file.write_text("\n".join(lines).rstrip() + "\n", encoding="utf-8")


def filled(document, report):
    rows = report["rows"]
    ordered = bench_table.in_order(rows)
    elsewhere = "host_", *(group for group, *_ in GROWTHS.values())
    texts = {
        "machine": machine_text(report["machine"]),
        "host": rows_text(rows, [row for row in ordered if row.startswith("host_")]),
        "rows": rows_text(rows, [row for row in ordered if not row.startswith(elsewhere)]),
        **{name: Growth(rows, name).text() for name in GROWTHS},
    }
    return MARKED.sub(lambda found: found[1] + texts[found[2]] + found[3], document)


def read(file):
    return json.loads(pathlib.Path(file).read_text(encoding="utf-8"))


document = DOCUMENT.read_text(encoding="utf-8")
if sys.argv[1] == "--check":
    if filled(document, read(KEPT)) != document:
        sys.exit("docs/performance.md does not say what docs/performance.json does")
    sys.exit(0)
try:
    report = read(sys.argv[1])
    DOCUMENT.write_text(filled(document, report), encoding="utf-8")
except (KeyError, TypeError, ValueError) as error:
    sys.exit(f"bench: {sys.argv[1]} does not come from scripts/bench --growth --json: {error!r}")
if pathlib.Path(sys.argv[1]).resolve() != KEPT:
    shutil.copyfile(sys.argv[1], KEPT)
for name in GROWTHS:
    Growth(report["rows"], name).plot(DOCS / f"pictures/growth-{name}.svg")
