"""The environment of the installed program: private mounts and network, display, session bus."""

import ctypes
import fcntl
import os
import pathlib
import shutil
import signal
import socket
import struct
import subprocess
import tempfile
import time

# The limit for each wait, in seconds. It is reached only on failure, so it is long enough for a slow machine.
LIMIT = 30

RIGHT_TO_LEFT = "ar_EG.UTF-8"

LIBC = ctypes.CDLL(None, use_errno=True)
PR_SET_PDEATHSIG = 1

ACCESSIBILITY_SERVICE = pathlib.Path("/usr/share/dbus-1/services/org.a11y.Bus.service")
PROGRAM_SERVICE = pathlib.Path("/usr/share/dbus-1/services/velde.orvane.keyloft.service")


def wait_until(condition, what):
    """Returns the first true value of `condition`. Fails with `what` if the limit expires first."""
    deadline = time.monotonic() + LIMIT
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise AssertionError(f"not within {LIMIT} s: {what() if callable(what) else what}")
        time.sleep(0.05)


def run(*command, **options):
    return subprocess.run([str(word) for word in command], check=True, stdout=subprocess.PIPE, **options).stdout


class Child:
    """A child process that is killed when this process exits."""

    def __init__(self, *command, log=subprocess.DEVNULL, environment=None, **options):
        self.process = subprocess.Popen([str(word) for word in command], stdin=subprocess.DEVNULL, stderr=log,
                                        env=environment, preexec_fn=self.end_with_parent, **options)

    @staticmethod
    def end_with_parent():
        LIBC.prctl(PR_SET_PDEATHSIG, signal.SIGKILL)

    def stop(self):
        self.process.terminate()
        try:
            self.process.wait(LIMIT)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()


def line_of(source, what):
    """Returns the first line that a server writes, which it does when it is ready."""
    line = source.readline().decode().strip()
    if not line:
        raise RuntimeError(f"{what} did not start")
    return line


def raise_loopback():
    """Brings up the loopback interface. The resolver ignores a machine whose only address is 127.0.0.1, so the
    interface gets a second one."""
    SIOCSIFFLAGS, SIOCSIFADDR, IFF_UP, IFF_RUNNING = 0x8914, 0x8916, 0x1, 0x40
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as control:
        fcntl.ioctl(control, SIOCSIFFLAGS, struct.pack("16sh14x", b"lo", IFF_UP | IFF_RUNNING))
        address = struct.pack("HH4s8x", socket.AF_INET, 0, socket.inet_aton("127.0.0.2"))
        fcntl.ioctl(control, SIOCSIFADDR, struct.pack("16s16s8x", b"lo:1", address))


def issue(folder, name, extensions, authority=None):
    """Creates a private key and a certificate in one file, signed by `authority` or by itself."""
    file = folder / f"{name}.pem"
    signed_by = ["-CA", authority, "-CAkey", authority] if authority else []
    run("openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes", "-days", "2",
        "-config", "/dev/null", "-subj", f"/CN={name}",
        *[word for extension in extensions for word in ("-addext", extension)],
        *signed_by, "-keyout", file, "-out", file, stderr=subprocess.DEVNULL)
    return file


def make_authority(folder, name):
    return issue(folder, name, ["basicConstraints=critical,CA:TRUE", "keyUsage=critical,keyCertSign",
                                "subjectKeyIdentifier=hash"])


def make_identity(folder, name, hosts, authority):
    names = ",".join(f"DNS:{host}" for host in hosts)
    return issue(folder, name, ["basicConstraints=critical,CA:FALSE", "extendedKeyUsage=serverAuth",
                                f"subjectAltName={names}"], authority)


