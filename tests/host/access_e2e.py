#!/usr/bin/python3
# access_e2e.py DESKTOP CLI HOST SHOTS
#
# Run inside tests/host/desktop_session.sh. Places two widgets, starts the
# host with no handler installed for meterwick:// links, and checks from
# outside, over AT-SPI: the application and its widget windows with their
# names and descriptions, each row as a child with the link role and a click
# action, and that invoking one opens that tool's Full Dashboard window. On
# X11 it also clicks a row with the pointer (xdotool), closes the dashboard
# with Escape, reaches a row with Tab and Enter, goes on with Tab past the
# last row to the next widget and back with Shift+Tab, and opens the menu
# with the Menu key. Last, with the payload gone, each widget's description
# names the container looked at. Screenshots land in SHOTS.
# Exits 1 with the reason on the first thing that is not so.

import os
import subprocess
import sys
import time

desktop, cli, host, shots = sys.argv[1:5]
work = os.environ["MW_DESKTOP_DIR"]
os.makedirs(shots, exist_ok=True)


def fail(message):
    print("access_e2e (%s): %s" % (desktop, message), file=sys.stderr)
    sys.exit(1)


def run(*command):
    done = subprocess.run(command, capture_output=True, text=True)
    if done.returncode != 0:
        fail("%s failed: %s" % (" ".join(command), done.stderr.strip()))
    return done.stdout


def wait_for(what, probe, seconds=20):
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        found = probe()
        if found:
            return found
        time.sleep(0.2)
    fail("timed out waiting for " + what)


try:
    import pyatspi
except ImportError as error:
    fail("pyatspi cannot be imported (install python3-pyatspi): %s" % error)

# The sample payload in a private container; no handler for the scheme in
# this session's XDG_DATA_HOME, so the host follows links itself.
run(cli, "demo", "--output", os.path.join(work, "demo"))
os.environ["METERWICK_CONTAINER"] = os.path.join(work, "demo", "container")
run(cli, "place", "accounts", "--family", "systemMedium", "--at", "100,100")
run(cli, "place", "focus", "--at", "600,100")

env = dict(os.environ)
env.pop("MW_URL_HANDLER", None)
env.pop("NO_AT_BRIDGE", None)
env["MW_HOST_APPEARANCE"] = os.environ.get("MW_TEST_APPEARANCE", "light")
log = open(os.path.join(work, "host.log"), "w")
host_process = subprocess.Popen([host], env=env, stdout=log, stderr=subprocess.STDOUT)


def host_log():
    with open(os.path.join(work, "host.log")) as f:
        return f.read()


def children(node):
    return [node.getChildAtIndex(i) for i in range(node.childCount)]


def descendants(node):
    out = []
    for child in children(node):
        if child is None:
            continue
        out.append(child)
        out.extend(descendants(child))
    return out


def application():
    try:
        desktop_node = pyatspi.Registry.getDesktop(0)
    except Exception:
        return None
    for app in children(desktop_node):
        if app is not None and app.name in ("meterwick-widget-host", "app.meterwick.WidgetHost", "Meterwick Widgets"):
            return app
    return None


def window_named(app, prefix):
    for window in children(app):
        if window is not None and window.name.startswith(prefix) and window.getState().contains(pyatspi.STATE_SHOWING):
            return window
    return None


def screenshot(name):
    path = os.path.join(shots, name + ".png")
    if desktop == "sway":
        subprocess.run(["grim", path])
    else:
        subprocess.run(["import", "-window", "root", path])


def activate(title):
    # A window going away meanwhile can make one search fail; ask again.
    wait_for("the window " + title + " to take focus",
             lambda: subprocess.run(["xdotool", "search", "--name", "^%s$" % title, "windowactivate", "--sync"],
                                    capture_output=True).returncode == 0)


def close_with_escape(title):
    activate(title)
    run("xdotool", "key", "Escape")
    wait_for(title + " to close on Escape", lambda: window_named(app, title) is None)


