# bash completion for loadwarden                            -*- shell-script -*-

# The names of the running apps, one a line, for a TARGET.
_loadwarden_apps() {
    loadwarden apps --json --interval 0.1 2>/dev/null |
        sed -n 's/^    "name": "\(.*\)",$/\1/p' | sort -u
}

# Whether an option takes the word after it as its value.
_loadwarden_takes_value() {
    case $1 in
    --interval | --ticks | --max | --sort | --search | --days | --for | --listen | --apps) return 0 ;;
    esac
    return 1
}

_loadwarden() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local IFS=$'\n' # a word a line, so that names keep their spaces
    local commands=(snapshot why apps info history startup watch serve
                    quit end force-quit pause resume limit)
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        COMPREPLY=($(compgen -W "${commands[*]}"$'\n--help\n-h\n--version' -- "$current"))
        return
    fi

    case $previous in
    --sort) COMPREPLY=($(compgen -W $'name\ncpu\nmemory\nenergy\ndisk\nnetwork\ngpu' -- "$current")) ;;
    --days) COMPREPLY=($(compgen -W $'1\n7\n30' -- "$current")) ;;
    esac
    _loadwarden_takes_value "$previous" && return

    local command=${COMP_WORDS[1]} options=()
    case $command in
    snapshot) options=(--json --interval --ticks) ;;
    why) options=(--json --max --interval) ;;
    apps) options=(--json --sort --ascending --search --interval) ;;
    info | startup) options=(--json) ;;
    history) options=(--json --days) ;;
    watch) options=(--interval) ;;
    serve) options=(--listen --apps --interval) ;;
    quit | end | resume) ;;
    force-quit) options=(--yes) ;;
    pause | limit) options=(--for) ;;
    *) return ;;
    esac
    if [[ $current == -* ]]; then
        COMPREPLY=($(compgen -W "${options[*]}"$'\n--help\n-h' -- "$current"))
        return
    fi

    # The words given after the command, leaving out options and their values.
    local given=0 index
    for ((index = 2; index < COMP_CWORD; index++)); do
        if _loadwarden_takes_value "${COMP_WORDS[index]}"; then
            ((index++))
        elif [[ ${COMP_WORDS[index]} != -* ]]; then
            ((given++))
        fi
    done
    case $command:$given in
    quit:0 | end:0 | force-quit:0 | pause:0 | resume:0 | limit:0)
        COMPREPLY=($(compgen -W "$(_loadwarden_apps)" -- "$current"))
        ((${#COMPREPLY[@]})) && COMPREPLY=($(printf '%q\n' "${COMPREPLY[@]}"))
        ;;
    startup:0) COMPREPLY=($(compgen -W $'on\noff' -- "$current")) ;;
    esac
}
complete -F _loadwarden loadwarden
