"""A simulated user, who types, clicks, looks at the screen, and uses a screen reader."""

import accessibility
from environment import run, wait_until


class Person:
    """Uses the window of a program. The window, or the compositor that contains it, is the active X11 window."""

    def __init__(self, process, artefacts, scenario):
        self.process, self.artefacts, self.scenario = process, artefacts, scenario
        self.bus = accessibility.Bus()
        self.root = wait_until(lambda: self.bus.root(process), "the program on the accessibility bus")
        # The index of the selected tab. GTK 4.8 also exposes the controls of the other tabs.
        self.tab = 0

    # ---- Hands ------------------------------------------------------------------------------------------------------

    def press(self, *keys):
        run("xdotool", "key", "--delay", "10", *keys)

    def type(self, text):
        run("xdotool", "type", "--delay", "10", text)

    def click_at(self, x, y):
        run("xdotool", "mousemove", "--window", self.window(), x, y, "click", "1")
        self.rest()

    def rest(self):
        """Moves the pointer to the lower corner of the page, where it does not highlight a control."""
        _, _, width, height = self.windows()[0].extents()
        run("xdotool", "mousemove", "--window", self.window(), width - 10, height - 10)

    def click(self, object):
        left, top, width, height = object.extents()
        self.click_at(left + width // 2, top + height // 2)

    def choose(self, title, item, step=None):
        """Opens a menu of the menu bar with the mouse, and chooses an item with the arrow keys."""
        self.click(self.find(accessibility.MENU_ITEM, title))
        wait_until(lambda: self.all(accessibility.MENU_ITEM, item), lambda: f"{item!r} in {self.objects()}")
        if step:
            self.keep_picture(step)
        for _ in range(50):
            self.press("Down")
            if self.find(accessibility.MENU_ITEM, item).is_(accessibility.FOCUSED):
                self.press("Return")
                return
        raise AssertionError(f"the arrow keys do not reach {item!r}: {self.objects()}")

    def click_page(self):
        """Clicks on the link of the page, which is large enough to be at this position at each text scale."""
        left, top, width, _ = self.page().extents()
        self.click_at(left + width // 2, top + 250)

    def go(self, text):
        self.press("ctrl+l")
        wait_until(lambda: self.address().is_(accessibility.FOCUSED), "focus in the address field")
        self.type(text)
        self.press("Return")

    # ---- Ears -------------------------------------------------------------------------------------------------------

    def windows(self):
        return self.bus.tree(self.root, 2).children

    def titles(self):
        return [window.name for window in self.windows()]

    def tree(self):
        """Returns the tree without the unselected tabs, and the subtree of the selected tab."""
        tree = self.bus.tree(self.root)
        fields = [object for object in tree.below() if object.name == "Address"]
        if len(fields) < 2:
            return tree, tree
        pages = [list(field.above()) for field in fields]
        view = next(object for object in pages[0] if all(object in page for page in pages))
        view.children = [child for child in view.children if child in pages[self.tab]]
        return tree, view

    def objects(self):
        tree, _ = self.tree()
        return list(tree.below())

    def objects_of_tab(self):
        _, tab = self.tree()
        return list(tab.below())

    def all(self, role, name=None):
        return [object for object in self.objects() if object.role == role and name in (None, object.name)]

    def find(self, role, name):
        found = []

        def look():
            found[:] = self.all(role, name)
            return len(found) == 1

        wait_until(look, lambda: f"one {name!r} (role {role}): {found} of {self.objects()}")
        return found[0]

    def button(self, name):
        return self.find(accessibility.BUTTON, name)

    def number_of_tabs(self):
        return sum(object.name == "Address" for object in self.bus.tree(self.root).below())

    def address(self):
        return self.find(accessibility.TEXT_FIELD, "Address")

    def page(self):
        (page,) = [object for object in self.objects() if accessibility.is_page(object)]
        return page

    def wait_for_title(self, title):
        wait_until(lambda: title in self.titles(), lambda: f"the title {title!r}: {self.titles()}")

    def wait_for_address(self, url):
        wait_until(lambda: self.address().text() == url, lambda: f"the address {url}: {self.address().text()}")

    def wait_for_tabs(self, number):
        wait_until(lambda: self.number_of_tabs() == number, lambda: f"{number} tabs: {self.number_of_tabs()}")

    def wait_for_sheet(self, heading, text):
        """Waits for an alert with this heading and this text over the page."""
        def texts():
            return [[object.name for object in sheet.below() if object.role == accessibility.LABEL]
                    for sheet in self.all(accessibility.ALERT, heading)]
        wait_until(lambda: any(sheet[:2] == [heading, text] for sheet in texts()),
                   lambda: f"an alert {heading!r}, {text!r}: {texts()}")

    def wait_for_no_sheet(self):
        wait_until(lambda: not self.all(accessibility.ALERT), "no alert")

    def focused(self):
        """Returns the object that has the keyboard focus, or None."""
        return next((object for object in self.objects() if object.is_(accessibility.FOCUSED)), None)

    def wait_for_focus_to_leave(self, object):
        """Waits until another object has the keyboard focus, and returns it."""
        def next_one():
            focused = self.focused()
            return focused and focused.path != object.path and focused
        return wait_until(next_one, lambda: f"the focus leaves {object}: {self.focused()}")

    # ---- Eyes -------------------------------------------------------------------------------------------------------

    def window(self):
        return run("xdotool", "getactivewindow").decode().strip()

    def pixels(self):
        """Returns the pixels of the window, three bytes each, and its width."""
        data = run("import", "-silent", "-window", self.window(), "-depth", "8", "ppm:-")
        _, size, _, pixels = data.split(b"\n", 3)
        return pixels, int(size.split()[0])

    def keep_picture(self, step):
        run("import", "-silent", "-window", "root", self.artefacts / f"{self.scenario}-{step}.png")


def area(picture, extents, margin=0):
    """Returns the pixels of a rectangle in a picture."""
    pixels, width = picture
    left, top, columns, rows = extents
    left, right = max(left - margin, 0), min(left + columns + margin, width)
    return b"".join(pixels[3 * (row * width + left):3 * (row * width + right)]
                    for row in range(max(top - margin, 0), top + rows + margin))
