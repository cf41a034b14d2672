# bash completion for orv-library
_orv_library() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local commands="paths update list info unpack import undo pack filters manufacturers styles log status verify"
    commands+=" history restore hold release news"
    commands+=" publish serve sample"
    commands+=" help settings check runs doctor"
    local common="--root --json --progress --trace --help --version"
    local keys="url product productVersion bonus manufacturer manufacturerDataUrl manufacturerLogoUrl proxy"
    keys+=" certificates retries connections limitRate historyVersions historyBytes"
    local command="" word
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        [[ " $commands " == *" $word "* ]] && command=$word && break
    done

    case $previous in
        --root | --output-dir) COMPREPLY=($(compgen -d -- "$current")); return ;;
        --trace | --output | --cacert | --report) COMPREPLY=($(compgen -f -- "$current")); return ;;
        --progress) COMPREPLY=($(compgen -W "auto bar plain none" -- "$current")); return ;;
    esac
    [[ $current != -* ]] && case $previous in
        filters) COMPREPLY=($(compgen -W "list show add remove use drop-database merge" -- "$current")); return ;;
        manufacturers) COMPREPLY=($(compgen -W "list show refresh" -- "$current")); return ;;
        styles) COMPREPLY=($(compgen -W "list show" -- "$current")); return ;;
        settings) COMPREPLY=($(compgen -W "list get set unset" -- "$current")); return ;;
        get | set | unset) [[ $command == settings ]] && COMPREPLY=($(compgen -W "$keys" -- "$current")) && return ;;
        runs) COMPREPLY=($(compgen -W "show" -- "$current")); return ;;
        help) COMPREPLY=($(compgen -W "$commands" -- "$current")); return ;;
        log) COMPREPLY=($(compgen -W "show path clear" -- "$current")); return ;;
    esac

    if [[ $current != -* ]]; then
        [[ -z $command ]] && COMPREPLY=($(compgen -W "$commands" -- "$current")) && return
        COMPREPLY=($(compgen -f -- "$current"))
        return
    fi
    local service="--url --product --product-version --retries --no-database-check --cacert --proxy --limit-rate"
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
