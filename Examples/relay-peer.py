#!/usr/bin/env python3
"""Relays the result of a sign-in to the program that waits for it.

    relay-peer.py RELAY-URL [NAME=VALUE]...

Equivalent to relay-peer.cpp, but uses only the Python standard library. Based only on docs/relay.md, which contains
everything that is needed to write a peer. Exits with status 0 if the host accepts the result, 1 on any failure, and 2
if the arguments are wrong.
"""

import base64
import json
import os
import pwd
import re
import socket
import struct
import sys
import urllib.parse

CANDIDATES = (
    "Library/Group Containers/group.velde.orvane.keyloft/relay.sock",
    "Library/Containers/velde.orvane.keyloft.relay.Extension/Data/Library/Caches/relay.sock",
)
PROVIDER = "appleid.apple.com"
MAX_PAYLOAD = 1 << 20
MAX_STATE = 2048
REPLY_TIMEOUT = 5  # seconds, for each read and write


class Failure(Exception):
    """An error that terminates the program. The message is the reason, in one line."""


def is_acceptable_redirect(uri):
    # Hosts write the URI in ASCII, its host in the ASCII form of IDNA. Refuse anything else.
    match = re.match(r"https://([^/?#@]+)(?=[/?#]|$)", uri) if uri.isascii() and uri.isprintable() else None
    if not match:
        return False
    try:
        host = urllib.parse.unquote(re.sub(r":[0-9]*$", "", match[1]), errors="strict")
    except UnicodeDecodeError:
        return False
    return host != PROVIDER


def read_target(url):
    """Returns the redirect URI, the nonce and the state (None if there is none) of a relay URL's fragment."""
    name, _, encoded = url.partition("#")[2].partition("=")
    if name != "keyloft":
        raise Failure("the URL contains no relay target")
    encoded = encoded.replace("-", "+").replace("_", "/")
    try:
        members = json.loads(base64.b64decode(encoded + "=" * (-len(encoded) % 4), validate=True).decode())
    except (ValueError, RecursionError):
        members = None
    if not isinstance(members, dict):
        raise Failure("the relay target is not a JSON object in base64")
    redirect, nonce, state = members.get("r"), members.get("n"), members.get("s")
    if not isinstance(redirect, str) or not is_acceptable_redirect(redirect):
        raise Failure("the relay target's redirect URI is missing or not acceptable")
    if not isinstance(nonce, str) or not re.fullmatch(r"[A-Za-z0-9_-]{22}", nonce):
        raise Failure("the relay target's nonce is missing or malformed")
    # Count code points instead of characters. The check is never too lenient, because each character has at least one
    # code point.
    if "s" in members and (not isinstance(state, str) or len(state) > MAX_STATE):
        raise Failure("the relay target's state is not a string of at most %d characters" % MAX_STATE)
    return redirect, nonce, state


def connect():
    """Returns a connection to the first candidate path on which a host accepts."""
    home = os.environ.get("HOME", "") if sys.platform == "linux" else ""
    if not os.path.isabs(home):
        home = pwd.getpwuid(os.getuid()).pw_dir
    errors = []
    for candidate in CANDIDATES:
        path = os.path.join(home, candidate)
        connection = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        try:
            connection.connect(path)
        except OSError as error:
            connection.close()
            errors.append("%s: %s" % (path, error.strerror or error))
        else:
            # Set the timeout after connecting: with a timeout, connect() fails immediately if the host is busy.
            connection.settimeout(REPLY_TIMEOUT)
            return connection
    raise Failure("no host accepts a connection (%s); start the host first" % "; ".join(errors))


def read(connection, count):
    data = b""
    while len(data) < count:
        received = connection.recv(count - len(data))
        if not received:
            raise Failure("no reply: the host closed the connection")
        data += received
    return data


def exchange(message):
    """Sends one message on a new connection and returns the reply, a dictionary."""
    try:
        payload = json.dumps(message, ensure_ascii=False).encode()
    except UnicodeEncodeError:
        raise Failure("the target or a parameter is not valid Unicode") from None
    if len(payload) > MAX_PAYLOAD:
        raise Failure("the message has %d bytes; hosts accept at most %d" % (len(payload), MAX_PAYLOAD))
    with connect() as connection:
        try:
            connection.sendall(struct.pack("<I", len(payload)) + payload)
            (length,) = struct.unpack("<I", read(connection, 4))
            if length > MAX_PAYLOAD:
                raise Failure("the reply has %d bytes; peers accept at most %d" % (length, MAX_PAYLOAD))
            text = read(connection, length)
        except OSError as error:
            raise Failure("no reply: %s" % (error.strerror or error)) from None
    try:
        reply = json.loads(text.decode())
    except (ValueError, RecursionError):
        reply = None
    if not isinstance(reply, dict):
        raise Failure("the reply is not a JSON object")
    print("the host answered", text.decode(), flush=True)
    return reply


def relay(url, params):
    redirect, nonce, state = read_target(url)
    print("target", redirect, flush=True)
    confirm = {"type": "confirm", "redirectUri": redirect, "nonce": nonce}
    if state is not None:
        confirm["state"] = state
        params.setdefault("state", state)
    if exchange(confirm).get("ok") is not True:
        raise Failure("the target was not confirmed")
    result = {"type": "result", "params": params, "redirectUri": redirect, "nonce": nonce}
    if exchange(result).get("relayed") is not True:
        raise Failure("the result was refused")
    print("relayed")


def main(arguments):
    if not arguments or not all("=" in argument for argument in arguments[1:]):
        print("usage: relay-peer.py RELAY-URL [NAME=VALUE]...", file=sys.stderr)
        return 2
    try:
        relay(arguments[0], dict(argument.split("=", 1) for argument in arguments[1:]) or {"code": "example"})
    except Failure as failure:
        print("relay-peer.py:", failure, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
