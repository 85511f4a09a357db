"""An HTTP client that sends the given bytes unchanged, so that it can send invalid requests."""

import socket
import struct

PORT = 3735
TIMEOUT = 20  # s


def connect(receive_buffer=None):
    connection = socket.socket()
    if receive_buffer:
        connection.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, receive_buffer)
    connection.settimeout(TIMEOUT)
    connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
    connection.connect(("127.0.0.1", PORT))
    return connection


def head(path, *headers, method="GET"):
    return "\r\n".join([f"{method} {path} HTTP/1.1", "Host: localhost", *headers, "", ""]).encode()


def request(*arguments, receive_buffer=None, **more):
    """Sends a request on a new connection, and returns the connection."""
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


def read_response(connection):
    """Reads one response with a content length, and leaves the connection open."""
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
        raise ConnectionError("the server has closed the connection")
    return data


def get(path):
    """Sends a request on a new connection, and returns the whole response."""
    return read_to_end(request(path, "Connection: close"))


def send_until_closed(connection, data):
    """Sends data. The server may close the connection before it has read all of it."""
    try:
        connection.sendall(data)
    except (BrokenPipeError, ConnectionResetError):
        pass


def reset(connection):
    """Closes the connection with a TCP reset."""
    connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
    connection.close()
