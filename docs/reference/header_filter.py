#!/usr/bin/env python3
"""Doxygen input filter for the library's headers.

The headers are commented in plain // lines. For the reference, the comment
that opens a header becomes the description of the class the file is named
after (or of the file, when no such class is declared), and every other
comment line before a declaration becomes a documentation comment. The
headers themselves stay as they are.
"""
import os
import re
import sys


def main(path):
    with open(path, encoding="utf-8") as f:
        lines = f.read().split("\n")
    if not path.endswith(".h"):
        sys.stdout.write("\n".join(lines))
        return
    opening = []
    i = 0
    while i < len(lines) and lines[i].startswith("//"):
        opening.append(lines[i][2:].lstrip(" ") if lines[i].startswith("// ") else lines[i][2:])
        i += 1
    name = os.path.splitext(os.path.basename(path))[0]
    folder = os.path.basename(os.path.dirname(path))
    namespace = "qor::tools" if folder == "tools" else "qor::tools::" + folder
    declares = any(re.match(r"\s*(class|struct)\s+(QOR_TOOLS_API\s+)?%s\b" % re.escape(name), l) for l in lines)
    out = []
    if opening:
        target = "@class %s::%s" % (namespace, name) if declares else "@file"
        out.append("/** %s" % target)
        out.extend(" * " + l for l in opening)
        out.append(" */")
    for line in lines[i:]:
        out.append(re.sub(r"^(\s*)// ", r"\1/// ", line))
    sys.stdout.write("\n".join(out))


if __name__ == "__main__":
    main(sys.argv[1])
