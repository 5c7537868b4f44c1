"""Damages an input at random: its files, arguments and standard input, always the same way for the same random numbers.

No damage makes a name lead out of the folder of the run: the outputs of a damaged run stay in it.
"""
import re
import struct

from inputs import File

TEXT_NUMBERS = [b"0", b"-0", b"1", b"-1", b"2", b"0.5", b"1e-320", b"1e38", b"3.5e38", b"1e308", b"-1e308", b"1e999", b"NaN", b"Inf",
                b"-Infinity", b"32768", b"65536", b"2147483647", b"-2147483648", b"2147483648", b"4294967297",
                b"9223372036854775808", b"99999999999999999999", b"-9999", b"-999", b"99999", b"99998.999", b"0.0009999", b"1.0000001",
                b"123456789.123456789", b"1d5", b"0x10", b"5.", b".5", b".", b"-", b"+", b"", b"1,5", b"1 2", b"x", b"T", b"\"\"", b"***"]
INTEGERS = [0, 1, -1, 2, 3, 5, 8, 13, 15, 23, 25, 28, 31, 50, 255, 256, 1000, 9994, 32767, 65536, 100000, 2147483647, -2147483648, -2, 1 << 24]
REALS = [0.0, -0.0, 1.0, -1.0, 1e-320, 1e-45, 1e38, -3.4e38, 1e300, -9999.0, -999.0, 99999.0, float("nan"), float("inf"), -float("inf")]
BYTES = b"\0\x01\x09\x0a\x0d\x1a\x20\x21\x22\x23\x2c\x2d\x2e0189Ee\x3d\x5c\x7f\x80\xff"
NUMBER = re.compile(rb"[-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?")
TEXTUAL = (".asc", ".hdr", ".prj", ".mif", ".mid", ".csv", ".nbc", ".dmg", ".rfc", ".xyz", ".txt", "")
# What begins a name that leads elsewhere: the root, or the folder above.
OUTSIDE = re.compile(rb"(?:^|[^0-9A-Za-z_.\-\\/])[\\/]|\.\.[\\/]")
FLAGS = [b"-b", b"-flt", b"-asc", b"-src", b"-out", b"x.asc", b"x.flt", b"x.mif", b"x.shp", b"x", b"-decimal0", b"-decimal15", b"-check",
         b"-change", b"-nowetdry", b"-grc", b"-RGB", b"-tin", b"-idw_npt2", b"-bd20", b"-fb1", b"-nc_comp0", b"-nc_part1", b"-cpmm",
         b"-cpsd5", b"-rm_max", b"-cd0", b"-max", b"-conv", b"-count", b"-q", b"-b -b", b"*", b"*.asc", b"?.mif", b"missing.asc", b""]
ANSWERS = [b"\n", b"y\n", b"n\n", b"Y", b"N\n", b"0\n", b"1\n", b"-1\n", b"99999999999\n", b"a.asc\n", b"missing.mif\n", b" \n", b"x" * 1100 + b"\n"]
MOST_GROWTH = 1 << 20


def place(rng, size):
    """A position; half of them in the head of the file, where most of what steers a reader stands."""
    return rng.randrange(min(size, 256) if rng.random() < 0.5 else size)


def block(rng, data):
    """The bounds of a block, mostly a small one."""
    start = place(rng, len(data))
    return start, min(len(data), start + 1 + int(rng.random() ** 4 * min(len(data) - start, MOST_GROWTH)))


def flip_bits(rng, data):
    changed = bytearray(data)
    for _ in range(rng.choice((1, 1, 1, 2, 5))):
        changed[place(rng, len(data))] ^= 1 << rng.randrange(8)
    return bytes(changed)


def set_bytes(rng, data):
    changed = bytearray(data)
    for _ in range(rng.choice((1, 1, 2, 4))):
        changed[place(rng, len(data))] = rng.choice(BYTES) if rng.random() < 0.7 else rng.randrange(256)
    return bytes(changed)


def remove_block(rng, data):
    start, end = block(rng, data)
    return data[:start] + data[end:]


