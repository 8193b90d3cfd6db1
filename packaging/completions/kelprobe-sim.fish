# fish completion for kelprobe-sim. The words come from the help of the program itself.
function __kelprobe_sim_command
    set -l words (commandline -opc)
    test (count $words) -gt 1; and string match -rv -- '^-' $words[2]
end
function __kelprobe_sim_runs
    contains -- (__kelprobe_sim_command) run profile replay
end
complete -c kelprobe-sim -f
complete -c kelprobe-sim -n 'not __kelprobe_sim_command' \
    -a "(kelprobe-sim --help 2>/dev/null | sed -nE 's/^ {0,2}([a-z][a-z-]*)  +(.*)/\1\t\2/p')"
complete -c kelprobe-sim -n 'string match -q -- "-*" (commandline -ct)' \
    -a "(kelprobe-sim (__kelprobe_sim_command) --help 2>/dev/null | grep -oE -- '--[a-z][a-z-]+')"
complete -c kelprobe-sim -n __kelprobe_sim_runs -F
complete -c kelprobe-sim -n '__kelprobe_sim_runs; and contains -- run (__kelprobe_sim_command)' \
    -a "(kelprobe-sim list 2>/dev/null | sed -nE 's/^ *([a-z][a-z-]*)  *(.*)/\1\t\2/p')"
