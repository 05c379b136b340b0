# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# Sourced by run.sh, test.sh and .ci/run: installs what is missing and builds. Expects the project's folder as
# working directory. Quiet unless something fails.

# What a build needs on Debian 12 and Ubuntu 24.04, and what the tests need besides.
debian_packages=(cmake ninja-build g++ pkg-config qt6-base-dev qt6-base-dev-tools libqt6sql6-sqlite
    libcli11-dev libutf8proc-dev libplist-dev libhivex-dev libsqlite3-dev libssl-dev libarchive-dev libtsk-dev libxlsxwriter-dev)
debian_test_packages=(locales strace parallel python3-jsonschema
    # what makes the containers of the tests
    e2fsprogs ntfs-3g mtools xorriso fdisk ewf-tools qemu-utils zip p7zip-full zstd xz-utils bzip2 cpio dosfstools exfatprogs
    apfsprogs libfsapfs-utils sleuthkit)
# What .ci/run needs besides: the preset gnustep for the files of Apple platforms on Linux, and the tools that check. llvm
# names the functions by which leaks are told apart.
debian_ci_packages=(gobjc++ libgnustep-base-dev clang libclang-rt-14-dev lld llvm clang-format clang-tidy python3)
# The same in Homebrew; macOS has no strace, and the tests that use it, parallel, jsonschema or a browser are skipped there.
brew_packages=(cmake ninja pkg-config qt cli11 utf8proc libplist sqlite openssl@3 libarchive sleuthkit libxlsxwriter)

# Runs a command and shows its output only if it fails.
quietly() {
    local log
    log=$(mktemp)
    if ! "$@" </dev/null >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        echo "error: this failed: $*" >&2
        return 1
    fi
    rm -f "$log"
}

# Asks for a password only where somebody can answer.
may_use_sudo() {
    if [ -t 0 ]; then
        sudo -v
    else
        sudo -n true 2>/dev/null
    fi
}

install_debian_packages() {
    local missing=() package as_root=()
    for package in "$@"; do
        if [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
            missing+=("$package")
        fi
    done
    if [ ${#missing[@]} -eq 0 ]; then
        return
    fi

    if [ "$(id -u)" -ne 0 ]; then
        as_root=(sudo)
        if ! may_use_sudo; then
            echo "error: these packages are missing, and only root can install them: apt-get install ${missing[*]}" >&2
            return 1
        fi
    fi
    echo "Installing ${missing[*]} ..." >&2
    quietly "${as_root[@]}" apt-get update || true # an older index may do
    quietly "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y --no-install-recommends "${missing[@]}"
}

install_brew_packages() {
    local missing=() package
    if ! command -v brew >/dev/null; then
        echo "error: Homebrew is needed to install ${brew_packages[*]}: https://brew.sh" >&2
        return 1
    fi
    for package in "${brew_packages[@]}"; do
        brew list --versions "$package" >/dev/null 2>&1 || missing+=("$package")
    done
    if [ ${#missing[@]} -gt 0 ]; then
        echo "Installing ${missing[*]} ..." >&2
        quietly brew install "${missing[@]}"
    fi
}

# set_up [PACKAGE...]: what a build needs, and these packages where they exist.
set_up() {
    if [ "$(uname)" = Darwin ]; then
        install_brew_packages
    elif command -v apt-get >/dev/null; then
        install_debian_packages "${debian_packages[@]}" "$@"
    else
        echo "error: this script knows apt-get and Homebrew. Elsewhere install the counterparts of:" \
            "${debian_packages[*]} $*" >&2
        return 1
    fi
}

# is_built PRESET: whether the program was built by run.sh and nothing that it is made of has changed since.
is_built() {
    [ -x "build/$1/bluetooth-logs" ] && [ -f "build/$1/built" ] &&
        [ -z "$(find CMakeLists.txt CMakePresets.json cmake common extractors plugin host -newer "build/$1/built" \
            -print -quit)" ]
}

# build PRESET [OPTION...]: configures, and builds with the options.
build() {
    local preset=$1
    shift
    quietly cmake --preset "$preset" && quietly cmake --build --preset "$preset" "$@"
}

# What tests write has to outlast nothing, but they wait for the disk to have it: from here on temporary files stand in
# memory, where the system has a folder of it that is large enough and runs programs. A TMPDIR that is set stays.
use_memory_for_tests() {
    local least_kib=$((4 << 20)) available folder
    available=$(df --output=avail /dev/shm 2>/dev/null | tail -n 1)
    if [ -n "${TMPDIR:-}" ] || [ "${available:-0}" -lt "$least_kib" ] || ! folder=$(mktemp -d /dev/shm/tests.XXXXXX); then
        return 0
    fi
    export TMPDIR=$folder
    trap 'rm -rf "$TMPDIR"' EXIT
    chmod 1777 "$folder" # as /tmp: some tests are run by another user
    printf '#!/bin/sh\n' >"$folder/program"
    chmod +x "$folder/program"
    if "$folder/program" 2>/dev/null; then
        rm "$folder/program"
    else
        unset TMPDIR
        trap - EXIT
        rm -rf "$folder"
    fi
}
