#!/usr/bin/env python3
"""Writes the declarations that hosts in C# and VBA need, from the public headers: TqImage20.cs and TqImage20.bas.

A comment says in which direction an argument goes, the type the rest. Image blocks and maps are addresses that only the
library looks into; the small records of settings are structures."""
import argparse
import pathlib
import re
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "tools"))
from declarations import DECLARATION, public_headers  # noqa: E402

# Numbers that several values are written to. Arrays that are only read are const.
WRITTEN_ARRAYS = {"corners", "destination", "mtf", "values"}
OPAQUE = ("TqImage", "TqDistortionMap", "TqImageSum", "void", "VARIANT", "SAFEARRAY", "uint16_t*")

CSHARP = {"int32_t": "int", "uint32_t": "uint", "uint16_t": "ushort", "int16_t": "short", "uint8_t": "byte",
          "float": "float", "double": "double", "void*": "IntPtr", "uint8_t*": "IntPtr"}
VBA = {"int32_t": "Long", "uint32_t": "Long", "uint16_t": "Integer", "int16_t": "Integer", "uint8_t": "Byte",
       "float": "Single", "double": "Double", "void*": "LongPtr", "uint8_t*": "LongPtr"}
CSHARP_WORDS = {"in", "out", "ref", "params", "base", "object", "string", "float", "fixed"}
VBA_WORDS = {"step", "end", "next", "type", "string", "in", "out", "to", "mode", "base", "len", "mid", "scale", "and",
             "or", "not", "point", "print", "open", "close", "loop", "select", "single", "double", "long"}

STRUCTURE = re.compile(r"^typedef struct (?P<name>Tq\w+) \{\n(?P<fields>.*?)^\} \w+;", re.DOTALL | re.MULTILINE)
FIELD = re.compile(r"^    (\w+\*?) (\w+)(?:\[(\d+)\])?;", re.MULTILINE)


class Argument:
    def __init__(self, text, comment):
        match = re.fullmatch(r"(const )?(\w+)(\**) ?(\w+)", text.strip())
        self.const, self.type, self.stars, self.name = bool(match[1]), match[2], len(match[3]), match[4]
        described = re.search(rf"@param\[([a-z,]+)\]\s+{self.name}\s(.*?)(?=\n \*\s*@|\*/)", comment, re.DOTALL)
        self.direction, self.text = described[1], " ".join(described[2].split())
        self.is_array = self.type in CSHARP and self.stars == 1 and (self.const or self.name in WRITTEN_ARRAYS)
        self.is_address = self.type in OPAQUE or (self.stars == 2 and self.type == "uint16_t")
        self.is_record = self.type.startswith("Tq") and not self.is_address


class Function:
    def __init__(self, match):
        self.name, self.type, self.comment = match["name"], match["type"], match["comment"]
        arguments = " ".join(match["arguments"].split())
        self.arguments = [] if arguments == "void" else [Argument(text, self.comment) for text in arguments.split(",")]
        brief = re.search(r"@brief\s+(.*?)(?=\n \*\s*(?:@|$)|\*/)", self.comment, re.DOTALL | re.MULTILINE)[1]
        self.brief = " ".join(re.sub(r"^ \*", "", brief, flags=re.MULTILINE).split())


def csharp_argument(argument):
    name = ("@" if argument.name in CSHARP_WORDS else "") + argument.name
    if argument.type == "char":
        return f"[MarshalAs(UnmanagedType.LPStr)] string {name}"
    if argument.is_address:
        return f"{'ref ' if argument.stars == 2 else ''}IntPtr {name}"
    if argument.is_record:
        if argument.const and "null" in argument.text:
            return f"IntPtr {name}"
        return f"{'ref ' if argument.stars else ''}{argument.type} {name}"
    if argument.is_array:
        return f"[{'In' if argument.const else 'In, Out'}] {CSHARP[argument.type]}[] {name}"
    by_address = {"in": "", "out": "out ", "in,out": "ref "}[argument.direction] if argument.stars else ""
    return f"{by_address}{CSHARP[argument.type]} {name}"


