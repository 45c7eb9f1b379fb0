"""Tests the example programs of the relay by running them as a user would. Each test has an empty home directory.

    RelayExamplesTest.py HOST PEER…
"""

import base64
import contextlib
import json
import os
import pathlib
import shutil
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import threading
import unittest

HOST, PEERS = sys.argv[1], sys.argv[2:]
FIRST = "Library/Group Containers/group.velde.orvane.keyloft/relay.sock"
SECOND = "Library/Containers/velde.orvane.keyloft.relay.Extension/Data/Library/Caches/relay.sock"
PATIENCE = 60

# The nonce ABCDEFGHIJKLMNOPQRST-_ and the redirect URI https://client.example/cb, without a state.
TARGET = "eyJuIjoiQUJDREVGR0hJSktMTU5PUFFSU1QtXyIsInIiOiJodHRwczovL2NsaWVudC5leGFtcGxlL2NiIn0"
OTHER_URL = "https://client.example/#keyloft=" + TARGET

USAGE = r"\Ausage: relay-[a-z.]+ [^\n]+\n\Z"


def frame(payload):
    return struct.pack("<I", len(payload)) + payload


def receive_all(connection):
    """Returns everything that the other end sends before it closes the connection."""
    data = b""
    with contextlib.suppress(ConnectionResetError):
        while received := connection.recv(65536):
            data += received
    return data


def for_each_peer(test):
    def run(self):
        for peer in PEERS:
            with self.subTest(os.path.basename(peer)):
                test(self, peer)
    return run