class Environment:
    """The environment for all scenarios. Must be created in new mount and network namespaces. `kept` is a folder for
    files that later runs reuse."""

    WAYLAND_DISPLAY = "keyloft-end-to-end"

    def __init__(self, package, hosts, kept):
        self.scratch = pathlib.Path(tempfile.mkdtemp(prefix="keyloft-end-to-end-"))
        self.children = []
        self.enter_network(hosts)
        self.install(package, kept)
        self.variables = {
            "PATH": "/usr/bin:/bin", "LANG": "C.UTF-8", "GIO_USE_VFS": "local", "GSETTINGS_BACKEND": "keyfile",
            "XDG_RUNTIME_DIR": str(self.folder("runtime")), "LIBGL_ALWAYS_SOFTWARE": "1"}
        os.environ.clear()
        os.environ.update(self.variables)
        self.start_display()
        self.start_bus()
        self.start_window_manager()

    def folder(self, name):
        path = self.scratch / name
        path.mkdir(mode=0o700, exist_ok=True)
        return path

    def enter_network(self, hosts):
        raise_loopback()
        self.mount("--make-rprivate", "/")
        names = self.scratch / "hosts"
        names.write_text("".join(f"127.0.0.1 {host}\n" for host in ["localhost", *hosts]))
        self.mount("--bind", names, "/etc/hosts")
        # Resolve only the names in that file. By default, the resolver would also query a name server.
        sources = self.scratch / "nsswitch.conf"
        sources.write_text("passwd: files\ngroup: files\nhosts: files\n")
        self.mount("--bind", sources, "/etc/nsswitch.conf")
        authority = make_authority(self.scratch, "authority")
        self.mount("--bind", authority, "/etc/ssl/certs/ca-certificates.crt")
        self.identity = make_identity(self.scratch, "identity", hosts, authority)
        stranger = make_authority(self.scratch, "stranger")
        self.strangers_identity = make_identity(self.scratch, "strangers-identity", hosts, stranger)
        # An X server looks for servers with the same number only in its own network, and takes over their sockets.
        pathlib.Path("/tmp/.X11-unix").mkdir(mode=0o1777, exist_ok=True)
        self.mount("-t", "tmpfs", "-o", "mode=1777", "none", "/tmp/.X11-unix")

    def install(self, package, kept):
        """Mounts the package's files over /usr, for this process and its children only."""
        run("dpkg", "-x", package, self.scratch / "package")
        # Most machines lack a right-to-left locale. Compiling it takes seconds, so keep it for the next run.
        compiled = kept / RIGHT_TO_LEFT
        if not compiled.exists():
            kept.mkdir(parents=True, exist_ok=True)
            made = self.scratch / RIGHT_TO_LEFT
            run("localedef", "--no-archive", "-i", RIGHT_TO_LEFT.split(".")[0], "-f", "UTF-8", made)
            shutil.copytree(made, compiled)
        shutil.copytree(compiled, self.scratch / "package/usr/lib/locale" / RIGHT_TO_LEFT)
        self.mount("-t", "overlay", "-o", f"lowerdir={self.scratch}/package/usr:/usr", "package", "/usr")

    @staticmethod
    def mount(*arguments):
        run("mount", *arguments)

    def start(self, *command, **options):
        child = Child(*command, **options)
        self.children.append(child)
        return child

    def start_display(self):
        # -r disables key repeat, which would type a key several times on a slow machine.
        display = self.start("Xvfb", "-displayfd", "1", "-screen", "0", "1600x1200x24", "-nolisten", "tcp", "-noreset",
                             "-r", stdout=subprocess.PIPE)
        self.variables["DISPLAY"] = os.environ["DISPLAY"] = ":" + line_of(display.process.stdout, "the display")
        # The X server announces a keyboard at the first key. openbox would miss the keys that follow at once (seen with
        # 3.6.1, not reported).
        run("xdotool", "key", "--delay", "0", "Shift_L")

    def start_bus(self):
        services = self.folder("services")
        for service in (ACCESSIBILITY_SERVICE, PROGRAM_SERVICE):
            shutil.copy(service, services)
        configuration = self.scratch / "session.conf"
        configuration.write_text(
            f"<busconfig><type>session</type><listen>unix:path={self.scratch}/bus</listen>"
            f"<servicedir>{services}</servicedir><policy context='default'><allow send_destination='*'/>"
            "<allow receive_sender='*'/><allow own='*'/></policy></busconfig>")
        bus = self.start("dbus-daemon", f"--config-file={configuration}", "--nofork", "--nopidfile",
                         "--print-address=1", stdout=subprocess.PIPE)
        address = line_of(bus.process.stdout, "the session bus")
        self.variables["DBUS_SESSION_BUS_ADDRESS"] = os.environ["DBUS_SESSION_BUS_ADDRESS"] = address

    def start_window_manager(self):
        ready = self.scratch / "window-manager-ready"
        os.mkfifo(ready)
        self.start("openbox", "--sm-disable", "--startup", f"sh -c 'echo ready >{ready}'",
                   stdout=subprocess.DEVNULL)
        with open(ready, "rb") as source:
            line_of(source, "the window manager")

    def start_weston(self):
        """Starts a Wayland compositor whose screen is a window of the display. Its seat is the display's keyboard and
        pointer, and the first window of a program fills its screen."""
        # If the pointer is in the window from the start, Weston assumes a wrong position (seen with 10.0.1, not
        # reported). Move the pointer away, so that it enters the window later.
        run("xdotool", "mousemove", 0, 0)
        with open(self.scratch / "weston.log", "wb") as log:
            weston = self.start("weston", "--backend=x11-backend.so", "--shell=kiosk-shell.so", "--no-config",
                                f"--socket={self.WAYLAND_DISPLAY}", "--width=1100", "--height=800", "--idle-time=0",
                                "--use-pixman", log=log, stdout=log)
        socket_file = pathlib.Path(self.variables["XDG_RUNTIME_DIR"], self.WAYLAND_DISPLAY)
        wait_until(socket_file.exists, "the Wayland compositor's socket")
        return weston

    def close(self):
        for child in reversed(self.children):
            child.stop()
        shutil.rmtree(self.scratch, ignore_errors=True)
