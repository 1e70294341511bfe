#!/usr/bin/env bash
# Installs, only where missing, the Debian packages the build, the tests and
# the cross-checks need. Safe to run again.
set -euo pipefail

packages=(
    build-essential cmake ninja-build ccache pkg-config git
    qtbase5-dev qtbase5-dev-tools libqt5xml5 libqt5network5 libqt5concurrent5
    libboost-dev libgeographiclib-dev libquazip1-qt5-dev zlib1g-dev
    libbenchmark-dev clang clang-format libclang-rt-14-dev
    geographiclib-tools sox libxml2-utils unzip python3 fonts-dejavu-core
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$p")
    fi
done

if [ ${#missing[@]} -gt 0 ]; then
    sudo=""
    [ "$(id -u)" -eq 0 ] || sudo="sudo"
    export DEBIAN_FRONTEND=noninteractive
    $sudo apt-get update -qq
    $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
