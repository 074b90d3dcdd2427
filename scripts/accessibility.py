# SPDX-License-Identifier: MIT
"""Checks by AT-SPI what screen readers and voice control meet in the program, one line a check.
Started by accessibility.sh with the program and the folder of its settings files."""

import collections
import shutil
import subprocess
import sys
import time
from pathlib import Path

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

Role = Atspi.Role
State = Atspi.StateType
TREES = (Role.TREE, Role.TREE_TABLE, Role.TABLE)
CONTROLS = (Role.CHECK_BOX, Role.COMBO_BOX, Role.PUSH_BUTTON, Role.SPIN_BUTTON, Role.TEXT,
            Role.UNKNOWN)
KEYS = {"Shift+Tab": 0xfe20, "Tab": 0xff09, "Home": 0xff50, "Left": 0xff51, "Right": 0xff53,
        "Down": 0xff54, "End": 0xff57, "Escape": 0xff1b, "F2": 0xffbf, "space": 0x20}
EVENTS = ("object:state-changed", "object:property-change:accessible-description",
          "object:property-change:accessible-name", "object:announcement")

events = []


def until(condition, seconds=20):
    """What `condition` gives, as soon as that is true or the time is over."""
    end = time.monotonic() + seconds
    while not (found := condition()) and time.monotonic() < end:
        if not GLib.MainContext.default().iteration(False):
            time.sleep(0.01)
    return found


def expect(condition, what):
    found = until(condition) if callable(condition) else condition
    if not found:
        raise AssertionError(what)
    return found


def has(item, state):
    return item.get_state_set().contains(state)


def children(item):
    for i in range(item.get_child_count()):
        child = item.get_child_at_index(i)
        if child:
            yield child


def walk(root):
    """`root` and what is shown in it, the outer first, without the cells of trees."""
    waiting = collections.deque([root])
    while waiting:
        item = waiting.popleft()
        yield item
        if item.get_role() not in TREES:
            waiting.extend(child for child in children(item) if has(child, State.SHOWING))


def find(name, *roles):
    return expect(lambda: next((item for item in walk(window) if item.get_role() in roles and
                                item.get_name() == name), None), f"there is no '{name}'")


def called(item):
    """The name, which is that of a label if there is one."""
    for relation in item.get_relation_set():
        if relation.get_relation_type() == Atspi.RelationType.LABELLED_BY:
            return relation.get_target(0).get_name()
    return item.get_name()


def act(item, action):
    names = [item.get_action_name(i) for i in range(item.get_n_actions())]
    expect(action in names and item.do_action(names.index(action)), f"no {action}: {names}")


def show(tab):
    act(next(item for item in walk(window) if item.get_role() == Role.PAGE_TAB and
             item.get_name().startswith(tab)), "Press")


def press(key):
    Atspi.generate_keyboard_event(KEYS[key], None, Atspi.KeySynthType.SYM)


def focus(item):
    item.grab_focus()
    expect(lambda: has(item, State.FOCUSED), f"'{item.get_name()}' takes no focus")


def tab_to(item):
    focus(next(item for item in walk(window) if item.get_role() == Role.PAGE_TAB_LIST))
    for _ in range(5):
        before = len(events)
        press("Tab")
        until(lambda: seen("object:state-changed:focused", before, lambda e: e.detail1))
        if has(item, State.FOCUSED):
            return
    raise AssertionError(f"Tab doesn't lead to '{item.get_name()}'")


def search_preferences(text):
    show("Preferences")
    edit = find("Search preferences", Role.TEXT)
    focus(edit)
    before = len(events)
    is_other = edit.get_text(0, -1) != text
    edit.set_text_contents(text)
    if text and is_other:
        until(lambda: told(before, "result"))  # so that it doesn't come later


def menu_entries():
    waiting = [item for item in children(window) if item.get_role() == Role.MENU_BAR]
    for item in waiting:
        waiting.extend(children(item))
    return waiting


