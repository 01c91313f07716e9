#!/usr/bin/env bash
# Installs the Debian packages that building, testing and benchmarking need. Safe to run again.
set -euo pipefail

packages=(
    build-essential cmake ninja-build pkg-config
    qtbase5-dev qttools5-dev-tools fonts-dejavu-core fonts-wqy-microhei
    libgoogle-glog-dev libjsoncpp-dev libboost-dev libarchive-dev
    libgtest-dev libbenchmark-dev libgeos-dev
    clang clang-format ccache lld
    gerbv postgresql libqt5sql5-sqlite libqt5sql5-psql
)

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -eq 0 ]; then
    echo "install-deps: all packages present"
    exit 0
fi

sudo=""
if [ "$(id -u)" -ne 0 ]; then
    sudo="sudo"
fi
echo "install-deps: installing ${missing[*]}"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
