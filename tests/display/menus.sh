# What the tours share, sourced by them behind display.sh: waiting for what is to come, the screen as
# another program takes it, the menus by the pointer, start and end of the program. The tour sets
# `program` and `folder` before.
export TAVRIX_SCREEN=640x480
pixels=$folder/pixels

Highlight=308CC6 # of a chosen menu entry

fail() {
    echo "$1"
    picture failed
    cat "$work"/output*
    exit 1
}

# await WHAT CONDITION...: until the condition holds, at most half a minute.
await() {
    local what=$1 end=$((SECONDS + 30))
    shift
    while [ $SECONDS -lt $end ]; do
        "$@" && return 0
        sleep 0.1
    done
    fail "in vain: $what"
}

# await_text WHAT CONDITION...: the same where the condition's output is the answer, in `answer`.
answer=
answers() {
    answer=$("$@" 2>/dev/null)
}
await_text() {
    local what=$1
    shift
    await "$what" answers "$@"
}

take() {
    import -silent -window root -depth 8 rgb:"$work/$1"
}

# take_still NAME: takes the screen once it rests.
still() {
    take still
    sleep 0.1
    take "$1"
    cmp -s "$work/still" "$work/$1"
}
take_still() {
    await "a screen that rests" still "$1"
}

# picture NAME: leaves the device screen as NN-NAME.png in the folder TAVRIX_TOUR_PICTURES, where one
# is given.
pictures=0
picture() {
    pictures=$((pictures + 1))
    [ -n "${TAVRIX_TOUR_PICTURES:-}" ] || return 0
    mkdir -p "$TAVRIX_TOUR_PICTURES"
    import -silent -window root -crop 640x480+0+0 +repage \
        "$TAVRIX_TOUR_PICTURES/$(printf %02d $pictures)-$1.png"
}

at() {
    "$pixels" at "$work/$1" "$2" "$3"
}
changed() {
    "$pixels" changed "$work/$1" "$work/$2" "${@:3}"
}

# middle LEFT TOP RIGHT BOTTOM: "X Y".
middle() {
    echo $((($1 + $3) / 2)) $((($2 + $4) / 2))
}

# The popup that opened last, as LEFT TOP RIGHT BOTTOM. (Popups are windows of the server.)
popup_of_depth() {
    local windows
    windows=($(xdotool search --onlyvisible --class tavrix))
    [ ${#windows[@]} -eq $(($1 + 1)) ] || return 1
    eval "$(xdotool getwindowgeometry --shell "${windows[-1]}")"
    echo "$X $Y $((X + WIDTH - 1)) $((Y + HEIGHT - 1))"
}

# step KEY RECT: presses it, and `answer` is the box of the entry in the rectangle that is chosen then
# and was not before.
chosen_box=
other_entry() {
    local box
    take menu && box=$("$pixels" of "$work/menu" $Highlight "$@") && [ "$box" != "$chosen_box" ] &&
        sleep 0.05 && take menu &&
        [ "$box" = "$("$pixels" of "$work/menu" $Highlight "$@")" ] && echo "$box"
}
step() {
    xdotool key "$1"
    await_text "another entry by $1" other_entry "${@:2}"
    chosen_box=$answer
}

# measure_bar SCREEN: the height of the menu bar, into `bar`: below it the view is black.
measure_bar() {
    bar=0
    while [ "$(at $1 400 $bar)" != 000000 ]; do
        bar=$((bar + 1))
    done
}

# choose TITLE ENTRY...: by the pointer: a title of the bar and the entries below it, all told by
# their place among those that can be chosen, from 0. The keyboard is asked where they stand.
choose() {
    local depth=0 number=$1 rest
    shift
    chosen_box=
    step alt+h 0 0 639 $((bar - 1))
    for ((; number < Help; ++number)); do
        step Left 0 0 639 $((bar - 1))
    done
    xdotool key --delay 30 Escape Escape
    await_text "the menus are closed" popup_of_depth 0
    xdotool mousemove $(middle $chosen_box) click 1
    for number in "$@"; do
        depth=$((depth + 1))
        await_text "popup $depth" popup_of_depth $depth
        rest=$answer
        chosen_box=
        for ((; number >= 0; --number)); do
            step Down $rest
        done
        xdotool mousemove $(middle $chosen_box)
        sleep 0.1
        xdotool click 1
    done
    await_text "the menus are closed" popup_of_depth 0
}

# The titles.
File=0
Tools=2
Info=4
Display=5
Help=6

# place KIND NAME: where a plugin stands among those of its kind, from 0: they come by their file's
# name. (Every plugin that reads or writes has one format.) after KIND NAME: how many come behind it.
plugins_of() {
    (cd "$(dirname "$program")/PLUGINS/$1" && LC_ALL=C ls *.dll | LC_ALL=C sort -f)
}
place() {
    plugins_of $1 | awk -v name=$2.dll '$0 == name { print NR - 1 }'
}
after() {
    plugins_of $1 | awk -v name=$2.dll '$0 == name { place = NR } END { print NR - place }'
}
# entry_of_box COUNT: the keys that choose the entry so many below the first in a list that drops
# down, and close it. The list begins with the plugin that came last.
entry_of_box() {
    keys Home $(yes Down | head -n $1) Return
}

# start ARGUMENT...: the program, at a screen of 640x480.
start() {
    "$program" "$@" >>"$work/output" 2>&1 &
    process=$!
    started=($process "${started[@]}")
    await "the window" xdotool search --onlyvisible --class tavrix >"$work/window"
    xdotool windowfocus "$(head -1 "$work/window")"
}

await_end() {
    for _ in $(seq 150); do
        kill -0 $process 2>/dev/null || break
        sleep 0.1
    done
    wait $process || fail "the program ended with $?"
}

# setting KEY: its value in the settings file, whose folder is named in the language.
setting() {
    iconv -f UTF-16 -t UTF-8 "$XDG_CONFIG_HOME"/tavrix/*/Tavrix.ini |
        sed -n "s/^$1=\([^\r]*\)\r*$/\1/p"
}
expect() {
    [ "$2" = "$3" ] || fail "$1: $2 and not $3"
}

# opens_dialog BEFORE: something large has come up since.
opens_dialog() {
    local box
    take opened && box=$(changed $1 opened 0 0 639 479) && [ "${box##* }" -gt 20000 ]
}
