# SPDX-License-Identifier: MIT
# shellcheck shell=bash
#
# What scripts/demo and scripts/test have in common: both run in stages, and each stage says how long it took.
# Sourced in the root of the repository.

log_dir=build/logs

# stage NAME TITLE COMMAND [ARGUMENT]...: runs the command with its output in $log_dir/NAME.log.
# If it fails, the end of that file is shown, without the tests that did not fail, and the script ends.
stage() {
    local log=$log_dir/$1.log begin=$SECONDS
    printf '== %s\n' "$2"
    mkdir -p "$log_dir"
    if ! "${@:3}" >"$log" 2>&1; then
        grep -vE '^ +Start +[0-9]+: |^ *[0-9]+/[0-9]+ Test .*( Passed |\*\*\*Skipped )|\(Skipped\)$' "$log" |
            tail -n 80 || true
        printf '== FAILED after %d s: %s (all output: %s)\n' $((SECONDS - begin)) "$2" "$log" >&2
        exit 1
    fi
    report_tests "$log"
    printf '   done in %d s\n' $((SECONDS - begin))
}

# The closing line of ctest, if the stage ran it. Tests that were skipped count as passed there.
report_tests() {
    local skipped
    grep 'tests passed' "$1" || return 0
    skipped=$(grep -c '\*\*\*Skipped' "$1" || true)
    [[ $skipped == 0 ]] || printf '   %d were skipped, see %s\n' "$skipped" "$1"
}

# install_packages GROUP...: not a stage with a log, as it may ask for a password.
install_packages() {
    local begin=$SECONDS
    printf '== Packages: %s\n' "$*"
    scripts/install_dependencies "$@"
    printf '   done in %d s\n' $((SECONDS - begin))
}

# configure_and_build PRESET DIRECTORY [CMAKE_OPTION]...
configure_and_build() {
    # Without ccache the option is empty, which makes CMake forget one that is gone.
    cmake --preset "$1" -B "$2" -DCMAKE_CXX_COMPILER_LAUNCHER="$(command -v ccache)" "${@:3}" &&
        cmake --build "$2"
}
