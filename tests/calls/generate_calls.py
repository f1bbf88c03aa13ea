"""Writes calls.inc: CALL(name, how, CODES(code, ...), CODES(code, ...), "argument", ...) for the functions of the public
headers that a host without OLE Automation does not bring itself. `how` is kUnchecked where the comment says that an argument is
not checked; the codes are those that stand for a want of memory, then those for an image that is none."""

import argparse
import pathlib
import re
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
import declarations  # noqa: E402

WANT_OF_MEMORY = re.compile(
    r"\bmemory\b|no block|no bitmap|cannot be (allocated|created|computed)|array (cannot be made|could not be created)")
NO_IMAGE = re.compile(r"\b(null|invalid|no image|outside 1\.\.8000)\b")


def plain_comment(function):
    """The comment as one line, without its frame."""
    return " ".join(re.sub(r"^\s*\*", "", function.comment, flags=re.MULTILINE).split())


def codes_that_say(meaning, comment):
    """The numbers in those parts of the list of results that speak of something."""
    results = re.search(r"@return\s(.*?)(@par|@note|\*/|$)", comment)
    parts = [part for part in results[1].split(";") if meaning.search(part)] if results else []
    return [code for part in parts for code in re.findall(r"-\d+", part)]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--include", required=True)
    parser.add_argument("--output", required=True)
    arguments = parser.parse_args()
    lines = []
    for function in declarations.declared_functions(arguments.include):
        if function.header == "automation.h":
            continue
        comment = plain_comment(function)
        how = "kUnchecked" if "not checked" in comment else "kChecked"
        codes = ", ".join(f"CODES({', '.join(codes_that_say(meaning, comment))})"
                          for meaning in (WANT_OF_MEMORY, NO_IMAGE))
        names = "".join(f', "{name}"' for name in function.arguments)
        lines.append(f"CALL({function.name}, {how}, {codes}{names})\n")
    text = "".join(sorted(lines))
    output = pathlib.Path(arguments.output)
    if not output.exists() or output.read_text() != text:
        output.write_text(text)


main()
