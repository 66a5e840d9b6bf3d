# fish completion for loadwarden

set -l commands snapshot why apps info history startup watch serve quit end force-quit pause resume limit
set -l targets quit end force-quit pause resume limit

# The names of the running apps, one a line, for a TARGET.
function __loadwarden_apps
    loadwarden apps --json --interval 0.1 2>/dev/null | string replace -rf '^    "name": "(.*)",$' '$1' | sort -u
end

# Whether the words after the command are all options and their values, so
# what comes next is the TARGET or the switch.
function __loadwarden_wants_target
    set -l words (commandline -opc)
    set -e words[1..2]
    set -l value no
    for word in $words
        if test $value = yes
            set value no
            continue
        end
        switch $word
            case --interval --ticks --max --sort --search --days --for --listen --apps
                set value yes
            case '-*'
            case '*'
                return 1
        end
    end
end

complete -c loadwarden -f
complete -c loadwarden -n "not __fish_seen_subcommand_from $commands" -s h -l help -d 'list the commands'
complete -c loadwarden -n "not __fish_seen_subcommand_from $commands" -l version -d 'print the version'
complete -c loadwarden -n "__fish_seen_subcommand_from $commands" -s h -l help -d "list the command's options"

complete -c loadwarden -n "not __fish_seen_subcommand_from $commands" -a snapshot -d 'the processes and system figures of this moment'
complete -c loadwarden -n "not __fish_seen_subcommand_from $commands" -a why -d 'what is slowing things down, with fixes'
complete -c loadwarden -n "not __fish_seen_subcommand_from $commands" -a apps -d 'the processes as apps with their helpers'
complete -c loadwarden -n "not __fish_seen_subcommand_from $commands" -a info -d 'one process in detail'
complete -c loadwarden -n "not __fish_seen_subcommand_from $commands" -a history -d 'what each app used today or over 7 or 30 days'
complete -c loadwarden -n "not __fish_seen_subcommand_from $commands" -a startup -d 'what starts at login'
complete -c loadwarden -n "not __fish_seen_subcommand_from $commands" -a watch -d 'keep watch without a window'
complete -c loadwarden -n "not __fish_seen_subcommand_from $commands" -a serve -d 'keep watch and answer Prometheus'
complete -c loadwarden -n "not __fish_seen_subcommand_from $commands" -a quit -d 'ask an app to quit'
complete -c loadwarden -n "not __fish_seen_subcommand_from $commands" -a end -d 'ask a process to stop'
complete -c loadwarden -n "not __fish_seen_subcommand_from $commands" -a force-quit -d 'stop an app or process at once'
complete -c loadwarden -n "not __fish_seen_subcommand_from $commands" -a pause -d 'stop an app using the processor'
complete -c loadwarden -n "not __fish_seen_subcommand_from $commands" -a resume -d 'let a paused app run again'
complete -c loadwarden -n "not __fish_seen_subcommand_from $commands" -a limit -d 'hold an app near a share of one core'

complete -c loadwarden -n '__fish_seen_subcommand_from snapshot apps why info history startup' -l json -d 'print it as JSON'
complete -c loadwarden -n '__fish_seen_subcommand_from snapshot apps why watch serve' -x -l interval -d 'seconds between readings'
complete -c loadwarden -n '__fish_seen_subcommand_from snapshot' -x -l ticks -d 'how many readings to take'
complete -c loadwarden -n '__fish_seen_subcommand_from why' -x -l max -d 'list at most N causes'
complete -c loadwarden -n '__fish_seen_subcommand_from apps' -x -l sort -a 'name cpu memory energy disk network gpu' -d 'order within each section'
complete -c loadwarden -n '__fish_seen_subcommand_from apps' -l ascending -d 'smallest first'
complete -c loadwarden -n '__fish_seen_subcommand_from apps' -x -l search -d 'only groups that hold every word'
complete -c loadwarden -n '__fish_seen_subcommand_from serve' -x -l listen -d 'where to answer, ADDRESS:PORT'
complete -c loadwarden -n '__fish_seen_subcommand_from serve' -x -l apps -d 'how many apps have series of their own'
complete -c loadwarden -n '__fish_seen_subcommand_from history' -x -l days -a '1 7 30' -d 'today or the last 7 or 30 days'
complete -c loadwarden -n '__fish_seen_subcommand_from startup; and __loadwarden_wants_target' -a 'on off' -d 'turn one of your items on or off'
complete -c loadwarden -n '__fish_seen_subcommand_from force-quit' -l yes -d 'without asking'
complete -c loadwarden -n '__fish_seen_subcommand_from pause limit' -x -l for -d 'how long to hold it, such as 5m'
complete -c loadwarden -n "__fish_seen_subcommand_from $targets; and __loadwarden_wants_target" -a '(__loadwarden_apps)' -d 'running app'
