# SPDX-License-Identifier: MIT
# Completion of the command line of `defaults` in bash.

_defaults_keys() {
    defaults export "$1" - 2>/dev/null | sed -n 's|^\t<key>\(.*\)</key>$|\1|p'
}

_defaults() {
    local word=${COMP_WORDS[COMP_CWORD]} command=${COMP_WORDS[1]:-}
    COMPREPLY=()
    case $COMP_CWORD in
        1)
            mapfile -t COMPREPLY < <(compgen -W \
                "read read-type write remove delete rename domains find import export help --help --version" -- "$word")
            ;;
        2)
            case $command in
                read | read-type | write | remove | delete | rename | import | export)
                    mapfile -t COMPREPLY < <(compgen -W "-g $(defaults domains 2>/dev/null | tr -d ',')" -- "$word")
                    ;;
            esac
            ;;
        3)
            case $command in
                read | read-type | write | remove | delete | rename)
                    local IFS=$'\n'
                    mapfile -t COMPREPLY < <(compgen -W "$(_defaults_keys "${COMP_WORDS[2]}")" -- "$word")
                    ;;
                import | export)
                    mapfile -t COMPREPLY < <(compgen -f -- "$word")
                    ;;
            esac
            ;;
        *)
            if [[ $command == write && $word == -* ]]; then
                mapfile -t COMPREPLY < <(compgen -W \
                    "-string -int -float -bool -date -data -array -array-add -dict -dict-add" -- "$word")
            fi
            ;;
    esac
}

complete -F _defaults defaults
