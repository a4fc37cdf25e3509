# SPDX-License-Identifier: MIT
# To be sourced after common.bash: lets programs for 64-bit Arm, and those that they start, run as they are.
# shellcheck shell=bash

binary_formats=/proc/sys/fs/binfmt_misc
arm64_format=zqfoundation-arm64-$$

runs_arm64() {
    /usr/aarch64-linux-gnu/lib/ld-linux-aarch64.so.1 --version >/dev/null 2>&1
}

as_root() {
    if [[ $(id -u) -eq 0 ]]; then
        "$@"
    else
        command -v sudo >/dev/null && sudo -n "$@"
    fi
}

# Undoes what start_emulation did.
end_emulation() {
    if [[ -e $binary_formats/$arm64_format ]]; then
        as_root tee "$binary_formats/$arm64_format" >/dev/null <<<-1
    fi
    # The last run unmounts what the first one mounted, unless somebody else uses it meanwhile: two files are
    # always there.
    if grep -q "^${arm64_format%-*} $binary_formats " /proc/mounts &&
        [[ $(find "$binary_formats" -mindepth 1 | wc -l) -eq 2 ]]; then
        as_root umount "$binary_formats"
    fi
}

# Registers the emulator with the kernel until the script ends; where that is not allowed, one must be registered
# already.
start_emulation() {
    [[ $(uname -m) != aarch64 ]] || return 0
    trap end_emulation EXIT
    {
        if [[ ! -e $binary_formats/register ]]; then
            as_root mount -t binfmt_misc "${arm64_format%-*}" "$binary_formats"
        fi
        # A 64-bit little-endian program or library (20 bytes and which of their bits count), opened for the emulator
        # (O), with its name as it was typed (P); the emulator is open from now on (F). The newest entry counts.
        as_root tee "$binary_formats/register" >/dev/null <<EOF
:$arm64_format:M::\x7fELF\x02\x01\x01$(printf '\\x00%.0s' {1..9})\x02\x00\xb7\x00:$(printf '\\xff%.0s' {1..7})\x00$(
            printf '\\xff%.0s' {1..8})\xfe\xff\xff\xff:$(command -v qemu-aarch64):OPF
EOF
    } 2>/dev/null || true
    runs_arm64 || die "programs for 64-bit Arm do not start here: the kernel needs to know their emulator" \
        "(binfmt_misc), which root may, and only outside a container. On Debian 12 the package" \
        "qemu-user-binfmt tells it, too."
}

# The cross compiler's C library comes without them; the same library's own package has them. It is only unpacked, and
# the system's lists of packages do not change.
# the system's lists of packages stay as they are.
fetch_converters() {
    local folder=$1 work=$1/fetched options
    [[ ! -e $folder/gconv/gconv-modules ]] || return 0
    step "arm64: fetch the C library's converters"
    rm -rf "$work"
    mkdir -p "$work"/{state/lists/partial,cache/archives/partial,unpacked}
    work=$(realpath "$work")
    touch "$work/status"
    options=(-q -o APT::Architecture=arm64 -o APT::Architectures=arm64 -o APT::Sandbox::User=root
        -o "Dir::State=$work/state" -o "Dir::State::status=$work/status" -o "Dir::Cache=$work/cache")
    if apt-get "${options[@]}" update >"$work/log" 2>&1 &&
        (cd "$work" && apt-get "${options[@]}" download libc6) >>"$work/log" 2>&1 &&
        dpkg-deb -x "$work"/libc6_*_arm64.deb "$work/unpacked"; then
        rm -rf "$folder/gconv"
        mv "$work"/unpacked/usr/lib/aarch64-linux-gnu/gconv "$folder/gconv"
        rm -rf "$work"
    else
        cat "$work/log" >&2
        die "the C library's package for 64-bit Arm could not be fetched"
    fi
}
