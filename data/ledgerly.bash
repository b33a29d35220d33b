# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Ledgerly developers

# Bash completion for ledgerly. The commands, the options, the command each
# option goes with ("import: ..." in its description) and the values of an
# option whose value is a list ("<mdy|dmy>") are read from `ledgerly --help`
# at each completion, so a new command or option completes without a change
# here. Saved profiles come from `ledgerly profiles` where that command
# exists.

# File suffixes each command reads or writes; a command not listed here
# takes any file.
declare -gA _ledgerly_suffixes=(
    [import]='csv|qif|ofx|qfx'
    [export]='csv|qif'
)

_ledgerly()
{
    local cur prev words cword split
    _init_completion -s || return

    local program=${words[0]} help
    __expand_tilde_by_ref program
    help=$(LC_ALL=C "$program" --help 2>/dev/null) || return

    # The help's application description lists the commands, one a line
    # indented by two blanks ("  import FILE   Adds ..."); its Options section
    # lists the options.
    local line section=description description
    local -a commands=() options=()
    local -A command_argument=() option_value=() option_commands=()
    while IFS= read -r line; do
        case $line in
            Options:) section=options; continue ;;
            Arguments:) section=arguments; continue ;;
        esac
        if [[ $section == description && $line =~ ^\ \ ([a-z][a-z-]*)(\ ([A-Z][A-Z_]*))?(\ |$) ]]; then
            # A command with sub-commands stands on several lines; it is
            # offered once, with the argument its first line names.
            if [[ -z ${command_argument[${BASH_REMATCH[1]}]+set} ]]; then
                commands+=("${BASH_REMATCH[1]}")
                command_argument[${BASH_REMATCH[1]}]=${BASH_REMATCH[3]}
            fi
        elif [[ $section == options && $line =~ ^\ \ (-[[:alnum:]],\ )?(--[[:alnum:]-]+)(\ \<([^>]*)\>)?\ +(.*)$ ]]; then
            local option=${BASH_REMATCH[2]}
            options+=("$option")
            option_value[$option]=${BASH_REMATCH[4]}
            description=${BASH_REMATCH[5]}
            if [[ $description =~ ^([a-z][a-z-]*(,\ [a-z][a-z-]*)*):\  ]]; then
                option_commands[$option]=${BASH_REMATCH[1]//,/}
            fi
        fi
    done <<<"$help"

    # The command is the first word that is neither an option nor an
    # option's value.
    local command="" after_command=0 i word
    for ((i = 1; i < cword; i++)); do
        word=${words[i]}
        if [[ $word == -* ]]; then
            [[ $word != *=* && -n ${option_value[$word]-} ]] && ((i++))
        elif [[ -z $command ]]; then
            command=$word
        else
            ((after_command++))
        fi
    done

    if [[ -n ${option_value[$prev]-} ]]; then
        local value=${option_value[$prev]}
        if [[ $value == *'|'* ]]; then
            COMPREPLY=($(compgen -W "${value//|/ }" -- "$cur"))
        elif [[ $prev == --profile || ${value,,} == @(name|profile) ]]; then
            _ledgerly_profiles "$program"
        elif [[ ${value,,} == @(file|path) ]]; then
            _filedir
        elif [[ ${value,,} == @(dir|directory) ]]; then
            _filedir -d
        fi
        return
    fi
    $split && return

    if [[ $cur == -* ]]; then
        local -a offered=()
        local option
        for option in "${options[@]}"; do
            if [[ -z $command || -z ${option_commands[$option]-} ||
                " ${option_commands[$option]} " == *" $command "* ]]; then
                offered+=("$option")
            fi
        done
        COMPREPLY=($(compgen -W "${offered[*]}" -- "$cur"))
        [[ ${COMPREPLY-} == *= ]] && compopt -o nospace
        return
    fi

    if [[ -z $command ]]; then
        COMPREPLY=($(compgen -W "${commands[*]}" -- "$cur"))
        return
    fi
    # One argument after the command, of the kind the help names.
    ((after_command > 0)) && return
    case ${command_argument[$command]-} in
        FILE) _filedir "${_ledgerly_suffixes[$command]-}" ;;
        DIR | DIRECTORY) _filedir -d ;;
        NAME | PROFILE) _ledgerly_profiles "$program" ;;
    esac
}

# The saved profiles' names, one a line, when the program can list them.
_ledgerly_profiles()
{
    local names line
    names=$(LC_ALL=C "$1" profiles 2>/dev/null) || return
    # A line is the name, a tab, and the mapping: the name alone completes.
    local -a listed=()
    while IFS= read -r line; do
        [[ -n $line ]] && listed+=("${line%%$'\t'*}")
    done <<<"$names"
    local IFS=$'\n'
    COMPREPLY=($(compgen -W "${listed[*]}" -- "$cur"))
}

complete -F _ledgerly ledgerly
