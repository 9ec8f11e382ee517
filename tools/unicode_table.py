#!/usr/bin/env python3
"""Writes velmora/utils/unicode_table.inc: which code points are printable.

Usage: tools/unicode_table.py > velmora/utils/unicode_table.inc

Reads Debian's unicode-data (apt-get install unicode-data). A code point is not printable when its
general category is Cc, Cf, Cs, Co, Cn, Zl, Zp or Zs. The table has two stages: the block of a code
point's upper bits, and in that block one bit for each of its lower 8 bits.
"""
import re

DATA = "/usr/share/unicode/UnicodeData.txt"
VERSION_SOURCE = "/usr/share/unicode/PropList.txt"
UNPRINTABLE = {"Cc", "Cf", "Cs", "Co", "Cn", "Zl", "Zp", "Zs"}
BLOCK = 256


def printable_flags():
    flags = bytearray(0x110000)
    first = None
    for line in open(DATA, encoding="ascii"):
        code, name, category = line.split(";")[:3]
        code = int(code, 16)
        if name.endswith(", First>"):
            first = code
            continue
        start = first if name.endswith(", Last>") else code
        if category not in UNPRINTABLE:
            flags[start : code + 1] = b"\1" * (code + 1 - start)
    return flags


def rows(items, per_row):
    return [", ".join(items[i : i + per_row]) + "," for i in range(0, len(items), per_row)]


def main():
    version = re.match(r"# PropList-([\d.]+)\.txt", open(VERSION_SOURCE, encoding="utf-8").readline())[1]
    flags = printable_flags()
    blocks, index = {}, []
    for start in range(0, len(flags), BLOCK):
        index.append(blocks.setdefault(bytes(flags[start : start + BLOCK]), len(blocks)))
    assert len(blocks) <= 256
    words = [
        f"{sum(flag << bit for bit, flag in enumerate(block[word : word + 64])):#018x}"
        for block in blocks
        for word in range(0, BLOCK, 64)
    ]
    print(f"// Printable code points of Unicode {version}. Made by tools/unicode_table.py; do not edit.")
    print("// clang-format off")
    print(f"inline constexpr std::array<std::uint8_t, {len(index)}> block_of = {{")
    print("\n".join("    " + row for row in rows([str(i) for i in index], 32)))
    print("};")
    print(f"inline constexpr std::array<std::uint64_t, {len(words)}> printable_bits = {{")
    print("\n".join("    " + row for row in rows(words, 4)))
    print("};")
    print("// clang-format on")


if __name__ == "__main__":
    main()
