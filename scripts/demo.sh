# shellcheck shell=bash
# The main job without a window: index, search, show. Sourced by ./run, after scripts/setup.sh.

demo_home=build/demo

# Encoders for the demo's library: the starter pair; where it couldn't be built, the small ones of the tests. Vectors of
# one say nothing to the other, so the demo's library is begun anew when they change.
install_demo_encoders() {
    local data=$demo_home/data models=$demo_home/data/Qorvane/models kind=small
    if is_starter_built; then
        kind=$(starter_recipe)
    fi
    if [[ $(cat "$data/encoders" 2>/dev/null) != "$kind" ]]; then
        rm -rf "$data"
        mkdir -p "$models"
        if [[ $kind == small ]]; then
            logged /usr/bin/python3 tests/encoders/make_test_encoders.py "$demo_home/encoders"
            cp "$demo_home"/encoders/{chinese,openai}/* "$models/"
        else
            link_starter "$models"
        fi
        printf '%s\n' "$kind" >"$data/encoders"
    fi
    if [[ $kind == small ]]; then
        say "The demo uses the tests' small encoders. They see colours and brightness and know colour words only."
        demo_queries=("blue sky" "grass" "red" "dark")
    else
        say "The demo uses the starter encoders. They know things and animals well, actions hardly."
        demo_queries=("mountains" "an insect" "a flower" "a bridge")
    fi
}

# run_demo HEADLESS-DRIVER [FOLDER...]
run_demo() {
    local headless=$1 query demo_queries=()
    shift
    if [[ $# -eq 0 ]]; then
        [[ -f $demo_home/photographs/complete ]] || say "Fetching photographs to try it on (62 MB, once)"
        scripts/fetch-demo-photographs.sh "$demo_home/photographs" || fail "there are no photographs to show"
        set -- "$PWD/$demo_home/photographs"
    fi
    # A library of its own: the user's stays as it is.
    export XDG_DATA_HOME=$PWD/$demo_home/data XDG_CACHE_HOME=$PWD/$demo_home/cache XDG_CONFIG_HOME=$PWD/$demo_home/config
    export XDG_RUNTIME_DIR=$PWD/$demo_home/runtime
    mkdir -p "$XDG_CACHE_HOME" "$XDG_CONFIG_HOME"
    # Qt refuses a runtime folder that others may read.
    mkdir -p "$XDG_RUNTIME_DIR"
    chmod 700 "$XDG_RUNTIME_DIR"
    install_demo_encoders

    local log=$demo_home/qorvane.log sheet=$demo_home/contact-sheet.png matches=$demo_home/matches.png
    rm -f "$log"
    say "Indexing $*"
    "$headless" index --log "$log" "$@" </dev/null || fail "indexing failed (see $log)"
    say "Searching"
    for query in "${demo_queries[@]}"; do
        "$headless" search --limit 5 --log "$log" "$query" </dev/null || fail "searching failed (see $log)"
    done
    say "Drawing contact sheets"
    "$headless" sheet --all --log "$log" "$sheet" </dev/null || fail "drawing failed (see $log)"
    "$headless" sheet --limit 12 --log "$log" "${demo_queries[0]}" "$matches" </dev/null || fail "drawing failed (see $log)"
    say "Done. The library of this demo lies in $demo_home, what the program said in $log."
    say "There is no display here. To see the window, start ./run in a desktop session (or over ssh -X)."
}
