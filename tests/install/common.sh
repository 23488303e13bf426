# SPDX-License-Identifier: Apache-2.0
# Checks that hold for every installed tree, to be sourced. The caller sets `title`, `work` (a scratch
# folder), `prefix` (the tree's prefix), `build` and `sample`.
# shellcheck shell=bash
# shellcheck disable=SC2154
passed=0 failed=0
readonly clients="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"

check() {
    local name="$1"
    shift
    if "$@" >"$work/log" 2>&1; then
        echo "ok     $title: $name"
        passed=$((passed + 1))
    else
        echo "FAILED $title: $name"
        sed 's/^/    /' "$work/log"
        failed=$((failed + 1))
    fi
}

# Ends the script with the line that counts.
summary() {
    echo "$passed passed, $failed failed"
    ((failed == 0))
}

# The installed command finds its library and gives the bytes that the built one gives.
command_works() {
    "$prefix/bin/mav" --version && "$prefix/bin/mav" json "$sample" >"$work/installed.json" &&
        "$build/bin/mav" json "$sample" >"$work/built.json" &&
        cmp "$work/installed.json" "$work/built.json"
}

client_by_cmake() {
    local language="$1" dir="$work/cmake-$1"
    cmake -S "$clients" -B "$dir" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
        -DMAV_CLIENT_LANGUAGE="$language" && cmake --build "$dir" && "$dir/client" "$sample"
}

flags() { PKG_CONFIG_PATH="$prefix/lib/pkgconfig" pkg-config "$@"; }

# The flags are words to be split.
# shellcheck disable=SC2046
client_by_pkg_config() {
    local source="$1" binary="$work/pc-client" package=mav-platform
    if [[ "$source" == *.cpp ]]; then package=mav-platform-cxx; fi
    shift
    "$@" -Wall -Wextra -Wpedantic -Werror "$clients/$source" -o "$binary" \
        $(flags --cflags --libs "$package") -Wl,-rpath,"$(flags --variable=libdir mav-platform)" && "$binary" "$sample"
}
