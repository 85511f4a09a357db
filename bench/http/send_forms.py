#!/usr/bin/env python3
"""Sends forms with one field of 49 MB on several connections at once. Prints how often each answer came.

usage: send_forms.py COUNT
"""

import collections
import sys
import threading

from raw_client import connect, head, read_to_end, send_until_closed

FIELD_BYTES = 49_000_000
BEGIN = b'--b\r\nContent-Disposition: form-data; name="f"\r\n\r\n'
END = b"\r\n--b--\r\n"


def main():
    body = BEGIN + bytes(FIELD_BYTES) + END
    form = head("/hello", f"Content-Length: {len(body)}", "Content-Type: multipart/form-data; boundary=b",
                "Connection: close", method="POST")
    answers = collections.Counter()
    lock = threading.Lock()

    def send():
        try:
            connection = connect()
            send_until_closed(connection, form)
            send_until_closed(connection, body)
            answer = read_to_end(connection).split(b"\r\n")[0].decode() or "closed"
        except OSError as error:
            answer = type(error).__name__
        with lock:
            answers[answer] += 1

    clients = [threading.Thread(target=send) for _ in range(int(sys.argv[1]))]
    for client in clients:
        client.start()
    for client in clients:
        client.join()
    print(", ".join(f"{count} x {answer}" for answer, count in sorted(answers.items())))


if __name__ == "__main__":
    main()
