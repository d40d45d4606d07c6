#!/usr/bin/python3
"""The rooms of src and their order, held by the build itself.

Each folder of src is a room, and a room may use only the rooms below it. This
check compiles small files with the very compile line that the build uses for
a source of each room (from the build's compile_commands.json):

    check_rooms.py above BUILD_DIR SOURCE_DIR
        a header of a room that is not below (a room above or beside) is not
        found: "#include "<room>/<Header>.h"" stops with "No such file";
    check_rooms.py below BUILD_DIR SOURCE_DIR
        a header of each room below is found and compiles.

A folder of src that is missing from the order below fails the check, so that
a new room is given its place. Each offence is printed; exit status 1 when
there is one.
"""

import json
import os
import shlex
import subprocess
import sys
import tempfile

# Each room and the rooms right below it; the rooms a room may use are these
# and everything below them.
ROOMS_RIGHT_BELOW = {
    "platform": [],
    "mpegaudio": [],
    "app": ["platform"],
    "media": ["mpegaudio", "platform"],
    "list": ["app", "media"],
    "join": ["list"],
    "ui": ["join"],
    "cli": ["join"],
    "tools": ["mpegaudio"],
    "screenshots": ["ui"],
}
# Rooms that a build may leave out (an option turns them off).
OPTIONAL_ROOMS = {"screenshots"}


def rooms_below(room):
    below = set()
    stack = list(ROOMS_RIGHT_BELOW[room])
    while stack:
        lower = stack.pop()
        if lower not in below:
            below.add(lower)
            stack.extend(ROOMS_RIGHT_BELOW[lower])
    return below


def first_header(source_dir, room):
    """A header of the room, the first by name; None when it has none."""
    folder = os.path.join(source_dir, "src", room)
    headers = sorted(
        os.path.relpath(os.path.join(path, name), os.path.join(source_dir, "src"))
        for path, _, names in os.walk(folder)
        for name in names
        if name.endswith(".h")
    )
    return headers[0] if headers else None


def compile_lines(build_dir, source_dir):
    """Per room, the build's compile line of its first source, as a list of
    arguments with the output and dependency file taken out, and the folder
    it runs in."""
    with open(os.path.join(build_dir, "compile_commands.json"), encoding="utf-8") as file:
        entries = json.load(file)
    src = os.path.realpath(os.path.join(source_dir, "src"))
    lines = {}
    for entry in sorted(entries, key=lambda e: e["file"]):
        path = os.path.realpath(os.path.join(entry["directory"], entry["file"]))
        relative = os.path.relpath(path, src)
        if relative.startswith("..") or os.sep not in relative:
            continue
        room = relative.split(os.sep)[0]
        if room in lines:
            continue
        arguments = entry.get("arguments") or shlex.split(entry["command"])
        lines[room] = (bare_compile_line(arguments, path), entry["directory"])
    return lines


def bare_compile_line(arguments, source):
    """The compile line without launcher, source, object and dependency
    files, checking syntax only."""
    if os.path.basename(arguments[0]) == "ccache":
        arguments = arguments[1:]
    kept = []
    skip_next = False
    for argument in arguments:
        if skip_next:
            skip_next = False
        elif argument in ("-o", "-MT", "-MF", "-MQ"):
            skip_next = True
        elif argument in ("-c", "-MD", "-MMD") or os.path.realpath(argument) == source:
            continue
        else:
            kept.append(argument)
    return kept + ["-fsyntax-only"]


def compile_probe(line, directory, text):
    with tempfile.TemporaryDirectory() as folder:
        probe = os.path.join(folder, "RoomProbe.cpp")
        with open(probe, "w", encoding="utf-8") as file:
            file.write(text)
        result = subprocess.run(
            line + [probe], cwd=directory, capture_output=True, text=True, check=False
        )
    return result.returncode, result.stderr


def check_above(room, line, directory, headers):
    offences = []
    for other, header in headers.items():
        if other == room or other in rooms_below(room):
            continue
        status, said = compile_probe(line, directory, f'#include "{header}"\n')
        if status == 0 or f"{header}: No such file or directory" not in said:
            offences.append(f'src/{room} reaches "{header}" of the room {other}')
    return offences


def check_below(room, line, directory, headers):
    wanted = [headers[lower] for lower in sorted(rooms_below(room)) if lower in headers]
    if not wanted:
        return []
    status, said = compile_probe(
        line, directory, "".join(f'#include "{header}"\n' for header in wanted)
    )
    if status != 0:
        return [f"src/{room} does not build with the headers of the rooms below it:\n{said}"]
    return []


def main():
    if len(sys.argv) != 4 or sys.argv[1] not in ("above", "below"):
        print(__doc__, file=sys.stderr)
        return 2
    mode, build_dir, source_dir = sys.argv[1:]
    folders = sorted(
        name
        for name in os.listdir(os.path.join(source_dir, "src"))
        if os.path.isdir(os.path.join(source_dir, "src", name))
    )
    offences = [
        f"src/{name} has no place in the order of the rooms (tests/structure/check_rooms.py)"
        for name in folders
        if name not in ROOMS_RIGHT_BELOW
    ]
    lines = compile_lines(build_dir, source_dir)
    headers = {room: first_header(source_dir, room) for room in folders}
    headers = {room: header for room, header in headers.items() if header}
    check = check_above if mode == "above" else check_below
    for room in folders:
        if room not in ROOMS_RIGHT_BELOW:
            continue
        if room not in lines:
            if room not in OPTIONAL_ROOMS:
                offences.append(f"src/{room} has no source in the build's compile commands")
            continue
        line, directory = lines[room]
        offences.extend(check(room, line, directory, headers))
    for offence in offences:
        print(offence, file=sys.stderr)
    return 1 if offences else 0


if __name__ == "__main__":
    sys.exit(main())