def double_block(rng, data):
    start, end = block(rng, data)
    return data[:end] + data[start:end] * rng.choice((1, 1, 2, 10 if end - start < 1000 else 1)) + data[end:]


def overwrite_block(rng, data):
    start, end = block(rng, data)
    to = place(rng, len(data))
    return data[:to] + data[start:end] + data[to + end - start:]


def insert_bytes(rng, data):
    at = place(rng, len(data))
    return data[:at] + bytes(rng.choice(BYTES) for _ in range(rng.choice((1, 1, 2, 4, 16)))) + data[at:]


def cut_end(rng, data):
    return data[:rng.randrange(len(data)) if rng.random() < 0.6 else max(0, len(data) - rng.randrange(1, 5))]


def change_text_number(rng, data):
    for _ in range(rng.choice((1, 1, 1, 2, 3))):
        found = NUMBER.search(data, place(rng, len(data) or 1)) or NUMBER.search(data)
        if found:
            data = data[:found.start()] + other_number(rng, found.group()) + data[found.end():]
    return data


def other_number(rng, text):
    """Another number in place of `text`: an extreme one, or one near it."""
    if rng.random() < 0.6:
        return rng.choice(TEXT_NUMBERS)
    value = float(text)
    near = rng.choice((-value, value + 1, value - 1, value * 10, value / 10, value * 1000, value * 1.0000001, value + 0.001, value * 1e6))
    return (b"%d" % near if near == int(near) else b"%.10g" % near) if abs(near) < 1e15 else b"%.6e" % near


def change_binary_number(rng, data):
    form = rng.choice(("<i", "<i", ">i", "<f", "<d", "<h"))
    width = struct.calcsize(form)
    if len(data) < width:
        return data
    at = place(rng, len(data) - width + 1)
    at -= at % (width if rng.random() < 0.7 else 1)
    value = rng.choice(REALS if form in ("<f", "<d") else INTEGERS)
    if form == "<h":
        value = max(-32768, min(32767, value))
    if form == "<f" and abs(value) > 3.4e38 and abs(value) != float("inf"):
        value = 3.4e38
    return data[:at] + struct.pack(form, value) + data[at + width:]


def change_lines(rng, data):
    lines = data.split(b"\n")
    at = place(rng, len(lines))
    other = place(rng, len(lines))
    what = rng.randrange(8)
    if what == 0:
        del lines[at]
    elif what == 1:
        lines.insert(other, lines[at])
    elif what == 2:
        lines[at], lines[other] = lines[other], lines[at]
    elif what == 3:
        lines.insert(at, b"")
    elif what == 4:
        lines[at] += rng.choice((b" ", b"x", b",", b"9")) * rng.choice((1, 80, 260, 1001, 5000))
    elif what == 5:
        return data.replace(b"\r\n", b"\n") if b"\r\n" in data else data.replace(b"\n", b"\r\n")
    elif what == 6:
        words = lines[at].replace(b",", b" , ").split()
        rng.shuffle(words)
        lines[at] = b" ".join(words)
    else:
        lines[at] = lines[at].swapcase()
    return b"\n".join(lines)


ANY_BYTES = (flip_bits, set_bytes, remove_block, double_block, overwrite_block, insert_bytes, cut_end)
TEXT_BYTES = ANY_BYTES + (change_text_number,) * 6 + (change_lines,) * 4
BINARY_BYTES = ANY_BYTES + (change_binary_number,) * 5


def leads_out(before, after):
    """Whether there are more names than before that begin at the root or go up."""
    return len(OUTSIDE.findall(after)) > len(OUTSIDE.findall(before))


def slashes(data):
    """How many separators of folders there are."""
    return data.count(b"/") + data.count(b"\\")


