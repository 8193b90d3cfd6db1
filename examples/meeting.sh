#!/bin/sh
# A test of a meeting in the form that CI runs: an ordinary shell script on a bench.
#
#     kelprobe-sim run speakerphone -- sh examples/meeting.sh
#
# kelprobe-sim plugs in the simulated device and gives the exit status of this script. The script
# presses the device's buttons and looks at its lamps with the same program: kelprobe-sim finds the
# bench by the environment. Arguments go to kelprobectl, for example --record meeting.hid.
#
# Exit status: 0, or that of the first command that failed: 1 after an expectation that was not met.
set -eu

# The program under test is kelprobectl meeting. It reads what a person at the computer does from a
# named pipe, which descriptor 3 keeps open.
directory=$(mktemp -d)
mkfifo "$directory/person"
kelprobectl meeting "$@" <"$directory/person" &
program=$!
exec 3>"$directory/person"
trap 'kill "$program" 2>/dev/null || true; rm -rf "$directory"' EXIT
# dash ends without that trap if a signal ends it.
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM

# pause: what a person would take. A press right after a report could come before the program knows
# what its own report means.
pause() { kelprobe-sim wait idle; }

kelprobe-sim wait open
pause

echo "# An incoming call rings. It is answered on the device."
echo ring >&3
kelprobe-sim expect ring on --within 5s
pause
kelprobe-sim hook off
kelprobe-sim expect off-hook on --within 5s
kelprobe-sim expect ring off --within 5s

echo "# The mute button mutes, and unmutes."
pause
kelprobe-sim press mute
kelprobe-sim expect mute on --within 5s
pause
kelprobe-sim press mute
kelprobe-sim expect mute off --within 5s

echo "# A second call rings. It is rejected on the device, and the first one goes on."
pause
echo ring >&3
kelprobe-sim expect ring on --within 5s
pause
kelprobe-sim press busy
kelprobe-sim expect ring off --within 5s
kelprobe-sim expect off-hook on --within 5s

echo "# The person ends the program: every lamp is off, and the device is released."
pause
echo quit >&3
wait "$program"
kelprobe-sim wait closed
for lamp in ring off-hook mute; do
  kelprobe-sim expect "$lamp" off
done
