#!/usr/bin/env bash
# Installs what is missing, builds the library and the demo host in Release (build-release/), and
# starts the demo. Without a display the demo runs under Qt's offscreen platform, renders its window
# to out/demo.png and exits.
set -euo pipefail
cd "$(dirname "$0")"
source scripts/deps.sh

vellorum_install_deps
vellorum_build build-release -DCMAKE_BUILD_TYPE=Release -DVELLORUM_TESTS=OFF -DVELLORUM_BENCH=OFF -DVELLORUM_APPS=ON

if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    mkdir -p out
    QT_QPA_PLATFORM=offscreen ./build-release/apps/vellorum_demo --screenshot out/demo.png "$@"
else
    exec ./build-release/apps/vellorum_demo "$@"
fi
