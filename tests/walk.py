"""walk.py PROGRAM: what a screen reader finds in mivohost, over AT-SPI, on a screen and a bus of its own.

Each control that takes the focus has a role, a name that is not its value, and the value that its
role has; failures and count-downs are announced. Ends with 77 where AT-SPI is not installed.
"""

import faulthandler
import os
import shutil
import socket
import subprocess
import sys
import tempfile
import time

try:
    import pyatspi
    from gi.repository import Gio, GLib
except ImportError:
    print("skipped: without python3-pyatspi")
    sys.exit(77)

SECTIONS = ["General", "Presentations", "Network", "Display", "Audio"]
FEWEST_CONTROLS = 80
TCP_PORT = 8000  # of the network page, until it is changed
PATIENCE = 30  # seconds


def text(control):
    return control.queryText().getText(0, -1)


def can_be_pressed(control):
    return not is_in(control, pyatspi.STATE_ENABLED) or control.queryAction().nActions > 0


def has_items(control):
    return control.queryTable() is not None or control.childCount > 0


BUTTONS = ["PUSH_BUTTON", "TOGGLE_BUTTON", "CHECK_BOX", "RADIO_BUTTON"]
VALUES = {  # how a control of a role tells its value; false is none
    **{getattr(pyatspi, f"ROLE_{name}"): can_be_pressed for name in BUTTONS},
    pyatspi.ROLE_COMBO_BOX: lambda control: control.name,
    pyatspi.ROLE_SPIN_BUTTON: text,
    pyatspi.ROLE_TEXT: lambda control: text(control) is not None,
    pyatspi.ROLE_PANEL: lambda area: True,
    **{getattr(pyatspi, f"ROLE_{name}"): has_items for name in ["LIST", "TABLE", "TREE"]},
}


class Failed(Exception):
    pass


