"""Packages, DWOP streams and block stores byte by byte, right or wrong: every field can be set to
what it should not be."""

import dataclasses
import struct

VERSION = b"\xbc\x01\0\0\0"
RAW, JPEG, SAMPLE, SONG = 14, 9, 11, 13


def u32(value):
    return struct.pack(">I", value % 2**32)


def u64(value):
    return struct.pack(">Q", value % 2**64)


def riff_chunk(name, data):
    return struct.pack("<4sI", name, len(data)) + data + bytes(len(data) % 2)


def wave_file(data, tag=1, bits=16, rate=44100, before=b"", behind=b""):
    """A mono WAVE file of these sample bytes, with chunks before and behind them."""
    form = struct.pack("<HHIIHH", tag, 1, rate, rate * bits // 8, bits // 8, bits)
    return riff_chunk(b"RIFF", b"WAVE" + riff_chunk(b"fmt ", form) + before +
                      riff_chunk(b"data", data) + behind)


def field(text, length=None):
    """A text field; `text` are its bytes, or a text that becomes UTF-8 with its mark."""
    if isinstance(text, str):
        text = b"\xef\xbb\xbf" + text.encode("utf-8", "surrogatepass")
    return u32(len(text) if length is None else length) + text


@dataclasses.dataclass
class Entry:
    """An entry of a package; `offset` and `size` are those of its bytes unless given."""
    name: object = "a.pad"
    content: bytes = b"x"
    type: int = RAW
    flag: int = 1
    offset: int = None
    size: int = None
    name_length: int = None


def package(*entries, name=b"Kit", name_length=None, comment=b"", count=None, index=None, data=None,
            version=VERSION, splash=(0, 0), behind=b""):
    """A package of entries, or of pairs (name, bytes); what is not given is as it should be."""
    entries = [entry if isinstance(entry, Entry) else Entry(*entry) for entry in entries]
    texts = field(name, name_length) + field(comment) + field(b"") + field(b"")
    listed, contents = b"", b""
    for entry in entries:
        offset = len(contents) if entry.offset is None else entry.offset
        size = len(entry.content) if entry.size is None else entry.size
        listed += (field(entry.name, entry.name_length) + bytes([entry.type]) + u32(offset) +
                   u32(size) + bytes([entry.flag]))
        contents += entry.content
    start = len(texts) + 12 + len(version) + 8
    return (texts + u32(len(entries) if count is None else count) +
            u32(start if index is None else index) +
            u32(start + len(listed) if data is None else data) + version + u32(splash[0]) +
            u32(splash[1]) + listed + contents + behind)


def dwop(bits=b"", frames=0, channels=1, width=16, rate=44100, version=VERSION, behind=b"", loop=0):
    """A DWOP stream; `bits` are its words."""
    return (version + u32(frames) + bytes([60, 0, loop, channels]) + u32(0) + u32(frames) + u32(rate) +
            bytes([width]) + bits + behind)


def extra(data=b"", length=None, mark=b"DwTM"):
    """An extra info block."""
    size = u32(len(data) if length is None else length)
    return b"DwMBDwTM" + size + data + mark + size + b"DwME"


# Two frames of silence: zigzag 0 is 1 and a remainder of five bits, 00000.
SILENCE = dwop(b"\x82\0\0\0", 2)


def crc16(data):
    """CRC-16/XMODEM."""
    crc = 0
    for byte in data:
        crc ^= byte << 8
        for _ in range(8):
            crc = (crc << 1 ^ (0x1021 if crc & 0x8000 else 0)) & 0xFFFF
    return crc


NO_BLOCK = 2**64 - 1
BLOCK = 56


def slot(generation, first, check=None):
    words = u64(generation) + u64(first)
    return words + struct.pack(">H", crc16(words) if check is None else check)


def stream(identifier=1, length=5, blocks=(1,), count=None, end=0xC0CAC01A):
    """A stream's entry in the directory of a block store."""
    return (u32(identifier) + u64(length) + u64(len(blocks) if count is None else count) +
            b"".join(map(u64, blocks)) + u32(end))


def block_store(*streams, slots=None, count=None, end=0xB0BAFE77, size=BLOCK, root=36, next=None,
                signature=b"Q27_FILE", pieces=None):
    """A block store: "hello" in block 1, the directory of `streams` in blocks 2, 3 and so on. `next`
    says which block follows on which, by number."""
    directory = (u32(len(streams) if count is None else count) + b"".join(streams) + u32(end))
    room = BLOCK - 8
    pieces = pieces or len(directory) // room + 1
    chain = {2 + i: 3 + i for i in range(pieces - 1)} | {1 + pieces: NO_BLOCK} | (next or {})
    blocks = u64(NO_BLOCK) + u32(0) + u32(0xB0BAFE77)
    blocks = blocks.ljust(BLOCK, b"\xfe") + b"hello".ljust(BLOCK, b"\0")
    for i in range(pieces):
        blocks += u64(chain[2 + i]) + directory[i * room:(i + 1) * room].ljust(room, b"\xfe")
    return (signature + u32(size) + u32(root) + (slots or slot(2, 2) + slot(1, 0)) + blocks)
