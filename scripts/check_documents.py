"""Fails where code in a document is no part of a source that is built, a link leads nowhere, or a test
that docs/reliability.md names does not exist.

A block of C++ or CMake has to stand in one file, line by line but for its indentation; a line
"// ..." or "# ..." stands for any number of lines.
"""

import pathlib
import re
import sys

BLOCK = re.compile(r"^( *)```(?:cpp|cmake)\n(.*?)^\1```", re.MULTILINE | re.DOTALL)
FENCED = re.compile(r"^( *)```.*?^\1```", re.MULTILINE | re.DOTALL)
LINK = re.compile(r"\]\(([^)#:]+)(?:#[^)]*)?\)")
SOURCES = [
    file
    for folder in ("examples", "libs", "apps", "tests/consumer")
    for file in pathlib.Path(folder).rglob("*")
    if file.suffix in (".cpp", ".h", ".txt")
]


def lines_of(text):
    return [line.strip() for line in text.splitlines() if line.strip()]


def parts_of(block):
    parts = [[]]
    for line in lines_of(block):
        if line in ("// ...", "# ..."):
            parts.append([])
        else:
            parts[-1].append(line)
    return [part for part in parts if part]


def has(lines, parts):
    start = 0
    for part in parts:
        while lines[start : start + len(part)] != part:
            start += 1
            if start + len(part) > len(lines):
                return False
        start += len(part)
    return True


sources = [lines_of(file.read_text(encoding="utf-8")) for file in SOURCES]
errors = []
for document in [*pathlib.Path().glob("*.md"), *pathlib.Path("docs").glob("*.md")]:
    text = document.read_text(encoding="utf-8")
    for match in BLOCK.finditer(text):
        parts = parts_of(match[2])
        if not any(has(lines, parts) for lines in sources):
            line = text.count("\n", 0, match.start()) + 1
            errors.append(f"{document}:{line}: this code is in no source")
    for link in LINK.findall(FENCED.sub("", text)):
        if not (document.parent / link).exists():
            errors.append(f"{document}: {link} is not there")

tests = {
    ".".join(name)
    for file in pathlib.Path("tests").rglob("*.cpp")
    for name in re.findall(r"^TEST(?:_F|_P)?\((\w+),\s*(\w+)\)", file.read_text("utf-8"), re.M)
}
promises = pathlib.Path("docs/reliability.md").read_text(encoding="utf-8")
named = set(re.findall(r"`([A-Z]\w+\.[A-Z]\w+)`", promises))
errors += [f"docs/reliability.md: {name} is no test" for name in sorted(named - tests)]

print("\n".join(errors), end="\n" if errors else "")
sys.exit(1 if errors else 0)
