# SPDX-License-Identifier: MIT
# Completion of the command line of `zqmigrate` in bash.

# Offers the given words that begin with the first one.
_zqmigrate_offer() {
    local word=$1 each
    shift
    for each; do
        if [[ $each == "$word"* ]]; then
            COMPREPLY+=("$each")
        fi
    done
}

# Paths that begin with the word, folders only for `-d`. Names are quoted by bash itself.
_zqmigrate_paths() {
    compopt -o filenames 2>/dev/null
    local path
    while IFS= read -r path; do
        COMPREPLY+=("$path")
    done < <(compgen "$1" -- "$2")
}

_zqmigrate() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command='' over='' index each
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
    if [[ -z $over && $before == --extension ]]; then
        return
    fi
    if [[ -z $over && $word == -* ]]; then
        _zqmigrate_offer "$word" --keep-original --create-parents --overwrite --rename --extension --dot-files \
            --dry-run --json --quiet --verbose --help --version
    elif [[ -z $command ]]; then
        _zqmigrate_offer "$word" file folder batch
    elif [[ $command == file ]]; then
        _zqmigrate_paths -f "$word"
    else
        _zqmigrate_paths -d "$word"
    fi
}

complete -F _zqmigrate zqmigrate
