#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs the wheel, and the Debian package, each into an empty virtual environment without the
# network, and runs the suite there. Usage: check.sh BUILD_DIR, after `./dev python`. The last line
# counts what passed and failed.
set -uo pipefail

readonly tree="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
readonly build="$(cd "$1" && pwd)"
readonly packages="$build/packages"
readonly work="$(mktemp -d)"
readonly title=python prefix="$work/root/usr"
trap 'rm -rf "$work"' EXIT
# shellcheck source=tests/install/common.sh
source "$tree/tests/install/common.sh"

# Where the kernel allows it, there is no network at all.
offline=()
if unshare -rn true 2>/dev/null; then offline=(unshare -rn); fi

one_of() { find "$packages" -maxdepth 1 -name "$1" | sort | tail -n 1; }

# environment NAME: pytest comes from the system, everything else is as a user has it.
environment() { "${offline[@]}" /usr/bin/python3 -m venv --system-site-packages "$work/$1"; }

# The build's own tree must not be what is tested.
suite() {
    local env="$work/$1"
    cd "$work" && "$env/bin/python" -B -c "import mav_platform, sys
assert mav_platform.__file__.startswith(sys.argv[1]), mav_platform.__file__" "$2" &&
        grep -q "$2" <("$env/bin/python" -B -c "import mav_platform
print(open('/proc/self/maps').read())" | grep libmav_platform) &&
        MAV_SAMPLES="$build/share/mav/samples" MAV_SOURCE_DIR="$tree" "${offline[@]}" \
            "$env/bin/python" -B -m pytest -q -p no:cacheprovider --rootdir "$work" "$tree/bindings/python/tests"
}

wheel_name() {
    local machine
    machine="$(uname -m)"
    [[ "$(basename "$(one_of '*.whl')")" =~ ^mav_platform-[0-9.]+-py3-none-manylinux_2_[0-9]+_$machine\.whl$ ]]
}
wheel_installs() { "${offline[@]}" "$work/wheel/bin/pip" install -q --no-index "$(one_of '*.whl')"; }
# Whatever is not on every Linux comes from the wheel, with its licence.
wheel_is_whole() {
    local native
    native="$(echo "$work"/wheel/lib/python3*/site-packages/mav_platform/native)"
    ldd "$native/lib/libmav_platform.so.1" >"$work/needed" && ! grep 'not found' "$work/needed" &&
        grep -q "libzip.so.* => $native/lib/" "$work/needed" &&
        find "$work/wheel/lib" -path '*dist-info*' -name 'libzip4' | grep . &&
        [[ -d "$native/share/mav/platforms" ]]
}
wheel_leaves_nothing() {
    "$work/wheel/bin/pip" uninstall -q -y mav-platform && ! find "$work/wheel" -name 'mav_platform*' | grep .
}
deb_unpacks() {
    dpkg-deb -x "$(one_of 'libmav-platform1_*.deb')" "$work/root" &&
        dpkg-deb -x "$(one_of 'python3-mav-platform_*.deb')" "$work/root" &&
        echo "$prefix/lib/python3/dist-packages" >"$(echo "$work"/deb/lib/python3*/site-packages)/root.pth" &&
        "$work/deb/bin/python" -c 'import importlib.metadata as one; print(one.version("mav-platform"))'
}

check "an environment for the wheel" environment wheel
check "the wheel's name" wheel_name
check "the wheel installs" wheel_installs
check "the wheel is whole" wheel_is_whole
check "the suite over the wheel" suite wheel "$work/wheel"
check "the wheel leaves nothing" wheel_leaves_nothing
check "an environment for the package" environment deb
check "the package unpacks" deb_unpacks
check "the suite over the package" suite deb "$prefix"
summary
