"""Queries the objects that a program exposes on the accessibility bus, as a screen reader does."""

import re

from gi.repository import Gio, GLib

ACCESSIBLE = "org.a11y.atspi.Accessible"
COMPONENT = "org.a11y.atspi.Component"
PROPERTIES = "org.freedesktop.DBus.Properties"
TEXT = "org.a11y.atspi.Text"
ROOT = "/org/a11y/atspi/accessible/root"

WINDOW_COORDINATES = 1
FOCUSABLE, FOCUSED, SENSITIVE = 11, 12, 24

# The names of roles differ between versions of GTK; their numbers do not.
BUTTON, TEXT_FIELD, SEARCH_FIELD, MENU_ITEM, ALERT, LABEL, TAB = 43, 61, 79, 35, 16, 29, 37


class Object:
    """An accessible object, as it was when the tree was read. `extents` and `text` query the current values."""

    def __init__(self, bus, owner, path, parent=None):
        self.bus, self.owner, self.path, self.parent = bus, owner, path, parent
        self.name, self.role, self.role_name, self.states, self.children = "", 0, "", 0, []

    def is_(self, state):
        return bool(self.states >> state & 1)

    def below(self):
        """Yields this object and its descendants, parents first."""
        yield self
        for child in self.children:
            yield from child.below()

    def above(self):
        object = self
        while object:
            yield object
            object = object.parent

    def extents(self):
        """Returns left, top, width and height in the window, in pixels."""
        return self.bus.call(self.owner, self.path, COMPONENT, "GetExtents", GLib.Variant("(u)", (WINDOW_COORDINATES,)))

    def text(self):
        # GTK 4.8 does not accept -1 as the end of an entry's text.
        length = self.bus.call(self.owner, self.path, PROPERTIES, "Get", GLib.Variant("(ss)", (TEXT, "CharacterCount")))
        return self.bus.call(self.owner, self.path, TEXT, "GetText", GLib.Variant("(ii)", (0, length)))

    def __repr__(self):
        states = [word for state, word in ((FOCUSABLE, "focusable"), (FOCUSED, "focused")) if self.is_(state)]
        return f"{self.role_name} {self.name!r} {' '.join(states)}{'' if self.is_(SENSITIVE) else ' insensitive'}"


class Bus:
    def __init__(self):
        session = Gio.bus_get_sync(Gio.BusType.SESSION)
        (address,) = session.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", None, None,
                                       Gio.DBusCallFlags.NONE, -1, None)
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self.connection = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)

    def call(self, owner, path, interface, method, arguments=None):
        (reply,) = self.connection.call_sync(owner, path, interface, method, arguments, None, Gio.DBusCallFlags.NONE,
                                             -1, None)
        return reply

    def root(self, process):
        """Returns the root object of a process without its children, or None."""
        for owner, path in self.call("org.a11y.atspi.Registry", ROOT, ACCESSIBLE, "GetChildren"):
            try:
                owner_process = self.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                          "GetConnectionUnixProcessID", GLib.Variant("(s)", (owner,)))
            except GLib.Error:  # the process has exited
                continue
            if owner_process == process:
                return Object(self, owner, path)
        return None

    def tree(self, root, depth=100):
        """Returns a copy of `root` with its descendants, down to `depth`. Sends the queries for a generation without
        waiting for the replies one by one, because a tree has hundreds of objects."""
        root = Object(self, root.owner, root.path)
        generation = [root]
        while generation and depth > 0:
            depth -= 1
            asked = [0]
            for object in generation:
                for question in ((PROPERTIES, "Get", GLib.Variant("(ss)", (ACCESSIBLE, "Name"))),
                                 (ACCESSIBLE, "GetRole", None), (ACCESSIBLE, "GetRoleName", None),
                                 (ACCESSIBLE, "GetState", None), (ACCESSIBLE, "GetChildren", None)):
                    asked[0] += 1
                    self.connection.call(object.owner, object.path, *question, None, Gio.DBusCallFlags.NONE, -1, None,
                                         self.answered, (object, question[1], asked))
            while asked[0] > 0:
                GLib.MainContext.default().iteration(True)
            generation = [child for object in generation for child in object.children]
        return root

    def answered(self, connection, result, question):
        object, method, asked = question
        asked[0] -= 1
        try:
            (reply,) = connection.call_finish(result)
        except GLib.Error:  # the object has been destroyed
            return
        if method == "Get":
            object.name = reply
        elif method == "GetRole":
            object.role = reply
        elif method == "GetRoleName":
            object.role_name = reply
        elif method == "GetState":
            object.states = sum(word << (32 * index) for index, word in enumerate(reply))
        else:
            object.children = [Object(self, owner, path, object) for owner, path in reply if owner == object.owner]


def is_type_name(name):
    """Returns true for the name of a widget class, which GTK exposes if a widget has no name."""
    return re.match(r"(Gtk|Adw|WebKit|Keyloft)[A-Z]", name) is not None


def is_page(object):
    return object.name == "Web page"
