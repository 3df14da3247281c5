#!/usr/bin/env python3
"""Writes the C++ table of the package's own Python sources: each source with its code object,
compiled and marshalled by the interpreter the program is built against, so that start-up
loads code instead of compiling it.

usage: embed.py OUTPUT.cpp SOURCE.py...
"""
import marshal
import os
import sys


def byte_lines(data):
    return ",\n".join("    " + ", ".join(str(b) for b in data[i:i + 24]) for i in range(0, len(data), 24))


def main():
    output, sources = sys.argv[1], sys.argv[2:]
    parts = ["// Written by embed.py when the program is built.\n",
             '#include "gscript/embedded_python.h"\n',
             "namespace Vel::GScript {\nnamespace {\n"]
    entries = []
    for index, path in enumerate(sources):
        with open(path, "rb") as file:
            source = file.read()
        # The file name is the one the sources always had in tracebacks.
        code = marshal.dumps(compile(source, "<string>", "exec", dont_inherit=True))
        parts.append("const unsigned char source_%d[] = {\n%s, 0};\n" % (index, byte_lines(source)))
        parts.append("const unsigned char code_%d[] = {\n%s};\n" % (index, byte_lines(code)))
        name = os.path.splitext(os.path.basename(path))[0]
        entries.append('    {"%s", reinterpret_cast<const char*>(source_%d), reinterpret_cast<const char*>(code_%d), '
                       "sizeof(code_%d)}" % (name, index, index, index))
    parts.append("}  // namespace\n\n")
    parts.append("const unsigned EMBEDDED_PYTHON_VERSION = 0x%x;\n" % (sys.hexversion >> 16))
    parts.append("const EmbeddedPython EMBEDDED_PYTHON[] = {\n%s,\n    {nullptr, nullptr, nullptr, 0}};\n" % ",\n".join(entries))
    parts.append("}  // namespace Vel::GScript\n")
    text = "".join(parts)
    # Unchanged output keeps its time stamp, so nothing is rebuilt for nothing.
    if os.path.exists(output):
        with open(output) as file:
            if file.read() == text:
                return
    with open(output + ".tmp", "w") as file:
        file.write(text)
    os.replace(output + ".tmp", output)


if __name__ == "__main__":
    main()
