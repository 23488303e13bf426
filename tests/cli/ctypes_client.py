# SPDX-License-Identifier: Apache-2.0
"""Prints the description of a platform through ctypes: ctypes_client.py LIBRARY FILE [--short]."""
import ctypes
import os
import sys

library = ctypes.CDLL(sys.argv[1])
library.hmav_free_json_string.argtypes = [ctypes.c_void_p]
library.hmav_free_json_string.restype = None
ask = (library.hmav_get_short_platform_json if "--short" in sys.argv
       else library.hmav_get_platform_json)
ask.argtypes = [ctypes.c_char_p]
ask.restype = ctypes.c_void_p

text = ask(os.fsencode(sys.argv[2]))
if not text:
    sys.exit(3)
sys.stdout.buffer.write(ctypes.string_at(text))
library.hmav_free_json_string(text)
