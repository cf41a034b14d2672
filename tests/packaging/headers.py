"""Compiles every public header alone: with g++, with and without Qt's keywords, and with clang++."""
import concurrent.futures
import os
import shutil
import subprocess
import sys

source, build = sys.argv[1:3]


def public_headers():
    for folder, folders, names in os.walk(os.path.join(source, "OrvLibrary")):
        folders[:] = [name for name in folders if name not in ("json", "impl")]
        for name in sorted(names):
            if name.endswith(".h") and not name.endswith("_p.h"):
                yield os.path.relpath(os.path.join(folder, name), source)


def compile_alone(job):
    compiler, define, header = job
    command = [compiler, "-std=c++17", "-fPIC", "-fsyntax-only", "-Wall", "-Wextra", "-Werror", *define,
               f"-I{source}", f"-I{build}/generated", *qt_flags, "-x", "c++", "-"]
    result = subprocess.run(command, input=f'#include "{header}"\n', text=True, capture_output=True)
    return None if result.returncode == 0 else f"{compiler} {define} {header}\n{result.stderr}"


qt_flags = [flag.replace("-I", "-isystem") for flag in subprocess.run(
    ["pkg-config", "--cflags", "Qt5Core", "Qt5Gui", "Qt5Widgets"], text=True, check=True,
    stdout=subprocess.PIPE).stdout.split()]
compilers = [name for name in ("g++", "clang++-14") if shutil.which(name)]
headers = list(public_headers())
if len(headers) < 30 or "g++" not in compilers:
    sys.exit(f"found only {len(headers)} headers and the compilers {compilers}")
variants = [("g++", []), ("g++", ["-DQT_NO_KEYWORDS"])] + [(name, []) for name in compilers[1:]]
jobs = [(compiler, define, header) for compiler, define in variants for header in headers]
with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
    failures = [failure for failure in pool.map(compile_alone, jobs) if failure]
if failures:
    sys.exit("\n".join(failures))
print(f"{len(headers)} headers compile alone with {' and '.join(compilers)}")
