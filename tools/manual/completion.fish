# Completion of @TOOL@ for fish. Made from what it says with --help.
set -g __@FUNCTION@_rows (string split \n -- '@TABLE@')

# Whether the table has this slot, with this word if one is given, at the path.
function __@FUNCTION@_has --argument-names path slot word
    set -l start "$path|$slot|"
    test -n "$word"; and set start "$start$word|"
    string match -qr -- '^'(string escape --style=regex -- $start) $__@FUNCTION@_rows
end

function __@FUNCTION@_complete
    set -l words (commandline -opc)[2..-1]
    set -l word (commandline -ct)
    set -l path ''
    set -l value ''
    set -l place 1
    set -l prefix ''
    for i in (seq (count $words))
        set -l before $words[$i]
        if test -n "$value"
            set value ''
        else if test "$before" = --wait; and string match -qr '^[0-9]+$' -- "$words[(math $i + 1)]"
            set value $before
        else if string match -q -- '-*' $before
            if __@FUNCTION@_has "$path" $before; or __@FUNCTION@_has '*' $before
                set value $before
            end
        else if __@FUNCTION@_has "$path" command $before
            set path (string trim --left --chars=/ -- "$path/$before")
            set place 1
        else
            set place (math $place + 1)
        end
    end
    set -l slot $place
    if test -n "$value"
        set slot $value
    else if string match -q -- '--*=*' $word
        set slot (string split -m 1 = -- $word)[1]
        set prefix "$slot="
        set word (string split -m 1 = -- $word)[2]
    else if string match -q -- '-*' $word
        set slot option
    else if __@FUNCTION@_has "$path" command
        set slot command
    else if not __@FUNCTION@_has "$path" $place
        set slot +
    end
    for row in $__@FUNCTION@_rows
        set -l parts (string split '|' -- $row)
        test "$parts[2]" = "$slot" || continue
        test "$parts[1]" = "$path" -o "$parts[1]" = '*' || continue
        switch $parts[3]
            case '<file>'
                printf '%s\n' $prefix(__fish_complete_path $word)
            case '<folder>'
                printf '%s\n' $prefix(__fish_complete_directories $word '')
            case '<text>'
            case '*'
                printf '%s\t%s\n' $prefix$parts[3] $parts[4]
        end
    end
end

complete -c @TOOL@ -f -a '(__@FUNCTION@_complete)'
