"""What a user does with the installed program, and what must come of it."""

import os
import pathlib
import re
import shutil
import sys
import unittest

from environment import Child, Environment, LIMIT, run, wait_until
from person import Person
from web import BOOKMARKS, HOSTS, PLAIN, RESETTING, UNTRUSTED, Web

PACKAGE, ARTEFACTS = (pathlib.Path(argument) for argument in sys.argv[1:3])


def setUpModule():
    global environment, web
    shutil.rmtree(ARTEFACTS, ignore_errors=True)
    ARTEFACTS.mkdir(parents=True)
    environment = Environment(PACKAGE, HOSTS)
    unittest.addModuleCleanup(environment.close)
    web = Web(environment.identity, environment.strangers_identity)


class Scenario(unittest.TestCase):
    """Starts the program with a home directory of its own."""

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
        wait_until(person.titles, "a window")
        self.addCleanup(self.keep_last_picture, person)
        wait_until(lambda: person.window_is_active(), "an active window")
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


class Smoke(Scenario):
    """Start, load, menu, second tab, hand-over, alert, quit."""

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


if __name__ == "__main__":
    names = sys.argv[3:]
    unittest.main(argv=[sys.argv[0], "--verbose", *(word for name in names for word in ("-k", name))])
