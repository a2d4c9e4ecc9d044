"""Serial programming instructions of the AVR parts: the part's own patterns (tools/data/avr-isp.tsv)
and the instructions the AVR family's algorithms send, so that the catalogue names, for each operation,
the algorithm that sends exactly what the part expects.

A pattern is 32 tokens, first bit sent first: "0"/"1" fixed, "x" don't care, ("a", n) address bit n,
("i", n) data bit n written, ("o", n) data bit n read back in that position.
"""
import math
import re

INSTRUCTIONS = ("chip_erase", "pgm_enable", "load_ext_addr", "flash_read_lo", "flash_read_hi",
                "flash_loadpage_lo", "flash_loadpage_hi", "flash_writepage", "eeprom_read", "eeprom_write",
                "eeprom_loadpage", "eeprom_writepage", "lfuse_read", "lfuse_write", "hfuse_read", "hfuse_write",
                "efuse_read", "efuse_write", "fuse_read", "fuse_write", "lock_read", "lock_write",
                "calibration_read", "signature_read", "flash_write_lo", "flash_write_hi")
MEMORIES = ("flash", "eeprom", "lfuse", "hfuse", "efuse", "fuse", "lock")


def parse(column, text, nonstandard):
    """The tokens of one pattern, with the bits the table numbers differently applied."""
    bits = text.replace(".", "")
    if len(bits) != 32:
        raise ValueError("%s: pattern %r is not 32 bits" % (column, text))
    tokens = []
    for k, ch in enumerate(bits):
        byte, n = k // 8, 7 - k % 8
        if ch in "01x":
            tokens.append(ch)
        elif ch == "a":
            base = {1: 8, 2: 16 if column == "load_ext_addr" else 0}.get(byte)
            if base is None:
                raise ValueError("%s: address bit in byte %d" % (column, byte + 1))
            tokens.append(("a", base + n))
        elif ch in "io":
            tokens.append((ch, n))
        else:
            raise ValueError("%s: letter %r" % (column, ch))
    for entry in nonstandard.split(";"):
        col, _, overrides = entry.partition(":")
        if col.strip() != column:
            continue
        for item in overrides.split():
            m = re.fullmatch(r"bit(\d+)=([aio])(\d+)", item)
            tokens[31 - int(m.group(1))] = (m.group(2), int(m.group(3)))
    return tokens


def patterns(row):
    return {c: parse(c, row[c], row["nonstandard_bits"]) for c in INSTRUCTIONS if row.get(c)}


def token_text(tokens):
    return " ".join(t if isinstance(t, str) else "%s%d" % t for t in tokens)


def sends(tokens, instr, addr=0, data=0):
    """True when the four bytes are what the pattern asks for with this address and data. The fourth
    byte of a read is shifted out by the part: its fixed bits are what comes back, not what is sent."""
    is_read = any(isinstance(t, tuple) and t[0] == "o" for t in tokens)
    for k, t in enumerate(tokens[:24] if is_read else tokens):
        bit = instr[k // 8] >> (7 - k % 8) & 1
        if t in ("0", "1") and bit != int(t):
            return False
        if isinstance(t, tuple) and t[0] == "a" and bit != addr >> t[1] & 1:
            return False
        if isinstance(t, tuple) and t[0] == "i" and bit != data >> t[1] & 1:
            return False
    return True


def reads(tokens, extract):
    """True when the algorithm takes every data bit from where the part shifts it out.
    extract maps a data bit to the bit of the fourth reply byte it is taken from."""
    for k, t in enumerate(tokens):
        if isinstance(t, tuple) and t[0] == "o" and (k // 8 != 3 or extract.get(t[1]) != 7 - k % 8):
            return False
    return True


def data_values(tokens):
    """Every value the part's data bits can take; bits the pattern does not carry stay 1 (unprogrammed)."""
    mask = 0
    for t in tokens:
        if isinstance(t, tuple) and t[0] == "i":
            mask |= 1 << t[1]
    values = [v for v in range(256) if v | mask == 0xFF]
    return values, mask


# ---- what the family's algorithms send (TDevAVR8Alg) ----

FUSE_READS = ([0x50, 0x00], [0x58, 0x08], [0x50, 0x08])
FUSE_WRITES = (0xA0, 0xA8, 0xA4)
WHOLE = {n: n for n in range(8)}


def fuse_read_alg(fuse_patterns):
    count = len(fuse_patterns)
    if count == 1 and sends(fuse_patterns[0], [0x58, 0, 0, 0]) and reads(fuse_patterns[0], {0: 0, 5: 5}):
        return 0
    if count <= 3 and all(sends(p, FUSE_READS[i] + [0, 0]) and reads(p, WHOLE)
                          for i, p in enumerate(fuse_patterns)):
        return 1
    return None


def fuse_write_alg(fuse_patterns):
    def all_values(p, render):
        values, _ = data_values(p)
        return all(sends(p, render(v), data=v) for v in values)
    if len(fuse_patterns) == 1:
        p = fuse_patterns[0]
        if all_values(p, lambda v: [0xAC, (v & 0x01) | 0xBE, 0, 0]):
            return 0
        if all_values(p, lambda v: [0xAC, (v & 0x1F) | 0xA0, 0, 0]):
            return 1
    if len(fuse_patterns) <= 3 and all(all_values(p, lambda v, i=i: [0xAC, FUSE_WRITES[i], 0, v])
                                       for i, p in enumerate(fuse_patterns)):
        return 2
    return None


def lock_read_alg(p):
    if not sends(p, [0x58, 0, 0, 0]):
        return None
    if reads(p, {1: 5, 2: 6}):
        return 0
    return 1 if reads(p, WHOLE) else None


def lock_write_alg(p):
    values, _ = data_values(p)
    for alg, render in ((0, lambda v: [0xAC, v, 0, 0]), (1, lambda v: [0xAC, 0xE0, 0, v])):
        if all(sends(p, render(v), data=v) for v in values):
            return alg
    return None


def ident_ok(p):
    return all(sends(p, [0x30, 0, i, 0], addr=i) and reads(p, WHOLE) for i in range(3))


def osccal_ok(p, count):
    return all(sends(p, [0x38, 0, i, 0], addr=i) and reads(p, WHOLE) for i in range(count))


def erase_ok(p):
    return sends(p, [0xAC, 0x80, 0, 0])


def page_commit_ok(p, flash_size, page):
    """The commit instruction carries the page's word address in bytes 2 and 3."""
    words = [a // 2 for a in range(0, min(flash_size, 1 << 17), page)]
    return all(sends(p, [0x4C, w >> 8 & 0xFF, w & 0xFF, 0], addr=w) for w in words)


# ---- waits ----

def ms(us):
    return max(1, math.ceil(int(us) / 1000))


def min_delay_us(row, memory):
    """The part's shortest wait after a write of the memory; where the table gives none (0), the longest
    wait it gives for that memory, else the longest of all its memories."""
    lo, hi = row["min_write_delay_%s_us" % memory], row["max_write_delay_%s_us" % memory]
    if lo == "":
        return None
    if int(lo):
        return int(lo)
    if int(hi):
        return int(hi)
    return max(int(row["max_write_delay_%s_us" % m] or 0) for m in MEMORIES)
