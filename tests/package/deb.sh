#!/usr/bin/env bash
# The Debian package as a team gets it: cpack makes the .deb and the .tar.gz,
# dpkg -x unpacks the .deb into a scratch root (nothing is installed on the
# system), and the demo plug-ins, built on their own against that root, play a
# short game with the package's host program and stand-in server.
#   deb.sh <orvo build dir> <demo source dir> <work dir>
set -euo pipefail
build=$1
demo=$2
work=$3
here=$(cd "$(dirname "$0")" && pwd)
rm -rf "$work"
mkdir -p "$work"
cd "$work"

cpack --config "$build/CPackConfig.cmake" -G "DEB;TGZ" > cpack.txt 2>&1 || { cat cpack.txt >&2; exit 1; }
deb=$(ls orvo_*.deb)
tarball=$(ls orvo-*.tar.gz)
tar -tzf "$tarball" > tarball.txt
depends=$(dpkg-deb -f "$deb" Depends)
for needed in libboost-dev libgsl-dev libstdc++6 libgsl27; do
  if ! grep -q "$needed" <<< "$depends"; then
    echo "deb.sh: $deb does not depend on $needed: $depends" >&2
    exit 1
  fi
done

dpkg -x "$deb" root
for file in bin/orvo_host bin/orvo_standin_server bin/orvo_viewer include/orvo/orvo.h \
  lib/liborvo.so lib/cmake/orvo/orvoConfig.cmake lib/pkgconfig/orvo.pc; do
  test -e "root/usr/$file" || { echo "deb.sh: $deb lacks /usr/$file" >&2; exit 1; }
  grep -q "/$file$" tarball.txt || { echo "deb.sh: $tarball lacks $file" >&2; exit 1; }
done
root/usr/bin/orvo_viewer --help > /dev/null
PKG_CONFIG_PATH=$work/root/usr/lib/pkgconfig pkg-config --cflags orvo |
  grep -q -- "-I$work/root/usr/lib/pkgconfig/../../include"

"$here/../examples/out_of_tree.sh" "$work/root/usr" "$demo" "$work/game"
echo "$deb: $(du -k "$deb" | cut -f1) KiB, depends on $depends"
