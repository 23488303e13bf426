#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Packs a build into Debian packages, installs them into an empty root, runs the command and builds
# clients there, and removes them. Usage: check.sh BUILD_DIR. The last line counts what passed and failed.
set -uo pipefail

readonly here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
readonly build="$(cd "$1" && pwd)"
readonly work="$(mktemp -d)"
readonly packages="$work/packages" root="$work/root" prefix="$work/root/usr"
readonly names=(libmav-platform1 libmav-platform-dev mav python3-mav-platform libmav-platform-java)
readonly title=package
trap 'rm -rf "$work"' EXIT
# shellcheck source=tests/install/common.sh
source "$here/../install/common.sh"

pack() {
    (cd "$work" && cpack --config "$build/CPackConfig.cmake" -B "$packages") &&
        [[ "$(find "$packages" -maxdepth 1 -name '*.deb' | wc -l)" == "${#names[@]}" ]]
}

package_of() { find "$packages" -maxdepth 1 -name "$1_*.deb"; }
field() { dpkg-deb --field "$(package_of "$1")" "$2"; }
# Succeeds when the package holds a path that ends in the text.
holds() {
    dpkg-deb --contents "$(package_of "$1")" | awk -v end="$2" \
        'substr($6, length($6) - length(end) + 1) == end { found = 1 } END { exit !found }'
}
files_of() { dpkg-deb --contents "$(package_of "$1")" | awk '$1 !~ /^d/ { print $6 }'; }

# What each package asks for, by which they stay together and the library's users find it.
dependencies_are_told() {
    local version name
    version="$(field mav Version)"
    for name in mav libmav-platform-dev python3-mav-platform libmav-platform-java; do
        [[ "$(field "$name" Depends)" == *"libmav-platform1 (= $version)"* ]] || return 1
    done
    [[ "$(field libmav-platform1 Depends)" == *libexpat1*libzip4* ]] &&
        holds libmav-platform1 /THIRD_PARTY_NOTICES &&
        [[ "$(field libmav-platform-dev Depends)" == *libboost-dev* ]] &&
        dpkg-deb --control "$(package_of libmav-platform1)" "$work/control" &&
        grep -qx 'libmav_platform 1 libmav-platform1 (>= .*)' "$work/control/shlibs"
}

# No file is in two packages, and each is in the one that its users install.
files_in_their_packages() {
    local name
    for name in "${names[@]}"; do files_of "$name"; done | sort | uniq -d >"$work/twice"
    [[ ! -s "$work/twice" ]] && holds mav /usr/bin/mav &&
        holds libmav-platform1 /usr/lib/libmav_platform.so.1 &&
        holds libmav-platform-dev /usr/lib/libmav_platform.so &&
        holds libmav-platform-dev /usr/share/mav_platform/schema/hpfm.xsd || return 1
    holds libmav-platform-java /usr/lib/jni/libmav_platform_java.so &&
        holds libmav-platform-java /usr/share/java/mav-platform.jar &&
        holds libmav-platform-java /usr/share/doc/libmav-platform-java/api/index.html || return 1
    holds python3-mav-platform /usr/lib/python3/dist-packages/mav_platform/views.py || return 1
    holds mav /usr/share/doc/mav/docs/formats/metadata.md && holds mav /usr/share/man/man1/mav.1 && holds mav /usr/share/man/man1/mav-show.1 &&
        holds mav /usr/share/bash-completion/completions/mav &&
        holds mav /usr/share/zsh/vendor-completions/_mav &&
        holds mav /usr/share/fish/vendor_completions.d/mav.fish || return 1
    for name in "${names[@]}"; do holds "$name" "/usr/share/doc/$name/copyright" || return 1; done
}

# Files belong to root, and nobody else may change them.
safe_permissions() {
    local name
    for name in "${names[@]}"; do
        dpkg-deb --contents "$(package_of "$name")" | grep -v '^l' |
            awk '$2 != "root/root" || substr($1, 6, 1) == "w" || substr($1, 9, 1) == "w"'
    done >"$work/unsafe"
    cat "$work/unsafe"
    [[ ! -s "$work/unsafe" ]]
}

# The root holds nothing else, so what the packages stand on stays that of this machine.
in_root() {
    local as_root=()
    ((EUID == 0)) || as_root=(fakeroot)
    "${as_root[@]}" dpkg --root="$root" --force-depends --force-not-root --force-script-chrootless \
        --log="$work/dpkg.log" "$@"
}

inventory() { (cd "$root" && find . -mindepth 1 -not -path './var/lib/dpkg/*' | sort); }

install_packages() {
    mkdir -p "$root"/var/lib/dpkg/{info,updates,triggers} "$root/etc" && touch "$root/var/lib/dpkg/status"
    inventory >"$work/before"
    in_root --install "$packages"/*.deb && [[ -x "$prefix/bin/mav" ]]
}

# The linker's cache would list the library by its name for clients, and nothing is left unresolved.
library_is_found() {
    /sbin/ldconfig -N -n -v "$prefix/lib" | grep -q 'libmav_platform\.so\.1 ->' &&
        ldd "$prefix/bin/mav" >"$work/needed" && ! grep 'not found' "$work/needed" &&
        grep -q "$prefix/lib/libmav_platform.so.1\|bin/../lib/libmav_platform.so.1" "$work/needed"
}

# As a program finds them where the packages are installed.
java_client() {
    java -Djava.library.path="$prefix/lib/jni" -cp "$prefix/share/java/mav-platform.jar" \
        "$here/../../examples/PlatformTable.java" "$sample" >"$work/table" && grep -q . "$work/table"
}

# dpkg's own records of the installed packages are gone with them.
removed_without_trace() {
    in_root --purge "${names[@]}" && inventory | diff "$work/before" - &&
        ! grep -q '^Package' "$root/var/lib/dpkg/status" &&
        ! find "$root/var/lib/dpkg/info" -name '*mav*' | grep .
}

check "the packages" pack
check "dependencies" dependencies_are_told
check "each file in its package" files_in_their_packages
check "owners and permissions" safe_permissions
check "into an empty root" install_packages
sample="$(find "$prefix/share/mav/samples" -name '*.pka' 2>/dev/null | sort | tail -n 1)"
readonly sample
check "the library is found" library_is_found
check "the mav command" command_works
check "C client with find_package" client_by_cmake C
check "C++ client with pkg-config" client_by_pkg_config client.cpp g++
check "Java client" java_client
check "removed without a trace" removed_without_trace
summary
