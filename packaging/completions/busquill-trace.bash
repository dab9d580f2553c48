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

_busquill_trace() {
    local commands="info list search filter convert compare stats setup board capture"
    local words=("${COMP_WORDS[@]:0:COMP_CWORD+1}") word=${COMP_WORDS[COMP_CWORD]} command='' options='' i
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; ++i)); do
        if [[ " $commands " == *" ${words[i]} "* ]]; then
            command=${words[i]}
            break
        fi
    done
    case $command in
    info) options="output json model bus width" ;;
    list) options="output json model bus width from to columns zoom format" ;;
    search) options="output json model bus width pattern from backward all" ;;
    filter) options="output model bus width pattern" ;;
    convert) options="output model bus width from to zoom format changes" ;;
    compare) options="output json model bus width ignore align" ;;
    stats) options="output json model bus width" ;;
    setup) options="output json model bus width payload" ;;
    board) options="output json port baud" ;;
    capture) options="output port baud setup timeout repeat stop-if-found" ;;
    esac

    # "--format=csv" comes as three words.
    local option=${words[COMP_CWORD - 1]}
    if [[ $word == = ]]; then
        word=
    elif [[ $option == = ]]; then
        option=${words[COMP_CWORD - 2]}
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
    --from | --to | --columns | --pattern | -p | --ignore | --timeout | --repeat | --stop-if-found)
        return
        ;;
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
