# shellcheck shell=bash
# Configuring, building and testing a preset of CMakePresets.json in build/<preset>.

if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache
    export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1
fi

# configure_preset PRESET: does nothing when the folder is configured; Ninja configures again when a CMake file changed.
configure_preset()
{
    if [ ! -f "build/$1/build.ninja" ] || [ CMakePresets.json -nt "build/$1/build.ninja" ]; then
        quiet_step "configure $1" cmake --preset "$1"
    fi
}

# build_preset PRESET [TARGET...]
build_preset()
{
    local preset=$1
    shift
    configure_preset "$preset"
    step "build $preset" cmake --build "build/$preset" --parallel "$JOBS" ${1:+--target "$@"}
}

# test_preset PRESET [CTEST-ARGUMENT...]
test_preset()
{
    local preset=$1
    shift
    step "test $preset" ctest --test-dir "build/$preset" --parallel "$JOBS" --output-on-failure --no-tests=error "$@"
}

sanitizer_options()
{
    export ASAN_OPTIONS=detect_leaks=1:allocator_may_return_null=1:detect_stack_use_after_return=1:strict_string_checks=1:check_initialization_order=1
    export LSAN_OPTIONS=report_objects=1
    export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
    export TSAN_OPTIONS=second_deadlock_stack=1:halt_on_error=1:allocator_may_return_null=1:suppressions=$PWD/tools/dev/tsan.supp
}