try:
    app = wait_for("the host on the accessibility bus", application, 30)
    accounts = wait_for("the Accounts window with its rows",
                        lambda: (lambda w: w if w and "%" in w.description else None)(window_named(app, "All Accounts")))
    focus = wait_for("the Focus window", lambda: window_named(app, "Tool Focus · "))
    if "%" not in focus.description:
        fail("the Focus window's description reads no figure: %r" % focus.description)
    print("accounts:", accounts.description)
    print("focus:", focus.name, "—", focus.description)

    links = [n for n in descendants(accounts) if n.getRole() == pyatspi.ROLE_LINK]
    names = [n.name for n in links]
    buttons = [n.name for n in descendants(accounts) if n.getRole() == pyatspi.ROLE_PUSH_BUTTON]
    if buttons:
        fail("rows exposed as push buttons rather than links: %r" % buttons)
    if "% used, " not in accounts.description or "resets in " not in accounts.description:
        fail("the description does not say what the figures mean: %r" % accounts.description)
    for expected in ("Claude · Work", "Codex", "Open Meterwick"):
        if expected not in names:
            fail("no link child named %r among %r" % (expected, names))
    for link in links:
        action = link.queryAction()
        if action.nActions < 1 or action.getName(0) != "click":
            fail("link %r has no click action" % link.name)
        if not link.getState().contains(pyatspi.STATE_FOCUSABLE):
            fail("link %r cannot take the keyboard focus" % link.name)
    work_link = links[names.index("Claude · Work")]
    if not work_link.description.startswith("Claude · Work: "):
        fail("the row's description does not read the row: %r" % work_link.description)

    # Invoking the row's action opens Claude · Work's Full Dashboard.
    work_link.queryAction().doAction(0)
    dashboard = wait_for("the Full Dashboard window for claude:work",
                         lambda: window_named(app, "Full Dashboard · Claude · Work"))
    if "%" not in dashboard.description:
        fail("the dashboard's description reads nothing: %r" % dashboard.description)
    time.sleep(1)
    screenshot("dashboard-from-action-" + env["MW_HOST_APPEARANCE"])

    if desktop == "openbox":
        # A pointer click on the Codex row opens Codex's dashboard.
        codex = links[names.index("Codex")]
        extents = codex.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
        x, y = extents.x + extents.width // 2, extents.y + extents.height // 2
        run("xdotool", "mousemove", str(x), str(y), "click", "1")
        codex_dashboard = wait_for("the Full Dashboard window for codex after a click",
                                   lambda: window_named(app, "Full Dashboard · Codex"))
        time.sleep(1)
        screenshot("dashboard-from-click-" + env["MW_HOST_APPEARANCE"])
        # Escape closes the focused dashboard.
        close_with_escape("Full Dashboard · Codex")

        # The keyboard: the Accounts widget takes focus, Tab reaches its
        # first row, Enter opens it.
        first = links[0]
        close_with_escape("Full Dashboard · Claude · Work")
        activate("All Accounts")
        run("xdotool", "key", "Tab")
        wait_for("Tab to focus the first row", lambda: first.getState().contains(pyatspi.STATE_FOCUSED))
        time.sleep(0.5)
        screenshot("focus-ring-" + env["MW_HOST_APPEARANCE"])
        run("xdotool", "key", "Return")
        wait_for("Enter to open the first row's dashboard", lambda: window_named(app, "Full Dashboard · " + first.name))
        close_with_escape("Full Dashboard · " + first.name)

        # Tab goes through the rows and on past the last to the next widget
        # (Focus stands right of Accounts), Shift+Tab comes back.
        activate("All Accounts")
        run("xdotool", "key", "Escape", "Tab")  # Escape leaves the row Enter opened
        wait_for("Tab to focus the first row again", lambda: first.getState().contains(pyatspi.STATE_FOCUSED))
        for link in links[1:]:
            run("xdotool", "key", "Tab")
            wait_for("Tab to reach " + link.name, lambda: link.getState().contains(pyatspi.STATE_FOCUSED))
        focus_links = [n for n in descendants(focus) if n.getRole() == pyatspi.ROLE_LINK]
        if not focus_links:
            fail("the Focus widget has no link to take the focus")
        run("xdotool", "key", "Tab")
        wait_for("Tab past the last row to reach the Focus widget",
                 lambda: focus_links[0].getState().contains(pyatspi.STATE_FOCUSED)
                 and focus.getState().contains(pyatspi.STATE_ACTIVE))
        time.sleep(0.5)
        screenshot("focus-next-widget-" + env["MW_HOST_APPEARANCE"])
        run("xdotool", "key", "shift+Tab")
        wait_for("Shift+Tab to come back to the Accounts widget's last link",
                 lambda: links[-1].getState().contains(pyatspi.STATE_FOCUSED)
                 and accounts.getState().contains(pyatspi.STATE_ACTIVE))

        # The Menu key opens the widget's menu.
        run("xdotool", "key", "Menu")
        wait_for("the Menu key to open the widget's menu",
                 lambda: any(n.name == "Edit Widget…" and n.getState().contains(pyatspi.STATE_SHOWING)
                             for n in descendants(app)))
        time.sleep(0.5)
        screenshot("menu-key-" + env["MW_HOST_APPEARANCE"])
        run("xdotool", "key", "Escape")

    # No payload: the widgets say so, and their description names the
    # container that was looked at.
    container = os.environ["METERWICK_CONTAINER"]
    os.rename(os.path.join(container, "widget-payload.json"), os.path.join(container, "moved-away.json"))
    wait_for("the Accounts widget to name the container it looked at",
             lambda: container in (window_named(app, "All Accounts") or accounts).description)
    problem = window_named(app, "All Accounts").description
    if "Waiting for Meterwick" not in problem and "Can't read widget data" not in problem:
        fail("the description does not read the panel: %r" % problem)
    print("no payload:", problem)
    time.sleep(0.5)
    screenshot("no-payload-" + env["MW_HOST_APPEARANCE"])
    if "cannot open" in host_log():
        fail("the host could not open a link:\n" + host_log())
finally:
    host_process.terminate()
    try:
        host_process.wait(10)
    except subprocess.TimeoutExpired:
        host_process.kill()
print("access_e2e (%s): ok" % desktop)
