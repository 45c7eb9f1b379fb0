"""Scenarios in which a user works with the installed program."""

import os
import pathlib
import shutil
import socket
import sys
import unittest

from accessibility import (ALERT, BUTTON, FOCUSABLE, FOCUSED, LABEL, MENU_ITEM, SEARCH_FIELD, SENSITIVE, TAB,
                           TEXT_FIELD, is_page, is_type_name)
from environment import Child, Environment, LIMIT, RIGHT_TO_LEFT, run, wait_until
from person import Person, area
from web import BOOKMARKS, HOSTS, PLAIN, RESETTING, UNTRUSTED, Web

PACKAGE, ARTEFACTS = (pathlib.Path(argument) for argument in sys.argv[1:3])


def setUpModule():
    global environment, web
    shutil.rmtree(ARTEFACTS, ignore_errors=True)
    ARTEFACTS.mkdir(parents=True)
    environment = Environment(PACKAGE, HOSTS, ARTEFACTS.with_name("end-to-end-locales"))
    unittest.addModuleCleanup(environment.close)
    web = Web(environment.identity, environment.strangers_identity)


class Scenario(unittest.TestCase):
    """Base class for scenarios. Each scenario starts the program with a separate home directory."""

    def setUp(self):
        self.scenario = self._testMethodName.removeprefix("test_").replace("_", "-")
        self.home = environment.folder(self.scenario)
        self.variables = {}
        self.log = ARTEFACTS / f"{self.scenario}.err"
        web.requests.clear()

    def start(self, *urls, **variables):
        self.variables = {**os.environ, "HOME": str(self.home), **variables}
        with open(self.log, "ab") as log:
            self.program = Child("keyloft", *urls, log=log, environment=self.variables)
        self.addCleanup(self.program.stop)
        person = Person(self.program.process.pid, ARTEFACTS, self.scenario)
        person.tab = max(0, len(urls) - 1)
        wait_until(person.titles, "a window")
        self.addCleanup(self.keep_last_picture, person)
        wait_until(person.focused, "the keyboard focus")
        return person

    def keep_last_picture(self, person):
        if self.program.process.poll() is None:
            person.keep_picture("end")

    def start_again(self, *urls):
        """Starts the program while it is running, with the same environment."""
        run("keyloft", *urls, env=self.variables, timeout=LIMIT)

    def quit(self, person):
        person.press("ctrl+q")
        self.assertEqual(self.program.process.wait(LIMIT), 0)

    def assert_nothing_critical(self):
        """Fails if the program or one of its libraries has reported a critical error."""
        text = self.log.read_text()
        self.assertNotRegex(text, r"CRITICAL|ERROR|assertion")


class Surroundings(unittest.TestCase):
    def test_no_packet_leaves(self):
        self.assertEqual([name for _, name in socket.if_nameindex()], ["lo"])

    def test_the_program_is_the_packages(self):
        installed, packaged = pathlib.Path("/usr/bin/keyloft"), environment.scratch / "package/usr/bin/keyloft"
        self.assertEqual(shutil.which("keyloft"), str(installed))
        self.assertEqual(installed.read_bytes(), packaged.read_bytes())


class Smoke(Scenario):
    """The same short use of all parts of the program on X11 and on Wayland."""

    def test_smoke_x11(self):
        self.smoke(self.start())

    def test_smoke_wayland(self):
        weston = environment.start_weston()
        self.addCleanup(weston.stop)
        self.smoke(self.start(WAYLAND_DISPLAY=environment.WAYLAND_DISPLAY, DISPLAY=""))

    def smoke(self, person):
        self.assertEqual(person.titles(), ["New Tab"])
        person.type(PLAIN + "/first")
        person.press("Return")
        person.wait_for_title(PLAIN + "/first")
        person.keep_picture("loaded")

        person.choose("Bookmarks", "Apple", step="menu")
        person.wait_for_title("www.apple.com/")

        person.press("ctrl+t")
        person.tab = 1
        person.wait_for_title("New Tab")
        person.go(PLAIN + "/second")
        person.wait_for_title(PLAIN + "/second")

        self.start_again(f"https://{PLAIN}/handed-over")
        person.tab = 2
        person.wait_for_title(PLAIN + "/handed-over")
        person.keep_picture("three-tabs")

        person.go(PLAIN + "/panels")
        person.wait_for_title(PLAIN + "/panels")
        person.click_page()
        person.wait_for_sheet(PLAIN, "The first text")
        person.keep_picture("alert")
        person.press("Return")
        person.wait_for_sheet(PLAIN, "Are you sure?")
        person.click(person.button("Cancel"))
        person.wait_for_title("declined")

        self.quit(person)
        self.assert_nothing_critical()


