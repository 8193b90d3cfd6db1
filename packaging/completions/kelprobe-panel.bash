# bash completion for kelprobe-panel.
_kelprobe_panel()
{
    local word=${COMP_WORDS[COMP_CWORD]} words=
    case ${COMP_WORDS[COMP_CWORD - 1]} in
        --socket) mapfile -t COMPREPLY < <(compgen -f -- "$word"); return ;;
        --device) return ;;
        --theme) words="light dark" ;;
        *) words="--socket --device --theme --help --version" ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -o filenames -F _kelprobe_panel kelprobe-panel
