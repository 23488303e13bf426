#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Packs the Python package into a wheel with the library and its data inside, without the network.

Usage: make_wheel.py BUILD_DIR OUTPUT_DIR. Libraries that not every Linux has go with it, with their
licences; the wheel's platform is the oldest C library that all of them accept.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import sysconfig
import tempfile

# What a manylinux wheel may expect of the system.
EXPECTED = re.compile(r"(linux-vdso|ld-linux.*|libc|libm|libdl|librt|libpthread|libstdc\+\+|libgcc_s|libz)\.so.*")


def run(*command, **options):
    return subprocess.run([str(one) for one in command], check=True, text=True, **options)


def needed(library):
    """The libraries that go with it, by the name that it asks for."""
    listing = run("ldd", library, stdout=subprocess.PIPE).stdout
    if "not found" in listing:
        raise SystemExit(f"{library} does not find what it needs:\n{listing}")
    pairs = re.findall(r"^\s*(\S+) => (\S+)", listing, re.MULTILINE)
    return {name: pathlib.Path(path) for name, path in pairs if not EXPECTED.fullmatch(name)}


def licence(library):
    """The licence of the Debian package that a library comes from."""
    for path in (library, library.resolve(), pathlib.Path("/usr", *library.resolve().parts[1:])):
        owner = subprocess.run(["dpkg", "-S", path], capture_output=True, text=True, check=False).stdout
        if owner:
            package = owner.split(":")[0]
            return package, pathlib.Path("/usr/share/doc") / package / "copyright"
    raise SystemExit(f"{library} belongs to no package, so its licence is not known")


def fill_native(project, native, build):
    """The library, what goes with it, and the data, as they lie in an installed tree."""
    with tempfile.TemporaryDirectory() as prefix:
        run("cmake", "--install", build, "--prefix", prefix, "--component", "library", "--strip",
            stdout=subprocess.DEVNULL)
        installed = pathlib.Path(prefix)
        (native / "lib").mkdir(parents=True)
        shutil.copy(installed / "lib/libmav_platform.so.1", native / "lib")
        shutil.copytree(installed / "share/mav", native / "share/mav")
        (project / "licenses").mkdir()
        for one in (installed / "share/doc").rglob("*"):
            if one.name in ("LICENSE", "THIRD_PARTY_NOTICES"):
                shutil.copy(one, project / "licenses")
    for name, path in needed(native / "lib/libmav_platform.so.1").items():
        shutil.copy(path, native / "lib" / name)
        package, text = licence(path)
        shutil.copy(text, project / "licenses" / package)
    for library in (native / "lib").iterdir():
        run("patchelf", "--set-rpath", "$ORIGIN", library)


def platform_tag(libraries):
    versions = {int(one) for library in libraries
                for one in re.findall(rb"\0GLIBC_2\.(\d+)\b", library.read_bytes())}
    machine = re.sub(r"\W", "_", sysconfig.get_platform().removeprefix("linux-"))
    return f"manylinux_2_{max(versions)}_{machine}"


def main():
    build, output = (pathlib.Path(one).resolve() for one in sys.argv[1:3])
    with tempfile.TemporaryDirectory() as scratch:
        project = pathlib.Path(scratch)
        package = project / "mav_platform"
        shutil.copytree(build / "lib/python3/dist-packages/mav_platform", package,
                        ignore=shutil.ignore_patterns("__pycache__"))
        shutil.copy(build / "bindings/python/pyproject.toml", project)
        fill_native(project, package / "native", build)
        tag = platform_tag((package / "native/lib").iterdir())
        (project / "setup.cfg").write_text(f"[bdist_wheel]\nplat_name = {tag}\npython_tag = py3\n")
        for old in output.glob("mav_platform-*.whl"):
            old.unlink()
        run(sys.executable, "-m", "build", "--wheel", "--no-isolation", "--outdir", output, project,
            stdout=subprocess.DEVNULL, env={**os.environ, "PYTHONWARNINGS": "ignore"})
    print(next(output.glob("mav_platform-*.whl")))


if __name__ == "__main__":
    main()
