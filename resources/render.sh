#!/bin/sh
# Renders the SVG sources in svg/ into pictures/.
# With --check it changes nothing, names each picture that is not up to date, and fails if there is one.
# Needs rsvg-convert (librsvg2-bin), icotool (icoutils) and, for --check, compare (imagemagick).
set -eu

cd "$(dirname "$0")"
icons='hwinfo thermometer background energy heater kblackbox ksame arts input_device
       package_settings tablet Full exit chip Globe'
absent='background heater tablet Full Globe' # facilities that a unit may lack
marks='buttonDown buttonUp ok'
signs='Full Min'
sign_sizes='48 32 16 64' # a QPixmap takes the first picture of an ICO file, so the label's size leads

usage()
{
    echo "usage: $0 [--check]" >&2
    exit 2
}

# draw SOURCE WIDTH FILE [OPTION...]: one PNG; the height follows from the source.
draw()
{
    source=$1 width=$2 file=$3
    shift 3
    rsvg-convert --width "$width" --keep-aspect-ratio "$@" --output "$file" "svg/$source.svg"
}

# draw_pair SOURCE WIDTH NAME [OPTION...]: the picture and its twin for doubled screens.
draw_pair()
{
    source=$1 width=$2 name=$3
    shift 3
    draw "$source" "$width" "$name.png" "$@"
    draw "$source" $((width * 2)) "$name@2x.png" "$@"
}

# draw_sign NAME FOLDER: an ICO file that holds all sizes.
draw_sign()
{
    name=$1 folder=$2
    set --
    for size in $sign_sizes; do
        draw "$name.ico" "$size" "$scratch/$name-$size.png"
        set -- "$@" "$scratch/$name-$size.png"
    done
    icotool --create --output "$folder/$name.ico" "$@"
}

# draw_program: what Windows shows for the program's file, in its usual sizes.
draw_program()
{
    folder=$1
    set --
    for size in 16 24 32 48 64; do
        draw vorn "$size" "$scratch/vorn-$size.png"
        set -- "$@" "$scratch/vorn-$size.png"
    done
    draw vorn 256 "$scratch/vorn-256.png"
    icotool --create --output "$folder/vorn.ico" "$@" --raw "$scratch/vorn-256.png"
}

render()
{
    folder=$1
    for icon in $icons; do draw_pair "$icon" 60 "$folder/$icon"; done
    for icon in $absent; do draw_pair "$icon" 60 "$folder/${icon}Grey" --stylesheet svg/grey.css; done
    for mark in $marks; do draw_pair "$mark" 25 "$folder/$mark"; done
    draw_pair logo 286 "$folder/logo"
    draw vorn 256 "$folder/vorn.png"
    for sign in $signs; do draw_sign "$sign" "$folder"; done
    draw_program "$folder"
}

# same_pixels A B [FRAME]: equal but for the rounding of another renderer version.
same_pixels()
{
    [ "$(identify -format '%wx%h ' "$1")" = "$(identify -format '%wx%h ' "$2")" ] || return 1
    for frame in $(identify -format '%p ' "$1"); do
        compare -metric AE -fuzz 1% "$1[$frame]" "$2[$frame]" null: 2>/dev/null || return 1
    done
}

check()
{
    fresh=$scratch/pictures
    stale=0
    mkdir "$fresh"
    render "$fresh"
    for file in "$fresh"/* pictures/*; do
        name=${file##*/}
        if [ ! -f "$fresh/$name" ]; then
            echo "pictures/$name has no source"
        elif [ ! -f "pictures/$name" ]; then
            echo "pictures/$name is missing"
        elif [ "$file" = "pictures/$name" ] || cmp -s "$file" "pictures/$name" || same_pixels "$file" "pictures/$name"; then
            continue
        else
            echo "pictures/$name is not up to date"
        fi
        stale=1
    done >&2
    return "$stale"
}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
case $# in
0) mkdir -p pictures && render pictures ;;
1) [ "$1" = --check ] || usage; check ;;
*) usage ;;
esac
