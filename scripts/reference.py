"""reference.py FOLDER: writes texts.md, every text of the pages with its key and where it appears,
and style-sheet.md, what a style sheet can address. Fails where the sources and the language files
do not agree."""

import collections
import pathlib
import re
import sys
import xml.etree.ElementTree

ROOT = pathlib.Path(__file__).resolve().parent.parent
LANGUAGES = ROOT / "apps/mivohost/languages"
SHEET = ROOT / "apps/mivohost/style/mivo.qss"
STYLE_NAMES = ROOT / "apps/mivohost/style/looknames.cpp"
# What the host puts on widgets of its own.
HOST = ROOT / "apps/mivohost"
LIBRARIES = [ROOT / "libs/mivosettingswidgets", ROOT / "libs/mivowidgets"]

LITERAL = r'(?:QStringLiteral\()?"(\w+)"'
errors = []


def sources(folders):
    for folder in folders:
        for file in sorted(folder.rglob("*.*")):
            if file.suffix in (".h", ".cpp"):
                yield file, file.read_text(encoding="utf-8")


def texts(language):
    context = next(
        c
        for c in xml.etree.ElementTree.parse(LANGUAGES / f"mivo_{language}.ts").iter("context")
        if c.findtext("name") == "SystemSettingsDialog"
    )
    return {
        message.findtext("source"): message.findtext("translation") or ""
        for message in context.iter("message")
        if message.findtext("comment") == "Widget"
    }


def cell(text):
    return text.replace("|", "\\|").replace("\n", " / ").strip()


def table(head, rows):
    lines = [head, ["---"] * len(head), *rows]
    return "\n".join("| " + " | ".join(line) + " |" for line in lines) + "\n"


def text_table():
    places = collections.defaultdict(list)
    for file, content in sources(LIBRARIES):
        for literal in sorted(set(re.findall(r'"(\w+)"', content))):
            places[literal].append(file.stem)
    english, chinese = texts("en"), texts("zh_cn")
    for key in english.keys() - places.keys():
        # A text around a number has two halves; the sources name what they share.
        places[key] = places[re.sub("(Prefix|Suffix)$", "", key)]
    for key in sorted(english.keys() | chinese.keys()):
        if not english.get(key) or not chinese.get(key):
            errors.append(f"{key}: without a text in one of the languages")
        if not places[key]:
            errors.append(f"{key}: a text that nothing shows")
    for file, content in sources(LIBRARIES):
        for key in re.findall(r"\b(?:text|textOf|add\w*Texts?)\(\s*" + LITERAL, content):
            if key not in english:
                errors.append(f"{file.name}: {key} has no text")
    return table(
        ["key", "English", "Simplified Chinese", "appears in"],
        [
            [f"`{key}`", cell(english[key]), cell(chinese.get(key, "")), ", ".join(places[key])]
            for key in sorted(english, key=str.lower)
        ],
    )


def style_tables():
    names = collections.defaultdict(set)
    properties = collections.defaultdict(set)
    for file, content in sources(LIBRARIES):
        for name in re.findall(r"setObjectName\(\s*" + LITERAL, content):
            names[name].add(file.stem)
        # Functions that name what they make.
        for name in re.findall(r"\b(?:makeButton|swatch)\(" + LITERAL, content):
            names[name].add(file.stem)
        for name in re.findall(r'\baddFolder\("\w+",\s*"(\w+)"', content):
            names[name].add(file.stem)
        for name, value in re.findall(r'setProperty\("(\w+)",\s*([^;]*)\);', content):
            literal = re.fullmatch(LITERAL + r"\)?", value)
            text = f'[{name}="{literal[1]}"]' if literal else f"[{name}]"
            properties[text].add(file.stem)
    host_names = "".join(content for file, content in sources([HOST]) if file != STYLE_NAMES)
    sheet = re.sub(r"\{.*?\}", "", SHEET.read_text(encoding="utf-8"), flags=re.DOTALL)
    styled = re.findall(r'\{"(\w+)", ', STYLE_NAMES.read_text(encoding="utf-8"))
    for file, found in [(SHEET, re.findall(r"#(\w+)[\s:,{]", sheet)), (STYLE_NAMES, styled)]:
        for name in sorted(set(found)):
            if name not in names and f'"{name}"' not in host_names:
                errors.append(f"{file.name}: #{name}: no widget has this name")
    for name, value in sorted(set(re.findall(r'\[(\w+)="(\w+)"\]', sheet))):
        known = {f'[{name}="{value}"]', f"[{name}]"} & properties.keys()
        if name == "style" and not known and f'"{value}"' not in host_names:
            errors.append(f'{SHEET.name}: [{name}="{value}"]: no widget has this property')

    def rows(entries, prefix):
        return [
            [f"`{prefix}{entry}`", ", ".join(sorted(entries[entry]))]
            for entry in sorted(entries, key=str.lower)
        ]

    return (
        "## Object names\n\n"
        + table(["selector", "set in"], rows(names, "#"))
        + "\n## Properties\n\n"
        + table(["selector", "set in"], rows(properties, ""))
    )


target = pathlib.Path(sys.argv[1])
target.mkdir(parents=True, exist_ok=True)
(target / "texts.md").write_text(
    "# Texts of the pages\n\n"
    'Looked up under catalogue "SystemSettingsDialog", context "Widget". "appears in" names the\n'
    "source files without their endings, which for pages are their classes in lower case.\n\n"
    + text_table(),
    encoding="utf-8",
)
(target / "style-sheet.md").write_text(
    "# What a style sheet can address\n\n"
    "Besides the classes of Qt's own and of `mivo::widgets`, which stand in a sheet as\n"
    "`mivo--widgets--PushButton`: these names and properties. A navigation button has the key of its\n"
    "section as its name.\n\n" + style_tables(),
    encoding="utf-8",
)
if errors:
    sys.exit("\n".join(errors))
