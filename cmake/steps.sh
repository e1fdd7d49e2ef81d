# Sourced by ./check, ./demo, .ci/run and the other scripts: the steps that they share.
# shellcheck shell=bash

project_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# require_packages NAME...: installs those that are missing when run as root, otherwise says which and exits.
require_packages() {
    if ! command -v dpkg-query > /dev/null; then
        echo "This is not a Debian system; going on as if these packages' programs and libraries were there: $*"
        return
    fi
    local missing=() name
    for name in "$@"; do
        if [ "$(dpkg-query -W -f='${db:Status-Status}' "$name" 2> /dev/null)" != installed ]; then
            missing+=("$name")
        fi
    done
    if [ ${#missing[@]} -eq 0 ]; then
        return
    fi
    if [ "$(id -u)" -ne 0 ]; then
        echo "Missing packages; install them and run this again:" >&2
        echo "    sudo apt-get install ${missing[*]}" >&2
        exit 1
    fi
    echo "Installing ${missing[*]}"
    quietly apt-get update
    quietly env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"
}

# quietly COMMAND...: shows what the command printed only if it fails.
quietly() {
    local log
    log=$(mktemp)
    if "$@" > "$log" 2>&1 < /dev/null; then
        rm -f "$log"
    else
        local status=$?
        cat "$log" >&2
        rm -f "$log"
        echo "Failed: $*" >&2
        exit "$status"
    fi
}

# use_ccache: what was compiled before, in this checkout or another one, is not compiled again by the builds that follow.
use_ccache() {
    if command -v ccache > /dev/null; then
        export CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_BASEDIR=$project_root CCACHE_NOHASHDIR=1
        export CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
    fi
}

# build_preset NAME [OPTION...]: configures and builds, in the project's root. Only a terminal is shown the progress.
build_preset() {
    local preset=$1
    shift
    use_ccache
    echo "Building $preset"
    quietly cmake --preset "$preset"
    set -- cmake --build --preset "$preset" --parallel "$(nproc)" "$@"
    if [ -t 1 ]; then
        "$@"
    else
        quietly "$@" -- --quiet
    fi
}

# test_preset NAME: builds the preset and runs its tests. Those that pass are counted (tests_passed), not listed: each case of a
# test program, and each program that is one test.
test_preset() {
    local preset=$1 log status=0
    build_preset "$preset"
    echo "Testing $preset"
    log=build/$preset/ctest.log
    ctest --preset "$preset" --parallel "$(nproc)" --verbose > "$log" 2>&1 || status=$?
    if [ "$status" -ne 0 ]; then
        grep -vE '\[( RUN|       OK) |^ +Start +[0-9]+:| Passed +[0-9.]+ sec$' "$log" >&2
        echo "The tests of $preset failed; $log has everything they printed" >&2
        return "$status"
    fi
    tests_passed=$(awk '/^[0-9]+: \[  PASSED  \]/ { cases += $5; ++programs }
        /^ *[0-9]+\/[0-9]+ Test .* Passed / { ++tests }
        END { print cases + tests - programs }' "$log")
    echo "$tests_passed tests passed"
}
