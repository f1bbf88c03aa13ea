"""Image files made by hand, byte by byte, so that the tests know what is in them."""
import struct
import zlib


def flat(rows):
    return [value for row in rows for value in row]


def pgm(rows, maximum=65535):
    head = b"P5\n# a comment\n%d %d\n%d\n" % (len(rows[0]), len(rows), maximum)
    form = ">%dH" if maximum > 255 else "%dB"
    return head + b"".join(struct.pack(form % len(row), *row) for row in rows)


def pgm_rows(data):
    """The pels of a 16-bit file that the program wrote."""
    _, size, _, pels = data.split(b"\n", 3)
    cols, rows = map(int, size.split())
    values = struct.unpack(">%dH" % (cols * rows), pels)
    return [list(values[row * cols:(row + 1) * cols]) for row in range(rows)]


def plain_pgm(rows, maximum=65535):
    text = "P2 # plain\n%d %d %d\n" % (len(rows[0]), len(rows), maximum)
    return (text + "\n".join(" ".join(map(str, row)) for row in rows) + "\n").encode()


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def png(rows, bits=16, color=0, interlace=0, cols=None, before_pixels=b""):
    """color as in the file format: 0 grey, 2 RGB, 3 palette, 4 grey and alpha, 6 RGB and alpha."""
    form = {8: ">%dB", 16: ">%dH"}.get(bits)
    raw = b"".join(b"\0" + (struct.pack(form % len(row), *row) if form else bytes(row)) for row in rows)
    head = struct.pack(">IIBBBBB", cols or len(rows[0]), len(rows), bits, color, 0, 0, interlace)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) + before_pixels + chunk(b"IDAT", zlib.compress(raw))
            + chunk(b"IEND", b""))


def interlaced_png(rows, bits=16):
    """The same pels in the seven passes of Adam7."""
    passes = [(0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2), (0, 1, 1, 2)]
    form = ">%dH" if bits == 16 else ">%dB"
    raw = b""
    for left, top, across, down in passes:
        for row in rows[top::down]:
            part = row[left::across]
            if part:
                raw += b"\0" + struct.pack(form % len(part), *part)
    head = struct.pack(">IIBBBBB", len(rows[0]), len(rows), bits, 0, 0, 0, 1)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) + chunk(b"IDAT", zlib.compress(raw)) + chunk(b"IEND", b"")


def tiff(rows, bits=16, order="<", rows_per_strip=None, tile=None, tags=None, pages=1, compress=False):
    """A TIFF file of one or more equal pages; tags overrides or adds {number: (type, value)}; None drops one."""
    cols, count = len(rows[0]), len(rows)
    form = {8: "B", 16: "H", 32: "I"}[bits]

    def packed(part):
        data = b"".join(struct.pack(order + form * len(row), *row) for row in part)
        return zlib.compress(data) if compress else data

    if tile:
        wide, high = tile
        blocks = []
        for top in range(0, count, high):
            for left in range(0, cols, wide):
                block = [(row[left:left + wide] + [0] * wide)[:wide] for row in rows[top:top + high]]
                block += [[0] * wide] * (high - len(block))
                blocks.append(packed(block))
    else:
        step = rows_per_strip or count
        blocks = [packed(rows[top:top + step]) for top in range(0, count, step)]

    data = struct.pack(order + "2sHI", b"II" if order == "<" else b"MM", 42, 0)
    previous = 4
    for _ in range(pages):
        offsets = []
        for block in blocks:
            data += b"\0" * (len(data) % 2)
            offsets.append(len(data))
            data += block
        fields = {256: (4, cols), 257: (4, count), 258: (3, bits), 259: (3, 8 if compress else 1), 262: (3, 1),
                  277: (3, 1)}
        sizes = [len(block) for block in blocks]
        if tile:
            fields.update({322: (4, tile[0]), 323: (4, tile[1]), 324: (4, offsets), 325: (4, sizes)})
        else:
            fields.update({273: (4, offsets), 278: (4, rows_per_strip or count), 279: (4, sizes)})
        fields.update(tags or {})
        fields = {number: field for number, field in fields.items() if field}
        entries = b""
        for number in sorted(fields):
            kind, value = fields[number]
            values = value if isinstance(value, list) else [value]
            code = order + {3: "H", 4: "I"}[kind] * len(values)
            packed_values = struct.pack(code, *values)
            if len(packed_values) > 4:
                data += b"\0" * (len(data) % 2)
                packed_values, at = struct.pack(order + "I", len(data)), packed_values
                data += at
            entries += struct.pack(order + "HHI", number, kind, len(values)) + packed_values.ljust(4, b"\0")
        data += b"\0" * (len(data) % 2)
        at = len(data)
        data = data[:previous] + struct.pack(order + "I", at) + data[previous + 4:]
        data += struct.pack(order + "H", len(fields)) + entries + b"\0\0\0\0"
        previous = len(data) - 4
    return data


def lens_map(cols, rows, center, source):
    """source(col, row) gives the pair of an entry."""
    pairs = [value for row in range(rows) for col in range(cols) for value in source(col, row)]
    return struct.pack("<HHff", cols, rows, *center) + struct.pack("<%df" % len(pairs), *pairs)
