# Completion of arcsim for bash.
_arcsim()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} path="" words="" files=""
    if [ "$COMP_CWORD" -gt 1 ]; then
        path=${COMP_WORDS[1]}
    fi
    case "$path|$previous" in
        '|'*)
            words='serve run play check status reset stop advance set event lsta outage no-fix jam fail delay hang clear replay convert completion man --version --help' ;;
        'serve|--socket')
            words=''; files=1 ;;
        'serve|--scenario')
            words=''; files=1 ;;
        'serve|--nmea')
            words=''; files=1 ;;
        'serve|--time') ;;
        'serve|'*)
            words='--help --socket --scenario --nmea --time --verbose --fresh' ;;
        'run|--scenario')
            words=''; files=1 ;;
        'run|--nmea')
            words=''; files=1 ;;
        'run|--time') ;;
        'run|'*)
            words='--help --scenario --nmea --time --verbose' ;;
        'play|--for') ;;
        'play|'*)
            words='--help --for'; files=1 ;;
        'check|'*)
            words='--help'; files=1 ;;
        'status|--socket')
            words=''; files=1 ;;
        'status|--timeout') ;;
        'status|'*)
            words='--help --socket --json --timeout' ;;
        'reset|--socket')
            words=''; files=1 ;;
        'reset|--timeout') ;;
        'reset|'*)
            words='--help --socket --json --timeout' ;;
        'stop|--socket')
            words=''; files=1 ;;
        'stop|--timeout') ;;
        'stop|'*)
            words='--help --socket --json --timeout' ;;
        'advance|--socket')
            words=''; files=1 ;;
        'advance|--timeout') ;;
        'advance|'*)
            words='--help --socket --json --timeout' ;;
        'set|--socket')
            words=''; files=1 ;;
        'set|--timeout') ;;
        'set|'*)
            words='--help --socket --json --timeout --force' ;;
        'event|--socket')
            words=''; files=1 ;;
        'event|--timeout') ;;
        'event|--count') ;;
        'event|--every') ;;
        'event|'*)
            words='--help --socket --json --timeout --count --every --numbered' ;;
        'lsta|--socket')
            words=''; files=1 ;;
        'lsta|--timeout') ;;
        'lsta|--status') ;;
        'lsta|--value') ;;
        'lsta|'*)
            words='--help --socket --json --timeout --status --value --auto' ;;
        'outage|--socket')
            words=''; files=1 ;;
        'outage|--timeout') ;;
        'outage|'*)
            words='--help --socket --json --timeout' ;;
        'no-fix|--socket')
            words=''; files=1 ;;
        'no-fix|--timeout') ;;
        'no-fix|'*)
            words='--help --socket --json --timeout' ;;
        'jam|--socket')
            words=''; files=1 ;;
        'jam|--timeout') ;;
        'jam|--for') ;;
        'jam|'*)
            words='--help --socket --json --timeout --for --off' ;;
        'fail|--socket')
            words=''; files=1 ;;
        'fail|--timeout') ;;
        'fail|--code') ;;
        'fail|--indicator') ;;
        'fail|--reply-length') ;;
        'fail|--times') ;;
        'fail|--nth') ;;
        'fail|'*)
            words='--help --socket --json --timeout --code --indicator --reply-length --no-quotes --times --nth --forever' ;;
        'delay|--socket')
            words=''; files=1 ;;
        'delay|--timeout') ;;
        'delay|--between') ;;
        'delay|--normal') ;;
        'delay|--times') ;;
        'delay|--nth') ;;
        'delay|'*)
            words='--help --socket --json --timeout --between --normal --times --nth --forever' ;;
        'hang|--socket')
            words=''; files=1 ;;
        'hang|--timeout') ;;
        'hang|--times') ;;
        'hang|--nth') ;;
        'hang|'*)
            words='--help --socket --json --timeout --times --nth --forever' ;;
        'clear|--socket')
            words=''; files=1 ;;
        'clear|--timeout') ;;
        'clear|'*)
            words='--help --socket --json --timeout' ;;
        'replay|--socket')
            words=''; files=1 ;;
        'replay|--nmea')
            words=''; files=1 ;;
        'replay|'*)
            words='--help --socket --nmea --fast --json'; files=1 ;;
        'convert|--output')
            words=''; files=1 ;;
        'convert|'*)
            words='--help --output'; files=1 ;;
        'completion|'*)
            words='--help' ;;
        'man|'*)
            words='--help' ;;
    esac
    COMPREPLY=()
    while read -r word; do COMPREPLY+=("$word"); done < <(compgen -W "$words" -- "$current")
    if [ -n "$files" ]; then
        while read -r word; do COMPREPLY+=("$word"); done < <(compgen -f -- "$current")
        compopt -o filenames 2>/dev/null
    fi
}
complete -F _arcsim arcsim
