"""Builds and runs a small host program against the install tree, the build tree and the pkg-config file."""
import os
import shlex
import subprocess
import sys
import tempfile

build_tree, consumer = sys.argv[1:3]


def run(*command, **options):
    result = subprocess.run(command, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **options)
    if result.returncode:
        sys.exit(f"{' '.join(command)}\n{result.stdout}")
    return result.stdout


def check(label, output):
    if output.strip() != "the catalog update ran: result 0":
        sys.exit(f"{label}: unexpected output: {output!r}")
    print(f"{label}: ok")


with tempfile.TemporaryDirectory() as work:
    prefix = os.path.join(work, "prefix")
    run("cmake", "--install", build_tree, "--prefix", prefix)
    library_dir = next(folder for folder, _, names in os.walk(prefix) if "libOrvLibrary.so" in names)
    environment = dict(os.environ, ORV_LIBRARY_ROOT=os.path.join(work, "root"), QT_QPA_PLATFORM="offscreen")

    for label, where in (("install tree", prefix), ("build tree", build_tree)):
        out = os.path.join(work, label.replace(" ", "-"))
        run("cmake", "-S", consumer, "-B", out, "-DCMAKE_BUILD_TYPE=Debug",
            f"-DOrvLibrary_DIR={where}" if where == build_tree else f"-DCMAKE_PREFIX_PATH={where}")
        run("cmake", "--build", out)
        check(label, run(os.path.join(out, "consumer"), env=environment))

    pc_dir = os.path.join(library_dir, "pkgconfig")
    flags = run("pkg-config", "--cflags", "--libs", "orvlibrary",
                env=dict(os.environ, PKG_CONFIG_PATH=pc_dir))
    program = os.path.join(work, "by-pkg-config")
    run("g++", "-std=c++17", "-fPIC", os.path.join(consumer, "main.cpp"), "-o", program, *shlex.split(flags),
        f"-Wl,-rpath,{library_dir}")
    check("pkg-config", run(program, env=environment))
