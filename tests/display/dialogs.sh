# What the tours share about dialogs, sourced by them behind menus.sh: waiting for one, its controls by
# the pointer, text into its fields.
Frame=2        # of a dialog
Caption=2F4F8F # of a dialog that has one

# came BEFORE WIDTH HEIGHT: the dialog of that size, in its own units, has come up over the screen
# BEFORE: `dialog` is the screen at rest then, and `control` finds its way in it. (What came up before
# it may be on the screen for a moment yet, and is not as wide.)
is_there() {
    take_still dialog
    box=$(changed $1 dialog 0 0 639 479) || return 1
    read -r l t r b count <<<"$box"
    across=$((r - l + 1 - 2 * Frame))
    [ $((4 * across)) -ge $((7 * $2 - 4)) ] && [ $((4 * across)) -le $((7 * $2 + 4)) ]
}
came() {
    await "a dialog of $2 units" is_there "$@"
    wide=$2 high=$3
}
# control LEFT TOP WIDTH HEIGHT: in the dialog's units; the middle, "X Y". The caption is above the
# units, so that down they are counted from below.
control() {
    echo $((l + Frame + (2 * $1 + $3) * across / (2 * wide))) \
        $((b - Frame - (2 * (high - $2) - $4) * across / (2 * wide)))
}
press() {
    xdotool mousemove $(control "$@") sleep 0.1 click 1
}
# gone BEFORE: the dialog is gone, and everything is as it was.
as_before() {
    take closed && ! changed $1 closed 0 $bar 639 479 >/dev/null
}
gone() {
    await "the dialog is gone" as_before $1
}
# differs BEFORE AFTER RECT: the screen, taken as AFTER, has changed there.
differs() {
    take $2 && changed "$@" >/dev/null
}
# type_text TEXT: what no key has is pasted. (A key that is given letters one after the other loses
# some where the program is slower than the keys.)
type_text() {
    if [[ $1 == *[!\ -~]* ]]; then
        printf %s "$1" | xclip -selection clipboard >/dev/null 2>&1
        xdotool key ctrl+v
    else
        xdotool type --delay 60 "$1"
    fi
}
keys() {
    xdotool key --delay 60 "$@"
}