def csharp(functions, structures):
    lines = ["// The functions of TqImage20 for C#: written by bindings/generate.py from the C headers, which document",
             "// them. An image is the address of its block: keep it in an IntPtr that starts as IntPtr.Zero.",
             "using System;", "using System.Runtime.InteropServices;", "", "namespace TqImage20 {"]
    for name, fields in structures:
        lines += ["    [StructLayout(LayoutKind.Sequential)]", f"    public struct {name} {{"]
        for type_name, field, count in fields:
            if count:
                lines += [f"        [MarshalAs(UnmanagedType.ByValArray, SizeConst = {count})]",
                          f"        public {CSHARP[type_name]}[] {field};"]
            else:
                lines.append(f"        public {CSHARP[type_name]} {field};")
        lines += ["    }", ""]
    lines.append("    public static class Tq {")
    for function in functions:
        summary = function.brief.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")
        lines += [f"        /// <summary>{summary}</summary>",
                  '        [DllImport("tqimage20", CallingConvention = CallingConvention.StdCall)]',
                  f"        public static extern {CSHARP[function.type]} {function.name}("
                  + ", ".join(map(csharp_argument, function.arguments)) + ");", ""]
    return "\n".join(lines[:-1] + ["    }", "}", ""])


def vba_argument(argument):
    name = argument.name + ("_" if argument.name.lower() in VBA_WORDS else "")
    if argument.type == "char":
        return f"ByVal {name} As String"
    if argument.type == "VARIANT":
        return f"ByRef {name} As Variant"
    if argument.type == "SAFEARRAY":
        element = "Double" if "double" in argument.text else "Integer" if "2-byte" in argument.text else "Long"
        return f"ByRef {name}() As {element}"
    if argument.is_address:
        return f"{'ByRef' if argument.stars == 2 else 'ByVal'} {name} As LongPtr"
    if argument.is_record:
        return f"ByVal {name} As LongPtr" if argument.const and "null" in argument.text else \
               f"ByRef {name} As {argument.type}"
    return f"{'ByRef' if argument.stars else 'ByVal'} {name} As {VBA[argument.type]}"


def vba(functions, structures):
    lines = ['Attribute VB_Name = "TqImage20"',
             "' The functions of TqImage20 for VBA 7: written by bindings/generate.py from the C headers, which document",
             "' them. An image is the address of its block: keep it in a LongPtr that starts as 0. Of an array of plain",
             "' numbers pass the first element.", "Option Explicit", ""]
    for name, fields in structures:
        lines.append(f"Public Type {name}")
        for type_name, field, count in fields:
            lines.append(f"    {field}{f'(0 To {int(count) - 1})' if count else ''} As {VBA[type_name]}")
        lines += ["End Type", ""]
    for function in functions:
        if any(argument.is_record and not argument.stars for argument in function.arguments):
            lines.append(f"' {function.name} takes a structure by value, which VBA cannot pass.")
            continue
        lines += [f"' {function.brief}",
                  f'Public Declare PtrSafe Function {function.name} Lib "tqimage20.dll" ('
                  + ", ".join(map(vba_argument, function.arguments)) + f") As {VBA[function.type]}"]
    # VBA reads no line longer than 1023 characters.
    too_long = [line.split("(")[0] for line in lines if len(line) > 1023]
    if too_long:
        raise SystemExit(f"too long for VBA: {too_long}")
    return "\r\n".join(lines + [""])


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--include", required=True)
    parser.add_argument("--output", required=True, help="folder")
    options = parser.parse_args()

    texts = [header.read_text() for header in public_headers(options.include) if header.name != "automation.h"]
    functions = [Function(match) for text in texts for match in DECLARATION.finditer(text)]
    functions.sort(key=lambda function: function.name)
    used = {argument.type for function in functions for argument in function.arguments if argument.is_record}
    structures = [(match["name"], FIELD.findall(match["fields"]))
                  for text in texts for match in STRUCTURE.finditer(text) if match["name"] in used]
    output = pathlib.Path(options.output)
    output.mkdir(parents=True, exist_ok=True)
    for name, write in (("TqImage20.cs", csharp), ("TqImage20.bas", vba)):
        with open(output / name, "w", newline="") as file:
            file.write(write(functions, structures))


if __name__ == "__main__":
    main()
