"""Compiles every public header alone, with g++ and clang++, with and without Qt's keywords."""
import concurrent.futures
import itertools
import os
import shutil
import subprocess
import sys

source, build = sys.argv[1:3]
COMPILERS = ("g++", "clang++-14")
VARIANTS = ((), ("-DQT_NO_KEYWORDS",))


def public_headers():
    for library in ("OrvLibrary", "OrvHost"):
        for folder, folders, names in os.walk(os.path.join(source, library)):
            folders[:] = [name for name in folders if name not in ("json", "impl")]
            for name in sorted(names):
                if name.endswith(".h") and not name.endswith("_p.h"):
                    yield os.path.relpath(os.path.join(folder, name), source)


def compile_alone(job):
    compiler, define, header = job
    stub = os.path.join(stubs, header.replace("/", "_") + ".cpp")
    # Whole object files, because the compiler cache stores those: an unchanged header takes no time.
    command = [*cache, compiler, "-std=c++17", "-fPIC", "-Wall", "-Wextra", "-Werror", *define, f"-I{source}",
               f"-I{build}/generated", *qt_flags, "-c", stub, "-o", f"{stub}.{compiler}{''.join(define)}.o"]
    result = subprocess.run(command, text=True, capture_output=True)
    return None if result.returncode == 0 else f"{compiler} {define} {header}\n{result.stderr}"


qt_flags = [flag.replace("-I", "-isystem") for flag in subprocess.run(
    ["pkg-config", "--cflags", "Qt5Core", "Qt5Gui", "Qt5Widgets"], text=True, check=True,
    stdout=subprocess.PIPE).stdout.split()]
cache = ["ccache"] if shutil.which("ccache") else []
headers = list(public_headers())
missing = [name for name in COMPILERS if not shutil.which(name)]
if len(headers) < 30 or missing:
    sys.exit(f"found only {len(headers)} headers, and not {missing}")
stubs = os.path.join(build, "headers-alone")
os.makedirs(stubs, exist_ok=True)
for header in headers:
    with open(os.path.join(stubs, header.replace("/", "_") + ".cpp"), "w") as stream:
        stream.write(f'#include "{header}"\n')
jobs = list(itertools.product(COMPILERS, VARIANTS, headers))
with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
    failures = [failure for failure in pool.map(compile_alone, jobs) if failure]
shutil.rmtree(stubs)
if failures:
    sys.exit("\n".join(failures))
print(f"{len(headers)} headers compile alone, {len(jobs)} times in all")
