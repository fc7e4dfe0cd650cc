# Completion of tambra for fish. The program itself tells what may come next.
function __tambra_complete
    set -l words (commandline -opc)
    set -l typed (commandline -ct | string unescape)
    set -q typed[1]; or set typed ""
    set -l lines ($words[1] complete plain $words[2..-1] $typed 2>/dev/null)
    switch "$lines[1]"
        case files
            __fish_complete_path $typed
        case folders
            __fish_complete_directories $typed ""
        case packages
            __fish_complete_path $typed | string match -r -- '.*(?:/|\.tmb)(?:\t.*)?$'
        case words
            printf '%s\n' $lines[2..-1]
    end
end
complete -c tambra -f -a "(__tambra_complete)"
