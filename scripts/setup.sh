#!/usr/bin/env bash
# Installs the system packages that building, testing and running the
# project need. Packages already installed are left alone, and apt-get is
# not touched at all when nothing is missing, so running it again is cheap.
#
#   scripts/setup.sh          what the build, the tests and the tool need
#   scripts/setup.sh --fuzz   also clang's libFuzzer runtime, for fuzz/
set -euo pipefail

packages=(
    cmake ninja-build g++ pkg-config
    libgtest-dev libgmock-dev libbenchmark-dev
    libsqlite3-dev libicu-dev
    llvm                      # llvm-rc compiles the resource scripts
    libcli11-dev nlohmann-json3-dev
    python3                   # the zq end-to-end tests read its JSON output with it
)
if [ "${1:-}" = "--fuzz" ]; then
    packages+=(clang libclang-rt-14-dev)
fi

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$p")
    fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "setup: installing ${missing[*]}" >&2
sudo=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "setup: need root or sudo to install ${missing[*]}" >&2; exit 1; }
    sudo=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