def settle(seconds):
    """Takes what is announced, for so long."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        while GLib.MainContext.default().iteration(False):
            pass
        time.sleep(0.02)


def wait_for(what, probe):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        settle(0.1)
        found = probe()
        if found:
            return found
    raise Failed(f"{what}: not there")


def is_in(control, state):
    return control.getState().contains(state)


def shown(node):
    """All below `node` that are on the screen, but for the parts of spin and combo boxes."""
    for child in node:
        if child is not None and is_in(child, pyatspi.STATE_SHOWING):
            yield child
            if child.getRole() not in (pyatspi.ROLE_SPIN_BUTTON, pyatspi.ROLE_COMBO_BOX):
                yield from shown(child)


def press(control):
    control.queryAction().doAction(0)
    settle(0.3)


def labels_of(control):
    return [
        relation.getTarget(i).name
        for relation in control.getRelationSet()
        if relation.getRelationType() == pyatspi.RELATION_LABELLED_BY
        for i in range(relation.getNTargets())
        if relation.getTarget(i).getRole() == pyatspi.ROLE_LABEL
    ]


def faults_of(control):
    role = control.getRole()
    if role not in VALUES:
        yield "has no role of a control"
        return
    own_name = role != pyatspi.ROLE_COMBO_BOX and control.name  # else its name is its value
    if not own_name and not any(labels_of(control)):
        yield "has no name"
    try:
        has_value = VALUES[role](control)
    except NotImplementedError:
        has_value = False
    if not has_value:
        yield "has no value"


def walk(window, where, faults):
    count = 0
    for control in shown(window):
        is_cell = control.getRole() == pyatspi.ROLE_TABLE_CELL  # has its text, if any
        if is_in(control, pyatspi.STATE_FOCUSABLE) and not is_cell:
            count += 1
            for fault in faults_of(control):
                faults.append(f"{where}: {control.getRoleName()} {control.name!r} {fault}")
    return count


def by_name(window, role, name):
    return wait_for(f"{name!r}", lambda: next(all_of(window, role, name), None))


def all_of(window, role, name):
    return (c for c in shown(window) if c.getRole() == role and c.name == name)


def window_of(app, name):
    return wait_for(f"window {name!r}", lambda: next((w for w in app if name in w.name), None))


def try_main_window(app, faults):
    window = window_of(app, "mivohost")
    walk(window, "main window", faults)
    press(by_name(window, pyatspi.ROLE_CHECK_BOX, "Edit shortcuts"))
    walk(window, "editing shortcuts", faults)
    press(by_name(window, pyatspi.ROLE_CHECK_BOX, "Edit shortcuts"))
    for other in ("Input monitor", "Sheet of shortcuts"):
        press(by_name(window, pyatspi.ROLE_PUSH_BUTTON, other))
        walk(window_of(app, other), other, faults)


def try_pages(dialog, faults):
    controls = 0
    for section in SECTIONS:
        press(by_name(dialog, pyatspi.ROLE_RADIO_BUTTON, section))
        if section == "Audio":
            press(by_name(dialog, pyatspi.ROLE_PUSH_BUTTON, "Add mapping"))
        controls += walk(dialog, section, faults)
    if controls < FEWEST_CONTROLS:
        faults.append(f"only {controls} controls on the pages")


def try_failure(dialog, announced):
    press(by_name(dialog, pyatspi.ROLE_RADIO_BUTTON, "Network"))
    with socket.create_server(("", TCP_PORT)):
        press(by_name(dialog, pyatspi.ROLE_PUSH_BUTTON, "Open"))
        wait_for("the failure", lambda: any(str(TCP_PORT) in said for said in announced))
        press(by_name(dialog, pyatspi.ROLE_PUSH_BUTTON, "Close"))


def try_count_down(app, dialog, announced, faults):
    press(by_name(dialog, pyatspi.ROLE_RADIO_BUTTON, "General"))
    soon = time.strftime("%H:%M:%S", time.localtime(time.time() + 4))
    by_name(dialog, pyatspi.ROLE_SPIN_BUTTON, "Shut down").queryEditableText().setTextContents(soon)
    press(by_name(dialog, pyatspi.ROLE_CHECK_BOX, "Shut down"))
    prompt = window_of(app, "seconds")
    walk(prompt, "count-down", faults)
    wait_for("the count-down", lambda: any("50 seconds" in said for said in announced))
    if any("55 seconds" in said for said in announced):
        faults.append("each second is announced")
    press(by_name(prompt, pyatspi.ROLE_PUSH_BUTTON, "Do not shut down"))


def only_program():
    desktop = pyatspi.Registry.getDesktop(0)
    desktop.clearCache()  # it was read before the program was there
    return next(iter(desktop), None)


def faults_in(app, announced):
    faults = []
    try_main_window(app, faults)
    dialog = window_of(app, "System settings")
    try_pages(dialog, faults)
    try_failure(dialog, announced)
    try_count_down(app, dialog, announced, faults)
    return faults


def tell_address():
    """Puts the address of AT-SPI's bus where a program finds it at once.

    Qt 5.15 registers itself too early where it has to ask for the address, and is not seen then.
    """
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    asked = ("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress")
    (address,) = bus.call_sync(*asked, None, None, Gio.DBusCallFlags.NONE, -1)
    command = ["xprop", "-root", "-f", "AT_SPI_BUS", "8s", "-set", "AT_SPI_BUS", address]
    subprocess.run(command, check=True)


def try_program():
    announced = []

    def announce(event):
        try:
            if event.source.getRole() == pyatspi.ROLE_NOTIFICATION and event.detail1:
                announced.append(event.source.name)
        except GLib.GError:  # it is gone by now
            pass

    # First of all: the program asks only at its start what is listened to.
    pyatspi.Registry.registerEventListener(announce, "object:state-changed:showing")
    only_program()
    tell_address()
    settle(1)
    with subprocess.Popen(
        [sys.argv[1], "--settings"],
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        text=True,
    ) as program:
        try:
            if not any("settings dialog open" in line for line in program.stdout):
                raise Failed(f"the program ended: {program.wait()}")
            return faults_in(wait_for("the program", only_program), announced)
        except (Failed, GLib.GError) as failure:
            settle(1)  # one that is ending says why
            ended = program.poll()
            program.kill()
            raise Failed(f"{failure}\n{program.stdout.read()}\nended: {ended}") from failure
        finally:
            program.kill()


def start_anew():
    """Runs this script again, with a screen, a bus and a home of its own."""
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as folder, subprocess.Popen(
        ["Xvfb", "-displayfd", "1", "-screen", "0", "1280x900x24", "-nolisten", "tcp"],
        stdout=subprocess.PIPE,
        stderr=subprocess.DEVNULL,
        text=True,
    ) as screen:
        os.mkdir(f"{folder}/runtime", 0o700)
        environment = {
            **os.environ,
            "MIVO_OWN_BUS": "1",
            "DISPLAY": ":" + screen.stdout.readline().strip(),
            "HOME": folder,
            "XDG_RUNTIME_DIR": f"{folder}/runtime",
            "XDG_CONFIG_HOME": f"{folder}/config",
            "XDG_DATA_HOME": f"{folder}/data",
            "QT_QPA_PLATFORM": "xcb",
            "QT_XCB_GL_INTEGRATION": "none",
            "LC_ALL": "C.UTF-8",
            # The library for keyboards copies parts of texts that no null byte ends, as it may.
            "ASAN_OPTIONS": os.environ.get("ASAN_OPTIONS", "") + ":strict_string_checks=0",
        }
        command = ["dbus-run-session", "--", sys.executable, *sys.argv]
        try:
            return subprocess.run(command, env=environment, check=False).returncode
        finally:
            screen.terminate()


def main():
    missing = [tool for tool in ("dbus-run-session", "xprop", "Xvfb") if shutil.which(tool) is None]
    if missing:
        print("skipped: without " + ", ".join(missing))
        return 77
    if "MIVO_OWN_BUS" not in os.environ:
        return start_anew()
    faulthandler.dump_traceback_later(4 * PATIENCE, exit=True)
    try:
        faults = try_program()
    except Failed as failure:
        faults = [str(failure)]
    print("\n".join(faults))
    return 1 if faults else 0


sys.exit(main())