class RelayExamples(unittest.TestCase):
    def setUp(self):
        # The path of this home directory has 16 bytes. The second candidate path therefore has the maximum length.
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="kl-", dir="/tmp"))
        self.addCleanup(shutil.rmtree, self.home)
        # On macOS the home directory comes from CFFIXED_USER_HOME or the user database, not from HOME.
        self.environment = {**os.environ, "HOME": str(self.home), "CFFIXED_USER_HOME": str(self.home)}

    def run_example(self, program, *arguments):
        command = [sys.executable, program] if program.endswith(".py") else [program]
        return subprocess.run([*command, *arguments], env=self.environment, stdin=subprocess.DEVNULL,
                              capture_output=True, encoding="utf-8", errors="replace", timeout=PATIENCE, check=False)

    def expect_failure(self, message, program, *arguments, status=1):
        ended = self.run_example(program, *arguments)
        self.assertEqual(ended.returncode, status, ended)
        self.assertRegex(ended.stderr, message)

    def start_host(self):
        """Starts a host and returns its relay URL."""
        self.host = subprocess.Popen([HOST], env=self.environment, stdout=subprocess.PIPE,
                                     stderr=subprocess.STDOUT, encoding="utf-8")
        self.addCleanup(self.host.stdout.close)
        self.addCleanup(self.host.wait)
        self.addCleanup(self.host.kill)
        self.printed = ""
        for line in self.host.stdout:
            self.printed += line
            if line.startswith("relay URL: "):
                return line[len("relay URL: "):-1]
        self.fail(self.printed)

    def expect_host_ends(self):
        self.printed += self.host.communicate(timeout=PATIENCE)[0]
        self.assertEqual(self.host.returncode, 0, self.printed)
        self.assertEqual(list(self.home.rglob("*.sock")), [])

    @contextlib.contextmanager
    def answering(self, reply):
        """Listens on the first candidate path and sends `reply` in response to one request."""
        path = self.home / FIRST
        path.parent.mkdir(parents=True, exist_ok=True)
        with socket.socket(socket.AF_UNIX) as listener:
            listener.bind(str(path))
            listener.listen()

            def answer():
                with listener.accept()[0] as connection:
                    (length,) = struct.unpack("<I", connection.recv(4, socket.MSG_WAITALL))
                    connection.recv(length, socket.MSG_WAITALL)
                    connection.sendall(reply)

            thread = threading.Thread(target=answer, daemon=True)
            thread.start()
            yield
            thread.join(PATIENCE)
        path.unlink()

    def expect_relayed(self, peer, candidate):
        url = self.start_host()
        ended = self.run_example(peer, url, "code=a-secret-of-some-length")
        self.assertEqual(ended.returncode, 0, ended)
        self.assertEqual(ended.stdout, 'target https://client.example/callback\n'
                                       'the host answered {"ok":true,"type":"confirm"}\n'
                                       'the host answered {"relayed":true,"type":"ack"}\n'
                                       'relayed\n')
        self.expect_host_ends()
        for line in (f"listening on {self.home / candidate}\n", "  code = a-secret…(23)\n", "  state = example\n"):
            self.assertIn(line, self.printed)

    def test_a_host_needs_an_authorize_URL(self):
        self.expect_failure(USAGE, HOST, "one", "two", status=2)
        self.expect_failure("bad_request: not an appleid.apple.com/auth/authorize URL", HOST,
                            "https://client.example")
        self.expect_failure("not a URL", HOST, "http://[")

    @for_each_peer
    def test_a_peer_needs_a_URL_and_pairs(self, peer):
        self.expect_failure(USAGE, peer, status=2)
        self.expect_failure(USAGE, peer, "https://client.example", "not-a-pair", status=2)

    @for_each_peer
    def test_a_peer_needs_a_target(self, peer):
        for fragment in ("", "#keyloft", "#keyloft=x", "#Keyloft=" + TARGET, "#x=1&keyloft=" + TARGET):
            self.expect_failure("relay target", peer, "https://client.example/" + fragment)

    @for_each_peer
    def test_a_peer_refuses_a_redirect_URI_that_it_cannot_trust(self, peer):
        for uri in ("http://client.example/", "https:///cb", "https://user@client.example/", "https://%FF/cb",
                    "https://appleid.apple.com/", "https://appleid.apple.com:443", "https://%61ppleid.apple.com/",
                    "https://appleid.apple.com\n/"):
            with self.subTest(uri):
                target = json.dumps({"n": "ABCDEFGHIJKLMNOPQRST-_", "r": uri}).encode()
                encoded = base64.urlsafe_b64encode(target).decode().rstrip("=")
                self.expect_failure("relay target", peer, "https://client.example/#keyloft=" + encoded)

    @for_each_peer
    def test_a_peer_without_a_host_names_both_paths(self, peer):
        self.expect_failure(f"(?s){FIRST}.*{SECOND}", peer, OTHER_URL)

    @for_each_peer
    def test_a_result_is_relayed_through_the_first_path(self, peer):
        self.expect_relayed(peer, FIRST)

    @for_each_peer
    def test_a_result_is_relayed_through_the_second_path(self, peer):
        (self.home / "Library").mkdir(exist_ok=True)
        (self.home / "Library/Group Containers").touch()
        self.expect_relayed(peer, SECOND)

    @for_each_peer
    def test_a_target_of_another_host_is_not_confirmed(self, peer):
        self.start_host()
        self.expect_failure("not confirmed", peer, OTHER_URL)

    @for_each_peer
    def test_a_result_with_another_state_is_refused(self, peer):
        self.expect_failure("the result was refused", peer, self.start_host(), "state=another")

    @for_each_peer
    def test_a_peer_needs_a_proper_reply(self, peer):
        for reply, message in ((b"", "no reply"),
                               (struct.pack("<I", 1), "no reply"),
                               (struct.pack("<I", (1 << 20) + 1), "no reply|the reply has 1048577 bytes"),
                               (frame(b"\xFF"), "not a JSON object|not confirmed"),
                               (frame(b"[]"), "not a JSON object|not confirmed"),
                               (frame(b'{"ok":1}'), "not confirmed")):
            with self.answering(reply):
                self.expect_failure(message, peer, OTHER_URL)

    def test_of_two_results_at_once_the_second_gets_no_reply(self):
        url = self.start_host()
        target = json.loads(base64.urlsafe_b64decode(url.partition("#keyloft=")[2] + "=="))
        result = frame(json.dumps({"type": "result", "params": {"code": "c", "state": target["s"]},
                                   "redirectUri": target["r"], "nonce": target["n"]}).encode())
        with socket.socket(socket.AF_UNIX) as one, socket.socket(socket.AF_UNIX) as other:
            self.host.send_signal(signal.SIGSTOP)
            os.waitpid(self.host.pid, os.WUNTRACED)
            for connection in (one, other):
                connection.connect(str(self.home / FIRST))
                connection.sendall(result)
            self.host.send_signal(signal.SIGCONT)
            replies = sorted((receive_all(one), receive_all(other)))
        self.assertEqual(replies, [b"", frame(b'{"relayed":true,"type":"ack"}')])
        self.expect_host_ends()


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
