#!/bin/sh
# Shows the plug-in at work without hardware: builds it, starts a simulated controller, loads the plug-in the
# way a host does, plans, reads and writes every data type, breaks the connection, cuts an answer, and checks what
# came of it.
#
# With DEMO_BIN, the folder of an installed velhost and kvsim, nothing is built. DEMO_EXAMPLES is the folder of
# the plant files, DEMO_WORK one for what is written, and DEMO_RUNNER what stands before each program, such as
# an emulator with its options.
set -eu
cd "$(dirname "$0")/.."

if [ -z "${DEMO_BIN-}" ]; then
    scripts/install-packages.sh programs
    cmake --preset demo >/dev/null
    cmake --build --preset demo
fi

bin=${DEMO_BIN:-build/demo/bin}
examples=${DEMO_EXAMPLES:-examples}
work=${DEMO_WORK:-build/demo/work}
mkdir -p "$work"

velhost() {
    # shellcheck disable=SC2086 # one word an argument
    ${DEMO_RUNNER-} "$bin/velhost" "$@"
}

# Changes the simulated controller while it runs.
kvsim_ctl() {
    # shellcheck disable=SC2086
    ${DEMO_RUNNER-} "$bin/kvsim" ctl --port "$control" "$@"
}

title() {
    printf '\n== %s\n' "$1"
}

fail() {
    echo "demo: $1" >&2
    exit 1
}

# The simulated controller picks free ports and says which.
rm -f "$work/kvsim.out"
mkfifo "$work/kvsim.out"
# shellcheck disable=SC2086 # one word an argument
${DEMO_RUNNER-} "$bin/kvsim" --port 0 --control 0 >"$work/kvsim.out" &
simulator=$!
trap 'kill "$simulator" 2>/dev/null || true' EXIT
{
    read -r line && port=${line##*:} && read -r line && control=${line##*:}
} <"$work/kvsim.out" || fail "the simulated controller does not start"
for plant in demo-plant bad-address; do
    sed "s/\"8501\"/\"$port\"/" "$examples/$plant.json" >"$work/$plant.json"
done

# check_values NAME: reads the plant and compares its items with the expected ones on standard input.
check_values() {
    velhost --plant "$work/demo-plant.json" --format json read |
        sed -n 's/.*"item":"\([^"]*\)","value":"\([^"]*\)","error":"\([^"]*\)"}$/\1: \2\3/p' >"$work/$1.txt"
    diff - "$work/$1.txt" || fail "these are not the expected values"
    echo "All values are as expected."
}

title "What the plug-in declares"
velhost columns

title "What each item would send, without a controller"
velhost plan "$work/demo-plant.json" --write 'Press/Bit of a word=1' | tee "$work/plan.txt"
grep -q 'Bit of a word  write      1      WR DM100 4' "$work/plan.txt" || fail "this is not the expected plan"

title "A read of every data type from fresh memory, in which word n holds n"
velhost --plant "$work/demo-plant.json" read
check_values fresh <<'VALUES'
Bit of a word: 1
Short: 201
Long: 13828306
Word: 31
DWord: 15139046
Hex16: F0
Hex32: FB00FA
Float: 3.1445
Double: 3.156266
Text by count: ABBBCBDBEB
Text by range: ABBBCBDBEB
Bit device: 1
VALUES

title "A write to each of them: the old value, the new one, and the one read back"
velhost --plant "$work/demo-plant.json" write \
    'Press/Bit of a word=0' 'Press/Short=-1234' 'Press/Long=-70000' 'Press/Word=54321' \
    'Press/DWord=4000000000' 'Press/Hex16=BEEF' 'Press/Hex32=DEADBEEF' 'Press/Float=-2.5' \
    'Press/Double=1234.5' 'Press/Text by count=KV-series ' 'Press/Text by range=Host Link.' \
    'Press/Bit device=0'

title "The same items read back"
velhost --plant "$work/demo-plant.json" read
check_values written <<'VALUES'
Bit of a word: 0
Short: -1234
Long: -70000
Word: 54321
DWord: 4000000000
Hex16: BEEF
Hex32: DEADBEEF
Float: -2.5
Double: 1234.5
Text by count: KV-series 
Text by range: Host Link.
Bit device: 0
VALUES

title "An address that the controller does not have: its error, and the other item is still read"
status=0
velhost --plant "$work/bad-address.json" read || status=$?
[ "$status" -eq 1 ] || fail "an item with an error must end velhost with 1, not $status"

title "The connection breaks once, in the second of three cycles: the errors, and the recovery"
kvsim_ctl fault close=before@DM201@nth=2
status=0
velhost read "$work/demo-plant.json" --cycles 3 --interval 0 --only-changes >"$work/recovery.txt" || status=$?
cat "$work/recovery.txt"
[ "$status" -eq 1 ] || fail "a cycle with an error must end velhost with 1, not $status"
kvsim_ctl counters | tee "$work/counters.txt"
grep -q 'fault close=before@DM201@nth=2: seen 3, applied 1$' "$work/counters.txt" ||
    fail "the connection was not broken once"
sed -n 's/^\([0-9]\) .*  Press   Short  *\(-1234\) *\((old)\)\{0,1\} *\(..*\)\{0,1\}$/\1: \2 \3/p' \
    "$work/recovery.txt" >"$work/short.txt"
diff - "$work/short.txt" <<'VALUES' || fail "Short did not come back"
1: -1234 
2: -1234 (old)
3: -1234 
VALUES
kvsim_ctl clear

title "An answer comes cut: a wrong value without an error, and the trace that catches it"
kvsim_ctl fault split=4,20@DM201@nth=1
status=0
velhost read "$work/demo-plant.json" --item Short --trace >"$work/cut.txt" 2>&1 || status=$?
cat "$work/cut.txt"
[ "$status" -eq 1 ] || fail "a suspect answer must end velhost with 1, not $status"
sed -n 's/^wire: Press\/Short < \(.*\)  [0-9.]* ms  SUSPECT: \(.*\)$/\1: \2/p
    s/^1 .*  Press   Short  \(.*\)$/\1/p' "$work/cut.txt" >"$work/suspect.txt"
diff - "$work/suspect.txt" <<'VALUES' || fail "the cut answer was not caught"
6430: no line end: cut, or the rest comes later
6430   suspect: no line end: cut, or the rest comes later
VALUES
kvsim_ctl clear

title "The simulated controller ends"
kill "$simulator"
wait "$simulator" || fail "the simulated controller did not end cleanly"
trap - EXIT
echo "The demonstration is complete."
