# Completion of busquill-trace for bash.

# Files whose name matches a pattern, and directories.
_busquill_trace_files() {
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(
        compgen -d -- "$word"
        compgen -f -X "!$1" -- "$word"
    )
}

# Words of several lines, of which some hold blanks.
_busquill_trace_words() {
    local each
    COMPREPLY=()
    while IFS= read -r each; do
        [[ $each == "$word"* ]] && COMPREPLY+=("$(printf %q "$each")")
    done <<<"$1"
}

# The names and labels of the bus that the line tells, a line each.
_busquill_trace_names() {
    local told=() i
    for ((i = 1; i < ${#words[@]} - 1; ++i)); do
        case ${words[i]} in
        --bus | --model | --width) told+=("${words[i]}" "${words[++i]//\\/}") ;;
        --bus=* | --model=* | --width=*) told+=("${words[i]//\\/}") ;;
        esac
    done
    busquill-trace names "${told[@]}" 2>/dev/null
}

# Of some lines those that begin with the word, in any case; with "list" by what stands behind its
# last comma. Bash has words of its own already for what comes before a "=" or ":".
_busquill_trace_begun() {
    local begun=$word before='' quote='' have=${words[-1]} last=${COMP_WORDS[COMP_CWORD]} each
    [[ $last == [=:] ]] || have=${have%"$last"}
    [[ $have == --*=* ]] && have=${have#*=}
    have=${have//\\/}
    [[ $begun == [\"\']* ]] && quote=${begun:0:1} begun=${begun:1}
    begun=${begun//\\/}
    [[ $2 == list ]] && before=${begun%"${begun##*,}"} begun=${begun##*,}
    COMPREPLY=()
    while IFS= read -r each; do
        if [[ $each && ${each,,} == "${begun,,}"* ]]; then
            each=$before$each
            each=${each:${#have}}
            [[ $quote ]] || each=$(printf %q "$each")
            COMPREPLY+=("${each//\\,/,}")
        fi
    done <<<"$1"
}

_busquill_trace() {
    local commands="info list search filter convert compare stats names setup board capture"
    local words=() word command='' options='' each i
    # Bash takes "--format=csv" and "AD[63:0]" for several words.
    for ((i = 0; i <= COMP_CWORD; ++i)); do
        each=${COMP_WORDS[i]}
        if ((i > 1)) && [[ $each == [=:] || ${COMP_WORDS[i - 1]} == [=:] ]]; then
            words[-1]+=$each
        else
            words+=("$each")
        fi
    done
    word=${words[-1]}
    COMPREPLY=()
    for ((i = 1; i < ${#words[@]} - 1; ++i)); do
        if [[ " $commands " == *" ${words[i]} "* ]]; then
            command=${words[i]}
            break
        fi
    done
    case $command in
    info) options="output overwrite json model bus width" ;;
    list) options="output overwrite json model bus width from to columns zoom format" ;;
    search) options="output overwrite json model bus width pattern from backward all" ;;
    filter) options="output overwrite model bus width pattern" ;;
    convert) options="output overwrite model bus width from to zoom format changes" ;;
    compare) options="output overwrite json model bus width ignore align" ;;
    stats) options="output overwrite json model bus width" ;;
    names) options="output overwrite json model bus width" ;;
    setup) options="output overwrite json model bus width payload" ;;
    board) options="output json port baud" ;;
    capture) options="output overwrite port baud setup timeout repeat stop-if-found" ;;
    esac

    local option=
    if [[ $word == --*=* ]]; then
        option=${word%%=*}
        word=${word#*=}
    elif ((${#words[@]} > 1)); then
        option=${words[-2]}
    fi
    case $option in
    --format)
        case $command in
        list) _busquill_trace_words $'text\ncsv\njson' ;;
        *) _busquill_trace_words $'vcd\ncsv\nsr' ;;
        esac
        return
        ;;
    --width) _busquill_trace_words $'32\n64' && return ;;
    --align) _busquill_trace_words $'trigger\nstart' && return ;;
    --model)
        _busquill_trace_words $'PCIKite\nPCIWren\nVMEKite\nVMEWren\nVMELark\nPCFKite\nPCFWren
PMCKite\nPMCWren\nVMEKiteP2\nVMEKiteP0\nVSBKite\nDemo Mode'
        return
        ;;
    --bus)
        _busquill_trace_words $'PCI\nPCI-X\nVME\n2eVME\n2eSST\nPC/104\nPC/104+\nVMEP2\nVMEP0\nVSB'
        return
        ;;
    --port)
        case $word in
        /*) _busquill_trace_files '*' ;;
        *) _busquill_trace_words $'COM1\nCOM2\nCOM3\nCOM4\nCOM5\nCOM6\nCOM7\nCOM8\nUSB\nUSB2' ;;
        esac
        return
        ;;
    --baud) _busquill_trace_words $'9600\n19200\n38400\n57600' && return ;;
    --setup) _busquill_trace_files '*.tsp' && return ;;
    --output | -o)
        case $command in
        filter | capture) _busquill_trace_files '*.tra' ;;
        *) _busquill_trace_files '*' ;;
        esac
        return
        ;;
    --pattern | -p)
        case $word in
        *=*) _busquill_trace_begun "$(_busquill_trace_names | grep =)" ;;
        *)
            compopt -o nospace 2>/dev/null
            _busquill_trace_begun "$(_busquill_trace_names | grep -v = | sed 's/$/=/')"
            ;;
        esac
        return
        ;;
    --columns | --ignore) _busquill_trace_begun "$(_busquill_trace_names | grep -v =)" list && return ;;
    --from | --to | --timeout | --repeat | --stop-if-found) return ;;
    esac

    case $command,$word in
    ,-*) mapfile -t COMPREPLY < <(compgen -W "--help --version" -- "$word") ;;
    ,*) mapfile -t COMPREPLY < <(compgen -W "$commands" -- "$word") ;;
    *,-*)
        for option in help version $options; do
            [[ --$option == "$word"* ]] && COMPREPLY+=("--$option")
        done
        ;;
    setup,*) _busquill_trace_files '*.tsp' ;;
    board,* | capture,*) ;;
    *) _busquill_trace_files '*.tra' ;;
    esac
}

complete -F _busquill_trace busquill-trace
