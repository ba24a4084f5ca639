#!/usr/bin/env bash
# embed.sh BUILD_DIR COMPILER: installs BUILD_DIR into a folder of its own, builds the example program
# against that with CMake and with pkg-config's flags, and a program that uses all that the installed
# headers offer, and runs them and the installed agent there.
set -euo pipefail
source_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
build_dir=$1
compiler=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

expected="told of et1
Value('Hardware::Kest::Slice::KestSliceDmaStatus::SwitchPort', ** {'ifName': 'et1', 'created': True})
native VLAN 10"

# Fails unless COMMAND... prints what the example is to print.
prints_expected() {
  local printed
  printed=$("$@")
  [[ $printed == "$expected" ]] && return
  printf '%s printed:\n%s\ninstead of:\n%s\n' "$*" "$printed" "$expected" >&2
  return 1
}

cmake --install "$build_dir" --prefix "$work/prefix" >/dev/null

cmake -S "$source_dir/examples/embed" -B "$work/embed" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
  -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/embed" >/dev/null
prints_expected "$work/embed/embed"

export PKG_CONFIG_PATH=$work/prefix/lib/pkgconfig
read -ra flags < <(pkg-config --cflags --libs kest-slice-dma)
flags+=("-Wl,-rpath,$work/prefix/lib" -lkest-dma-sim)
"$compiler" "$source_dir/examples/embed/main.cpp" -o "$work/by-pkg-config" "${flags[@]}"
prints_expected "$work/by-pkg-config"

"$source_dir/test/install/client.py" "$work/prefix/include/kest-slice-dma" >"$work/client.cpp"
"$compiler" "$work/client.cpp" -o "$work/client" "${flags[@]}"
"$work/client"

"$work/prefix/bin/kest-slice-agent" --once "$source_dir/examples/small.slice" >/dev/null