def focused():
    return next((e.source for e in reversed(events)
                 if e.type == "object:state-changed:focused" and e.detail1), None)


def seen(kind, since, matches=lambda event: True):
    def is_such(event):
        try:
            return event.type.startswith(kind) and matches(event)
        except GLib.Error:  # its source is gone
            return False
    return any(is_such(event) for event in events[since:])


def told(since, *words):
    """Whether a message with `words` was announced."""
    def matches(event):
        if event.type == "object:announcement":
            text = event.any_data
        elif event.detail1 and event.source.get_role() == Role.NOTIFICATION:
            text = event.source.get_name()
        else:
            return False
        return all(word in text for word in words)
    return seen("object:announcement", since, matches) or \
        seen("object:state-changed:showing", since, matches)


def told_expanded(since, expanded):
    """By an event of its own, or below Qt 6.8 by a message."""
    return seen("object:state-changed:expanded", since, lambda e: e.detail1 == expanded) or \
        told(since, "expanded" if expanded else "collapsed")


def pending(count):
    return lambda: f" {count} unsaved" in window.get_name()


def check_combo_boxes():
    """Combo boxes of settings are called as their settings."""
    search_preferences("button order")
    boxes = expect(lambda: [item for item in walk(window) if item.get_role() == Role.COMBO_BOX and
                            called(item) != "File:"], "there are none")
    for box in boxes:
        row = box.get_parent().get_parent().get_name()
        expect(row and called(box) == row, f"'{called(box)}' belongs to '{row}'")


def check_toggled_check_box():
    """A check box toggled by its action makes a pending change."""
    search_preferences("Compress settings")
    box = find("Compress settings blocks", Role.CHECK_BOX)
    act(box, "Toggle")
    expect(pending(1), "nothing is pending")
    act(box, "Toggle")
    expect(lambda: not pending(1)(), "it is still pending")


def check_texts_set():
    """A text or number that is set without the focus is taken."""
    for name, text, role in (("High res font", "Other font", Role.TEXT),
                             ("Font resolution", "97", Role.SPIN_BUTTON),
                             ("UI scaling factor", "1.5", Role.TEXT)):
        search_preferences(name)
        find(name, role).set_text_contents(text)
        expect(pending(1), f"{name} isn't taken")
        act(find(f"Revert {name}", Role.PUSH_BUTTON), "Press")
        expect(lambda: not pending(1)(), f"{name} isn't reverted")


def check_refusal():
    """A refused value is told, with and without the focus, and goes."""
    for name, text, role in (("UI scaling factor", "much", Role.TEXT),
                             ("Font resolution", "0", Role.SPIN_BUTTON)):
        search_preferences(name)
        edit = find(name, role)
        for takes_focus in (False, True):
            before = len(events)
            if takes_focus:
                focus(edit)
            edit.set_text_contents(text)
            if takes_focus:
                focus(find("Search preferences", Role.TEXT))
            expect(lambda: told(before, "Not accepted"), f"{name}: nothing is told")
            expect(lambda: edit.get_text(0, -1) != text, f"{name}: it stays")


def check_focus_in_view():
    """Shift+Tab from behind a page leaves the focus in view."""
    search_preferences("")
    button = next(item for item in walk(window) if item.get_role() == Role.PUSH_BUTTON and
                  item.get_parent().get_child_at_index(0).get_name() == "Ad:")
    focus(button)
    press("Shift+Tab")
    item = expect(lambda: focused() if focused() != button else None, "the focus stays")
    height = window.get_extents(Atspi.CoordType.WINDOW).height
    expect(lambda: 0 <= item.get_extents(Atspi.CoordType.WINDOW).y < height,
           f"'{item.get_name()}' is at {item.get_extents(Atspi.CoordType.WINDOW).y} of {height}")


