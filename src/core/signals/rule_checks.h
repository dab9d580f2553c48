/// Findings of the board's protocol checker, code 1 first. The texts are the board's own.
#pragma once

#include "signals/signal_table_rows.h"

#include <array>

namespace busquill {

// clang-format off

inline constexpr std::array<ValueRow, 114> pciRuleChecks = {{
    {"FRAME deasserted before IRDY asserted", "00000001", 0}, // 1
    {"FRAME asserted without IRDY or TRDY", "00000010", 0}, // 2
    {"FRAME not deasserted within 3 clocks after STOP", "00000011", 0}, // 3
    {"No FRAME within 16 clocks from GNT", "00000100", 0}, // 4
    {"No IRDY after FRAME asserted", "00000101", 0}, // 5
    {"No IRDY within 8 clocks from FRAME", "00000110", 0}, // 6
    {"Invalid Command on CB/E[3:0]", "00000111", 0}, // 7
    {"Invalid Command on CB/E[7:4] during DAC cycle", "00001000", 0}, // 8
    {"IRDY asserted during turnaround cycle", "00001001", 0}, // 9
    {"Address PAR error", "00001010", 0}, // 10
    {"Improper Master Abort - IRDY deasserted before TRDY/STOP asserted", "00001011", 0}, // 11
    {"FRAME asserted before GNT", "00001100", 0}, // 12
    {"FRAME and IRDY high when STOP is asserted", "00001101", 0}, // 13
    {"Lock not released", "00001110", 0}, // 14
    {"LOCK asserted after target abort", "00001111", 0}, // 15
    {"IRDY asserted when FRAME deasserted", "00010000", 0}, // 16
    {"TRDY asserted before DEVSEL", "00010001", 0}, // 17
    {"LOCK asserted during address phase", "00010010", 0}, // 18
    {"AD[1:0] not 0 during MWI cycle", "00010011", 0}, // 19
    {"Master Abort during  DEVSEL", "00010100", 0}, // 20
    {"FRAME deasserted after DAC cycle", "00010101", 0}, // 21
    {"Address does not match Byte Enables", "00010110", 0}, // 22
    {"No TRDY or STOP within 16 clocks from initial data phase", "00010111", 0}, // 23
    {"No TRDY within 8 clocks after initial data phase", "00011000", 0}, // 24
    {"DEVSEL deassserted before tranasction complete", "00011001", 0}, // 25
    {"STOP not deasserted after FRAME deasserted", "00011010", 0}, // 26
    {"STOP not asserted when FRAME asserted", "00011011", 0}, // 27
    {"No target turnaround", "00011100", 0}, // 28
    {"STOP deasserted with FRAME deasserted", "00011101", 0}, // 29
    {"TRDY asserted during  target abort", "00011110", 0}, // 30
    {"IRDY asserted before DEVSEL", "00011111", 0}, // 31
    {"STOP asserted before DEVSEL", "00100000", 0}, // 32
    {"Target responding to invalid command", "00100001", 0}, // 33
    {"Target response before DEVSEL", "00100010", 0}, // 34
    {"Data PAR error", "00100011", 0}, // 35
    {"Address PAR64 error", "00100100", 0}, // 36
    {"Data PAR64 error", "00100101", 0}, // 37
    {"No PERR after parity error", "00100110", 0}, // 38
    {"PERR asserted during special cycle", "00100111", 0}, // 39
    {"PERR asserted during address cycle", "00101000", 0}, // 40
    {"Maximum write completion time exceeded", "00101001", 0}, // 41
    {"REQ to GNT time > 15 clocks", "00101010", 0}, // 42
    {"REQ to GNT time > 30 clocks", "00101011", 0}, // 43
    {"REQ to GNT time > 45 clocks", "00101100", 0}, // 44
    {"REQ to GNT time > 60 clocks", "00101101", 0}, // 45
    {"REQ to GNT time > 90 clocks", "00101110", 0}, // 46
    {"Improper fast back-back cycle", "00101111", 0}, // 47
    {"REQ64 not asserted with FRAME", "00110000", 0}, // 48
    {"ACK64 not asserted with DEVSEL", "00110001", 0}, // 49
    {"AD[7:0] Unstable during address phase", "00110010", 0}, // 50
    {"AD[15:8] Unstable during address phase", "00110011", 0}, // 51
    {"AD[23:16] Unstable during address phase", "00110100", 0}, // 52
    {"AD[31:24] Unstable during address phase", "00110101", 0}, // 53
    {"AD[39:32] Unstable during address phase", "00110110", 0}, // 54
    {"AD[47:40] Unstable during address phase", "00110111", 0}, // 55
    {"AD[55:48] Unstable during address phase", "00111000", 0}, // 56
    {"AD[63:56] Unstable during address phase", "00111001", 0}, // 57
    {"AD[7:0] Unstable during data phase", "00111010", 0}, // 58
    {"AD[15:8] Unstable during data phase", "00111011", 0}, // 59
    {"AD[23:16] Unstable during data phase", "00111100", 0}, // 60
    {"AD[31:24] Unstable during data phase", "00111101", 0}, // 61
    {"AD[39:32] Unstable during data phase", "00111110", 0}, // 62
    {"AD[47:40] Unstable during data phase", "00111111", 0}, // 63
    {"AD[55:48] Unstable during data phase", "01000000", 0}, // 64
    {"AD[63:56] Unstable during data phase", "01000001", 0}, // 65
    {"CBE[3:0] Unstable during address phase", "01000010", 0}, // 66
    {"CBE[7:4] Unstable during address phase", "01000011", 0}, // 67
    {"CBE[3:0] Unstable during data phase", "01000100", 0}, // 68
    {"CBE[7:4] Unstable during data phase", "01000101", 0}, // 69
    {"AD[7:0] not valid within 12ns of clock", "01000110", 0}, // 70
    {"AD[15:8] not valid within 12ns of clock", "01000111", 0}, // 71
    {"AD[23:16] not valid within 12ns of clock", "01001000", 0}, // 72
    {"AD[31:24] not valid within 12ns of clock", "01001001", 0}, // 73
    {"AD[39:32] not valid within 12ns of clock", "01001010", 0}, // 74
    {"AD[47:40] not valid within 12ns of clock", "01001011", 0}, // 75
    {"AD[55:48] not valid within 12ns of clock", "01001100", 0}, // 76
    {"AD[63:56] not valid within 12ns of clock", "01001101", 0}, // 77
    {"CBE[3:0] not valid within 12ns of clock", "01001110", 0}, // 78
    {"CBE[7:4] not valid within 12ns of clock", "01001111", 0}, // 79
    {"DEVSEL not valid within 12ns of clock", "01010000", 0}, // 80
    {"FRAME not valid within 12ns of clock", "01010001", 0}, // 81
    {"IRDY not valid within 12ns of clock", "01010010", 0}, // 82
    {"TRDY not valid within 12ns of clock", "01010011", 0}, // 83
    {"LOCK not valid within 12ns of clock", "01010100", 0}, // 84
    {"STOP not valid within 12ns of clock", "01010101", 0}, // 85
    {"REQ64 not valid within 12ns of clock", "01010110", 0}, // 86
    {"ACK64 not valid within 12ns of clock", "01010111", 0}, // 87
    {"PERR not valid within 12ns of clock", "01011000", 0}, // 88
    {"PAR not valid within 12ns of clock", "01011001", 0}, // 89
    {"PAR64 not valid within 12ns of clock", "01011010", 0}, // 90
    {"CLK Period < 15ns  (66 Mhz system)", "01011011", 0}, // 91
    {"CLK Period < 30ns  (33 Mhz system)", "01011100", 0}, // 92
    {"CLK High < 6ns  (66 Mhz system)", "01011101", 0}, // 93
    {"CLK Low < 6ns  (66 Mhz system)", "01011110", 0}, // 94
    {"CLK High < 11ns  (33 Mhz system)", "01011111", 0}, // 95
    {"CLK Low < 11ns  (33 Mhz system)", "01100000", 0}, // 96
    {"Gliches on CLK", "01100001", 0}, // 97
    {"RESET high to first Configuration access invalid", "01100010", 0}, // 98
    {"RESET high to first FRAME active invalid", "01100011", 0}, // 99
    {"RESET to REQ64 time invalid", "01100100", 0}, // 100
    {"Gliches on RESET", "01100101", 0}, // 101
    {"Reserved (102)", "01100110", 0}, // 102
    {"Reserved (103)", "01100111", 0}, // 103
    {"Reserved (104)", "01101000", 0}, // 104
    {"Reserved (105)", "01101001", 0}, // 105
    {"Reserved (106)", "01101010", 0}, // 106
    {"Reserved (107)", "01101011", 0}, // 107
    {"Reserved (108)", "01101100", 0}, // 108
    {"Reserved (109)", "01101101", 0}, // 109
    {"Reserved (110)", "01101110", 0}, // 110
    {"Reserved (111)", "01101111", 0}, // 111
    {"Target Retry", "01110000", 0}, // 112
    {"Target Disconnect", "01110001", 0}, // 113
    {"Target Abort", "01110010", 0}, // 114
}};

inline constexpr std::array<ValueRow, 67> vmeRuleChecks = {{
    {"Illegal Combination of DS[1:0]*, A1 and LWORD* (2.10a)", "00000001", 0}, // 1
    {"Use of reserved Address Modifiers (2.30)", "00000010", 0}, // 2
    {"BLT cycle crossing 256 byte boundary (2.12a)", "00000011", 0}, // 3
    {"MBLT cycle crossing 2048 byte boundary (2.78)", "00000100", 0}, // 4
    {"BLT cycle mixing data widths (2.79)", "00000101", 0}, // 5
    {"BLT cycle using unaligned transfers (2.80)", "00000110", 0}, // 6
    {"LOCK* stays asserted after master released (2.82)", "00000111", 0}, // 7
    {"BBSY* stays asserted after last locked transfer (2.83)", "00001000", 0}, // 8
    {"Lock Command not terminated (2.84)", "00001001", 0}, // 9
    {"Retry during data phase (2.91)", "00001010", 0}, // 10
    {"Both DTACK* and BERR*  active (2.13a)", "00001011", 0}, // 11
    {"Data bus driven before end of previous cycle (2.14a)", "00001100", 0}, // 12
    {"Data not maintained until DS* goes high (2.16)", "00001101", 0}, // 13
    {"DS* driven high before acknowledge (2.17a)", "00001110", 0}, // 14
    {"Bus driven before AS* inactive (2.27)", "00001111", 0}, // 15
    {"Bus driven before AS* inactive (2.27)AS* driven low before AS* is inactive for 60ns (2.29)", "00010000", 0}, // 16
    {"AS* driven low before IACK* is inactive for 35ns (2.30)", "00010001", 0}, // 17
    {"DSA* low before DTACK* and BERR* are high (2.35)", "00010010", 0}, // 18
    {"DSA* low before AS* is low (2.36)", "00010011", 0}, // 19
    {"DSA* low before both DS0* and DS1* are high for 40 ns (2.37)", "00010100", 0}, // 20
    {"DSA* low before WRITE* is valid for 35 ns (2.38)", "00010101", 0}, // 21
    {"Address invalid before DTACK* or BERR* (2.40)", "00010110", 0}, // 22
    {"Address invalid for RMW cycle before second DTACK* or BERR* (2.41)", "00010111", 0}, // 23
    {"Address Modifier invalid before last DTACK* or BERR* (2.42)", "00011000", 0}, // 24
    {"Address changed before 40ns after AS* low (2.43)", "00011001", 0}, // 25
    {"AS* held low less then 40ns (2.45)", "00011010", 0}, // 26
    {"DSA* not held low until falling edge of DTACK*, RETRY*, BERR* (2.46a)", "00011011", 0}, // 27
    {"Data changed before DTACK*, RETRY* or BERR* (2.48)", "00011100", 0}, // 28
    {"WRITE* level changed before DSB* is high for 10ns (2.49)", "00011101", 0}, // 29
    {"DS[1:0] not high within 200ns of RETRY* (2.95)", "00011110", 0}, // 30
    {"DTACK* or BERR* driven low before 30ns after DSA* goes low (2.55)", "00011111", 0}, // 31
    {"DTACK* driven before 30ns after first falling edge of DSA* (2.97)", "00100000", 0}, // 32
    {"Data changed before DSA* goes high (2.56a)", "00100001", 0}, // 33
    {"DTACK* or BERR* goes high before both DS0* and DS1* are high (2.57)", "00100010", 0}, // 34
    {"RETRY* goes low before 30ns after DSA* goes low (2.99)", "00100011", 0}, // 35
    {"RETRY* goes low before 30ns after falling edge of DSA* (2.100)", "00100100", 0}, // 36
    {"DTACK* or BERR* driven low before 225ns after RETRY* is low (2.101)", "00100101", 0}, // 37
    {"RETRY* goes high before both DS1* and DS0* are high (2.103)", "00100110", 0}, // 38
    {"RETRY* not high after both DS1* and DS0* are high for 30ns (2.104)", "00100111", 0}, // 39
    {"New Bus Grant before rising edge of BBSY* (3.6)", "00101000", 0}, // 40
    {"BGIN*[3:0] driven low before BBSY* is high for 40ns (3.15)", "00101001", 0}, // 41
    {"BBSY* low for less then 90ns (3.7)", "00101010", 0}, // 42
    {"BBSY* low less then 30ns after release of bus request (3.9)", "00101011", 0}, // 43
    {"BBSY* goes high before bus grant goes high (3.10)", "00101100", 0}, // 44
    {"Bus request withdrawn less then 50ns after BBSY* goes low (3.11)", "00101101", 0}, // 45
    {"IACK* driven before AS* goes high (4.15)", "00101110", 0}, // 46
    {"AS* driven low before AS* is inactive for 60ns (4.17)", "00101111", 0}, // 47
    {"AS* driven low before IACK* is active for 35ns (4.18)", "00110000", 0}, // 48
    {"AS* high for less then 40ns between consecutive INTA cycles (4.19)", "00110001", 0}, // 49
    {"DSA* low before DTACK* and BERR* are high (4.20)", "00110010", 0}, // 50
    {"DSA* low before AS* is low (4.21)", "00110011", 0}, // 51
    {"DSA* low before both DS0* and DS1* are high for 40 ns (4.22)", "00110100", 0}, // 52
    {"DSA* low before WRITE* is valid for 35 ns (4.23)", "00110101", 0}, // 53
    {"DSB* low more then 10ns after DSA* is low (4.24)", "00110110", 0}, // 54
    {"Interrupt Acknowledge code valid until falling edge of DTACK* (4.25)", "00110111", 0}, // 55
    {"IACK* goes high before falling edge of DTACK* or BERR* (4.26)", "00111000", 0}, // 56
    {"AS* goes high before DTACK* or BERR* goes low (4.27)", "00111001", 0}, // 57
    {"AS* held low less then 40ns (4.28)", "00111010", 0}, // 58
    {"DSA* driven high before DTACK* or BERR* go low (4.29)", "00111011", 0}, // 59
    {"DSB* driven high before DTACK* or BERR* go low (4.30)", "00111100", 0}, // 60
    {"WRITE* high for less then 10ns after data strobes are high (4.31)", "00111101", 0}, // 61
    {"DTACK* or BERR* driven low before 30ns after DSA* goes low (4.37)", "00111110", 0}, // 62
    {"Data changed before DSA* goes high (4.38)", "00111111", 0}, // 63
    {"DTACK* or BERR* goes high before both DS0* and DS1* are high (4.39)", "01000000", 0}, // 64
    {"SYSRESET* not held for 200ms (5.2)", "01000001", 0}, // 65
    {"No SYSCLK when  SYSRESET* is low (5.3)", "01000010", 0}, // 66
    {"No data acknowledge", "01000011", 0}, // 67
}};

// clang-format on

} // namespace busquill
