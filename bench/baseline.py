#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""The plain script that the library is compared with: the archive's metadata, with the bus interfaces
of its hpfm, printed prettily."""

import json
import sys
import xml.etree.ElementTree
import zipfile

QD = "{urn:mav:hpfm:1}"


def load(path):
    """The metadata of an archive as one dictionary."""
    with zipfile.ZipFile(path) as archive:
        metadata = json.loads(archive.read("pka.json"))
        buses = []
        for file in metadata["files"]:
            if file["type"] != "HPFM":
                continue
            root = xml.etree.ElementTree.fromstring(archive.read(file["name"]))
            for bus in root.iterfind(f"{QD}component/{QD}busInterface"):
                item = {key[len(QD):]: value for key, value in bus.attrib.items()}
                item["addressSegments"] = [{key[len(QD):]: value
                                            for key, value in segment.attrib.items()}
                                           for segment in bus.iterfind(f"{QD}addressSegment")]
                buses.append(item)
        metadata["busInterfaces"] = buses + metadata["busInterfaces"]
        return metadata


if __name__ == "__main__":
    sys.stdout.write(json.dumps(load(sys.argv[1]), indent=4) + "\n")
