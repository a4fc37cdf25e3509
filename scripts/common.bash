# SPDX-License-Identifier: MIT
# Shared by the scripts of this folder; to be sourced. Leaves the working folder at the root of the repository.
# shellcheck shell=bash

cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit

script=$(basename "$0")

die() {
    echo "$script: $*" >&2
    exit 1
}

step() {
    printf '\n== %s\n' "$*"
}

# require_version <what> <found> <least>
require_version() {
    [[ $(printf '%s\n%s\n' "$3" "$2" | sort -V | head -n 1) == "$3" ]] ||
        die "$1 $2 is too old; $3 or later is needed"
}

check_tools() {
    require_version CMake "$(cmake --version | awk 'NR == 1 { print $3 }')" 3.21
    if [[ -z ${CXX:-} ]]; then
        require_version g++ "$(g++ -dumpfullversion -dumpversion)" 12
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
