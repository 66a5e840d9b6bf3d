"""What a screen reader finds in the running window, read over AT-SPI, and
one pause and resume of a process done with the keyboard alone.

Usage: accessibility_check.py PROGRAM TARGET_PID TARGET_NAME
Run inside a private session bus and X server with a window manager."""
import os
import subprocess
import sys
import time

import pyatspi
from gi.repository import Atspi, GLib

program, target_pid, target_name = sys.argv[1], int(sys.argv[2]), sys.argv[3]
errors = open(os.environ["HOME"] + "/loadwarden.err", "w+")


# Popup menus are not among the application's windows: a screen reader
# follows them by their focus, and so does this.
focused_items = []
focus_listener = Atspi.EventListener.new(
    lambda event: focused_items.append(event.source) if event.detail1 else None)
focus_listener.register("object:state-changed:focused")


def pump():
    while GLib.MainContext.default().iteration(False):
        pass


def fail(message):
    errors.seek(0)
    print(errors.read()[-3000:])
    print("FAILED:", message)
    sys.exit(1)


def wait_for(what, find, seconds=20):
    deadline = time.time() + seconds
    while time.time() < deadline:
        pump()
        try:
            found = find()
        except Exception:  # the tree changes under us while the window builds
            found = None
        if found:
            return found
        time.sleep(0.2)
    fail("no " + what)


def keys(*names):
    subprocess.run(["xdotool", "key", "--delay", "60", *names], check=True)


def walk(node, into_tables=False):
    """Every node under `node`; a table's cells only when asked."""
    yield node
    if node.getRole() in (pyatspi.ROLE_TREE, pyatspi.ROLE_TABLE, pyatspi.ROLE_TREE_TABLE) \
            and not into_tables:
        return
    for index in range(node.childCount):
        child = node.getChildAtIndex(index)
        if child is not None:
            yield from walk(child, into_tables)


def named(root, role, name, into_tables=False):
    for node in walk(root, into_tables):
        if node.getRole() == role and node.name == name:
            return node
    return None


def application():
    desktop = pyatspi.Registry.getDesktop(0)
    for index in range(desktop.childCount):
        app = desktop.getChildAtIndex(index)
        if app is not None and app.name == "Loadwarden":
            # Read afresh each time: menus and sheets come and go.
            app.set_cache_mask(Atspi.Cache.NONE)
            return app
    return None


def window_of(app):
    return named(app, pyatspi.ROLE_FRAME, "Loadwarden")


def state_of(pid):
    with open(f"/proc/{pid}/stat") as stat:
        return stat.read().rsplit(")", 1)[1].split()[0]


def settles_at(pid, wanted):
    deadline = time.time() + 10
    while time.time() < deadline and state_of(pid) != wanted:
        time.sleep(0.1)
    return state_of(pid) == wanted


def start():
    process = subprocess.Popen([program], stdout=subprocess.DEVNULL, stderr=errors)
    app = wait_for("Loadwarden on the accessibility bus", application)
    # The first run opens with its welcome; Escape closes it as it closes any sheet.
    return process, app


def shown_tab(window):
    """The tab on show, as the tab bar is named after it."""
    return next(node.name for node in walk(window)
                if node.getRole() == pyatspi.ROLE_PAGE_TAB_LIST)


# First run: the welcome sheet, dismissed with Escape.
program_run, app = start()
welcome = wait_for("the welcome sheet",
                   lambda: next((node for node in walk(app)
                                 if node.getRole() == pyatspi.ROLE_DIALOG), None))
keys("Escape")
wait_for("the welcome sheet to close",
         lambda: not any(node.getRole() == pyatspi.ROLE_DIALOG and
                         node.getState().contains(pyatspi.STATE_SHOWING) for node in walk(app)))
window = wait_for("the main window", lambda: window_of(app))

# The window's parts, named and in their roles.
tab_names = ["Processes", "Performance", "App history", "Startup apps", "Details"]
tab_list = wait_for("the tabs", lambda: next(
    node for node in walk(window) if node.getRole() == pyatspi.ROLE_PAGE_TAB_LIST))
found_tabs = [tab_list.getChildAtIndex(i).name for i in range(tab_list.childCount)
              if tab_list.getChildAtIndex(i).getRole() == pyatspi.ROLE_PAGE_TAB]
if found_tabs != tab_names:
    fail(f"page tabs {found_tabs}")
for role, name in [(pyatspi.ROLE_TEXT, "Search"), (pyatspi.ROLE_PUSH_BUTTON, "Clear Search"),
                   (pyatspi.ROLE_TREE, "Processes"), (pyatspi.ROLE_TREE, "App history"),
                   (pyatspi.ROLE_TREE, "Startup apps"), (pyatspi.ROLE_TREE, "Details"),
                   (pyatspi.ROLE_CHART, "CPU"), (pyatspi.ROLE_CHART, "Network in"),
                   (pyatspi.ROLE_PUSH_BUTTON, "Delete Usage History…"),
                   (pyatspi.ROLE_MENU_ITEM, "Pause or Resume Selected App"),
                   (pyatspi.ROLE_MENU_ITEM, "Columns")] + \
        [(pyatspi.ROLE_FILLER, name) for name in tab_names]:
    if named(window, role, name) is None:
        fail(f"no {pyatspi.Accessible.getRoleName(window) and role} named {name!r}")
