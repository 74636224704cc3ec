#!/usr/bin/env python3
"""Checks that the includes of the source tree point downward, and that every header compiles alone.

Layers go from the platform at the bottom to the control of the program at the top. A file may include headers of its
own layer and of those below it. Record headers hold data only: they may be included from anywhere and include records
and the platform themselves. An include that goes another way is allowed when its line carries a comment with the
reason.

    check_includes.py [--compiler g++] SOURCE_FOLDER
"""

import argparse
import concurrent.futures
import os
import re
import subprocess
import sys

PLATFORM, RECORD = "platform", "record"

# From the bottom to the top.
LAYERS = [PLATFORM, RECORD, "board", "services", "eval", "search", "time_control", "book", "tools", "control"]

RECORD_HEADERS = {
    "board/bitboards.h",
    "board/position.h",
    "eval/eval_context.h",
    "eval/eval_records.h",
    "eval/personality.h",
    "interface/pblock.h",
    "search/search_thread.h",
}

SERVICES = {"messages", "move_text", "numbers", "words"}

INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"(.*)$')


def layer_of(path):
    """The layer of a file, given by its path below the source folder; None for a folder without one."""
    if path in RECORD_HEADERS:
        return RECORD
    room, _, name = path.partition("/")
    stem = os.path.splitext(name)[0]
    if room == "interface":
        if stem in SERVICES:
            return "services"
        if stem == "time_control":
            return "time_control"
        return "control"
    return room if room in LAYERS else None


def edge_allowed(source, header):
    """True if `source` may include `header` without a word."""
    if layer_of(source) == RECORD:
        return layer_of(header) in (RECORD, PLATFORM)
    if layer_of(header) == RECORD:
        return layer_of(source) != PLATFORM
    return LAYERS.index(layer_of(source)) >= LAYERS.index(layer_of(header))


def check_file(folder, path):
    """Messages about one file's includes."""
    faults = []
    if layer_of(path) is None:
        return [f"{path}: stands in no room"]
    with open(os.path.join(folder, path), encoding="utf-8") as text:
        for number, line in enumerate(text, 1):
            match = INCLUDE.match(line)
            if not match:
                continue
            header, rest = match.groups()
            where = f"{path}:{number}"
            if not os.path.isfile(os.path.join(folder, header)):
                faults.append(f"{where}: {header} is no path below the source folder")
            elif layer_of(header) is None:
                faults.append(f"{where}: {header} stands in no room")
            elif not edge_allowed(path, header) and "//" not in rest:
                faults.append(f"{where}: {layer_of(path)} may not include {header} ({layer_of(header)})")
    if path.endswith(".h"):
        with open(os.path.join(folder, path), encoding="utf-8") as text:
            if "#pragma once" not in text.read():
                faults.append(f"{path}: no #pragma once")
    return faults


def compile_alone(folder, compiler, header):
    """The compiler's words about a file that holds nothing but one include."""
    command = [compiler, "-std=c++20", "-mpopcnt", "-fno-exceptions", "-fno-rtti", "-Wall", "-Wextra", "-Wpedantic",
               "-Wshadow", "-Wconversion", "-Werror", "-fsyntax-only", f"-I{folder}", "-x", "c++", "-"]
    done = subprocess.run(command, input=f'#include "{header}"\n', capture_output=True, text=True, check=False)
    return [] if done.returncode == 0 else [f"{header}: does not compile alone\n{done.stderr}"]


def source_files(folder):
    for place, _, names in os.walk(folder):
        for name in names:
            if name.endswith((".h", ".cpp")):
                yield os.path.relpath(os.path.join(place, name), folder)


def check_tree(folder, compiler=None):
    files = sorted(source_files(folder))
    faults = [fault for path in files for fault in check_file(folder, path)]
    if compiler:
        headers = [path for path in files if path.endswith(".h")]
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            for words in pool.map(lambda header: compile_alone(folder, compiler, header), headers):
                faults += words
    return files, faults


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--compiler", help="compile every header alone with it")
    parser.add_argument("folder")
    options = parser.parse_args()
    files, faults = check_tree(options.folder, options.compiler)
    print("\n".join(faults + [f"{len(files)} files, {len(faults)} faults"]))
    return 1 if faults or not files else 0


if __name__ == "__main__":
    sys.exit(main())
