# Completion of busquill-trace for fish.

# The names and labels of the bus that the line tells.
function __busquill_trace_names
    set -l told
    set -l words (commandline -opc)
    for i in (seq (count $words))
        switch $words[$i]
            case --bus --model --width
                set -a told $words[$i] $words[(math $i + 1)]
            case '--bus=*' '--model=*' '--width=*'
                set -a told $words[$i]
        end
    end
    busquill-trace names $told 2>/dev/null
end

function __busquill_trace_columns
    __busquill_trace_names | string match -v '*=*'
end

# Names while there is no "=" yet, then labels.
function __busquill_trace_patterns
    if string match -q '*=*' -- (string replace -r '^--pattern=' '' -- (commandline -ct))
        __busquill_trace_names | string match '*=*'
    else
        __busquill_trace_columns | string replace -r '$' =
    end
end

set -l commands info list search filter convert compare stats names setup board capture
set -l some __fish_seen_subcommand_from

complete -c busquill-trace -f
complete -c busquill-trace -n "not $some $commands" -a info -d "what is in captures"
complete -c busquill-trace -n "not $some $commands" -a list -d "the listing, as the State window shows it"
complete -c busquill-trace -n "not $some $commands" -a search -d "the numbers of the samples that match a pattern"
complete -c busquill-trace -n "not $some $commands" -a filter -d "a capture of the samples that match a pattern"
complete -c busquill-trace -n "not $some $commands" -a convert -d "a value change dump, comma separated values or a session file"
complete -c busquill-trace -n "not $some $commands" -a compare -d "where two captures differ"
complete -c busquill-trace -n "not $some $commands" -a stats -d "transactions, bytes, bursts, wait states and findings"
complete -c busquill-trace -n "not $some $commands" -a names -d "the signals and labels of a bus, as patterns take them"
complete -c busquill-trace -n "not $some $commands" -a setup -d "a trigger program in plain words"
complete -c busquill-trace -n "not $some $commands" -a board -d "the connected board and its bus"
complete -c busquill-trace -n "not $some $commands" -a capture -d "capture with the connected board"

complete -c busquill-trace -n "$some info list search filter convert compare stats names" -k -a "(__fish_complete_suffix .tra)"
complete -c busquill-trace -n "$some setup" -k -a "(__fish_complete_suffix .tsp)"

complete -c busquill-trace -s h -l help -d "help"
complete -c busquill-trace -s V -l version -d "the version"
complete -c busquill-trace -n "$some info list search convert compare stats names setup board" -s o -l output -r -F -d "write to a file"
complete -c busquill-trace -n "$some filter capture" -s o -l output -r -k -a "(__fish_complete_suffix .tra)" -d "write to a file"
complete -c busquill-trace -n "$some info list search filter convert compare stats names setup capture" -l overwrite -d "let -o replace a file that is read"
complete -c busquill-trace -n "$some info list search compare stats names setup board" -l json -d "print JSON"
complete -c busquill-trace -n "$some info list search filter convert compare stats names setup" -l model -x -a "PCIKite PCIWren VMEKite VMEWren VMELark PCFKite PCFWren PMCKite PMCWren VMEKiteP2 VMEKiteP0 VSBKite Demo\ Mode" -d "board that made the capture"
complete -c busquill-trace -n "$some info list search filter convert compare stats names setup" -l bus -x -a "PCI PCI-X VME 2eVME 2eSST PC/104 PC/104+ VMEP2 VMEP0 VSB" -d "bus that was captured"
complete -c busquill-trace -n "$some info list search filter convert compare stats names setup" -l width -x -a "32 64" -d "width of the bus"
complete -c busquill-trace -n "$some list search convert" -l from -x -d "begin at this sample; the trigger is 0"
complete -c busquill-trace -n "$some list convert" -l to -x -d "end at this sample"
complete -c busquill-trace -n "$some list" -l columns -x -a "(__fish_complete_list , __busquill_trace_columns)" -d "these columns only"
complete -c busquill-trace -n "$some list convert" -l zoom -d "the Power Zoom samples"
complete -c busquill-trace -n "$some list" -l format -x -a "text csv json" -d "form of the output"
complete -c busquill-trace -n "$some convert" -l format -x -a "vcd csv sr" -d "form of the output"
complete -c busquill-trace -n "$some search filter" -s p -l pattern -x -a "(__busquill_trace_patterns)" -d "samples with this value: NAME=VALUE"
complete -c busquill-trace -n "$some search" -l backward -d "search towards the first sample"
complete -c busquill-trace -n "$some search" -l all -d "all matches, not the first alone"
complete -c busquill-trace -n "$some convert" -l changes -d "a row for each change, not for each sample"
complete -c busquill-trace -n "$some compare" -l ignore -x -a "(__fish_complete_list , __busquill_trace_columns)" -d "leave these signals out"
complete -c busquill-trace -n "$some compare" -l align -x -a "trigger start" -d "pair samples by number or by place"
complete -c busquill-trace -n "$some setup" -l payload -d "also the bytes that go to the board"
complete -c busquill-trace -n "$some board capture" -l port -r -F -a "COM1 COM2 COM3 COM4 COM5 COM6 COM7 COM8 USB USB2" -d "where the board is"
complete -c busquill-trace -n "$some board capture" -l baud -x -a "9600 19200 38400 57600" -d "rate of the serial line"
complete -c busquill-trace -n "$some capture" -l setup -r -k -a "(__fish_complete_suffix .tsp)" -d "trigger program"
complete -c busquill-trace -n "$some capture" -l timeout -x -d "end after so many seconds"
complete -c busquill-trace -n "$some capture" -l repeat -x -d "run so many times, 0 without end"
complete -c busquill-trace -n "$some capture" -l stop-if-found -x -d "end the runs when a capture holds this: NAME=VALUE"
