# shellcheck shell=bash
# Steps of ./dev: each has a name, a log file, and says what failed.

LOGS=$PWD/build/logs
# shellcheck disable=SC2034  # read by builds and checks
JOBS=${RENDERENGINE_JOBS:-$(nproc)}

# step_failed NAME STATUS LOG COMMAND...
step_failed()
{
    local name=$1 status=$2 log=$3
    shift 3
    {
        echo
        echo "dev: step '$name' failed (exit status $status)"
        echo "     command: $*"
        echo "     log:     ${log#"$PWD"/}"
    } >&2
    return "$status"
}

log_of()
{
    mkdir -p "$LOGS"
    echo "$LOGS/${1//[^a-zA-Z0-9]/-}.log"
}

# step NAME COMMAND...: shows the command's output while it runs.
step()
{
    local name=$1 log status=0
    shift
    log=$(log_of "$name")
    echo "== $name"
    "$@" > >(tee "$log") 2>&1 || status=$?
    # tee runs on its own; the closing lines must stand before what is printed next.
    wait $! || true
    [ "$status" -eq 0 ] || step_failed "$name" "$status" "$log" "$@"
}

# quiet_step NAME COMMAND...: shows the last lines of the output only when the command fails.
quiet_step()
{
    local name=$1 log status=0
    shift
    log=$(log_of "$name")
    echo "== $name"
    "$@" >"$log" 2>&1 || status=$?
    if [ "$status" -ne 0 ]; then
        tail -n 40 "$log" >&2
        step_failed "$name" "$status" "$log" "$@"
    fi
}
