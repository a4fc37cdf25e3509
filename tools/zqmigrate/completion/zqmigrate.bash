# SPDX-License-Identifier: MIT
# Completion of the command line of `zqmigrate` in bash.

_zqmigrate() {
    local word=${COMP_WORDS[COMP_CWORD]} command='' over='' index each offers
    COMPREPLY=()
    for ((index = 1; index < COMP_CWORD; ++index)); do
        each=${COMP_WORDS[index]}
        if [[ -z $over && $each == -- ]]; then
            over=1
        elif [[ -z $over && $each == --extension ]]; then
            ((++index))
        elif [[ -z $command && ($over || $each != -*) ]]; then
            command=$each
        fi
    done
    if ((index > COMP_CWORD)); then # the value of --extension
        return
    fi
    if [[ -z $over && $word == -* ]]; then
        offers=(-W '--keep-original --create-parents --overwrite --rename --extension --dot-files
            --dry-run --json --quiet --verbose --help --version')
    elif [[ -z $command ]]; then
        offers=(-W 'file folder batch')
    else # names are quoted by bash itself
        compopt -o filenames 2>/dev/null
        offers=("$([[ $command == file ]] && echo -f || echo -d)")
    fi
    while IFS= read -r each; do
        COMPREPLY+=("$each")
    done < <(compgen "${offers[@]}" -- "$word")
}

complete -F _zqmigrate zqmigrate
