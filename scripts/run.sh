#!/usr/bin/env bash
# The main job: installs what is missing, builds, and takes the `zq` tool
# on a short tour of the library in a fresh prefix of its own
# (build/default/tour-prefix), so nothing of the user's own settings is touched.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

bash scripts/setup.sh
cmake --preset default >/dev/null
cmake --build --preset default >/dev/null
prefix="$PWD/build/default/tour-prefix"
rm -rf "$prefix"
exec build/default/bin/zq --prefix "$prefix" tour
