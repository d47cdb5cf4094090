# Shared by scripts/run, scripts/test and scripts/fuzz: install what is missing, then build.
set -euo pipefail

ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
BUILD="${FORMULACONV_BUILD_DIR:-$ROOT/build}"
PACKAGES=(cmake ninja-build g++ qtbase5-dev libqt5svg5-dev libgtest-dev fontconfig fonts-liberation fonts-stix
    fonts-dejavu-core librsvg2-bin
    fonts-texgyre-math libharfbuzz-dev libfontconfig-dev
    pkg-config python3 python3-venv python3-pip python3-setuptools python3-pytest python3-docx
    python3-dask python3-distributed
    libzip-dev libxml2-utils libreoffice-writer-nogui libreoffice-math-nogui
    texlive-latex-base texlive-latex-recommended)
# Extra configure arguments of the build in $BUILD (the checked builds set them).
CMAKE_ARGS=()

ensure_packages() {
    local missing=()
    for p in "${PACKAGES[@]}"; do
        dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "installing: ${missing[*]}" >&2
    local sudo=""
    [ "$(id -u)" -ne 0 ] && sudo="sudo"
    $sudo apt-get update -qq >&2
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
}

ensure_build() {
    if [ ! -f "$BUILD/build.ninja" ]; then
        cmake -S "$ROOT" -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "${CMAKE_ARGS[@]}" >&2
    fi
    cmake --build "$BUILD" -- "$@" >&2
}
