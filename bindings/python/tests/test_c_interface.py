# SPDX-License-Identifier: Apache-2.0
"""The generated structs lie in memory as the C compiler lays them out, and no function is left out."""
import ctypes
import os
import re
import subprocess

from conftest import SOURCE
from mav_platform import _c, _library

HEADER = SOURCE / "platform/include/mav_platform/mav_platform_c.h"


def c_name(made):
    return "hmav" + re.sub(r"([A-Z])", r"_\1", made.__name__).lower()


def test_layout(tmp_path):
    structs = [made for made in vars(_c).values()
               if isinstance(made, type) and issubclass(made, ctypes.Structure)]
    checks = [f"sizeof({c_name(made)}) == {ctypes.sizeof(made)}" for made in structs]
    checks += [f"offsetof({c_name(made)}, {name}) == {getattr(made, name).offset}"
               for made in structs for name, _ in made._fields_]
    assert len(checks) > 50
    lines = "".join(f'_Static_assert({check}, "{check}");\n' for check in checks)
    source = tmp_path / "layout.c"
    source.write_text(f"#include <mav_platform/mav_platform_c.h>\n{lines}")
    subprocess.run(["gcc", "-fsyntax-only", f"-I{SOURCE}/platform/include", f"-I{SOURCE}/host/include",
                    source], env={**os.environ, "LD_PRELOAD": ""}, check=True)


def test_every_function_and_callback():
    text = HEADER.read_text()
    declared = re.findall(r"MAV_API[^;]*?(\w+)\([^;]*\) HMAV_NOEXCEPT;", text)
    assert sorted(declared) == sorted(_c.FUNCTIONS)
    assert text.count("(*hmav_") == sum(name.endswith("Callback") for name in vars(_c))


def test_hints_name_what_python_has():
    """Hints of the C interface name its functions, and each of them has a name in Python."""
    literals = [text for path in (SOURCE / "platform/src/capi").glob("*.cpp")
                for text in re.findall(r'"[^"\n]*"', path.read_text()) if not text.endswith('.h"')]
    named = set(re.findall(r"\bhmav_\w+", " ".join(literals))) - {"hmav_api_version"}
    assert named and named <= set(_library._PYTHON_NAMES)
