# shellcheck shell=sh
# What the scripts share: where the repository is, the one list of packages, and how missing ones are
# installed. Plain sh, because a bare machine has nothing else. A script sets its own `set -eu` and sources this.

# What building the toolkit, its command line, tests and benchmarks takes.
build_packages="g++ cmake ninja-build pkgconf libgtest-dev libgmock-dev libtirpc-dev libopenblas-dev libcli11-dev nlohmann-json3-dev zlib1g-dev libeigen3-dev libspectra-dev"

root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
cd "$root" || exit 1
jobs=$(nproc 2>/dev/null || echo 2)
export CMAKE_BUILD_PARALLEL_LEVEL="${CMAKE_BUILD_PARALLEL_LEVEL:-$jobs}"

say() {
  printf '\n== %s\n' "$*"
}

fail() {
  printf '%s: %s\n' "$(basename -- "$0")" "$*" >&2
  exit 1
}

package_is_installed() {
  [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

# apt-get, by root or through sudo.
run_apt() {
  if [ "$(id -u)" -eq 0 ]; then
    DEBIAN_FRONTEND=noninteractive apt-get -q -y "$@"
  elif command -v sudo >/dev/null 2>&1; then
    sudo env DEBIAN_FRONTEND=noninteractive apt-get -q -y "$@"
  else
    fail "needs these Debian packages and may not install them (neither root nor sudo): $missing"
  fi
}

# Installs what is missing of the packages above and those given; touches nothing where all are there.
install_packages() {
  command -v dpkg-query >/dev/null 2>&1 ||
    fail "this is not a Debian system; it needs what these packages hold: $build_packages $*"
  missing=""
  for package in $build_packages "$@"; do
    package_is_installed "$package" || missing="$missing $package"
  done
  [ -n "$missing" ] || return 0
  say "Installing from Debian's packages:$missing"
  run_apt update
  # shellcheck disable=SC2086 # the list is split on purpose
  run_apt install --no-install-recommends $missing
}

# Configures and builds a preset; further arguments go to the build.
build_preset() {
  preset=$1
  shift
  say "Building preset $preset with $CMAKE_BUILD_PARALLEL_LEVEL jobs"
  mkdir -p build
  cmake --preset "$preset" >"build/configure-$preset.log" 2>&1 || {
    cat "build/configure-$preset.log"
    fail "preset $preset cannot be configured"
  }
  cmake --build --preset "$preset" "$@"
}
