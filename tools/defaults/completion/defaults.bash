# SPDX-License-Identifier: MIT
# Completion of the command line of `zqdefaults`, also installed as `defaults`, in bash.
#
# Names of domains and keys come from files. `compgen -W` carries out the commands that its words hold, so such
# names never go there.

_defaults_domains() {
    local domains
    domains=$("${COMP_WORDS[0]}" domains 2>/dev/null)
    printf '%s\n' -g "${domains//, /$'\n'}"
}

_defaults_keys() {
    "${COMP_WORDS[0]}" export "$1" - 2>/dev/null | sed -n $'s|^\t<key>\\(.*\\)</key>$|\\1|p' |
        sed -e 's/&lt;/</g' -e 's/&gt;/>/g' -e 's/&amp;/\&/g'
}

# Offers the lines of the input that begin with the word.
_defaults_offer() {
    local line quoted
    while IFS= read -r line; do
        printf -v quoted %q "$line"
        if [[ -n $line && ($line == "$1"* || $quoted == "$1"*) ]]; then
            COMPREPLY+=("$quoted")
        fi
    done
}

_defaults() {
    local word=${COMP_WORDS[COMP_CWORD]} command=${COMP_WORDS[1]:-} domain=${COMP_WORDS[2]:-}
    COMPREPLY=()
    if [[ $command == lint && $COMP_CWORD -gt 1 ]]; then
        _defaults_offer "$word" < <(compgen -f -- "$word")
        return
    fi
    case $COMP_CWORD in
        1)
            mapfile -t COMPREPLY < <(compgen -W \
                "read read-type write remove delete rename domains find import export lint help --help --version" -- "$word")
            ;;
        2)
            case $command in
                read | read-type | write | remove | delete | rename | import | export)
                    _defaults_offer "$word" < <(_defaults_domains; [[ $command != read ]] || echo --json)
                    ;;
            esac
            ;;
        3)
            case $command in
                read | read-type | write | remove | delete | rename)
                    _defaults_offer "$word" < <(_defaults_keys "$domain")
                    ;;
                import | export)
                    _defaults_offer "$word" < <(compgen -f -- "$word")
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

complete -F _defaults zqdefaults
if [[ $OSTYPE != darwin* ]]; then # where another program has the plain name
    complete -F _defaults defaults
fi
