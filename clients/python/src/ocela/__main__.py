"""Commands for the shell: python -m ocela --help"""
from __future__ import annotations

import argparse
import csv
import dataclasses
import itertools
import json
import os
import sys
import time
from typing import Callable, Dict, Optional

from .client import Client
from .errors import OcelaError
from .model import Sample

MAX_SECONDS = 7 * 24 * 3600.0


def print_state(client: Client, _: argparse.Namespace) -> None:
    print(json.dumps(dataclasses.asdict(client.state()), indent=2))


def record(client: Client, options: argparse.Namespace) -> None:
    with client.recording(options.name) as recording:
        print(f"Recording to {recording.path}. Ctrl-C stops it.", flush=True)
        try:
            time.sleep(options.seconds)
        except KeyboardInterrupt:
            pass
    assert recording.saved
    print(f"Saved {recording.saved.samples} samples as {recording.path}")


def mark(client: Client, options: argparse.Namespace) -> None:
    marker = client.mark(options.text)
    print("The marker is recorded." if marker.recorded else "The marker is set, but no recording is running.")


def print_samples(client: Client, options: argparse.Namespace) -> None:
    writer = csv.writer(sys.stdout, lineterminator="\n")
    writer.writerow(Sample._fields)
    for sample in itertools.islice(client.samples(), options.count):
        writer.writerow(sample)
        sys.stdout.flush()


COMMANDS: Dict[str, Callable[[Client, argparse.Namespace], None]] = {
    "state": print_state, "record": record, "mark": mark, "samples": print_samples}


def parse(arguments: Optional[list[str]]) -> argparse.Namespace:
    parser = argparse.ArgumentParser(prog="python -m ocela", description="Uses Ocela from the shell.")
    parser.add_argument("--host", default="localhost")
    parser.add_argument("--port", type=int, default=3735)
    commands = parser.add_subparsers(dest="command", required=True)
    commands.add_parser("state", help="print the state as JSON")
    recording = commands.add_parser("record", help="record until Ctrl-C")
    recording.add_argument("name", help="the record file is NAME.csv in Ocela's records folder")
    recording.add_argument("--seconds", type=float, default=MAX_SECONDS, help="stop after this time")
    marker = commands.add_parser("mark", help="set a marker")
    marker.add_argument("text")
    samples = commands.add_parser("samples", help="print samples as CSV until Ctrl-C")
    samples.add_argument("--count", type=int, help="stop after this number of samples")
    return parser.parse_args(arguments)


def main(arguments: Optional[list[str]] = None) -> int:
    options = parse(arguments)
    try:
        COMMANDS[options.command](Client(options.host, options.port), options)
    except OcelaError as error:
        print(error, file=sys.stderr)
        return 1
    except KeyboardInterrupt:
        return 130
    except BrokenPipeError:  # the reader of the pipe has ended, for example `head`
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
    return 0


if __name__ == "__main__":
    sys.exit(main())
