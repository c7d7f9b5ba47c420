# Shared by the scripts in this folder; source it, do not run it.
set -euo pipefail

project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$project"
# What is worth keeping from one checkout to the next. (The shell knows the user's folder without $HOME, too.)
home=~
cache=${XDG_CACHE_HOME:-$home/.cache}/zolwebcs

say() { printf '\n\033[1m== %s\033[0m\n' "$*"; }
die() {
    printf '\n%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

# minutes SECONDS: as minutes and seconds, mm:ss.
minutes() { printf '%02d:%02d' $(($1 / 60)) $(($1 % 60)); }

# Demo and test share one build tree, so that the test framework is needed to configure it.
build_packages=(g++ cmake ninja-build ccache pkg-config libcairo2-dev libpango1.0-dev libfontconfig-dev libboost-dev
    libhwy-dev libdcmtk-dev libcli11-dev libpng-dev nlohmann-json3-dev libopenjp2-7-dev libgtest-dev libgmock-dev
    fonts-dejavu-core fonts-noto-core fonts-noto-cjk)
test_packages=(poppler-utils dpkg-dev file)
cross_packages=(g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix googletest)
wine_packages=(wine wine64 xvfb)
tree_packages=(debootstrap debian-archive-keyring util-linux)
lint_packages=(clang clang-format clang-tidy)
fuzz_packages=(clang libclang-rt-14-dev)
bench_packages=(libbenchmark-dev libopencv-core-dev libopencv-imgproc-dev libpixman-1-dev)

# need_packages NAME...: installs the Debian packages that are missing.
need_packages() {
    command -v dpkg-query >/dev/null || die "this is not a Debian system; install by hand: $*"
    local missing=() name
    for name in "$@"; do
        [ "$(dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null || true)" = installed ] || missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    say "Installing: ${missing[*]}"
    [ "$(id -u)" -eq 0 ] || die "these packages are missing and only root can install them: ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    local log begin=$SECONDS
    log=$(mktemp)
    if ! { apt-get -q update && apt-get -q -o DPkg::Lock::Timeout=600 install -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
        tail -n 15 "$log" >&2
        die "the packages could not be installed (no network, or a package source is missing); see the lines above"
    fi
    rm -f "$log"
    printf 'Installed in %s.\n' "$(minutes $((SECONDS - begin)))"
}

# build PRESET [TARGET...]: configures when needed and builds; progress on the terminal.
build() {
    local preset=$1 begin=$SECONDS
    shift
    say "Building ($preset)"
    # Ninja configures anew for what the presets include, but not for the presets themselves.
    if [ ! "build/$preset/build.ninja" -nt CMakePresets.json ]; then
        cmake --preset "$preset" >"${TMPDIR:-/tmp}/zolwebcs-configure-$$.log" 2>&1 || {
            cat "${TMPDIR:-/tmp}/zolwebcs-configure-$$.log" >&2
            die "the build could not be configured"
        }
        rm -f "${TMPDIR:-/tmp}/zolwebcs-configure-$$.log"
    fi
    cmake --build --preset "$preset" ${1:+--target "$@"} || die "the build failed"
    printf 'Built in %s.\n' "$(minutes $((SECONDS - begin)))"
}
