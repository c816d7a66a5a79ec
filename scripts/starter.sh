# shellcheck shell=bash
# The starter encoders: built once, for ./run and ./test together. Sourced from the project's top folder, after
# scripts/setup.sh.

starter=$PWD/build/starter

# What the pair is made by, the tokenizer that its label texts go through included: it is built anew when one of these
# files changes.
starter_recipe() {
    find tools/encoders/starter tools/encoders/graph Qorvane/semantic -type f -print0 | LC_ALL=C sort -z | xargs -0 sha256sum | sha256sum | cut -d ' ' -f 1
}

is_starter_built() { [[ $(cat "$starter/recipe" 2>/dev/null) == "$(starter_recipe)" ]]; }

# make_starter TOOL: builds the pair with the program qorvane-encoders, unless it is there. Without it everything goes
# on as without encoders, so a registry out of reach is no failure.
make_starter() {
    local tool=$1
    ! is_starter_built || return 0
    say "Building the starter encoders (130 MB to download the first time)"
    # Whoever comes second finds it built.
    exec 8>build/starter.lock
    if command -v flock >/dev/null; then
        flock 8
    fi
    if ! is_starter_built; then
        rm -rf "$starter.new"
        # No long waits for a network that isn't there.
        # shellcheck disable=SC2154 # setup_log is set in setup.sh
        if npm_config_fetch_retries=0 npm_config_fetch_timeout=30000 "$tool" starter --out "$starter.new" </dev/null >>"$setup_log" 2>&1; then
            starter_recipe >"$starter.new/recipe"
            rm -rf "$starter"
            mv "$starter.new" "$starter"
        else
            rm -rf "$starter.new"
            say "Going on without the starter encoders: they could not be built ($(tail -n 1 "$setup_log"))"
        fi
    fi
    exec 8>&-
}

# link_starter MODELS: shows the starter pair to the program in MODELS, the folder of the user's own encoders, for each
# family that has no file there. So whatever is imported later simply takes the links' places and wins, and what is
# there already stays; in share/qorvane, where the program looks first, the starter would hide both.
link_starter() {
    local models=$1 family file files
    is_starter_built || return 0
    mkdir -p "$models"
    for family in "ClipVisionEncoder.onnx ClipTextEncoder.onnx vocab.json" \
        "ChineseClipVisionEncoder.onnx ChineseClipTextEncoder.onnx chinese_vocab.json"; do
        read -ra files <<<"$family"
        for file in "${files[@]}"; do
            # The link of a source tree that is gone counts for nothing. A link of the user's own stays, also while the
            # disk that it leads to is away.
            [[ -e $models/$file || -L $models/$file ]] || continue
            [[ ! -e $models/$file && $(readlink "$models/$file") == */build/starter/"$file" ]] || continue 2
        done
        for file in "${files[@]}"; do
            ln -sfn "$starter/$file" "$models/$file"
        done
    done
}

# Where the user's own encoders lie; a relative XDG folder is invalid and passed over.
user_models() {
    local data=${XDG_DATA_HOME:-}
    [[ $data == /* ]] || data=$HOME/.local/share
    printf '%s\n' "$data/Qorvane/models"
}
