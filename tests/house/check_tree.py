#!/usr/bin/env python3
"""Checks that the folders of the source tree are its layers, and that every header compiles alone.

A file may include files of its own folder and of the folders above it in the list, and nothing else of the tree.

    check_tree.py [--compiler g++] SOURCE_FOLDER
"""

import argparse
import concurrent.futures
import os
import pathlib
import re
import subprocess
import sys

LAYERS = ["platform", "board", "interface", "eval", "search", "book", "tools", "interface/control"]
FLAGS = ["-std=c++20", "-mpopcnt", "-fno-exceptions", "-fno-rtti", "-Wall", "-Wextra", "-Wpedantic", "-Wshadow",
         "-Wconversion", "-Werror", "-fsyntax-only", "-x", "c++", "-"]


def layer(path):
    """The place of a file's folder in the list; the platform's systems stand with it. None for any other folder."""
    folder = re.sub(r"^platform/(posix|windows|web)$", "platform", os.path.dirname(path))
    return LAYERS.index(folder) if folder in LAYERS else None


def faults_of(root, path):
    if layer(path) is None:
        yield f"{path}: stands in no folder of the list"
        return
    text = (root / path).read_text(encoding="utf-8")
    # In quotes or not, whatever comment stands around it: what the tree has by that name is looked at.
    for opening, header in re.findall(r'#\s*include\b[^\n"<]*(["<])([^\n">]+)[">]', text):
        known = (root / header).is_file()
        if (opening == '"' and not known) or (known and (layer(header) is None or layer(header) > layer(path))):
            yield f"{path}: may not include {header}"


def compile_alone(root, compiler, header):
    done = subprocess.run([compiler, f"-I{root}", *FLAGS], input=f'#include "{header}"\n', capture_output=True, text=True)
    return [f"{header}: does not compile alone\n{done.stderr}"] if done.returncode else []


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--compiler", help="compile every header alone with it")
    parser.add_argument("folder", type=pathlib.Path)
    options = parser.parse_args()
    files = sorted(str(f.relative_to(options.folder)) for f in options.folder.rglob("*") if f.suffix in (".h", ".cpp"))
    faults = [fault for path in files for fault in faults_of(options.folder, path)]
    if options.compiler:
        headers = [path for path in files if path.endswith(".h")]
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            for words in pool.map(lambda header: compile_alone(options.folder, options.compiler, header), headers):
                faults += words
    print("\n".join(faults + [f"{len(files)} files, {len(faults)} faults"]))
    return 1 if faults or not files else 0


if __name__ == "__main__":
    sys.exit(main())
