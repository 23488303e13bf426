#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Tells about a platform in a few lines. Usage: show_platform.py FILE

It needs the package mav_platform: the wheel of `./dev python`, or python3-mav-platform.
"""
import logging
import sys

import mav_platform


def tell(path: str) -> None:
    # A platform is typed: frequencies are floats, flags bools, addresses ints.
    with mav_platform.load(path) as platform:
        hardware = platform.hardware
        print(f"{hardware.name} for {hardware.fpga_part}")
        for clock in hardware.clocks:
            print(f"clock   {clock.name}  {clock.frequency_mhz} MHz")
        for memory in hardware.memories[:2]:
            print(f"memory  {memory.name}  {memory.low_address:#x} to {memory.high_address:#x}")
        # The document itself, by path; what is not there has a default or is NotFound.
        print(f"board   {platform.get('hardwarePlatform.board.name', default='none')}")
        verdict = platform.support(tool_release="2026.1")
        print("in 2026.1 supported" if verdict else f"in 2026.1 not supported: {verdict.reason}")


def main() -> int:
    if len(sys.argv) != 2:
        print(f"Usage: {sys.argv[0]} FILE", file=sys.stderr)
        return 2
    # What the library tells on its way, such as a reference that leads nowhere.
    logging.basicConfig(level=logging.WARNING, format="%(message)s")
    try:
        tell(sys.argv[1])
    except mav_platform.PlatformError as error:
        print(f"{error}. {error.hint}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
