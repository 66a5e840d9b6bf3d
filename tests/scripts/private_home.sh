# Sourced by the tests that run the programs: a scratch folder that is the
# programs' home (settings, history and ledger stay in it), and the
# processes started into `pids`, all gone when the test ends.
scratch=$(mktemp -d)
pids=()
cleanup() {
    kill "${pids[@]}" 2>/dev/null
    wait 2>/dev/null
    rm -rf "$scratch"
}
trap cleanup EXIT
export HOME=$scratch XDG_CONFIG_HOME=$scratch/config XDG_DATA_HOME=$scratch/data \
    XDG_STATE_HOME=$scratch/state
