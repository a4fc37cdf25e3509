# SPDX-License-Identifier: MIT
# Shared by the scripts of this folder; to be sourced. Leaves the working folder at the root of the repository.
# shellcheck shell=bash

invoked_from=$PWD
cd "$(dirname "$(realpath "${BASH_SOURCE[0]}")")/.." || exit

script=$(basename "$0")

die() {
    echo "$script: $*" >&2
    exit 1
}

# given_path <path>: a path that the user typed, from where the script was started.
given_path() {
    (cd "$invoked_from" && realpath -m -- "$1")
}

step() {
    printf '\n== %s\n' "$*"
}

# require_version <what> <program> <found> <least>
require_version() {
    # A package may count as installed although its program is not on the path.
    command -v "$2" >/dev/null || die "$2 is not on the path"
    [[ -n $3 ]] || die "the version of $2 is unknown"
    [[ $(printf '%s\n%s\n' "$4" "$3" | sort -V | head -n 1) == "$4" ]] ||
        die "$1 $3 is too old; $4 or later is needed"
}

check_tools() {
    require_version CMake cmake "$(cmake --version 2>/dev/null | awk 'NR == 1 { print $3 }')" 3.21
    command -v ninja >/dev/null || die "ninja is not on the path"
    if [[ -z ${CXX:-} ]]; then
        require_version g++ g++ "$(g++ -dumpfullversion -dumpversion 2>/dev/null)" 12
    fi
}

# configure <preset> [<option>...]: quiet unless it fails.
configure() {
    local preset=$1 output
    shift
    output=$(cmake --preset "$preset" "$@" 2>&1) || {
        echo "$output" >&2
        die "configuring $preset failed"
    }
}

# build <preset> [<target>...]
build() {
    local preset=$1
    shift
    cmake --build --preset "$preset" --parallel "$(nproc)" ${1:+--target "$@"} || die "building $preset failed"
}

# plain_names: demangled names, without what systems and C++ libraries spell differently.
plain_names() {
    sed -E 's/std::__(1|cxx11)::/std::/g; s/\[abi:cxx11\]//g; s/\blong long\b/long/g' | sort -u
}
