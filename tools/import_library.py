#!/usr/bin/env python3
"""Makes the import library of tqimage20.dll from the symbols of its objects.

A 32-bit caller compiled from the headers refers to _tqName@8, while the DLL exports tqName. The definition
written here names the decorated symbols, and dlltool's --kill-at makes each an import of the plain name.
"""
import argparse
import pathlib
import re
import subprocess
import sys


def exported_names(definition):
    lines = pathlib.Path(definition).read_text().splitlines()
    return [line.strip() for line in lines[1:] if line.strip() and not line.startswith(";")]


def defined_symbols(nm, objects):
    """Undecorated name -> symbol as dlltool wants it (without the underscore of 32-bit C symbols)."""
    files = pathlib.Path(objects).read_text().split("\n")
    output = subprocess.run([nm, "--defined-only", "--extern-only", *filter(None, files)],
                            check=True, capture_output=True, text=True).stdout
    symbols = {}
    for symbol in re.findall(r"^[0-9a-f]+ T (\S+)$", output, re.MULTILINE):
        decorated = re.fullmatch(r"_(\w+)@(\d+)", symbol)
        if decorated:
            symbols[decorated[1]] = f"{decorated[1]}@{decorated[2]}"
        else:
            symbols.setdefault(symbol, symbol)
    return symbols


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    for option in ("def", "objects", "nm", "dlltool", "dll", "output"):
        parser.add_argument(f"--{option}", required=True)
    options = vars(parser.parse_args())

    symbols = defined_symbols(options["nm"], options["objects"])
    names = exported_names(options["def"])
    missing = [name for name in names if name not in symbols]
    if missing:
        sys.exit("exported but defined by no object with that calling convention: " + ", ".join(missing))

    decorated = pathlib.Path(options["output"]).with_suffix(".def")
    decorated.write_text("EXPORTS\n" + "".join(f"  {symbols[name]}\n" for name in names))
    pathlib.Path(options["output"]).unlink(missing_ok=True)
    subprocess.run([options["dlltool"], "--kill-at", "--dllname", options["dll"], "--input-def", decorated,
                    "--output-lib", options["output"]], check=True)


if __name__ == "__main__":
    main()
