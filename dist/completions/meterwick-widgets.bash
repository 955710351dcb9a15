# bash completion for meterwick-widgets
_meterwick_widgets() {
    local cur prev words cword
    _init_completion || return
    local commands="kinds placeholder snapshot timeline choices lookup place list edit remove reload bar doctor render describe gallery demo"
    local kinds="focus accounts accounts-limit sparkline dashboard MeterwickFocus MeterwickAccounts MeterwickAccountsByLimit MeterwickSparkline MeterwickDashboard"
    local families="systemSmall systemMedium systemLarge systemExtraLarge"

    case "$prev" in
        --container|--output) _filedir -d; [[ $prev == --output ]] && _filedir; return ;;
        --family) COMPREPLY=($(compgen -W "$families" -- "$cur")); return ;;
        --format) COMPREPLY=($(compgen -W "waybar plain" -- "$cur")); return ;;
        --appearance) COMPREPLY=($(compgen -W "light dark" -- "$cur")); return ;;
        --now|--set|--entry|--scale|--at) return ;;
    esac

    local command="" i
    for ((i = 1; i < cword; i++)); do
        if [[ " $commands " == *" ${words[i]} "* ]]; then command=${words[i]}; break; fi
    done

    if [[ -z $command ]]; then
        COMPREPLY=($(compgen -W "$commands --container --now --help --version" -- "$cur"))
        return
    fi
    case "$command" in
        placeholder|snapshot|timeline|render|describe|place)
            if [[ $cur == -* ]]; then
                COMPREPLY=($(compgen -W "--family --set --entry --scale --appearance --output --at --help" -- "$cur"))
            else
                COMPREPLY=($(compgen -W "$kinds" -- "$cur"))
            fi ;;
        choices|lookup) COMPREPLY=($(compgen -W "tool provider" -- "$cur")) ;;
        bar) COMPREPLY=($(compgen -W "--set --format --follow --help" -- "$cur")) ;;
        doctor) COMPREPLY=($(compgen -W "--json --help" -- "$cur")) ;;
        reload) COMPREPLY=($(compgen -W "$kinds" -- "$cur")) ;;
        gallery|demo) COMPREPLY=($(compgen -W "--output --help" -- "$cur")) ;;
        edit) COMPREPLY=($(compgen -W "--set --family --at --help" -- "$cur")) ;;
        *) COMPREPLY=($(compgen -W "--help" -- "$cur")) ;;
    esac
}
complete -F _meterwick_widgets meterwick-widgets