class Browsing(Scenario):
    def test_addresses_and_searches(self):
        person = self.start()
        self.assertTrue(person.address().is_(FOCUSED))
        person.type("www.wikipedia.org")
        person.press("Return")
        person.wait_for_title("www.wikipedia.org/")
        person.wait_for_address("https://www.wikipedia.org/")
        person.go("github.com/some/path")
        person.wait_for_title("github.com/some/path")
        person.go("three little words")
        person.wait_for_title("Results for three little words")
        person.wait_for_address("https://duckduckgo.com/?q=three%20little%20words")
        person.click(person.find(SEARCH_FIELD, "Search DuckDuckGo"))
        person.type("1+1 & more?")
        person.press("Return")
        person.wait_for_title("Results for 1+1 & more?")
        self.assertEqual(set(web.requests), {"https://www.wikipedia.org/", "https://github.com/some/path",
                                             "https://duckduckgo.com/?q=three%20little%20words",
                                             "https://duckduckgo.com/?q=1%2B1%20%26%20more%3F"})
        person.keep_picture("searched")

        person.click(person.button("Back"))
        person.wait_for_title("Results for three little words")
        person.press("ctrl+bracketleft")
        person.wait_for_title("github.com/some/path")
        person.click(person.button("Forward"))
        person.wait_for_title("Results for three little words")
        person.press("ctrl+bracketright")
        person.wait_for_title("Results for 1+1 & more?")
        self.assertFalse(person.button("Forward").is_(SENSITIVE))
        self.quit(person)

    def test_loads_are_stopped_and_repeated(self):
        person = self.start(f"https://{PLAIN}/first")
        person.wait_for_title(PLAIN + "/first")
        person.click(person.button("Reload"))
        web.wait_for(f"https://{PLAIN}/first", 2)
        person.button("Reload")

        held = f"https://{PLAIN}/held"
        for stop in (lambda: person.click(person.button("Stop")), lambda: person.press("ctrl+period")):
            before = web.requests[held]
            person.go(PLAIN + "/held")
            web.wait_for(held, before + 1)
            person.wait_for_address(held)
            person.button("Stop")
            person.keep_picture("loading")
            stop()
            person.button("Reload")
            person.wait_for_address(f"https://{PLAIN}/first")
            self.assertEqual(person.titles(), [PLAIN + "/first"])
            self.assertEqual(person.all(ALERT), [])

        # The page has loaded, but its image has not.
        page, image = (f"https://{PLAIN}/{name}" for name in ("image-held", "held-image"))
        person.go(page)
        web.wait_for(image, 1)
        person.wait_for_title(PLAIN + "/image-held")
        person.press("ctrl+r")
        web.wait_for(page, 2)
        web.wait_for(image, 2)
        person.button("Stop")
        web.release(image)
        person.button("Reload")
        self.assertEqual(web.requests[page], 2)
        self.quit(person)

    def test_bookmarks(self):
        kept = PLAIN + "/kept"
        person = self.start(f"https://{kept}")
        person.wait_for_title(kept)
        person.click(person.button("Bookmark this page"))
        person.button("Remove bookmark")
        person.button(kept)
        person.keep_picture("added")

        person.press("ctrl+t")
        person.tab = 1
        person.wait_for_title("New Tab")
        person.go(kept)
        person.wait_for_title(kept)
        person.button("Remove bookmark")
        person.choose("Bookmarks", "Remove Bookmark", step="menu")
        person.button("Bookmark this page")
        self.assertEqual(person.all(BUTTON, kept), [])
        person.press("ctrl+shift+Tab")
        person.tab = 0
        person.button("Bookmark this page")
        self.assertEqual(person.all(BUTTON, kept), [])
        person.press("ctrl+d")
        person.button("Remove bookmark")
        self.quit(person)

        web.requests.clear()
        person = self.start()
        person.click(person.button(kept))
        person.wait_for_title(kept)
        person.button("Remove bookmark")
        for name, url in BOOKMARKS.items():
            person.click(person.button(name))
            web.wait_for(url)
            person.wait_for_address(url)
        person.choose("Bookmarks", kept)
        person.wait_for_title(kept)
        self.quit(person)

    def test_tabs_and_windows(self):
        urls = [f"https://{PLAIN}/{name}" for name in ("one", "two")]
        person = self.start()
        self.start_again(*urls)
        person.wait_for_tabs(2)
        person.tab = 1
        person.wait_for_address(urls[1])
        person.press("ctrl+shift+Tab")
        person.tab = 0
        person.wait_for_address(urls[0])
        person.keep_picture("handed-over")
        person.press("ctrl+Tab")
        person.tab = 1
        person.wait_for_title(PLAIN + "/two")

        for link, opened in (("/link-to-new-window", "/linked"), ("/script-opens-window", "/opened")):
            person.go(PLAIN + link)
            person.wait_for_title(PLAIN + link)
            person.click_page()
            person.wait_for_title(PLAIN + opened)
            person.wait_for_tabs(3)
            person.tab = 2
            person.wait_for_address(f"https://{PLAIN}{opened}")
            person.press("ctrl+w")
            person.tab = 1
            person.wait_for_tabs(2)
            person.wait_for_title(PLAIN + link)

        person.press("ctrl+w")
        person.tab = 0
        person.wait_for_title(PLAIN + "/one")
        person.press("ctrl+w")
        wait_until(lambda: person.titles() == [], person.titles)
        self.assertIsNone(self.program.process.poll())
        self.start_again()
        person.wait_for_title("New Tab")
        person.go(PLAIN + "/again")
        person.wait_for_title(PLAIN + "/again")
        self.quit(person)

    def test_panels(self):
        person = self.start(f"https://{PLAIN}/panels")
        person.wait_for_title(PLAIN + "/panels")
        for answer, outcome in ((lambda: person.click(person.button("OK")), "agreed"),
                                (lambda: person.click(person.button("Cancel")), "declined"),
                                (lambda: person.press("Return"), "agreed"),
                                (lambda: person.press("Escape"), "declined")):
            person.press("ctrl+r")
            person.wait_for_title(PLAIN + "/panels")
            person.click_page()
            person.wait_for_sheet(PLAIN, "The first text")
            self.assertEqual(person.titles(), [PLAIN + "/panels"])
            person.click(person.button("OK"))
            person.wait_for_sheet(PLAIN, "Are you sure?")
            person.keep_picture("confirm")
            answer()
            person.wait_for_title(outcome)
            person.wait_for_no_sheet()
        self.quit(person)

    def test_failures(self):
        person = self.start(f"https://{PLAIN}/first")
        person.wait_for_title(PLAIN + "/first")
        unknown = "nowhere.example"
        for host, text in ((unknown, "The server was not found. Check the address and the network."),
                           (RESETTING, "The connection to the server was lost. Try again."),
                           (UNTRUSTED, "The server's certificate is not valid or not trusted.")):
            person.go(host)
            person.wait_for_sheet("Keyloft can't open the page", f"{text}\nhttps://{host}/")
            person.keep_picture(host)
            person.press("Return")
            person.wait_for_address(f"https://{PLAIN}/first")
            person.wait_for_no_sheet()
        self.quit(person)