def check_expanders():
    """Sections that fold are expanders and tell it; none is a check box."""
    show("Unused")
    title = expect(lambda: next((item for item in walk(window) if "value(s)" in item.get_name()
                                 and item.get_role() != Role.LABEL), None), "there is none")
    expect(title.get_role() != Role.CHECK_BOX, f"it is a {title.get_role_name()}")
    expect(has(title, State.EXPANDABLE) and not has(title, State.EXPANDED), "it isn't folded")
    before = len(events)
    focus(title)
    act(title, "Press")
    expect(lambda: told_expanded(before, True), "no event tells it")
    expect(has(title, State.EXPANDED), "it is still folded")


def check_cleanup():
    """A tick in Cleanup is told, and its cell says what is queued."""
    show("Cleanup")
    tree = find("Entries that can be removed", Role.TREE)
    tab_to(tree)
    press("Home")
    press("Down")
    before = len(events)
    press("space")
    expect(lambda: seen("object:state-changed:checked", before,
                        lambda e: e.detail1 == 1 and e.source.get_role() == Role.TABLE_CELL),
           "no event tells it")
    before = len(events)
    act(find("Queue for deletion", Role.PUSH_BUTTON), "Press")
    expect(lambda: told(before, "Queued for deletion"), "the deletion isn't told")
    columns = 4
    expect(lambda: any("eletion" in child.get_description()
                       for i, child in enumerate(children(tree)) if i % columns == 0),
           "no cell with a name says that it is queued")
    count = sum(e.type.startswith("object:property-change") for e in events[before:])
    expect(count <= 40, f"{count} names and descriptions changed")


def check_health():
    """All that takes the focus in a finding says which finding it is."""
    show("Health")
    for card in expect(lambda: [item for item in walk(find("Findings", Role.FILLER))
                                if item.get_name().startswith(("Problem:", "Warning:", "Note:"))],
                       "there is none"):
        for item in walk(card.get_parent()):
            expect(not has(item, State.FOCUSABLE) or card.get_name() in item.get_description() or
                   item.get_name().startswith(("Revert ", "Browse for ")),
                   f"'{item.get_name()}' doesn't")


def check_hits():
    """The number of hits is told, and not the end of a search."""
    for tab, name, box in (("Preferences", "Search preferences", None),
                           ("Search", "Search all settings", "Descriptions"),
                           ("All settings", "Filter", "Changed only")):
        show(tab)
        before = len(events)
        find(name, Role.TEXT).set_text_contents("font")
        expect(lambda: told(before, "result"), f"{name} doesn't")
        for _ in range(2 if box else 0):
            before = len(events)
            act(find(box, Role.CHECK_BOX), "Toggle")
            expect(lambda: told(before, "result"), f"{box} doesn't")
        before = len(events)
        find(name, Role.TEXT).set_text_contents("")
    expect(not until(lambda: told(before), 1), "its end is told")


def check_folding():
    """Folding a row of a tree is told."""
    show("All settings")
    tab_to(find("All settings", Role.TREE))
    press("End")
    for key, expanded in (("Right", True), ("Left", False)):
        before = len(events)
        press(key)
        expect(lambda: told_expanded(before, expanded), f"no event tells it of {key}")


def check_editing_in_the_tree():
    """F2 edits the value of a row from its name, with an editor that has a name."""
    show("All settings")
    before = len(events)
    find("Filter", Role.TEXT).set_text_contents("ProcessIcon/Prefix")
    expect(lambda: told(before, "1 result"), "it isn't the only value that is found")
    tab_to(find("All settings", Role.TREE))
    press("End")
    press("F2")
    expect(lambda: focused().get_role() == Role.TEXT, "there is no editor")
    expect(focused().get_name() == "Prefix", f"it is called '{focused().get_name()}'")
    press("Escape")
    find("Filter", Role.TEXT).set_text_contents("")


