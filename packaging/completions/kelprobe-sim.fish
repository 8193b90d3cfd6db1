# fish completion for kelprobe-sim. Its words come from the help of the program itself; buttons,
# lamps and faults from the bench in which the shell runs.

# The command, if there is one before the cursor.
function __kelprobe_sim_command
    set -l words (commandline -opc)[2..]
    while set -q words[1]
        switch $words[1]
            case --socket
                set -e words[1]
            case '-*' '*:'
            case '*'
                echo $words[1]
                return
        end
        set -e words[1]
    end
end

function __kelprobe_sim_names # KIND
    kelprobe-sim devices --json 2>/dev/null | string match -r "\"$argv\":\[[^]]*\]" |
        string match -ra '"name":"[^"]*"' | string split -f 4 '"'
end

# What can follow the command, or its name.
function __kelprobe_sim_words
    set -l command (__kelprobe_sim_command)
    set -l help (kelprobe-sim $command --help 2>/dev/null)
    printf '%s\n' $help | string replace -rf '^  (?:-[a-z],)?(--[a-z-]+).*' '$1'
    set -q command[1]
    or printf '%s\n' $help | string replace -rf '^  ([a-z]+)  .*' '$1'
    printf '%s\n' $help | string replace -rf '^Usage: kelprobe-sim [a-z]+ ' '' |
        string match -ra '(?:--)?\b[a-z][a-z-]*\b'
    switch "$command"
        case run
            kelprobe-sim list 2>/dev/null | string split -f 1 ' '
        case press release
            __kelprobe_sim_names buttons
        case expect
            __kelprobe_sim_names lamps
        case fault
            printf '%s\n' flood none
            __kelprobe_sim_names faults
    end
end

complete -c kelprobe-sim -f
complete -c kelprobe-sim -n 'not contains -- -- (commandline -opc)' -a '(__kelprobe_sim_words)'
complete -c kelprobe-sim -l socket -r -F -n 'not __kelprobe_sim_command'
complete -c kelprobe-sim -n 'contains -- (__kelprobe_sim_command) run replay profile
    and not contains -- -- (commandline -opc)' -F
# The program that is run.
complete -c kelprobe-sim -n 'contains -- -- (commandline -opc)' \
    -a '(complete -C (string split -m 1 -f 2 -- "-- " (commandline -cp)))'