CONTROLS = (BUTTON, TEXT_FIELD, SEARCH_FIELD, MENU_ITEM, TAB)


def is_shown(object):
    _, _, width, height = object.extents()
    return width > 0 and height > 0


class Accessibility(Scenario):
    def assert_named(self, person):
        """Fails if a control has no role, or no name except that of its class."""
        unnamed = [object for object in person.objects()
                   if (object.role in CONTROLS or object.is_(FOCUSABLE) and not object.children) and is_shown(object)
                   and (not object.name or is_type_name(object.name) or object.role_name == "widget")]
        self.assertEqual(unnamed, [])

    def test_names_and_roles(self):
        person = self.start(f"https://{PLAIN}/one", f"https://{PLAIN}/panels")
        person.wait_for_title(PLAIN + "/panels")
        self.assert_named(person)
        for name in ("Back", "Forward", "Reload", "Bookmark this page", "New Tab", *BOOKMARKS):
            person.button(name)
        person.find(TEXT_FIELD, "Address")
        person.find(SEARCH_FIELD, "Search DuckDuckGo")
        for name in ("Keyloft", "File", "Edit", "View", "History", "Bookmarks", "Window"):
            person.find(MENU_ITEM, name)
        for title in (PLAIN + "/one", PLAIN + "/panels"):
            person.find(TAB, title)
        person.click_page()
        person.wait_for_sheet(PLAIN, "The first text")
        person.button("OK")
        person.press("Return")
        person.wait_for_sheet(PLAIN, "Are you sure?")
        self.assert_named(person)

    def test_tab_key_reaches_every_control_and_shows_where_it_is(self):
        person = self.start(f"https://{PLAIN}/one", f"https://{PLAIN}/one")
        person.wait_for_title(PLAIN + "/one")
        for page in ("two", "three"):
            person.go(f"{PLAIN}/{page}")
            person.wait_for_title(f"{PLAIN}/{page}")
        person.press("ctrl+bracketleft")
        person.wait_for_title(PLAIN + "/two")
        # Menus and the tab strip are operated with other keys, which other scenarios press.
        expected = {object.path: object for object in person.objects_of_tab()
                    if object.role in CONTROLS and object.is_(FOCUSABLE) and is_shown(object)}
        self.assertEqual(len(expected), 6 + len(BOOKMARKS))
        self.assertEqual([object for object in expected.values() if not object.is_(SENSITIVE)], [])

        reached = set()
        before, focused = person.pixels(), person.focused()
        while focused.path not in reached:
            reached.add(focused.path)
            person.press("Tab")
            focused = person.wait_for_focus_to_leave(focused)
            extents = focused.extents()
            # WebKitGTK draws the focus inside a page.
            if not is_page(focused):
                wait_until(lambda: area(person.pixels(), extents, 5) != area(before, extents, 5),
                           f"the appearance of {focused} changes with the focus")
            before = person.pixels()
        self.assertEqual([object for path, object in expected.items() if path not in reached], [])


