#!/usr/bin/env bash
# Installs the Debian packages that building, testing and running the demo
# need, and nothing when they are all present.
#   install-deps.sh [--test]
# --test adds what only the test suite needs: the browser that opens the live
# drawing page (about 80 s to install on a fresh machine).
set -euo pipefail

packages=(cmake ninja-build g++ pkg-config libboost-dev libgsl-dev libgtest-dev libgmock-dev
          libbenchmark-dev clang libclang-rt-14-dev valgrind)
if [ "${1:-}" = --test ]; then
  packages+=(python3 chromium)
fi
missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$package")
  fi
done
if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi
sudo=""
if [ "$(id -u)" -ne 0 ]; then
  sudo="sudo"
fi
echo "installing: ${missing[*]}"
$sudo apt-get update
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y "${missing[@]}"
