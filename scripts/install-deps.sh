#!/usr/bin/env bash
# Installs the Debian packages that building, testing and running the demo
# need, and the real simulation server, and nothing when they are all present
# (apt runs only for what is missing).
#   install-deps.sh [--test]
# --test adds what only the test suite needs: the browser that opens the live
# drawing page (about 80 s to install on a fresh machine), and the search
# library and one-node Slurm cluster the tuner's tests use.
#
# The real server comes from the package in $ORVO_SIM_SERVER_DEB, else from
# ../shared/simserver/soccer-sim-server_*.deb beside the clone. Without it the
# demo plays the stand-in and the real-server tests are skipped; with CI=true
# a missing server package is an error, since CI always has it.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

# What a minimal Debian 12 (debootstrap minbase) lacks besides the tool chain:
# "file" and dpkg-dev (dpkg-shlibdeps) for CPack's DEB generator, which
# without the latter leaves the shared libraries out of the package's
# dependencies, procps for the scripts' process checks.
packages=(cmake ninja-build g++ pkg-config libboost-dev libgsl-dev libgtest-dev libgmock-dev
          libbenchmark-dev libeigen3-dev nlohmann-json3-dev clang libclang-rt-14-dev valgrind
          file dpkg-dev graphviz procps ca-certificates python3)
if [ "${1:-}" = --test ]; then
  packages+=(chromium python3-deap slurm-wlm munge)
fi
installed() {
  dpkg-query -W -f='${Status}' "$1" 2> /dev/null | grep -q "install ok installed"
}
missing=()
for package in "${packages[@]}"; do
  installed "$package" || missing+=("$package")
done

server_package=soccer-sim-server
if ! installed "$server_package"; then
  deb=${ORVO_SIM_SERVER_DEB:-}
  if [ -z "$deb" ]; then
    for candidate in "$root"/../shared/simserver/soccer-sim-server_*.deb; do
      [ -e "$candidate" ] && deb=$candidate
    done
  fi
  if [ -n "$deb" ] && [ -f "$deb" ]; then
    missing+=("$(realpath "$deb")")
  elif [ "${CI:-}" = true ]; then
    echo "install-deps.sh: the real simulation server package is missing" \
      "(${ORVO_SIM_SERVER_DEB:-no ORVO_SIM_SERVER_DEB, nothing in ../shared/simserver/});" \
      "CI needs it" >&2
    exit 1
  else
    echo "install-deps.sh: no real simulation server package (set ORVO_SIM_SERVER_DEB or put" \
      "../shared/simserver/ beside the clone): the demo plays the stand-in and the" \
      "real-server tests are skipped"
  fi
fi

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
