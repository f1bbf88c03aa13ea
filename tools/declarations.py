"""Reads the function declarations, with the comments above them, out of the public headers."""
import dataclasses
import pathlib
import re

# A documentation comment belongs to a declaration only when nothing but white space lies between them.
DECLARATION = re.compile(
    r"(?P<comment>/\*\*(?:(?!\*/).)*\*/)?\s*"
    r"^TQ_API\s+(?P<type>[^;()]*?)\s*\bTQ_CALL\s+(?P<name>\w+)\s*\((?P<arguments>[^;]*?)\)\s*;",
    re.DOTALL | re.MULTILINE)
ARGUMENT_NAME = re.compile(r"(\w+)\s*(?:\[\w*\])?$")
BLOCK_POINTER = re.compile(r"\bTq(?:Image|DistortionMap|ImageSum)\*\*\s*(\w+)")


@dataclasses.dataclass
class Function:
    header: str
    name: str
    type: str
    arguments: list
    block_pointers: list
    comment: str


def public_headers(include):
    return sorted(pathlib.Path(include, "tqimage").glob("*.h"))


def argument_names(text):
    text = " ".join(text.split())
    if text in ("", "void"):
        return []
    return [ARGUMENT_NAME.search(argument.strip())[1] for argument in text.split(",")]


def declared_functions(include):
    functions = []
    for header in public_headers(include):
        text = header.read_text()
        found = [Function(header.name, match["name"], match["type"], argument_names(match["arguments"]),
                          BLOCK_POINTER.findall(match["arguments"]), match["comment"] or "")
                 for match in DECLARATION.finditer(text)]
        # A declaration of another form than the expression knows would silently escape every check.
        written = len(re.findall(r"^TQ_API\b", text, re.MULTILINE))
        if len(found) != written:
            raise SystemExit(f"{header.name}: {written} declarations, {len(found)} of them readable")
        functions += found
    return functions
