#!/usr/bin/env python3
"""Checks that the headers, the lists of exports and the library that was built name the same functions, and
that the library asks for nothing a host may not have."""
import argparse
import pathlib
import re
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
from declarations import declared_functions  # noqa: E402

# Present on every Windows since XP; anything else would have to be installed with the DLL.
SYSTEM_DLLS = {"advapi32.dll", "gdi32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "oleaut32.dll",
               "shell32.dll", "user32.dll"}

# What version 1 promises to hosts: a name is neither lost nor added by accident.
FUNCTIONS = 291


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def difference(what, expected, found):
    faults = [f"{what}: {name} is missing" for name in sorted(expected - found)]
    return faults + [f"{what}: {name} is too much" for name in sorted(found - expected)]


def listed_names(path):
    """The names of a list, and what is wrong with its order: merges stay small while it is sorted."""
    lines = [line for line in pathlib.Path(path).read_text().splitlines() if line not in ("", "EXPORTS")]
    names = [line.strip() for line in lines]
    faults = [] if names == sorted(set(names)) else [f"{path}: names are not in order or stand twice"]
    faults += [f"{path}: more than a name: {name}" for name in names if not re.fullmatch(r"\w+", name)]
    return set(names), faults


def declaration_faults(include, exported, automation):
    functions = declared_functions(include)
    names = [function.name for function in functions]
    faults = [f"{name} is declared twice" for name in sorted({name for name in names if names.count(name) > 1})]
    for_hosts = {function.name for function in functions if function.header == "automation.h"}
    faults += difference("declared for every build", exported, set(names) - for_hosts)
    return faults + difference("declared in automation.h", automation, for_hosts)


def dll_faults(library, objdump, exported, version):
    headers = run(objdump, "-p", library)
    table = headers.split("[Ordinal/Name Pointer] Table", 1)[-1].split("\n\n", 1)[0]
    faults = difference("exported by the DLL", exported,
                        set(re.findall(r"^\s*\[\s*\d+\]\s+(\S+)$", table, re.MULTILINE)))
    imports = {name.lower() for name in re.findall(r"DLL Name: (\S+)", headers)}
    faults += [f"imports {name}, which is not part of Windows" for name in sorted(imports - SYSTEM_DLLS)]
    # Key and value are UTF-16 strings; the value starts at a multiple of 4 bytes.
    key, value = ("FileVersion\0".encode("utf-16-le"), f"{version}\0".encode("utf-16-le"))
    if not re.search(re.escape(key) + b"(..)?" + re.escape(value), pathlib.Path(library).read_bytes()):
        faults.append(f"the version resource does not say {version}")
    # The stack is aligned to 16 bytes at most, so a wide vector saved there needs the unaligned move. The JPEG
    # codec's assembler routines align their frames themselves.
    aligned = [move for symbol, code in re.findall(r"^\w+ <(.*)>:\n((?:.+\n)*)", run(objdump, "-d", library), re.MULTILINE)
               if "jsimd_" not in symbol
               for move in re.findall(r"vmov(?:aps|apd|dqa\d*)\s.*\(%[re][sb]p.*", code)]
    return faults + [f"aligned move of a vector on the stack: {move}" for move in aligned[:5]]


def shared_object_faults(library, nm, objdump, exported, version):
    symbols = run(nm, "-D", "--defined-only", "--format=just-symbols", library).split()
    faults = difference("exported by the shared object", exported, set(symbols))
    soname = f"libtqimage20.so.{version.split('.')[0]}"
    if not re.search(rf"SONAME\s+{re.escape(soname)}$", run(objdump, "-p", library), re.MULTILINE):
        faults.append(f"the shared object's name is not {soname}")
    return faults


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    for option in ("include", "exports", "library", "nm", "objdump", "version"):
        parser.add_argument(f"--{option}", required=True)
    options = parser.parse_args()

    exported, faults = listed_names(pathlib.Path(options.exports, "tqimage20.def"))
    automation, order_faults = listed_names(pathlib.Path(options.exports, "automation.txt"))
    if len(exported) != FUNCTIONS:
        faults.append(f"{len(exported)} names are exported, not {FUNCTIONS}")
    faults += order_faults + declaration_faults(options.include, exported, automation)
    if options.library.endswith(".dll"):
        faults += dll_faults(options.library, options.objdump, exported, options.version)
    else:
        faults += shared_object_faults(options.library, options.nm, options.objdump, exported | automation,
                                       options.version)
    print("\n".join(faults) or f"{len(exported)} functions, the same everywhere")
    sys.exit(bool(faults))


if __name__ == "__main__":
    main()
