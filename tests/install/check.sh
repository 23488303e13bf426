#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs a build into an empty prefix, moves that away, and builds and runs clients against it.
# Usage: check.sh BUILD_DIR. The last line counts what passed and failed.
set -uo pipefail

readonly here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
readonly build="$(cd "$1" && pwd)"
readonly work="$(mktemp -d)"
readonly prefix="$work/moved"
trap 'rm -rf "$work"' EXIT
readonly title=install
# shellcheck source=tests/install/common.sh
source "$here/common.sh"

install_and_move() {
    cmake --install "$build" --prefix "$work/first" && mv "$work/first" "$prefix"
}

files_in_place() {
    local missing=0 file
    for file in bin/mav include/mav_platform/mav_platform_c.h include/mav_host/HEXError.h \
        lib/libmav_platform.so share/mav lib/pkgconfig/mav-platform.pc \
        lib/cmake/MavPlatform/MavPlatformConfig.cmake share/mav_platform/schema/hpfm.xsd share/doc/mav/docs/rules/digest.md \
        share/mav_platform/schema/output/check.schema.json \
        share/mav_platform/schema/document.schema.json; do
        [[ -e "$prefix/$file" ]] || { echo "missing: $file"; missing=1; }
    done
    diff -r "$build/share/mav" "$prefix/share/mav" && return "$missing"
}

no_trace_of_the_build() { ! grep -rl -e "$build" -e "$work/first" "$prefix"; }

sample="$(find "$build/share/mav/samples" -name '*.pka' 2>/dev/null | sort | tail -n 1)"
readonly sample
check "into an empty prefix, which then moves" install_and_move
check "a sample to read" test -n "$sample"
check "files in their places" files_in_place
check "no path of the build inside" no_trace_of_the_build
check "the mav command" command_works
check "C client with find_package" client_by_cmake C
check "C++ client with find_package" client_by_cmake CXX
check "C client with pkg-config" client_by_pkg_config client.c gcc -std=c11
check "C++ client with pkg-config" client_by_pkg_config client.cpp g++
summary
