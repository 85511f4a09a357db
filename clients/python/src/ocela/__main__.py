"""Commands for the shell: python -m ocela --help"""
from __future__ import annotations

import argparse
import csv
import dataclasses
import itertools
import json
import math
import os
import sys
import time
from typing import Callable, Dict, Optional, Tuple

from .bids import BidsSetup, export_bids
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


def export(_: Client, options: argparse.Namespace) -> None:
    setup = BidsSetup(**{field.name: getattr(options, field.name) for field in dataclasses.fields(BidsSetup)})
    exported = export_bids(options.records, options.output, subject=options.subject, task=options.task,
                           session=options.session, acquisition=options.acquisition, run=options.run, setup=setup)
    for file in exported.files:
        print(file)
    print("Not known:", *exported.notes, sep="\n- ", file=sys.stderr)


COMMANDS: Dict[str, Callable[[Client, argparse.Namespace], None]] = {
    "state": print_state, "record": record, "mark": mark, "samples": print_samples, "export-bids": export}


def positive(text: str) -> float:
    value = float(text)
    if not 0 < value < math.inf:
        raise ValueError
    return value


def size(text: str) -> Tuple[float, float]:
    width, height = map(positive, text.split("x"))
    return width, height


def pixel_size(text: str) -> Tuple[int, int]:
    width, height = map(int, text.split("x"))
    if width <= 0 or height <= 0:
        raise ValueError
    return width, height


def add_export(parser: argparse.ArgumentParser) -> None:
    parser.add_argument("records", nargs="+", metavar="RECORD.csv", help="several records become runs")
    parser.add_argument("--output", required=True, metavar="FOLDER", help="a new or existing dataset")
    parser.add_argument("--subject", required=True, metavar="LABEL", help="for example 01")
    parser.add_argument("--task", required=True, metavar="LABEL")
    parser.add_argument("--session", metavar="LABEL")
    parser.add_argument("--acquisition", metavar="LABEL")
    parser.add_argument("--run", metavar="NUMBER", help="number of the first run")
    parser.add_argument("--screen-mm", type=size, metavar="WIDTHxHEIGHT", help="for example 531x299")
    parser.add_argument("--screen-px", type=pixel_size, metavar="WIDTHxHEIGHT", help="instead of that of the record")
    parser.add_argument("--distance-mm", type=positive, metavar="MM", help="from the eyes to the screen")
    parser.add_argument("--rate-hz", type=positive, metavar="HZ", help="nominal sample rate of the tracker")
    for option in ("--manufacturer", "--model", "--serial-number"):
        parser.add_argument(option, metavar="TEXT", help="of the tracker")


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
    add_export(commands.add_parser("export-bids", help="export record files to BIDS"))
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
