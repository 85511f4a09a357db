"""Writes a set of new files, all of them or none."""
from __future__ import annotations

import contextlib
import os
import secrets
from pathlib import Path
from typing import Callable, List, Mapping, Optional, Tuple

Undo = List[Callable[[], object]]


def write_new_files(files: Mapping[Path, bytes], addition: Optional[Tuple[Path, bytes]] = None) -> None:
    """Writes files with the given contents, and appends the addition to an existing file.

    Never replaces a file: raises FileExistsError if one exists. After an exception, no new file or folder is left, and
    the existing file is as before."""
    undo: Undo = []
    try:
        temporary = {path: _write_temporary(path, content, undo) for path, content in files.items()}
        for path, finished in temporary.items():
            open(path, "xb").close()  # reserves the name
            undo.append(path.unlink)
            os.replace(finished, path)
        if addition:
            _append(*addition, undo)
    except BaseException:
        for step in reversed(undo):
            with contextlib.suppress(OSError):
                step()
        raise


def _write_temporary(path: Path, content: bytes, undo: Undo) -> Path:
    for folder in reversed(path.parents):
        if not folder.is_dir():
            folder.mkdir()
            undo.append(folder.rmdir)
    temporary = path.with_name(f"unfinished_{secrets.token_hex(6)}")
    with open(temporary, "xb") as file:
        undo.append(temporary.unlink)
        file.write(content)
    return temporary


def _append(path: Path, content: bytes, undo: Undo) -> None:
    size = path.stat().st_size
    undo.append(lambda: os.truncate(path, size))
    with open(path, "ab") as file:
        file.write(content)
