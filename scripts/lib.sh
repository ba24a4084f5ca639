# shellcheck shell=bash
# What the scripts share: where the repository is, which packages it needs, how a step is shown.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
logs=$root/build/logs

# Folders with the product's own sources.
# shellcheck disable=SC2034  # used by the scripts that source this file
product_folders=(text platform model driver sm registry agent ctl)

build_packages=(g++ cmake ninja-build libcli11-dev nlohmann-json3-dev)

# g++-multilib is for the 32-bit preset, binutils for the checks of exported symbols.
# shellcheck disable=SC2034
test_packages=(
  "${build_packages[@]}" g++-multilib clang llvm libclang-rt-14-dev clang-format clang-tidy shellcheck
  googletest binutils pkgconf ccache patch python3 valgrind)

# What the benchmarks are built with and compared with; nothing else needs them.
# shellcheck disable=SC2034
bench_packages=(
  "${build_packages[@]}" ccache python3 valgrind libabsl-dev libboost-dev libfmt-dev libsimdjson-dev
  redis-server)

# The process ends with MESSAGE on standard error.
fail() {
  echo "$(basename "$0"): $*" >&2
  exit 1
}

# Prints those of the Debian packages PACKAGE... that are not installed.
missing_packages() {
  local package
  for package in "$@"; do
    [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) == installed ]] ||
      echo "$package"
  done
}

# Installs those of the Debian packages PACKAGE... that are missing.
install_packages() {
  command -v dpkg-query apt-get >/dev/null ||
    fail "this is made for Debian 12; without apt-get, provide yourself: $*"
  local missing
  mapfile -t missing < <(missing_packages "$@")
  ((${#missing[@]})) || return 0

  local as_root=()
  if ((EUID != 0)); then
    command -v sudo >/dev/null ||
      fail "not root and no sudo; as root, run: apt-get install ${missing[*]}"
    as_root=(sudo)
    sudo -v || fail "sudo was refused; as root, run: apt-get install ${missing[*]}"
  fi
  local apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive
    apt-get -qq -o DPkg::Lock::Timeout=300)
  echo "installing: ${missing[*]}" >&2
  quietly install "${apt[@]}" update ||
    echo "going on with the package lists that are there" >&2
  quietly install "${apt[@]}" install --yes --no-install-recommends "${missing[@]}" ||
    fail "could not install: ${missing[*]}"
}

# Runs COMMAND... in the repository's root with its output in build/logs/NAME.log, which is shown
# when it fails.
quietly() {
  local log=$logs/$1.log
  shift
  mkdir -p "$logs"
  (cd "$root" && "$@") >"$log" 2>&1 </dev/null && return
  local result=$?
  cat "$log" >&2
  return "$result"
}

# Many test programs wait for a process more than they compute.
# shellcheck disable=SC2034
tests_at_once=$((2 * $(nproc)))

# With these, ccache can work beside precompiled headers.
export CCACHE_SLOPPINESS=pch_defines,time_macros

# configure NAME OPTION...: configures a preset, with ccache where that is installed.
configure() {
  local preset=$1
  shift
  cmake --preset "$preset" -D CMAKE_CXX_COMPILER_LAUNCHER="$(command -v ccache)" "$@"
}
