"""Fails where an include points upwards: each room includes from itself and those before it."""

import pathlib
import re
import sys

PRODUCT = pathlib.Path("libs/mivosettingswidgets")
HOST = pathlib.Path("apps/mivohost")
ROOMS = {
    PRODUCT / "src": ["kit", "dialog", "folders", "soundcards", "shortcuts", "pages"],
    HOST: ["base", "store", "cluster", "devices", "peripherals", "project", "system", "surface"],
}
LIBRARIES = ["mivohostapi", "mivowidgets", "mivosettingswidgets", "mivohostkit"]
STYLE = "mivostyle"  # knows none of these, and none of them knows it
INCLUDE = re.compile(r'^#include [<"](\w+)/(\w+)\.h[">]', re.MULTILINE)

# A public header of the product belongs to the room of its source; one without is the kit's.
public_rooms = {header.stem: "kit" for header in (PRODUCT / "include").glob("*/*.h")}
for source in (PRODUCT / "src").glob("*/*.cpp"):
    if source.stem in public_rooms:
        public_rooms[source.stem] = source.parent.name

errors = []


def check(file, own, allowed_order, included):
    if included in allowed_order and allowed_order.index(included) > allowed_order.index(own):
        errors.append(f"{file}: {own} must not include from {included}")


for folder, order in ROOMS.items():
    for file in folder.glob("*/*.*"):
        room = file.parent.name
        if file.suffix not in (".h", ".cpp") or room not in order:
            continue
        for included, stem in INCLUDE.findall(file.read_text(encoding="utf-8")):
            if folder != HOST and included == "mivosettingswidgets":
                included = public_rooms.get(stem, room)
            check(file, room, order, included)
for file in (PRODUCT / "include").glob("*/*.h"):
    order = ROOMS[PRODUCT / "src"]
    for included, stem in INCLUDE.findall(file.read_text(encoding="utf-8")):
        if included == "mivosettingswidgets":
            check(file, public_rooms[file.stem], order, public_rooms.get(stem, order[0]))
for folder, own, order in [
    *((pathlib.Path("libs", library), library, [*LIBRARIES, STYLE]) for library in LIBRARIES),
    (HOST / "style", STYLE, [STYLE, *LIBRARIES]),
]:
    for file in folder.rglob("*.*"):
        if file.suffix in (".h", ".cpp"):
            for included, _ in INCLUDE.findall(file.read_text(encoding="utf-8")):
                check(file, own, order, included)

print("\n".join(errors), end="\n" if errors else "")
sys.exit(1 if errors else 0)
