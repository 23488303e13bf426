#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compiles each installed header alone, twice included, as C++20; a C header (*_c.h) as C89 and C11
too.

Usage: check_headers.py --compiler C++ --root DIR [--root DIR] -- WARNING...
"""
import argparse
import concurrent.futures
import os
import pathlib
import subprocess
import sys

C_COMPILERS = {"g++": "gcc", "clang++": "clang"}
C_WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Wstrict-prototypes", "-Wshadow", "-Wundef"]


def command(compiler, language, standard, warnings, roots):
    includes = [f"-I{root}" for root in roots]
    return [compiler, "-x", language, f"-std={standard}", "-fsyntax-only", "-Werror", *warnings,
            *includes, "-"]


def compile_alone(job):
    header, arguments = job
    text = f'#include "{header}"\n' * 2
    done = subprocess.run(arguments, input=text, capture_output=True, text=True, check=False)
    return header, arguments, done


def jobs_of(options):
    for root in options.root:
        for path in sorted(pathlib.Path(root).rglob("*.h")):
            header = path.relative_to(root).as_posix()
            yield header, command(options.compiler, "c++", "c++20", options.warnings, options.root)
            if header.endswith("_c.h"):
                for standard in ("c89", "c11"):
                    yield header, command(C_COMPILERS[options.compiler], "c", standard, C_WARNINGS,
                                          options.root)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--compiler", required=True)
    parser.add_argument("--root", action="append", required=True)
    parser.add_argument("warnings", nargs="*")
    options = parser.parse_args()
    jobs = list(jobs_of(options))
    failures = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for header, arguments, done in pool.map(compile_alone, jobs):
            if done.returncode != 0:
                failures += 1
                print(f"{header} does not compile alone: {' '.join(arguments)}\n{done.stderr}")
    umbrella = next(pathlib.Path(root) / "mav_platform/mav_platform.h" for root in options.root
                    if (pathlib.Path(root) / "mav_platform/mav_platform.h").exists())
    text = umbrella.read_text(encoding="utf-8")
    for header in sorted({job[0] for job in jobs}):
        if header.count("/") == 1 and "_c.h" not in header and not umbrella.match(header) \
                and f'"{header}"' not in text:
            failures += 1
            print(f"{umbrella} does not include {header}")
    missing = [root for root in options.root if not any(pathlib.Path(root).rglob("*.h"))]
    for root in missing:
        print(f"found no header under {root}")
    print(f"{len(jobs)} compilations, {failures} failed")
    return 1 if failures or missing else 0


if __name__ == "__main__":
    sys.exit(main())
