# SPDX-License-Identifier: MIT
# shellcheck shell=bash
#
# Runs scripts in stages. Each stage writes its output to a log and reports its time.
# Sourced in the root of the repository.

log_dir=build/logs
stage_times=()

# Sets processor_seconds to the processor time of all commands so far, which a busy machine does not change much.
# Not in a subshell, which has its own times.
measure_processor_time() {
    times >"$log_dir/times"
    processor_seconds=$(awk -F'[ms ]' 'NR == 2 { printf "%.0f", $1 * 60 + $2 + $4 * 60 + $5 }' "$log_dir/times")
}

# stage NAME TITLE COMMAND [ARGUMENT]...: runs the command with its output in $log_dir/NAME.log.
# If it fails, shows the end of that file, without the tests that passed, and ends the script.
stage() {
    local log=$log_dir/$1.log begin=$SECONDS processor_begin
    printf '== %s\n' "$2"
    mkdir -p "$log_dir"
    measure_processor_time
    processor_begin=$processor_seconds
    if ! "${@:3}" >"$log" 2>&1; then
        grep -vE '^ +Start +[0-9]+: |^ *[0-9]+/[0-9]+ Test .*( Passed |\*\*\*Skipped )|\(Skipped\)$' "$log" |
            tail -n 80 || true
        printf '== FAILED after %d s: %s (all output: %s)\n' $((SECONDS - begin)) "$2" "$log" >&2
        exit 1
    fi
    report_tests "$log"
    measure_processor_time
    stage_times+=("$(printf '%-18s %6d s %6d s   %s' "$1" $((SECONDS - begin)) \
        $((processor_seconds - processor_begin)) "$2")")
    printf '   done in %d s\n' $((SECONDS - begin))
}

# The closing line of ctest, if the stage ran it. It counts skipped tests as passed.
report_tests() {
    local skipped
    grep 'tests passed' "$1" || return 0
    skipped=$(grep -c '\*\*\*Skipped' "$1" || true)
    [[ $skipped == 0 ]] || printf '   %d were skipped, see %s\n' "$skipped" "$1"
}

# The time of each stage so far, a line each.
report_times() {
    printf '\n%-18s %8s %8s\n' stage time 'CPU time'
    printf '%s\n' "${stage_times[@]}"
}

# install_packages GROUP...: not a stage with a log, because it may ask for a password.
install_packages() {
    local begin=$SECONDS
    printf '== Packages: %s\n' "$*"
    scripts/install_dependencies "$@"
    printf '   done in %d s\n' $((SECONDS - begin))
}

# configure PRESET DIRECTORY [CMAKE_OPTION]...
configure() {
    # Without ccache the option is empty, so that CMake forgets a ccache that was removed.
    cmake --preset "$1" -B "$2" -DCMAKE_CXX_COMPILER_LAUNCHER="$(command -v ccache)" "${@:3}"
}

# configure_and_build PRESET DIRECTORY [CMAKE_OPTION]...
configure_and_build() {
    configure "$@" && cmake --build "$2"
}
