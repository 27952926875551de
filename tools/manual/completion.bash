# Completion of @TOOL@ for bash. Made from what it says with --help.
_@FUNCTION@_rows='@TABLE@'

# Whether the table has this slot, with this word if one is given, at the path.
_@FUNCTION@_has() { # path slot [word]
    [[ $'\n'$_@FUNCTION@_rows == *$'\n'"$1|$2|"${3:+"$3|"}* ]]
}

_@FUNCTION@() {
    local word=${COMP_WORDS[COMP_CWORD]} path= place=1 value= slot i row at rowSlot proposal
    # An equals sign is a word of its own.
    for ((i = 1; i < COMP_CWORD; ++i)); do
        local before=${COMP_WORDS[i]}
        if [[ $before == = ]]; then
            value=${COMP_WORDS[i - 1]}
        elif [[ $value ]]; then
            value=
        elif [[ $before == --wait && ${COMP_WORDS[i + 1]} =~ ^[0-9]+$ ]]; then
            value=$before
        elif [[ $before == -* ]]; then
            if _@FUNCTION@_has "$path" "$before" || _@FUNCTION@_has '*' "$before"; then value=$before; fi
        elif _@FUNCTION@_has "$path" command "$before"; then
            path=${path:+$path/}$before place=1
        else
            ((++place))
        fi
    done
    [[ $word == = ]] && value=${COMP_WORDS[COMP_CWORD - 1]} word=
    slot=$place
    if [[ $value ]]; then
        slot=$value
    elif [[ $word == -* ]]; then
        slot=option
    elif _@FUNCTION@_has "$path" command; then
        slot=command
    elif ! _@FUNCTION@_has "$path" "$place"; then
        slot=+
    fi
    COMPREPLY=()
    while IFS='|' read -r at rowSlot proposal _; do
        [[ $rowSlot == "$slot" && ($at == "$path" || $at == '*') ]] || continue
        case $proposal in
        '<file>')
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
            ;;
        '<folder>')
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -d -- "$word")
            ;;
        '<text>') ;;
        "$word"*) COMPREPLY+=("$proposal") ;;
        esac
    done <<<"$_@FUNCTION@_rows"
}

complete -F _@FUNCTION@ @TOOL@
