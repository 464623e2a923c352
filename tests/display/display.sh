# What the tests on a real X server share; sourced by them. Makes a home of its own, starts a server
# and sets DISPLAY; at the end of the test everything that it started is ended.
set -euo pipefail

work=$(mktemp -d)
started=()
cleanup() {
    for process in "${started[@]}"; do
        kill "$process" 2>/dev/null || true
    done
    wait 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT

export HOME=$work XDG_DATA_HOME=$work/data XDG_CONFIG_HOME=$work/config TMPDIR=$work
export XDG_RUNTIME_DIR=$work LC_ALL=C.UTF-8
# What the toolkit's libraries never give back is no fault of a build that looks for it.
export LSAN_OPTIONS=suppressions=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../leaks.supp"):print_suppressions=0
unset WAYLAND_DISPLAY TAVRIX_SHOT QT_QPA_PLATFORM

# Without -r a key that is slow to come up on a busy machine repeats. A server without -noreset begins
# anew when the last program leaves it, and turns away whoever comes in that moment.
Xvfb -displayfd 1 -screen 0 1024x768x24 -nolisten tcp -r -noreset >"$work/display" 2>"$work/server.log" &
started=($! "${started[@]}")
for _ in $(seq 100); do
    [ -s "$work/display" ] && break
    sleep 0.1
done
export DISPLAY=:$(cat "$work/display")

# find_picture FILE WIDTH HEIGHT: has another program take the screen and tells where on it the
# picture stands to the pixel; fails when it does not.
find_picture() {
    import -silent -window root -depth 8 rgb:"$work/screen.rgb" 2>/dev/null || return 1
    convert "$1" -depth 8 rgb:"$work/picture.rgb"
    perl -e '
        local $/;
        my ($width, $height, $screenWidth) = ($ARGV[2], $ARGV[3], 1024);
        open my $file, "<:raw", $ARGV[0] or exit 1; my $picture = <$file>;
        open $file, "<:raw", $ARGV[1] or exit 1; my $screen = <$file>;
        my $row = substr $picture, 0, $width * 3;
        for (my $at = 0; ($at = index $screen, $row, $at) >= 0; ++$at) {
            my $same = $at % 3 == 0;
            for (my $y = 0; $same && $y < $height; ++$y) {
                $same = substr($picture, $y * $width * 3, $width * 3) eq
                        substr($screen, $at + $y * $screenWidth * 3, $width * 3);
            }
            next unless $same;
            printf "%d,%d\n", $at / 3 % $screenWidth, $at / 3 / $screenWidth;
            exit 0;
        }
        exit 1;' "$work/picture.rgb" "$work/screen.rgb" "$2" "$3"
}

# await_picture FILE WIDTH HEIGHT: the same, looked for until it is there, at most half a minute.
await_picture() {
    for _ in $(seq 60); do
        sleep 0.5
        if find_picture "$@"; then
            return 0
        fi
    done
    echo "The picture $1 was not found on the screen"
    cat "$work"/output* "$work/server.log"
    return 1
}
