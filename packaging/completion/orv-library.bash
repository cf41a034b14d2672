# bash completion for orv-library

# Offers values from the JSON document of a command: the part at the end of each match, if it starts with the current word.
# Usage: _orv_library_values PATTERN COMMAND...
_orv_library_values() {
    local pattern=$1 program=${COMP_WORDS[0]/#\~\//$HOME/} typed line
    shift
    type -P -- "$program" >/dev/null || program=orv-library
    # The current word may be quoted already.
    typed=${current//\\/}
    typed=${typed#[\"\']}
    while IFS= read -r line; do
        [[ -n $line && $line == "$typed"* ]] && COMPREPLY+=("$line")
    done < <("$program" "${root[@]}" --json "$@" 2>/dev/null </dev/null | grep -oE "$pattern" | sed -E 's/^.*"[a-z]+":"?//; s/"$//')
    return 0
}

# Words from the library itself: filters, catalogs, versions, runs. Returns 1 if there are none to offer.
_orv_library_known() {
    local names='"name":"[^"\\]*"' first=${words[0]} second=${words[1]} count=${#words[@]}
    case "$first $second:$count" in
        "info :1" | "history :1" | "restore :1" | "hold :1") _orv_library_values "$names" list ;;
        "release :1") _orv_library_values '"held":true[^}]*"name":"[^"\\]*"' list ;;
        restore*:2) _orv_library_values '"version":"[^"\\]*"' history "$second" ;;
        "filters use:2") _orv_library_values "$names" filters list && COMPREPLY+=($(compgen -W none -- "$current")) ;;
        "filters show:2" | "filters remove:2") _orv_library_values '"id":-?[0-9]+' filters list ;;
        "manufacturers show:2") _orv_library_values '"id":-?[0-9]+' manufacturers list ;;
        "styles show:2") _orv_library_values '"number":[0-9]+' styles list ;;
        "runs show:2") _orv_library_values '"number":[0-9]+' runs ;;
        *) return 1 ;;
    esac
}

_orv_library() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local commands="paths update list info unpack import undo pack filters manufacturers styles log status verify"
    commands+=" history restore hold release news"
    commands+=" publish serve sample"
    commands+=" help settings check runs doctor"
    local common="--root --json --progress --trace --help --version"
    local keys="url product productVersion bonus manufacturer manufacturerDataUrl manufacturerLogoUrl proxy"
    keys+=" certificates retries connections limitRate metered diskReserve historyVersions historyBytes"
    # The words from the command to the current word, without options and values of global options.
    local command="" word before=""
    local -a root=() words=()
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case $before in
            --root) root=(--root "${word/#\~\//$HOME/}") ;;
            --trace | --progress) ;;
            *) [[ $word == -* ]] || words+=("$(printf '%s' "$word" | sed -E "s/^[\"']//; s/[\"']$//; s/\\\\(.)/\1/g")") ;;
        esac
        before=$word
    done
    command=${words[0]}
    COMPREPLY=()

    case $previous in
        --root | --output-dir) COMPREPLY=($(compgen -d -- "$current")); return ;;
        --trace | --output | --cacert | --report) COMPREPLY=($(compgen -f -- "$current")); return ;;
        --progress) COMPREPLY=($(compgen -W "auto bar plain none" -- "$current")); return ;;
        --metered) COMPREPLY=($(compgen -W "fetch postpone" -- "$current")); return ;;
        --since) _orv_library_values '"number":[0-9]+' runs; return ;;
    esac
    [[ $current != -* ]] && case $previous in
        filters) COMPREPLY=($(compgen -W "list show add remove use drop-database merge" -- "$current")); return ;;
        manufacturers) COMPREPLY=($(compgen -W "list show refresh" -- "$current")); return ;;
        styles) COMPREPLY=($(compgen -W "list show" -- "$current")); return ;;
        settings) COMPREPLY=($(compgen -W "list get set unset" -- "$current")); return ;;
        metered) [[ ${words[1]} == set ]] && COMPREPLY=($(compgen -W "fetch postpone" -- "$current")) && return ;;
        get | set | unset) [[ $command == settings ]] && COMPREPLY=($(compgen -W "$keys" -- "$current")) && return ;;
        runs) COMPREPLY=($(compgen -W "show" -- "$current")); return ;;
        help) COMPREPLY=($(compgen -W "$commands" -- "$current")); return ;;
        log) COMPREPLY=($(compgen -W "show path clear" -- "$current")); return ;;
    esac

    if [[ $current != -* ]]; then
        [[ -z $command ]] && COMPREPLY=($(compgen -W "$commands" -- "$current")) && return
        _orv_library_known && return
        COMPREPLY=($(compgen -f -- "$current"))
        return
    fi
    local service="--url --product --product-version --retries --no-database-check --cacert --proxy --limit-rate --metered"
    service+=" --core-only --index --bonus --manufacturer"
    local options=""
    case $command in
        update) options="$service" ;;
        doctor) options="$service --report" ;;
        check) options="$service --explain --quiet --max-age" ;;
        unpack) options="--beside --output-dir" ;;
        import) options="--proprietary --dry-run --set-aside --no-database-check" ;;
        pack) options="--output --no-database-check" ;;
        filters) options="--id" ;;
        manufacturers) options="--data-url --logo-url" ;;
        verify) options="--repair" ;;
        news) options="--since" ;;
        paths) options="--create" ;;
        serve) options="--address --port" ;;
    esac
    COMPREPLY=($(compgen -W "$options $common" -- "$current"))
}
complete -o filenames -F _orv_library orv-library
