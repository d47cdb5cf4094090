#!/usr/bin/env bash
# Usage: packaging_test.sh STEP SOURCE_DIR BUILD_DIR
# The installed packages as their users meet them. STEP "install" installs BUILD_DIR into
# BUILD_DIR/test-prefix; the other steps use that prefix:
#   cmake      a CMake project with find_package(formulaconv) converts \frac12
#   pkgconfig  a C++ host and the C test program built with pkg-config only
#   symbols    sonames, and the exported symbols of both libraries
#   pip        pip installs python/ into a fresh virtual environment, which converts \frac12
# FC_CONSUMER_FLAGS (compiler and linker flags) is passed to the consumers' builds, so that a
# checked build links its consumers with the same sanitizer runtime.
set -euo pipefail
step=$1 src=$2 build=$3
prefix="$build/test-prefix"
work="$build/test-packaging-$step"
rm -rf "$work" && mkdir -p "$work"
flags="${FC_CONSUMER_FLAGS:-}"

expect_omml() { grep -q '<m:oMathPara' "$1" && grep -q '<m:f>' "$1"; }

case $step in
install)
    rm -rf "$prefix"
    cmake --install "$build" --prefix "$prefix" >/dev/null
    ;;
cmake)
    cmake -S "$src/tests/packaging/cmake_consumer" -B "$work" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
        -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_EXE_LINKER_FLAGS="$flags" >"$work/configure.log"
    cmake --build "$work" >"$work/build.log"
    # The imported target carries the include path: the consumer names no folder of the prefix.
    "$work/consumer" '\frac12' >"$work/out.txt"
    expect_omml "$work/out.txt"
    ;;
pkgconfig)
    export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"
    # shellcheck disable=SC2046,SC2086
    c++ -std=c++17 $flags "$src/tests/packaging/host_main.cpp" -o "$work/host" \
        $(pkg-config --cflags --libs formulaconv) -Wl,-rpath,"$prefix/lib"
    "$work/host" '\frac12' >"$work/out.txt"
    expect_omml "$work/out.txt"
    # shellcheck disable=SC2046,SC2086
    cc -std=c99 -Wall -Wextra -Werror $flags "$src/tests/capi/capi_test.c" -o "$work/capi_test" \
        $(pkg-config --cflags --libs formulaconv_c) -lpthread -Wl,-rpath,"$prefix/lib"
    env -u QT_QPA_PLATFORM "$work/capi_test"
    ;;
symbols)
    for lib in formulaconverter formulaconv_c; do
        soname=$(objdump -p "$prefix/lib/lib$lib.so" | awk '$1 == "SONAME" {print $2}')
        [ "$soname" = "lib$lib.so.1" ] || { echo "lib$lib: soname '$soname'" >&2; exit 1; }
        [ -L "$prefix/lib/lib$lib.so.1" ] || { echo "lib$lib.so.1 missing" >&2; exit 1; }
    done
    exported=$(nm -D --defined-only "$prefix/lib/libformulaconverter.so" | awk '$2 ~ /^[TDBRW]$/ {print $3}')
    [ "$exported" = GetFormulaConverterHelper ] || {
        echo "libformulaconverter exports: $exported" >&2
        exit 1
    }
    exported=$(nm -D --defined-only "$prefix/lib/libformulaconv_c.so" | awk '$2 ~ /^[TDBRW]$/ {print $3}' | sort | tr '\n' ' ')
    wanted="formulaconv_extract_math_paragraph formulaconv_free formulaconv_latex_to_omml formulaconv_latex_to_svg formulaconv_lint_json formulaconv_omml_to_latex formulaconv_omml_to_svg formulaconv_version formulaconv_wrap_in_word_document "
    [ "$exported" = "$wanted" ] || { echo "libformulaconv_c exports: $exported" >&2; exit 1; }
    # The C header must compile as C without Qt.
    echo '#include <formulaconv/formulaconv.h>' | cc -std=c89 -Wall -Werror -fsyntax-only -I"$prefix/include" -x c -
    ;;
pip)
    /usr/bin/python3 -m venv --system-site-packages "$work/venv"
    # No index: the package needs nothing beyond the build backend the system provides.
    # A copy, so that the build leaves nothing in the source tree.
    cp -r "$src/python" "$work/python"
    "$work/venv/bin/python" -m pip install --quiet --no-index --no-build-isolation "$work/python" \
        >"$work/pip.log" 2>&1 || { cat "$work/pip.log" >&2; exit 1; }
    cd "$work"
    LD_LIBRARY_PATH="$prefix/lib" "$work/venv/bin/python" -c \
        'import formulaconv; print(formulaconv.latex_to_omml(r"\frac12"))' >"$work/out.txt"
    expect_omml "$work/out.txt"
    # The copy cmake installed into the prefix finds its library without any setting.
    env -u LD_LIBRARY_PATH PYTHONPATH="$prefix/lib/python3/dist-packages" /usr/bin/python3 -c \
        'import formulaconv; print(formulaconv.latex_to_omml(r"\frac12"))' >"$work/out2.txt"
    expect_omml "$work/out2.txt"
    ;;
*)
    echo "unknown step $step" >&2
    exit 2
    ;;
esac
echo "packaging $step: ok"
