#!/usr/bin/env python3
"""Checks that every public header stands alone in C99 and C++17, that tqimage.h brings all of them, and that
every function carries the comment from which the reference and the bindings are made."""
import argparse
import pathlib
import re
import shlex
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
from declarations import declared_functions, public_headers  # noqa: E402


def comment_faults(function):
    comment = function.comment
    if not comment:
        return ["no documentation comment directly above"]
    faults = []
    if not re.search(r"@brief\s+\w", comment):
        faults.append("no @brief")
    documented = re.findall(r"@param\[(?:in|out|in,out)\]\s+(\w+)\s+\S", comment)
    if documented != function.arguments:
        faults.append(f"@param[in|out|in,out] names {documented}, the arguments are {function.arguments}")
    # A host that took such a pointer for a mere output would hand over one that was never set, and it would be freed.
    for name in function.block_pointers:
        if not re.search(rf"@param\[in,out\]\s+{name}\s", comment):
            faults.append(f"{name} points at a block that is replaced, so it goes in and out")
    returns = re.search(r"@return\s+\S", comment) is not None
    if returns != (function.type != "void"):
        faults.append("no @return" if not returns else "@return on a function without a result")
    return faults


def compile_faults(include, c_compiler, cxx_compiler):
    strict = ["-Wall", "-Wextra", "-Wpedantic", "-Wstrict-prototypes", "-Werror", "-fsyntax-only", "-I", include]
    runs = [[*shlex.split(c_compiler), "-std=c99", "-x", "c", *strict],
            [*shlex.split(cxx_compiler), "-std=c++17", "-x", "c++",
             *(flag for flag in strict if flag != "-Wstrict-prototypes")]]
    faults = []
    for header in public_headers(include):
        for run in runs:
            # Twice, so that a missing include guard shows.
            source = f"#include <tqimage/{header.name}>\n" * 2
            result = subprocess.run([*run, "-"], input=source, capture_output=True, text=True)
            if result.returncode:
                faults.append(f"{header.name} does not compile alone: {shlex.join(run)}\n{result.stderr}")
    return faults


def collection_faults(include):
    everything = pathlib.Path(include, "tqimage", "tqimage.h")
    if not everything.exists():
        return ["tqimage.h, which brings every header, is missing"]
    brought = set(re.findall(r'^#include\s+[<"](?:tqimage/)?(\w+\.h)[>"]', everything.read_text(), re.MULTILINE))
    expected = {header.name for header in public_headers(include)} - {"tqimage.h", "base.h"}
    faults = [f"tqimage.h does not include {name}" for name in sorted(expected - brought)]
    subsystems = set(re.findall(r"@defgroup (\w+)", everything.read_text()))
    for header in set(public_headers(include)) - {everything}:
        group = re.search(rf"@defgroup {header.stem} .*\n \*  @ingroup (\w+)$", header.read_text(), re.MULTILINE)
        if not group or group[1] not in subsystems:
            faults.append(f"{header.name} is in no part of the reference")
    return faults


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--include", required=True)
    parser.add_argument("--c-compiler", required=True)
    parser.add_argument("--cxx-compiler", required=True)
    options = parser.parse_args()

    faults = [f"{function.header}: {function.name}: {fault}"
              for function in declared_functions(options.include) for fault in comment_faults(function)]
    faults += collection_faults(options.include)
    faults += compile_faults(options.include, options.c_compiler, options.cxx_compiler)
    print("\n".join(faults) or "every header stands alone, every function is documented")
    sys.exit(bool(faults))


if __name__ == "__main__":
    main()
