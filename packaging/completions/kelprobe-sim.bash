# bash completion for kelprobe-sim. The words come from the help of the program itself.
_kelprobe_sim()
{
    local word=${COMP_WORDS[COMP_CWORD]} command= words i
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; i++)); do
        if [[ ${COMP_WORDS[i]} == -- ]]; then
            if ((i == COMP_CWORD - 1)); then # the program that is run
                COMPREPLY=($(compgen -c -- "$word"))
            else
                COMPREPLY=($(compgen -f -- "$word"))
            fi
            return
        fi
        [[ -n $command || ${COMP_WORDS[i]} == -* ]] || command=${COMP_WORDS[i]}
    done
    if [[ $word == -* ]]; then
        words=$(kelprobe-sim $command --help 2>/dev/null | grep -oE -- '--[a-z][a-z-]+')
    elif [[ -z $command ]]; then
        words=$(kelprobe-sim --help 2>/dev/null | sed -nE 's/^ {0,2}([a-z][a-z-]*)  +.*/\1/p')
    elif [[ $command == run || $command == profile || $command == replay ]]; then
        COMPREPLY=($(compgen -f -- "$word"))
        [[ $command != run ]] || words=$(kelprobe-sim list 2>/dev/null | sed -nE 's/^ *([a-z][a-z-]*)  *.*/\1/p')
    fi
    COMPREPLY+=($(compgen -W "$words" -- "$word"))
}
complete -o filenames -o bashdefault -F _kelprobe_sim kelprobe-sim
