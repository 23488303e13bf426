#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""The plain script that the library is compared with: the archive's metadata, printed prettily."""

import json
import sys
import zipfile

with zipfile.ZipFile(sys.argv[1]) as archive:
    metadata = json.loads(archive.read("pka.json"))
sys.stdout.write(json.dumps(metadata, indent=4) + "\n")
