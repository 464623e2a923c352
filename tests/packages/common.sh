# What the tests of the packages share; sourced.

tell() { echo "$(basename "$0"): $*"; }
fail() { tell "$*" >&2; exit 1; }

packages=(tavrix tavrix-plugins tavrix-plugins-extra tavrix-dev)

# A picture of one colour, 300 by 200 pixels, in the format of the ending. Each format is written by
# the host's own program for it.
make_picture() { # TARGET
    local plain=$1.plain.png
    convert -size 300x200 'xc:rgb(40,160,90)' "PNG24:$plain"
    case ${1##*.} in
        jxl) cjxl "$plain" "$1" -d 0 2>/dev/null ;;
        avif) avifenc -q 100 "$plain" "$1" >/dev/null 2>&1 ||
            avifenc --min 0 --max 0 "$plain" "$1" >/dev/null 2>&1 ;;
        heic) heif-enc -q 95 -o "$1" "$plain" >/dev/null 2>&1 ;;
        webp) cwebp -quiet -lossless "$plain" -o "$1" ;;
        ppm) convert "$plain" "$1" ;;
        pam) convert "$plain" "PAM:$1" ;;
        ico) convert "$plain" -resize 200x200! "$1" ;;
        *) convert "$plain" "$1" ;;
    esac
    rm -f "$plain"
    [ -s "$1" ] || fail "$1 could not be made"
}

# The formats that the packages read, an ending of each.
formats=(avif bmp gif heic ico jpg jxl pam pcx png ppm tga tiff webp)

# Whether a picture of the screen shows the one of make_picture: nearly all of its pixels are there.
screen_shows() { # SHOT
    local count
    count=$(convert "$1" -alpha off -fuzz 4% -fill black +opaque 'rgb(40,160,90)' \
        -fill white -opaque 'rgb(40,160,90)' -format '%[fx:w*h*mean]' info:)
    [ "${count%.*}" -ge 36000 ] && return
    tell "$1: only ${count%.*} pixels of the picture" >&2
    return 1
}
