"""Compares the classes and functions that a library exports with the kept list.

A class is listed once by its name, a free function by its qualified name. Run with --update after an intended change.
"""
import re
import subprocess
import sys

library, kept_file = sys.argv[1:3]


def without_templates(name):
    depth, out = 0, []
    for char in name:
        depth += char == "<"
        if depth == 0:
            out.append(char)
        depth -= char == ">"
    return "".join(out)


def exported_name(symbol):
    symbol = re.sub(r"^(typeinfo name for|typeinfo for|vtable for|VTT for|guard variable for|"
                    r"non-virtual thunk to|virtual thunk to) ", "", symbol)
    symbol = symbol.replace("operator()", "operator_call").replace("operator<<", "operator_out")
    symbol = symbol.replace("operator<", "operator_less")
    return without_templates(symbol).split("(")[0].split("[abi")[0].split(" ")[-1]


lines = subprocess.run(["nm", "-D", "-C", "--defined-only", library], text=True, check=True,
                       stdout=subprocess.PIPE).stdout.splitlines()
names = {exported_name(line.split(" ", 2)[2]) for line in lines} - {""}
scopes = {name.rsplit("::", 1)[0] for name in names if "::" in name}
classes = {scope for scope in scopes if f"{scope}::{scope.rsplit('::', 1)[-1]}" in names
           or f"{scope}::~{scope.rsplit('::', 1)[-1]}" in names} | {
           exported_name(line.split(" ", 2)[2]) for line in lines if "vtable for" in line}
found = sorted(classes | {name for name in names if not any(
    name == scope or name.startswith(scope + "::") for scope in classes)})

if "--update" in sys.argv:
    with open(kept_file, "w") as stream:
        stream.write("\n".join(found) + "\n")
    sys.exit()
with open(kept_file) as stream:
    kept = stream.read().split("\n")[:-1]
new, gone = sorted(set(found) - set(kept)), sorted(set(kept) - set(found))
if new or gone:
    sys.exit(f"exported but not on the list: {new}\non the list but not exported: {gone}")
print(f"{len(found)} exported classes and functions, as listed")
