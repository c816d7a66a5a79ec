#!/usr/bin/env bash
# Takes the pictures of docs/screenshots from the running program, light and dark, in English and in Chinese: a library
# of free photographs with tags and stars, as a folder and as a search. Needs no display.
#
#   scripts/screenshots.sh [DESTINATION]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/setup.sh
source scripts/setup.sh
# shellcheck source=scripts/starter.sh
source scripts/starter.sh

destination=$(realpath -m "${1:-docs/screenshots}")
mkdir -p build "$destination"
install_missing_packages scripts/packages-run.txt
fetch_runtime
configure release
build release qorvane-screenshots qorvane-headless qorvane-encoders
make_starter build/release/tools/encoders/qorvane-encoders
headless=build/release/tools/headless/qorvane-headless
scripts/fetch-demo-photographs.sh build/demo/photographs

# A library of its own, made anew each time: the user's stays as it is.
home=$PWD/build/screenshots
rm -rf "$home"
mkdir -p "$home/runtime" "$home/Pictures/Garden" "$home/Pictures/旅行" "$home/data/Qorvane/models"
chmod 700 "$home/runtime"
export HOME=$home XDG_DATA_HOME=$home/data XDG_CACHE_HOME=$home/cache XDG_CONFIG_HOME=$home/config
export XDG_RUNTIME_DIR=$home/runtime DBUS_SESSION_BUS_ADDRESS=disabled:
link_starter "$home/data/Qorvane/models"

# Those that show something in a small cell, under such names as cameras give. Whose they are stands in
# docs/screenshots/README.md.
number=2041
place() {
    local folder=$1 file
    shift
    for file in "$@"; do
        cp build/demo/photographs/*/"$file" "$home/Pictures/$folder/IMG_$number.jpg"
        number=$((number + 13))
    done
}
place 旅行 Bridge_by_Sander_Klootwijk.jpg sunset_by_Aitzol_Berasategi.jpg picosdeeuropa_by_Aitzol_Berasategi.jpg \
    aitzgorri_by_Aitzol_Berasategi.jpg Dune.jpg life_by_Aitzol_Berasategi.jpg Storm.jpg
place Garden LadyBird.jpg YellowFlower.jpg seeding_by_Clements_Engelhardt.jpg Dragonfly_by_Bolly.jpg FreshFlower.jpg \
    TwoWings.jpg RainDrops.jpg Blinds.jpg
place . friends_by_Aitzol_Berasategi.jpg Picture_0B_by_freespace.jpg Picture_1A_by_freespace.jpg Wine_by_Jakkub_Mede.jpg \
    free_by_Peter_Nerlich.jpg GreenMeadow.jpg Aqua.jpg

"$headless" index "$home/Pictures" </dev/null >/dev/null
tag() {
    local tag=$1
    shift
    "$headless" tag add "$tag" "$@" >/dev/null
}
pictures=$home/Pictures
tag Mountains "$pictures"/旅行/IMG_20{54,67}.jpg "$pictures"/旅行/IMG_2080.jpg
tag 日落 "$pictures"/旅行/IMG_2054.jpg
tag Garden "$pictures"/Garden/*.jpg
tag Family "$pictures"/IMG_*.jpg
"$headless" rate 5 "$pictures"/旅行/IMG_20{54,67}.jpg "$pictures"/Garden/IMG_2145.jpg >/dev/null
"$headless" rate 4 "$pictures"/旅行/IMG_2041.jpg "$pictures"/Garden/*.jpg >/dev/null
"$headless" rate 3 "$pictures"/IMG_*.jpg >/dev/null

screenshots() {
    local locale=$1 query=$2
    local language=${locale%%_*}
    LC_ALL=$locale.UTF-8 LANGUAGE=$locale QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software \
        build/release/tools/screenshots/qorvane-screenshots "$destination" "$language" "$query" >"$home/$language.log" ||
        fail "no pictures in $language (see $home/$language.log)"
}
screenshots en_US "a flower"
screenshots zh_CN "山"
say "The pictures lie in $destination."
