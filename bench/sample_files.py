"""What the benchmark scripts need to know of WAVE and AIFF files."""

import collections
import pathlib
import struct

SUFFIXES = (".wav", ".aif", ".aiff")
KINDS = {(2, 16): "16 bits, stereo", (1, 16): "16 bits, mono",
         (2, 24): "24 bits, stereo", (1, 24): "24 bits, mono"}

# Both keep what a file holds beside its samples.
FLAC = ["flac", "-s", "-f", "--no-padding", "--keep-foreign-metadata-if-present"]
WAVPACK = ["wavpack", "-q", "-y"]

Sample = collections.namedtuple("Sample", "path kind pcm_bytes")


def chunks(data, order):
    position = 12
    while position + 8 <= len(data):
        name, size = struct.unpack_from(order + "4sI", data, position)
        yield name, data[position + 8:position + 8 + size]
        position += 8 + size + size % 2


def read_sample(path):
    """A file of one of KINDS that is what its name says, and whole; None for any other."""
    data = path.read_bytes()
    channels = bits = length = 0
    order = "<" if path.suffix.lower() == ".wav" else ">"
    if len(data) < 12 or struct.unpack_from(order + "I", data, 4)[0] + 8 > len(data):
        return None
    if order == "<" and data[:4] == b"RIFF" and data[8:12] == b"WAVE":
        for name, body in chunks(data, order):
            if name == b"fmt ":
                coding, channels, _, _, _, bits = struct.unpack_from("<HHIIHH", body)
                if coding == 0xFFFE:
                    coding = int.from_bytes(body[24:26], "little")
                if coding != 1:
                    return None
            elif name == b"data":
                length = len(body)
    elif order == ">" and data[:4] == b"FORM" and data[8:12] == b"AIFF":
        for name, body in chunks(data, order):
            if name == b"COMM":
                channels, frames, bits = struct.unpack_from(">hIh", body)
                length = frames * channels * bits // 8
    kind = KINDS.get((channels, bits))
    return Sample(path, kind, length) if kind else None


def samples_of(folder):
    """All samples below a folder, by path."""
    paths = sorted(path for path in pathlib.Path(folder).rglob("*")
                   if path.suffix.lower() in SUFFIXES and path.is_file())
    return [sample for sample in map(read_sample, paths) if sample]