processes = named(window, pyatspi.ROLE_TREE, "Processes")


def column_headers():
    # Rows come and go as the table refreshes; a child may be gone when asked for.
    children = [processes.getChildAtIndex(i) for i in range(processes.childCount)]
    return [child.name for child in children
            if child is not None and child.getRole() == pyatspi.ROLE_TABLE_COLUMN_HEADER]


wait_for("the process table's column headers", lambda: column_headers() ==
         ["Name", "CPU", "Memory", "Energy", "Disk", "Network", "GPU"])
summary = wait_for("the machine's line under the table", lambda: next(
    node for node in walk(window)
    if node.getRole() == pyatspi.ROLE_LABEL and " processes · CPU " in node.name))
print("summary:", summary.name)

# Tab goes round every control of the tab shown.
wait_for("the window to have the keyboard",
         lambda: window.getState().contains(pyatspi.STATE_ACTIVE))
focused_items.clear()
for press in range(1, 7):
    keys("Tab")
    wait_for("the focus to move on", lambda: len(focused_items) >= press, seconds=5)
focused = {(node.getRoleName(), node.name) for node in focused_items}
for wanted in [("text", "Search"), ("tree", "Processes"), ("page tab list", "Processes")]:
    if not any(role == wanted[0] and name.startswith(wanted[1]) for role, name in focused):
        fail(f"Tab never reached {wanted}; it reached {sorted(focused)}")


# The sheets: named cards, named palette lines, and Escape closes each.
def sheet(title):
    return next((node for node in walk(app) if node.getRole() == pyatspi.ROLE_DIALOG and
                 node.name == title and node.getState().contains(pyatspi.STATE_SHOWING)), None)


keys("ctrl+j")
why = wait_for("the why sheet", lambda: sheet("Why is my computer slow?"))
cards = [node for node in walk(why) if node.getRole() == pyatspi.ROLE_PANEL and node.name]
if not cards:
    fail("the why sheet has no named cards")
print("cards:", [card.name for card in cards])
keys("Escape")
wait_for("the why sheet to close", lambda: sheet("Why is my computer slow?") is None)
keys("ctrl+k")
palette = wait_for("the palette", lambda: sheet("Command Palette"))
lines = named(palette, pyatspi.ROLE_LIST, "Commands", into_tables=True)
if lines is None or lines.childCount == 0 or not lines.getChildAtIndex(0).name:
    fail("the palette's lines are not named")
keys("Escape")
wait_for("the palette to close", lambda: sheet("Command Palette") is None)

# Pause and resume the target with the keyboard: find it, select it, open its menu.
def row_cell():
    return named(processes, pyatspi.ROLE_TABLE_CELL, target_name, into_tables=True) or next(
        (node for node in walk(processes, True)
         if node.getRole() == pyatspi.ROLE_TABLE_CELL and node.name.startswith(target_name + " ")),
        None)


def choose_from_row_menu(title):
    """Opens the row's menu with the menu key and picks `title` with the arrows."""
    keys("Menu", "Down")
    item = wait_for("the row's menu", lambda: next(
        (node for node in reversed(focused_items) if node.getRole() == pyatspi.ROLE_MENU_ITEM),
        None))
    menu = item.parent
    items = [menu.getChildAtIndex(i) for i in range(menu.childCount)]
    enabled = [node.name for node in items if node.getRole() == pyatspi.ROLE_MENU_ITEM and
               node.getState().contains(pyatspi.STATE_ENABLED)]
    print("menu:", enabled)
    target = next(i for i, name in enumerate(enabled) if name.startswith(title))
    focused_items.clear()
    keys(*["Down"] * (target - enabled.index(item.name)), "Return")


keys("ctrl+f")
subprocess.run(["xdotool", "type", "--delay", "40", target_name], check=True)
wait_for("the target's row", row_cell)
keys("Tab", "Down", "Down")
wait_for("the target's row selected", lambda: row_cell().getState().contains(
    pyatspi.STATE_SELECTED) or row_cell().getState().contains(pyatspi.STATE_FOCUSED))
choose_from_row_menu("Pause " + target_name)
if not settles_at(target_pid, "T"):
    fail("the target was not paused")
wait_for("the paused mark", lambda: row_cell().name == target_name + "  Paused")
print("paused:", row_cell().name)
choose_from_row_menu("Resume " + target_name)
if not settles_at(target_pid, "S"):
    fail("the target was not resumed")
wait_for("the paused mark to go", lambda: row_cell().name == target_name)

# The tab chosen is there again after a restart.
keys("ctrl+5")
wait_for("the Details tab", lambda: shown_tab(window) == "Details")
keys("ctrl+q")
if (status := program_run.wait(timeout=20)) != 0:
    fail(f"Loadwarden ended with {status}")
program_run, app = start()
window = wait_for("the main window again", lambda: window_of(app))
wait_for("the Details tab after the restart", lambda: shown_tab(window) == "Details")
keys("ctrl+q")
program_run.wait(timeout=20)
print("accessible: names, roles, keyboard pause and resume, remembered tab")
