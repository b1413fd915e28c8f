"""Writes a C file that calls every function that the header declares, all arguments 0.

usage: write_calls.py HEADER OUTPUT
"""
import pathlib
import re
import sys

header, output = map(pathlib.Path, sys.argv[1:])
text = re.sub(r"/\*.*?\*/|//[^\n]*", "", header.read_text(), flags=re.S)
functions = re.findall(r"\bVEXA_API\b[^;()]*\b(Vexa_\w+)\s*\(([^()]*)\)\s*;", text)
calls = ("{}({})".format(name, ", ".join("0" for _ in arguments.split(",")
                                         if arguments.strip() != "void"))
         for name, arguments in functions)
output.write_text("".join(f"CALL({call})\n" for call in calls))
