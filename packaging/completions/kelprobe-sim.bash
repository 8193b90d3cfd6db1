# bash completion for kelprobe-sim. Its words come from the help of the program itself; buttons,
# lamps and faults from the bench in which the shell runs.

# _kelprobe_sim_words [COMMAND]: what can follow.
_kelprobe_sim_words()
{
    local help kind=
    help=$(kelprobe-sim "$@" --help 2>/dev/null)
    sed -nE 's/^  (-[a-z],)?(--[a-z-]+).*/\2/p' <<<"$help"
    [[ $# -gt 0 ]] || sed -nE 's/^  ([a-z]+)  .*/\1/p' <<<"$help"
    sed -nE 's/^Usage: kelprobe-sim [a-z]+ //p' <<<"$help" | tr ' |[]' '\n' |
        grep -E '^(--)?[a-z][a-z-]*$'
    case $1 in
        run) kelprobe-sim list 2>/dev/null | cut -d ' ' -f 1 ;;
        press | release) kind=buttons ;;
        expect) kind=lamps ;;
        fault) kind=faults && printf '%s\n' flood none ;;
    esac
    [[ -z $kind ]] || kelprobe-sim devices --json 2>/dev/null | grep -o "\"$kind\":\[[^]]*\]" |
        grep -o '"name":"[^"]*"' | cut -d '"' -f 4
}

_kelprobe_sim()
{
    local word=${COMP_WORDS[COMP_CWORD]} command= i
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
            --)
                _command_offset $((i + 1)) # the program that is run
                return
                ;;
            --socket) ((++i)) ;;
            -* | *:) ;;
            *) [[ -n $command ]] || command=${COMP_WORDS[i]} ;;
        esac
    done
    COMPREPLY=()
    if [[ ${COMP_WORDS[COMP_CWORD - 1]} != --socket ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_kelprobe_sim_words $command)" -- "$word")
        [[ $word == -* || ! $command =~ ^(run|replay|profile)$ ]] && return
    fi
    mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -f -- "$word")
    compopt -o filenames 2>/dev/null
}
complete -F _kelprobe_sim kelprobe-sim
