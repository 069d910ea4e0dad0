#!/usr/bin/env bash
# Installs the Debian packages the project builds with, only those that are missing. Sourced by
# test.sh and run.sh; safe to run again and again.

VELLORUM_PACKAGES=(build-essential cmake ninja-build libgtest-dev libgmock-dev libbenchmark-dev
                   qt6-base-dev qt6-svg-dev fonts-dejavu-core fonts-liberation2 poppler-utils)

vellorum_install_deps() {
    local missing=()
    local p
    for p in "${VELLORUM_PACKAGES[@]}"; do
        if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
            missing+=("$p")
        fi
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Installing missing packages: ${missing[*]}"
    local sudo=""
    [ "$(id -u)" -ne 0 ] && sudo="sudo"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

# Configures and builds into the given directory; extra arguments go to CMake.
vellorum_build() {
    local dir="$1"
    shift
    cmake -S . -B "$dir" -G Ninja "$@"
    cmake --build "$dir" --parallel "$(nproc)"
}
