"""Writes calls.inc: CALL(name, how, "argument", ...) for the functions of the public headers that a host without
OLE Automation does not bring itself. `how` is Unchecked where the comment says that an argument is not checked."""

import argparse
import pathlib
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "exports"))
import declarations  # noqa: E402

# What these take is not drawn yet: handles of global memory, bitmaps and files that must exist, records of
# other devices. Their own tests and the fuzz targets provoke them.
NOT_DRAWN = {
    "TqConvertKorvelinToImage", "tq24bitColorBitmapToImage", "tqBmpToClipBoard", "tqBuildMultiPointImage",
    "tqCombineImagesRGBtoDIB", "tqCompressImage", "tqDecompressImage", "tqDiskBmpToImage", "tqImageSumToImage",
    "tqImageToDIB", "tqImageToImageSum", "tqImageToLeadBmp0", "tqImageToLeadBmpScale", "tqLeadBmpToDiskBmp",
    "tqLeadBmpToImage",
}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--include", required=True)
    parser.add_argument("--output", required=True)
    arguments = parser.parse_args()
    lines = []
    for function in declarations.declared_functions(arguments.include):
        if function.header == "automation.h" or function.name in NOT_DRAWN:
            continue
        how = "kUnchecked" if "not checked" in " ".join(function.comment.split()) else "kChecked"
        names = "".join(f', "{name}"' for name in function.arguments)
        lines.append(f"CALL({function.name}, {how}{names})\n")
    text = "".join(sorted(lines))
    output = pathlib.Path(arguments.output)
    if not output.exists() or output.read_text() != text:
        output.write_text(text)


main()
