#compdef @TOOL@
# Completion of @TOOL@ for zsh. Made from what it says with --help.

_@FUNCTION@() {
    local table='@TABLE@'
    local -a rows=("${(@f)table}") parts proposals
    local where= value= before slot row word=$words[CURRENT] prefix=
    local -i place=1 i
    for ((i = 2; i < CURRENT; ++i)); do
        before=$words[i]
        if [[ -n $value ]]; then
            value=
        elif [[ $before == --wait && $words[i+1] == <-> ]]; then
            value=$before
        elif [[ $before == -* ]]; then
            [[ -n ${(M)rows:#(${(b)where}|\*)\|$before\|*} ]] && value=$before
        elif [[ -n ${(M)rows:#${(b)where}\|command\|${(b)before}\|*} ]]; then
            where=${where:+$where/}$before place=1
        else
            ((++place))
        fi
    done
    if [[ -n $value ]]; then
        slot=$value
    elif [[ $word == --*=* ]]; then
        slot=${word%%=*} prefix=${word%%=*}=
    elif [[ $word == -* ]]; then
        slot=option
    elif [[ -n ${(M)rows:#${(b)where}\|command\|*} ]]; then
        slot=command
    elif [[ -n ${(M)rows:#${(b)where}\|$place\|*} ]]; then
        slot=$place
    else
        slot=+
    fi
    [[ -n $prefix ]] && compset -P '*='
    for row in ${(M)rows:#(${(b)where}|\*)\|${(b)slot}\|*}; do
        parts=("${(@s:|:)row}")
        case $parts[3] in
        '<file>') _files && return ;;
        '<folder>') _files -/ && return ;;
        '<text>') return 1 ;;
        *) proposals+=("${parts[3]//:/\\:}${parts[4]:+:$parts[4]}") ;;
        esac
    done
    _describe '@TOOL@' proposals
}

_@FUNCTION@ "$@"
