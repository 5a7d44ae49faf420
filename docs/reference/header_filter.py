#!/usr/bin/env python3
"""Doxygen input filter for the library's headers.

The headers are commented in plain // lines. For the reference, the comment
that opens a header becomes the description of the class the file is named
after (or of the file, when no such class is declared), and every other
comment line before a declaration becomes a documentation comment. A comment
above a run of declarations (up to the next blank line) speaks for the whole
run, as in the headers: the run becomes a member group, and each of its
declarations carries the comment.
Protected and private sections are the classes' inside, left out of the
reference. The headers themselves stay as they are.
"""
import os
import re
import sys

COMMENT = re.compile(r"^(\s*)// ?(.*)$")
TYPE_START = re.compile(r"^\s*(template\s*<.*>\s*)?(class|struct|union|namespace|enum)\b")
TEMPLATE = re.compile(r"^\s*template\s*<.*>\s*$")
ACCESS = re.compile(r"^\s*(public|protected|private)\s*:")


def depth_change(line):
    code = re.sub(r"//.*$", "", line)
    code = re.sub(r'"([^"\\]|\\.)*"', '""', code)
    code = re.sub(r"'([^'\\]|\\.)*'", "''", code)
    return code.count("{") - code.count("}")


def starts_type(lines, i):
    """Whether a class, struct, union, enum or namespace begins at line i
    (its template head may stand on the line before)."""
    if TYPE_START.match(lines[i]):
        return True
    return bool(TEMPLATE.match(lines[i])) and i + 1 < len(lines) and bool(TYPE_START.match(lines[i + 1]))


def run_end(lines, start):
    """The index past a run of declarations that starts at `start`: it ends at
    a blank line, a comment, an access label or the end of the scope, at the
    depth it began."""
    depth = 0
    i = start
    while i < len(lines):
        line = lines[i]
        if depth == 0 and i > start and (not line.strip() or COMMENT.match(line) or ACCESS.match(line)
                                         or line.lstrip().startswith("}")):
            break
        depth += depth_change(line)
        i += 1
        if depth < 0:
            return None  # the run closes a scope that it did not open: no group
    return i if depth == 0 else None


def body(lines):
    out = []
    i = 0
    while i < len(lines):
        m = COMMENT.match(lines[i])
        if not m:
            out.append(lines[i])
            i += 1
            continue
        block = []
        while i < len(lines) and COMMENT.match(lines[i]):
            indent, text = COMMENT.match(lines[i]).groups()
            block.append("%s/// %s" % (indent, text))
            i += 1
        end = None
        if i < len(lines) and lines[i].strip() and not starts_type(lines, i) and not ACCESS.match(lines[i]):
            end = run_end(lines, i)
        if end is None or end - i < 1:
            out.extend(block)
            continue
        indent = COMMENT.match(block[0].replace("///", "//", 1)).group(1)
        out.append(indent + "///@{")
        out.extend(with_comment(block, lines[i:end]))
        out.append(indent + "///@}")
        i = end
    return out


def with_comment(block, run):
    """The run with the comment before each of its declarations, besides the
    group's: Doxygen gives a group's comment only to the first member on the
    pages it makes for a template's instances (array<T, pif::array::object>).
    Members that one macro makes still take it from the group."""
    out = []
    depth = 0
    ended = True
    for line in run:
        if depth == 0 and ended and line.strip():
            out.extend(block)
        out.append(line)
        depth += depth_change(line)
        code = re.sub(r"//.*$", "", line).rstrip()
        if code:
            ended = depth == 0 and (code.endswith(";") or code.endswith("}"))
    return out


TRAILING = re.compile(r"^(\s*[^/\s].*?;)\s+// (.*)$")


def trailing(lines):
    """A comment behind a declaration on its own line documents that member."""
    return [TRAILING.sub(r"\1  ///< \2", line) for line in lines]


def hide_inside(lines):
    """Wraps each protected or private section in @cond ... @endcond: up to
    the next access label at its indent, or the end of its class."""
    out = []
    hidden = None  # the indent of the label that opened the hidden section
    for line in lines:
        label = ACCESS.match(line)
        indent = len(line) - len(line.lstrip(" "))
        if hidden is not None and indent == hidden and (label or re.match(r"^\s*};", line)):
            out.append(" " * indent + "/// @endcond")
            hidden = None
        if hidden is None and label and label.group(1) != "public":
            out.append(line)
            out.append(" " * indent + "/// @cond INSIDE")
            hidden = indent
            continue
        out.append(line)
    return out


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
    # The class the file is named after: crypto_xml.h declares CryptoXml.
    declared = None
    for l in lines:
        m = re.match(r"\s*(class|struct)\s+(QOR_TOOLS_API\s+)?(\w+)\b", l)
        if m and m.group(3).lower() == name.replace("_", "").lower():
            declared = m.group(3)
            break
    out = []
    if opening:
        target = "@class %s::%s" % (namespace, declared) if declared else "@file"
        out.append("/** %s" % target)
        out.extend(" * " + l for l in opening)
        out.append(" */")
    out.extend(hide_inside(body(trailing(lines[i:]))))
    sys.stdout.write("\n".join(out))


if __name__ == "__main__":
    main(sys.argv[1])