class Appearance(Scenario):
    """The window, a menu and an alert with different settings of the desktop."""

    def settings(self, text):
        """Writes settings of the desktop, which the next program that starts reads."""
        file = self.home / ".config/glib-2.0/settings/keyfile"
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)

    def open(self, **variables):
        person = self.start(f"https://{PLAIN}/one", f"https://{PLAIN}/panels", **variables)
        person.wait_for_title(PLAIN + "/panels")
        self.places = {object.name: object.extents() for object in person.objects() if object.role in CONTROLS}
        return person

    def look(self, person):
        self.assert_layout(person)
        person.keep_picture("window")
        self.window = person.pixels()
        person.choose("Bookmarks", "GitHub", step="menu")
        person.wait_for_title("github.com/")
        person.click(person.button("Back"))
        person.wait_for_title(PLAIN + "/panels")
        person.click_page()
        person.wait_for_sheet(PLAIN, "The first text")
        self.assert_layout(person)
        person.keep_picture("alert")
        person.press("Return")
        person.wait_for_sheet(PLAIN, "Are you sure?")
        person.press("Return")
        person.wait_for_title("agreed")
        self.quit(person)

    def assert_layout(self, person):
        """Fails if a control is partly outside the window, overlaps another control, or is smaller than its label."""
        shown = [(object, object.extents()) for object in person.objects()
                 if object.role in (*CONTROLS, LABEL) and is_shown(object)]
        _, _, width, height = person.windows()[0].extents()
        sheet = next(iter(person.all(ALERT)), None)
        if sheet:
            shown = [(object, extents) for object, extents in shown if sheet in object.above()]
        faults = []
        for index, (object, (left, top, columns, rows)) in enumerate(shown):
            if left < 0 or top < 0 or left + columns > width or top + rows > height:
                faults.append(f"{object} is outside of the window")
            for other, (x, y, w, h) in shown[:index]:
                if other in object.above():
                    if left < x or top < y or left + columns > x + w or top + rows > y + h:
                        faults.append(f"{object} is clipped by {other}")
                elif left < x + w and x < left + columns and top < y + h and y < top + rows:
                    faults.append(f"{object} overlaps {other}")
        self.assertEqual(faults, [])

    def brightness(self):
        data = area(self.window, self.places["Address"])
        return sum(data) / len(data)

    def text_height(self, picture, name):
        """The number of rows in which a control has dark pixels."""
        left, top, columns, rows = self.places[name]
        return sum(min(area(picture, (left, row, columns, 1))) < 128 for row in range(top, top + rows))

    def test_light(self):
        self.look(self.open())
        self.assertGreater(self.brightness(), 200)

    def test_dark(self):
        self.settings("[org/gnome/desktop/interface]\ncolor-scheme='prefer-dark'\n")
        self.look(self.open())
        self.assertLess(self.brightness(), 100)

    def test_high_contrast(self):
        person = self.open()
        ordinary = person.pixels()
        self.quit(person)
        self.settings("[org/gnome/desktop/a11y/interface]\nhigh-contrast=true\n")
        self.look(self.open())
        field = self.places["Address"]
        self.assertTrue(area(self.window, field) != area(ordinary, field), "the address field has a border")

    def test_large_text(self):
        # On X11, this setting requires a settings daemon.
        weston = environment.start_weston()
        self.addCleanup(weston.stop)
        wayland = {"WAYLAND_DISPLAY": environment.WAYLAND_DISPLAY, "DISPLAY": ""}
        person = self.open(**wayland)
        ordinary, ordinary_text = self.places, self.text_height(person.pixels(), "Address")
        self.quit(person)
        self.settings("[org/gnome/desktop/interface]\ntext-scaling-factor=2.0\n")
        self.look(self.open(**wayland))
        width, height = 2, 3
        for name in ("File", "DuckDuckGo", "Search DuckDuckGo"):
            self.assertAlmostEqual(self.places[name][width] / ordinary[name][width], 2, delta=0.2, msg=name)
        for name in ("File", "DuckDuckGo"):
            self.assertGreater(self.places[name][height] / ordinary[name][height], 1.2, name)
        self.assertAlmostEqual(self.text_height(self.window, "Address") / ordinary_text, 2, delta=0.3)

    def test_right_to_left(self):
        self.look(self.open(LANG=RIGHT_TO_LEFT))
        order = ["Search DuckDuckGo", "Bookmark this page", "Address", "Reload", "Forward", "Back"]
        self.assertEqual(sorted(order, key=lambda name: self.places[name][0]), order)
        self.assertLess(self.places["GitHub"][0], self.places["Apple"][0])


if __name__ == "__main__":
    names = sys.argv[3:]
    unittest.main(argv=[sys.argv[0], "--verbose", *(word for name in names for word in ("-k", name))])
