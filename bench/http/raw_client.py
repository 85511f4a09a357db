"""A client of the HTTP service that can misbehave: sockets and bytes, nothing that repairs what a caller asks for."""

import socket
import struct

PORT = 3735
PATIENCE = 20  # s


def connect(receive_buffer=None):
    connection = socket.socket()
    if receive_buffer:
        connection.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, receive_buffer)
    connection.settimeout(PATIENCE)
    connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
    connection.connect(("127.0.0.1", PORT))
    return connection


def head(path, *headers, method="GET"):
    return "\r\n".join([f"{method} {path} HTTP/1.1", "Host: localhost", *headers, "", ""]).encode()


def asking(*arguments, receive_buffer=None, **more):
    """A connection on which this request was sent."""
    connection = connect(receive_buffer)
    connection.sendall(head(*arguments, **more))
    return connection


def read_to_end(connection):
    received = b""
    try:
        while data := connection.recv(65536):
            received += data
    except ConnectionResetError:
        received += b"[reset]"
    connection.close()
    return received


def read_answer(connection):
    """Of a connection that stays open; the answer is known to be small."""
    received = b""
    while b"\r\n\r\n" not in received:
        received += receive(connection)
    header, _, body = received.partition(b"\r\n\r\n")
    length = next(int(line[16:]) for line in header.split(b"\r\n") if line.startswith(b"Content-Length: "))
    while len(body) < length:
        body += receive(connection)
    return header + b"\r\n\r\n" + body


def receive(connection):
    data = connection.recv(65536)
    if not data:
        raise ConnectionError("the server has closed")
    return data


def get(path):
    """The whole answer on a connection of its own."""
    return read_to_end(asking(path, "Connection: close"))


def send_as_far_as_taken(connection, data):
    """For more than the server wants: it may end the connection on the way."""
    try:
        connection.sendall(data)
    except (BrokenPipeError, ConnectionResetError):
        pass


def reset(connection):
    """Ends without a goodbye, as a client that crashes on another machine."""
    connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
    connection.close()