def damage_bytes(rng, name, data):
    """The damaged bytes of a file, and what was done; None where there is nothing to damage."""
    if not data:
        return None
    textual = "." + name.lower().rpartition(".")[2] in TEXTUAL or b"\0" not in data[:512]
    dbf = name.lower().endswith(".dbf")  # holds names, but not in lines
    for _ in range(5):
        way = rng.choice(TEXT_BYTES if textual else BINARY_BYTES)
        changed = way(rng, data)
        if changed != data and not (textual and leads_out(data, changed)) and not (dbf and slashes(changed) > slashes(data)):
            return changed, way.__name__
    return None


def damage_file(rng, given):
    """Damages a file of the input; returns what was done."""
    names = sorted(name for name, file in given.files.items() if file.kind == "file")
    if not names:
        return damage_arguments(rng, given)
    name = rng.choice(names)
    what = rng.random()
    if what < 0.03:
        del given.files[name]
        return "%s: removed" % name
    if what < 0.05:
        given.files[name] = File("file", data=b"")
        return "%s: emptied" % name
    if what < 0.08:
        other = rng.choice(names)
        given.files[name] = File("file", data=given.files[other].data)
        return "%s: the bytes of %s" % (name, other)
    if what < 0.09:
        given.files[name] = File("folder", 0o755)
        return "%s: a folder" % name
    if what < 0.10:
        given.files[name].mode = 0o400
        return "%s: read-only" % name
    result = damage_bytes(rng, name, given.files[name].data)
    if result is None:
        return "%s: as it was" % name
    given.files[name] = File("file", given.files[name].mode, data=result[0])
    return "%s: %s" % (name, result[1])


def other_argument(rng, word):
    """Another word in place of an argument."""
    what = rng.randrange(6)
    if what == 0:
        return rng.choice(FLAGS)
    if what == 1:
        found = NUMBER.search(word)
        return word[:found.start()] + other_number(rng, found.group()) + word[found.end():] if found else word + rng.choice(TEXT_NUMBERS)
    if what == 2:
        return word.swapcase()
    if what == 3:
        return word[:rng.randrange(len(word) + 1)]
    if what == 4:
        stem, _, extension = word.rpartition(b".")
        return (stem if stem else extension) + rng.choice((b".asc", b".flt", b".mif", b".shp", b".csv", b".", b".ASC", b".nc"))
    at = rng.randrange(len(word) + 1)
    return word[:at] + rng.choice((b"*", b"?", b" ", b"-", b".", b"_", b"\"", b"\xe4", b"A", b"0")) + word[at:]


def damage_arguments(rng, given):
    """Changes the arguments; returns what was done."""
    before = list(given.arguments)
    words = given.arguments
    what = rng.randrange(5)
    if what == 0 and words:
        del words[rng.randrange(len(words))]
    elif what == 1 and len(words) > 1:
        at, other = rng.randrange(len(words)), rng.randrange(len(words))
        words[at], words[other] = words[other], words[at]
    elif what == 2:
        words.insert(rng.randrange(len(words) + 1), rng.choice(words + FLAGS))
    elif words:
        at = rng.randrange(len(words))
        words[at] = other_argument(rng, words[at]).replace(b"\0", b"")
    if any(leads_out(b"", word) for word in words if word not in before):
        given.arguments = before
    return "arguments: " + ("as they were" if given.arguments == before else "changed")


def damage_input(rng, given):
    """Changes standard input; returns what was done."""
    lines = given.stdin.splitlines(keepends=True)
    what = rng.randrange(4)
    if what == 0 and given.stdin:
        given.stdin = given.stdin[:rng.randrange(len(given.stdin))]
        return "standard input: cut"
    if what == 1 and lines:
        del lines[rng.randrange(len(lines))]
    elif what == 2 and lines:
        lines *= 2
    else:
        lines.insert(rng.randrange(len(lines) + 1), rng.choice(ANSWERS))
    given.stdin = b"".join(lines)
    return "standard input: other lines"


def damage(rng, given):
    """Damages an input, mostly once; returns what was done."""
    done = []
    for _ in range(rng.choice((1, 1, 1, 2, 2, 4))):
        way = rng.random()
        done.append((damage_file if way < 0.7 else damage_arguments if way < 0.9 else damage_input)(rng, given))
    return done
