# Completion of kelarcctl for bash.
_kelarcctl()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} path="" words="" files=""
    if [ "$COMP_CWORD" -gt 1 ]; then
        path=${COMP_WORDS[1]}
        case $path in
            system|gnss|lsta) [ "$COMP_CWORD" -gt 2 ] && path="$path ${COMP_WORDS[2]}" ;;
        esac
    fi
    case "$path|$previous" in
        '|'*)
            words='status versions doctor monitor cpu-power cpu-psm format dr-sync system sbas period min-elevation raw-mask raw-version get set export apply gnss lsta events at logging tasks completion man --help --version' ;;
        'status|--timeout') ;;
        'status|--log')
            words='stderr journal'; files=1 ;;
        'status|--log-level')
            words='info busy warning error' ;;
        'status|'*)
            words='--help --timeout --json --log --log-level' ;;
        'versions|--timeout') ;;
        'versions|--log')
            words='stderr journal'; files=1 ;;
        'versions|--log-level')
            words='info busy warning error' ;;
        'versions|'*)
            words='--help --timeout --json --log --log-level' ;;
        'doctor|--timeout') ;;
        'doctor|--log')
            words='stderr journal'; files=1 ;;
        'doctor|--log-level')
            words='info busy warning error' ;;
        'doctor|'*)
            words='--help --timeout --json --log --log-level' ;;
        'monitor|--timeout') ;;
        'monitor|--log')
            words='stderr journal'; files=1 ;;
        'monitor|--log-level')
            words='info busy warning error' ;;
        'monitor|--for') ;;
        'monitor|'*)
            words='--help --timeout --json --log --log-level --for --no-color' ;;
        'cpu-power|--timeout') ;;
        'cpu-power|--log')
            words='stderr journal'; files=1 ;;
        'cpu-power|--log-level')
            words='info busy warning error' ;;
        'cpu-power|'*)
            words='--help --timeout --json --log --log-level standard max' ;;
        'cpu-psm|--timeout') ;;
        'cpu-psm|--log')
            words='stderr journal'; files=1 ;;
        'cpu-psm|--log-level')
            words='info busy warning error' ;;
        'cpu-psm|'*)
            words='--help --timeout --json --log --log-level off on' ;;
        'format|--timeout') ;;
        'format|--log')
            words='stderr journal'; files=1 ;;
        'format|--log-level')
            words='info busy warning error' ;;
        'format|'*)
            words='--help --timeout --json --log --log-level nmea raw' ;;
        'dr-sync|--timeout') ;;
        'dr-sync|--log')
            words='stderr journal'; files=1 ;;
        'dr-sync|--log-level')
            words='info busy warning error' ;;
        'dr-sync|'*)
            words='--help --timeout --json --log --log-level off on' ;;
        'system|'*)
            words='glonass galileo beidou qzss --help' ;;
        'system glonass|--timeout') ;;
        'system glonass|--log')
            words='stderr journal'; files=1 ;;
        'system glonass|--log-level')
            words='info busy warning error' ;;
        'system glonass|'*)
            words='--help --timeout --json --log --log-level off on' ;;
        'system galileo|--timeout') ;;
        'system galileo|--log')
            words='stderr journal'; files=1 ;;
        'system galileo|--log-level')
            words='info busy warning error' ;;
        'system galileo|'*)
            words='--help --timeout --json --log --log-level off on' ;;
        'system beidou|--timeout') ;;
        'system beidou|--log')
            words='stderr journal'; files=1 ;;
        'system beidou|--log-level')
            words='info busy warning error' ;;
        'system beidou|'*)
            words='--help --timeout --json --log --log-level off on' ;;
        'system qzss|--timeout') ;;
        'system qzss|--log')
            words='stderr journal'; files=1 ;;
        'system qzss|--log-level')
            words='info busy warning error' ;;
        'system qzss|'*)
            words='--help --timeout --json --log --log-level off on' ;;
        'sbas|--timeout') ;;
        'sbas|--log')
            words='stderr journal'; files=1 ;;
        'sbas|--log-level')
            words='info busy warning error' ;;
        'sbas|'*)
            words='--help --timeout --json --log --log-level off on' ;;
        'period|--timeout') ;;
        'period|--log')
            words='stderr journal'; files=1 ;;
        'period|--log-level')
            words='info busy warning error' ;;
        'period|'*)
            words='--help --timeout --json --log --log-level 1000 500 200 100' ;;
        'min-elevation|--timeout') ;;
        'min-elevation|--log')
            words='stderr journal'; files=1 ;;
        'min-elevation|--log-level')
            words='info busy warning error' ;;
        'min-elevation|'*)
            words='--help --timeout --json --log --log-level' ;;
        'raw-mask|--timeout') ;;
        'raw-mask|--log')
            words='stderr journal'; files=1 ;;
        'raw-mask|--log-level')
            words='info busy warning error' ;;
        'raw-mask|'*)
            words='--help --timeout --json --log --log-level' ;;
        'raw-version|--timeout') ;;
        'raw-version|--log')
            words='stderr journal'; files=1 ;;
        'raw-version|--log-level')
            words='info busy warning error' ;;
        'raw-version|'*)
            words='--help --timeout --json --log --log-level' ;;
        'get|--timeout') ;;
        'get|--log')
            words='stderr journal'; files=1 ;;
        'get|--log-level')
            words='info busy warning error' ;;
        'get|'*)
            words='--help --timeout --json --log --log-level Power/Cpu Power/Psm Nmea/Data/Format Nmea/DRSync Engine/Glonass Engine/Galileo Engine/Beidou Engine/Qzss Nmea/Sbas Nmea/FreqMs Sens/MinElevAngle Nmea/Data/RawMask Raw/Version' ;;
        'set|--timeout') ;;
        'set|--log')
            words='stderr journal'; files=1 ;;
        'set|--log-level')
            words='info busy warning error' ;;
        'set|'*)
            words='--help --timeout --json --log --log-level Power/Cpu Power/Psm Nmea/Data/Format Nmea/DRSync Engine/Glonass Engine/Galileo Engine/Beidou Engine/Qzss Nmea/Sbas Nmea/FreqMs Sens/MinElevAngle Nmea/Data/RawMask Raw/Version' ;;
        'export|--timeout') ;;
        'export|--log')
            words='stderr journal'; files=1 ;;
        'export|--log-level')
            words='info busy warning error' ;;
        'export|'*)
            words='--help --timeout --json --log --log-level'; files=1 ;;
        'apply|--timeout') ;;
        'apply|--log')
            words='stderr journal'; files=1 ;;
        'apply|--log-level')
            words='info busy warning error' ;;
        'apply|'*)
            words='--help --timeout --json --log --log-level --dry-run'; files=1 ;;
        'gnss|'*)
            words='start stop force-stop reset-assistance --help' ;;
        'gnss start|--timeout') ;;
        'gnss start|--log')
            words='stderr journal'; files=1 ;;
        'gnss start|--log-level')
            words='info busy warning error' ;;
        'gnss start|'*)
            words='--help --timeout --json --log --log-level --hold' ;;
        'gnss stop|--timeout') ;;
        'gnss stop|--log')
            words='stderr journal'; files=1 ;;
        'gnss stop|--log-level')
            words='info busy warning error' ;;
        'gnss stop|'*)
            words='--help --timeout --json --log --log-level' ;;
        'gnss force-stop|--timeout') ;;
        'gnss force-stop|--log')
            words='stderr journal'; files=1 ;;
        'gnss force-stop|--log-level')
            words='info busy warning error' ;;
        'gnss force-stop|'*)
            words='--help --timeout --json --log --log-level' ;;
        'gnss reset-assistance|--timeout') ;;
        'gnss reset-assistance|--log')
            words='stderr journal'; files=1 ;;
        'gnss reset-assistance|--log-level')
            words='info busy warning error' ;;
        'gnss reset-assistance|'*)
            words='--help --timeout --json --log --log-level' ;;
        'lsta|'*)
            words='get enable disable --help' ;;
        'lsta get|--timeout') ;;
        'lsta get|--log')
            words='stderr journal'; files=1 ;;
        'lsta get|--log-level')
            words='info busy warning error' ;;
        'lsta get|'*)
            words='--help --timeout --json --log --log-level gps glonass beidou galileo all' ;;
        'lsta enable|--timeout') ;;
        'lsta enable|--log')
            words='stderr journal'; files=1 ;;
        'lsta enable|--log-level')
            words='info busy warning error' ;;
        'lsta enable|--parameter') ;;
        'lsta enable|--for') ;;
        'lsta enable|--count') ;;
        'lsta enable|'*)
            words='--help --timeout --json --log --log-level gps glonass beidou galileo all --parameter --watch --for --count' ;;
        'lsta disable|--timeout') ;;
        'lsta disable|--log')
            words='stderr journal'; files=1 ;;
        'lsta disable|--log-level')
            words='info busy warning error' ;;
        'lsta disable|--parameter') ;;
        'lsta disable|'*)
            words='--help --timeout --json --log --log-level gps glonass beidou galileo all --parameter' ;;
        'events|--timeout') ;;
        'events|--log')
            words='stderr journal'; files=1 ;;
        'events|--log-level')
            words='info busy warning error' ;;
        'events|--for') ;;
        'events|--count') ;;
        'events|'*)
            words='--help --timeout --json --log --log-level --for --count' ;;
        'at|--timeout') ;;
        'at|--log')
            words='stderr journal'; files=1 ;;
        'at|--log-level')
            words='info busy warning error' ;;
        'at|'*)
            words='--help --timeout --json --log --log-level' ;;
        'logging|--timeout') ;;
        'logging|--log')
            words='stderr journal'; files=1 ;;
        'logging|--log-level')
            words='info busy warning error' ;;
        'logging|'*)
            words='--help --timeout --json --log --log-level' ;;
        'tasks|--timeout') ;;
        'tasks|--log')
            words='stderr journal'; files=1 ;;
        'tasks|--log-level')
            words='info busy warning error' ;;
        'tasks|'*)
            words='--help --timeout --json --log --log-level' ;;
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
complete -F _kelarcctl kelarcctl
