#!/usr/bin/env python3
"""Sets or shows texts of a language file by id: lang_set.py FILE ID [TEXT].

Text number N is the N-th non-comment line of a "*.lng" file; this tool finds that line so nobody has
to count, and extends the file with empty texts when ID is beyond its end. A line break in TEXT is
stored as the two characters backslash and n.
"""
import sys


def main():
    if len(sys.argv) not in (3, 4):
        sys.exit(__doc__)
    path, ident = sys.argv[1], int(sys.argv[2])
    with open(path, encoding="utf-8") as f:
        lines = f.read().split("\n")
    if lines and lines[-1] == "":
        lines.pop()
    texts = [i for i, line in enumerate(lines) if not line.startswith("#")]
    if len(sys.argv) == 3:
        print(lines[texts[ident]] if ident < len(texts) else "?????")
        return
    while len(texts) <= ident:
        lines.append("")
        texts.append(len(lines) - 1)
    lines[texts[ident]] = sys.argv[3].replace("\n", "\\n")
    with open(path + ".tmp", "w", encoding="utf-8") as f:
        f.write("\n".join(lines) + "\n")
    import os
    os.replace(path + ".tmp", path)


if __name__ == "__main__":
    main()
