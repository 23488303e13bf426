#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Loads every platform below a directory as a script would: the description by xml.etree, its archive
as baseline.py does. Prints how many."""
import os
import sys
import xml.etree.ElementTree

import baseline

MAV = "{urn:mav:platform:1}"
platforms = []
for folder, _, names in os.walk(sys.argv[1]):
    for name in names:
        if not name.endswith(".qpfm"):
            continue
        root = xml.etree.ElementTree.parse(os.path.join(folder, name)).getroot()
        hardware = root.find(f"{MAV}hardwarePlatforms/{MAV}hardwarePlatform")
        path = os.path.join(folder, hardware.get(f"{MAV}path"), hardware.get(f"{MAV}name"))
        platforms.append((root.attrib, baseline.load(path)))
print(len(platforms))
