# fish completion for kelprobe-panel.
complete -c kelprobe-panel -f
complete -c kelprobe-panel -l socket -r -F -d 'control socket of the bench'
complete -c kelprobe-panel -l device -x -d 'show only this device'
complete -c kelprobe-panel -l theme -x -a 'light dark' -d 'the look'
complete -c kelprobe-panel -s h -l help -d 'print the help'
complete -c kelprobe-panel -l version -d 'print the version'