def check_saving():
    """A save is told."""
    search_preferences("High res font")
    find("High res font", Role.TEXT).set_text_contents("Other font")
    expect(pending(2), "nothing is pending")  # beside what Cleanup has queued
    before = len(events)
    entry = next(item for item in menu_entries() if item.get_name() == "Save changes...")
    entry.do_action(0)
    dialog = expect(lambda: next((child for child in children(application) if child != window and
                                  has(child, State.ACTIVE)), None), "there is no review")
    act(next(item for item in walk(dialog) if item.get_role() == Role.PUSH_BUTTON and
             item.get_name() == "Save"), "Press")
    expect(lambda: told(before, "Saved. Backup: "), "it isn't")


def check_running():
    """That PixInsight starts is told."""
    before = len(events)
    fake = Path(sys.argv[2]) / "PixInsight"
    shutil.copy("/bin/sleep", fake)
    with subprocess.Popen([fake, "60"]) as process:
        expect(lambda: told(before, "PixInsight is running"), "it isn't")
        process.kill()
    fake.unlink()
    expect(lambda: not any("view only" in item.get_name() for item in walk(window)), "it stays")


def check_names():
    """All that takes the focus, and all controls, have a name."""
    for tab in ("Preferences", "Search", "Cleanup", "Unused", "Health", "Compare", "All settings"):
        show(tab)
        nameless = [f"{item.get_role_name()} in '{item.get_parent().get_name()}'"
                    for item in walk(window) if not called(item) and
                    (has(item, State.FOCUSABLE) or item.get_role() in CONTROLS)]
        expect(not nameless, f"{tab}: {nameless}")


def check_menu():
    """A menu entry returns before the dialog that it opens is closed."""
    for name in ("Find module data...", "Manage backups...", "About Kestrane Settings Editor"):
        entry = next(item for item in menu_entries() if item.get_name() == name)
        entry.do_action(0)  # fails after a second if there is no answer
        dialog = expect(lambda: next((child for child in children(application)
                                      if child != window and has(child, State.ACTIVE)), None),
                        f"{name} opens nothing")
        press("Escape")
        expect(lambda: dialog not in children(application), f"{name} stays")


def check_banner():
    """A file that another program changed is told, once."""
    before = len(events)
    for path in Path(sys.argv[2]).iterdir():
        path.write_bytes(path.read_bytes() + b"\n")
    expect(lambda: told(before, "changed on disk"), "it isn't")
    search_preferences("Compress settings")
    before = len(events)
    act(find("Compress settings blocks", Role.CHECK_BOX), "Toggle")
    expect(pending(1), "nothing is pending")
    expect(not until(lambda: told(before, "changed on disk"), 1), "it is told again")


def opened():
    desktop = Atspi.get_desktop(0)
    desktop.clear_cache()
    return next((item for item in children(desktop) if item.get_child_count() > 0), None)


def activated():
    """A window manager that is late doesn't do it for what is there already."""
    if not has(window, State.ACTIVE):
        window.grab_focus()
        time.sleep(0.2)
    return has(window, State.ACTIVE)


manager = subprocess.Popen(["openbox"], stdin=subprocess.DEVNULL)  # else nothing is active
program = subprocess.Popen([sys.argv[1]], stdin=subprocess.DEVNULL)
try:
    application = until(opened) or sys.exit(2)
    application.set_cache_mask(Atspi.Cache.NONE)
    window = application.get_child_at_index(0)
    listener = Atspi.EventListener.new(events.append)
    for kind in EVENTS:
        listener.register(kind)
    until(activated) or sys.exit(2)
    failures = 0
    for check in [value for name, value in globals().items() if name.startswith("check_")]:
        try:
            check()
            print("ok:", check.__doc__, flush=True)
        except (AssertionError, StopIteration, GLib.Error) as error:
            failures += 1
            print(f"FAILED: {check.__doc__} But: {error}.", flush=True)
    sys.exit(failures > 0)
finally:
    program.kill()
    manager.kill()
