#!/usr/bin/python3
"""A program that is neither the agent nor the helper and wants to be taken for one of them. It is
another user's, if it is root and so can choose.

  stranger.py listen WAY         listens in the agent's place; prints its port and user, and what it
                                 received at the end of its input
  stranger.py connect PORT FILE  connects in the helper's place and claims to have been cancelled;
                                 in the end the file says what it received
"""

import os
import socket
import struct
import sys

NOBODY = 65534


def become_somebody_else():
    try:
        os.setuid(NOBODY)
    except OSError:
        pass


def frame(payload):
    return struct.pack("<BQ", 0, len(payload)) + payload


def receive_all(connection, greeting=b""):
    received = b""
    try:
        connection.sendall(greeting)
        while part := connection.recv(4096):
            received += part
    except ConnectionError:
        pass
    return received


def listen(way):
    become_somebody_else()
    if way == "for_every_ipv6_address":
        listener = socket.create_server(("::", 0), family=socket.AF_INET6, dualstack_ipv6=True)
    else:
        address = "0.0.0.0" if way == "for_every_address" else "127.0.0.1"
        listener = socket.create_server((address, 0))
    print(listener.getsockname()[1], os.getuid(), flush=True)
    if way == "and_accepts_late":
        sys.stdin.read()
    connection, _ = listener.accept()
    if way == "and_accepts_once":
        listener.close()
    received = receive_all(connection)
    print(len(received), flush=True)


def connect(port, path):
    with open(path, "w", encoding="ascii") as file:
        become_somebody_else()
        connection = socket.create_connection(("127.0.0.1", int(port)))
        # Whoever started this goes on once the connection waits.
        if os.fork() == 0:
            results = frame(b'{"result":"ready"}') + frame(b'{"result":"cancel"}')
            file.write(str(len(receive_all(connection, results))))


{"listen": listen, "connect": connect}[sys.argv[1]](*sys.argv[2:])
