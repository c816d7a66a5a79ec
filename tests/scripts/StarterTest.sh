#!/usr/bin/env bash
# Tests of scripts/starter.sh with a recipe and a tool of their own: when the starter encoders are built, and where
# they show.
set -euo pipefail
source_root=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
mkdir -p build tools/encoders/starter tools/encoders/graph Qorvane/semantic
printf 'one\n' >tools/encoders/starter/pins

# shellcheck source=scripts/setup.sh
source "$source_root/scripts/setup.sh"
# shellcheck source=scripts/starter.sh
source "$source_root/scripts/starter.sh"

failures=0
expect() {
    local what=$1
    shift
    if ! "$@"; then
        printf 'FAILED: %s\n' "$what"
        failures=$((failures + 1))
    fi
}
refuse() { ! "$@"; }

# Stands in for qorvane-encoders: "starter --out DIR".
cat >tool <<'TOOL'
#!/usr/bin/env bash
printf 'x' >>calls
mkdir -p "$3"
for file in {Chinese,}Clip{Vision,Text}Encoder.onnx {chinese_,}vocab.json; do
    printf 'starter\n' >"$3/$file"
done
TOOL
cat >offline <<'TOOL'
#!/usr/bin/env bash
mkdir -p "$3"
printf 'half\n' >"$3/ClipTextEncoder.onnx"
printf 'no registry\n' >&2
exit 1
TOOL
chmod +x tool offline

said=$(make_starter ./offline)
expect "an unreachable registry is told, with its reason" grep -q "Going on without.*no registry" <<<"$said"
expect "a failed build leaves nothing" refuse test -e build/starter
link_starter "$work/nothing"
expect "without a pair nothing is linked" refuse test -e "$work/nothing"

make_starter ./tool >/dev/null
make_starter ./tool >/dev/null
expect "the pair is built once" test "$(cat calls)" = x
printf 'two\n' >tools/encoders/starter/pins
make_starter ./tool >/dev/null
expect "a changed recipe builds it anew" test "$(cat calls)" = xx

# An imported family stays, the other one is shown.
models=$work/models
mkdir -p "$models"
printf 'imported\n' >"$models/ClipVisionEncoder.onnx"
link_starter "$models"
expect "an imported file stays" test "$(cat "$models/ClipVisionEncoder.onnx")" = imported
expect "its family isn't mixed with the starter" refuse test -e "$models/ClipTextEncoder.onnx"
expect "the other family is shown" test "$(cat "$models/ChineseClipTextEncoder.onnx")" = starter

# What a removed source tree left behind.
mkdir -p "$work/other"
ln -s "$work/gone/build/starter/vocab.json" "$work/other/vocab.json"
ln -s "$work/unmounted/chinese_vocab.json" "$work/other/chinese_vocab.json"
link_starter "$work/other"
expect "its link is replaced" test "$(cat "$work/other/vocab.json")" = starter
expect "a link to a disk that is away stays" test "$(readlink "$work/other/chinese_vocab.json")" = "$work/unmounted/chinese_vocab.json"
expect "its family isn't mixed with the starter" refuse test -e "$work/other/ChineseClipTextEncoder.onnx"

expect "models lie in the XDG folder" test "$(XDG_DATA_HOME=/x user_models)" = /x/Qorvane/models
expect "a relative XDG folder is passed over" test "$(HOME=/h XDG_DATA_HOME=x user_models)" = /h/.local/share/Qorvane/models

[[ $failures -eq 0 ]] || exit 1
printf 'all good\n'
