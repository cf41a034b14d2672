"""Reads the built files and fails if one lacks a protection: `hardening.py BUILD_TYPE FILE…`.

A debug build has only the protections of the linker.
"""
import re
import subprocess
import sys


def readelf(option, path):
    return subprocess.run(["readelf", "-W", option, path], text=True, check=True, stdout=subprocess.PIPE).stdout


def missing(path, optimised):
    headers, segments = readelf("-h", path), readelf("-l", path)
    dynamic, symbols = readelf("-d", path), readelf("--dyn-syms", path)
    is_library = re.search(r"\.so(\.|$)", path) is not None
    # clang checks so few C++ functions that some libraries have none.
    by_clang = "clang version" in readelf("-p.comment", path)
    stack = re.search(r"GNU_STACK.*\s(RWE|RW|R)\s", segments)
    checks = {
        "read-only relocations": "GNU_RELRO" in segments,
        "binding at load time": re.search(r"\((FLAGS\).*BIND_NOW|FLAGS_1\).*\bNOW\b)", dynamic),
        "a stack without code": stack and "E" not in stack[1],
        "guarded stacks": not optimised or "__stack_chk_fail" in symbols,
        "no segment both written and run": not re.search(r"LOAD.*\sRWE\s", segments),
        "a position of its own": re.search(r"Type:\s+DYN", headers),
        "the mark of such a program": is_library or re.search(r"\(FLAGS_1\).*\bPIE\b", dynamic),
        "checked functions": not (optimised and is_library) or by_clang or re.search(r"\b__(?!stack)\w+_chk@", symbols),
    }
    return [name for name, holds in checks.items() if not holds]


build_type, files = sys.argv[1], sys.argv[2:]
failed = False
for file in files:
    lacks = missing(file, build_type != "Debug")
    failed |= bool(lacks)
    print(f"{file}: " + ("lacks " + ", ".join(lacks) if lacks else "hardened"))
sys.exit(failed or not files)
