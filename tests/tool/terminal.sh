#!/usr/bin/env bash
# terminal.sh TOOL PLUGIN: how the tool looks in a terminal. PLUGIN does what a text file beside it says.
set -euo pipefail
tool=$1 plugin=$2
ordner=$(mktemp -d)
nummer=0 # each terminal has a server of its own: one that is ending would take the next one along
tmux() { command tmux -u -S "$ordner/tmux$nummer" "$@"; }
trap 'tmux kill-server 2>/dev/null || true; rm -rf "$ordner"' EXIT
mkdir -p "$ordner/schnell/plugins" "$ordner/langsam/plugins"
cp "$plugin" "$ordner/schnell/plugins/liba.dylib"
printf 'not a library' >"$ordner/schnell/plugins/libb.dylib"
cp "$plugin" "$ordner/langsam/plugins/liba.dylib"
echo 'tu initialize schlafe 4000' >"$ordner/langsam/plugins/liba.dylib.txt"

versagt() {
    printf '%s; the terminal shows\n' "$1"
    tmux capture-pane -p -e -t tool
    exit 1
}
# im_terminal <command line>: begins it in a new terminal of 60 columns.
im_terminal() {
    tmux kill-server 2>/dev/null || true
    nummer=$((nummer + 1))
    tmux -f /dev/null new-session -d -s tool -x 60 -y 40 "exec env -i PATH='$PATH' TERM=screen-256color $1; sleep 60"
}
# warte_auf <text>: until it is on the terminal, for at most a minute.
warte_auf() {
    for _ in $(seq 600); do
        [[ $(tmux capture-pane -p -t tool) == *"$1"* ]] && return
        sleep 0.1
    done
    versagt "'$1' never came"
}
farben() { tmux capture-pane -p -e -t tool | grep -c $'\x1b\\[3[0-9]m' || true; }

im_terminal "sh -c '\"$tool\" list --home \"$ordner/schnell\"; echo END; sleep 60'"
warte_auf END
(($(farben) >= 2)) || versagt "no colours on a terminal"
[[ $(tmux capture-pane -p -t tool) != *"loading plugins"* ]] || versagt "progress although it was quick"

im_terminal "NO_COLOR=1 sh -c '\"$tool\" list --home \"$ordner/schnell\"; echo END; sleep 60'"
warte_auf END
(($(farben) == 0)) || versagt "colours under NO_COLOR"

im_terminal "TERM=dumb sh -c '\"$tool\" list --home \"$ordner/schnell\"; echo END; sleep 60'"
warte_auf END
(($(farben) == 0)) || versagt "colours on a dumb terminal"

im_terminal "sh -c '\"$tool\" list --home \"$ordner/schnell\" | cat; echo END; sleep 60'"
warte_auf END
(($(farben) == 0)) || versagt "colours in a pipe"

im_terminal "sh -c '\"$tool\" list --home \"$ordner/langsam\"; echo END; sleep 60'"
warte_auf "loading plugins: 1, now at"
[[ $(tmux capture-pane -p -t tool | grep -c .) == 1 ]] || versagt "progress takes more than a line"
warte_auf END
[[ $(tmux capture-pane -p -t tool) != *"loading plugins"* ]] || versagt "progress stays"

im_terminal "sh -c '\"$tool\" list --quiet --home \"$ordner/langsam\"; echo END; sleep 60'"
sleep 2
[[ $(tmux capture-pane -p -t tool) != *"loading plugins"* ]] || versagt "progress although it should be quiet"
warte_auf END
