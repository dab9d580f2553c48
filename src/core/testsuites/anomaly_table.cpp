#include "testsuites/anomaly_table.h"

#include <algorithm>

namespace busquill {

namespace {

// Doubled blanks and misspellings are part of the texts: saved files name the checks by them.
// clang-format off
constexpr std::array<CheckTableRow, 124> pciChecks = {{
    {0, "Protocol Violations"},
        {1, "Master"},
            {2, "1 - FRAME deasserted before IRDY asserted"},
            {2, "2 - FRAME asserted without IRDY or TRDY"},
            {2, "3 - FRAME not deasserted within 3 clocks after STOP"},
            {2, "4 - No FRAME within 16 clocks from GNT"},
            {2, "5 - No IRDY after FRAME asserted"},
            {2, "6 - No IRDY within 8 clocks from FRAME"},
            {2, "7 - Invalid Command on CB/E[3:0]"},
            {2, "8 - Invalid Command on CB/E[7:4] during DAC cycle"},
            {2, "9 - IRDY asserted during turnaround cycle"},
            {2, "10 - Address PAR error"},
            {2, "11 - Improper Master Abort - IRDY deasserted before TRDY/STOP asserted"},
            {2, "12 - FRAME asserted before GNT"},
            {2, "13 - FRAME and IRDY high when STOP is asserted"},
            {2, "14 - Lock not released"},
            {2, "15 - LOCK asserted after target abort"},
            {2, "16 - IRDY asserted when FRAME deasserted"},
            {2, "17 - TRDY asserted before DEVSEL"},
            {2, "18 - LOCK asserted during address phase"},
            {2, "19 - AD[1:0] not 0 during MWI cycle"},
            {2, "20 - Master Abort during  DEVSEL"},
            {2, "21 - FRAME deasserted after DAC cycle"},
            {2, "22 - Address does not match Byte Enables"},
        {1, "Target"},
            {2, "23 - No TRDY or STOP within 16 clocks from initial data phase"},
            {2, "24 - No TRDY within 8 clocks after initial data phase"},
            {2, "25 - DEVSEL deassserted before tranasction complete"},
            {2, "26 - STOP not deasserted after FRAME deasserted"},
            {2, "27 - STOP not asserted when FRAME asserted"},
            {2, "28 - No target turnaround"},
            {2, "29 - STOP deasserted with FRAME deasserted"},
            {2, "30 - TRDY asserted during  target abort"},
            {2, "31 - IRDY asserted before DEVSEL"},
            {2, "32 - STOP asserted before DEVSEL"},
            {2, "33 - Target responding to invalid command"},
            {2, "34 - Target response before DEVSEL"},
        {1, "General"},
            {2, "35 - Data PAR error"},
            {2, "36 - Address PAR64 error"},
            {2, "37 - Data PAR64 error"},
            {2, "38 - No PERR after parity error"},
            {2, "39 - PERR asserted during special cycle"},
            {2, "40 - PERR asserted during address cycle"},
            {2, "41 - Maximum write completion time exceeded"},
            {2, "42 - REQ to GNT time > 15 clocks"},
            {2, "43 - REQ to GNT time > 30 clocks"},
            {2, "44 - REQ to GNT time > 45 clocks"},
            {2, "45 - REQ to GNT time > 60 clocks"},
            {2, "46 - REQ to GNT time > 90 clocks"},
            {2, "47 - Improper fast back-back cycle"},
            {2, "48 - REQ64 not asserted with FRAME"},
            {2, "49 - ACK64 not asserted with DEVSEL"},
    {0, "Timing Violations"},
        {1, "Unstable Signals"},
            {2, "50 - AD[7:0] Unstable during address phase"},
            {2, "51 - AD[15:8] Unstable during address phase"},
            {2, "52 - AD[23:16] Unstable during address phase"},
            {2, "53 - AD[31:24] Unstable during address phase"},
            {2, "54 - AD[39:32] Unstable during address phase"},
            {2, "55 - AD[47:40] Unstable during address phase"},
            {2, "56 - AD[55:48] Unstable during address phase"},
            {2, "57 - AD[63:56] Unstable during address phase"},
            {2, "58 - AD[7:0] Unstable during data phase"},
            {2, "59 - AD[15:8] Unstable during data phase"},
            {2, "60 - AD[23:16] Unstable during data phase"},
            {2, "61 - AD[31:24] Unstable during data phase"},
            {2, "62 - AD[39:32] Unstable during data phase"},
            {2, "63 - AD[47:40] Unstable during data phase"},
            {2, "64 - AD[55:48] Unstable during data phase"},
            {2, "65 - AD[63:56] Unstable during data phase"},
            {2, "66 - CBE[3:0] Unstable during address phase"},
            {2, "67 - CBE[7:4] Unstable during address phase"},
            {2, "68 - CBE[3:0] Unstable during data phase"},
            {2, "69 - CBE[7:4] Unstable during data phase"},
        {1, "Setup and Hold"},
            {2, "70 - AD[7:0] not valid within 12ns of clock"},
            {2, "71 - AD[15:8] not valid within 12ns of clock"},
            {2, "72 - AD[23:16] not valid within 12ns of clock"},
            {2, "73 - AD[31:24] not valid within 12ns of clock"},
            {2, "74 - AD[39:32] not valid within 12ns of clock"},
            {2, "75 - AD[47:40] not valid within 12ns of clock"},
            {2, "76 - AD[55:48] not valid within 12ns of clock"},
            {2, "77 - AD[63:56] not valid within 12ns of clock"},
            {2, "78 - CBE[3:0] not valid within 12ns of clock"},
            {2, "79 - CBE[7:4] not valid within 12ns of clock"},
            {2, "80 - DEVSEL not valid within 12ns of clock"},
            {2, "81 - FRAME not valid within 12ns of clock"},
            {2, "82 - IRDY not valid within 12ns of clock"},
            {2, "83 - TRDY not valid within 12ns of clock"},
            {2, "84 - LOCK not valid within 12ns of clock"},
            {2, "85 - STOP not valid within 12ns of clock"},
            {2, "86 - REQ64 not valid within 12ns of clock"},
            {2, "87 - ACK64 not valid within 12ns of clock"},
            {2, "88 - PERR not valid within 12ns of clock"},
            {2, "89 - PAR not valid within 12ns of clock"},
            {2, "90 - PAR64 not valid within 12ns of clock"},
        {1, "General"},
            {2, "91 - CLK Period < 15ns  (66 Mhz system)"},
            {2, "92 - CLK Period < 30ns  (33 Mhz system)"},
            {2, "93 - CLK High < 6ns  (66 Mhz system)"},
            {2, "94 - CLK Low < 6ns  (66 Mhz system)"},
            {2, "95 - CLK High < 11ns  (33 Mhz system)"},
            {2, "96 - CLK Low < 11ns  (33 Mhz system)"},
            {2, "97 - Gliches on CLK"},
            {2, "98 - RESET high to first Configuration access invalid"},
            {2, "99 - RESET high to first FRAME active invalid"},
            {2, "100 - RESET to REQ64 time invalid"},
            {2, "101 - Gliches on RESET"},
            {2, "102 - Reserved"},
            {2, "103 - Reserved"},
            {2, "104 - Reserved"},
            {2, "105 - Reserved"},
            {2, "106 - Reserved"},
            {2, "107 - Reserved"},
            {2, "108 - Reserved"},
            {2, "109 - Reserved"},
            {2, "110 - Reserved"},
            {2, "111 - Reserved"},
    {0, "Warnings"},
        {1, "Protocol"},
            {2, "112 - Target Retry"},
            {2, "113 - Target Disconnect"},
            {2, "114 - Target Abort"},
}};

constexpr std::array<CheckTableRow, 73> vmeChecks = {{
    {0, "Timing Violations"},
        {1, "Master"},
            {2, "1 - Illegal Combination of DS[1:0]*, A1 and LWORD* (2.10a)"},
            {2, "2 - Use of reserved Address Modifiers (2.30)"},
            {2, "3 - BLT cycle crossing 256 byte boundary (2.12a)"},
            {2, "4 - MBLT cycle crossing 2048 byte boundary (2.78)"},
            {2, "5 - BLT cycle mixing data widths (2.79)"},
            {2, "6 - BLT cycle using unaligned transfers (2.80)"},
            {2, "7 - LOCK* stays asserted after master released (2.82)"},
            {2, "8 - BBSY* stays asserted after last locked transfer (2.83)"},
            {2, "9 - Lock Command not terminated (2.84)"},
            {2, "10 - Retry during data phase (2.91)"},
            {2, "11 - Both DTACK* and BERR*  active (2.13a)"},
            {2, "12 - Data bus driven before end of previous cycle (2.14a)"},
            {2, "13 - Data not maintained until DS* goes high (2.16)"},
            {2, "14 - DS* driven high before acknowledge (2.17a)"},
            {2, "15 - Bus driven before AS* inactive (2.27)"},
            {2, "16 - AS* driven low before AS* is inactive for 60ns (2.29)"},
            {2, "17 - AS* driven low before IACK* is inactive for 35ns (2.30)"},
            {2, "18 - DSA* low before DTACK* and BERR* are high (2.35)"},
            {2, "19 - DSA* low before AS* is low (2.36)"},
            {2, "20 - DSA* low before both DS0* and DS1* are high for 40 ns (2.37)"},
            {2, "21 - DSA* low before WRITE* is valid for 35 ns (2.38)"},
            {2, "22 - Address invalid before DTACK* or BERR* (2.40)"},
            {2, "23 - Address invalid for RMW cycle before second DTACK* or BERR* (2.41)"},
            {2, "24 - Address Modifier invalid before last DTACK* or BERR* (2.42)"},
            {2, "25 - Address changed before 40ns after AS* low (2.43)"},
            {2, "26 - AS* held low less then 40ns (2.45)"},
            {2, "27 - DSA* not held low until falling edge of DTACK*, RETRY*, BERR* (2.46a)"},
            {2, "28 - Data changed before DTACK*, RETRY* or BERR* (2.48)"},
            {2, "29 - WRITE* level changed before DSB* is high for 10ns (2.49)"},
            {2, "30 - DS[1:0] not high within 200ns of RETRY* (2.95)"},
        {1, "Slave"},
            {2, "31 - DTACK* or BERR* driven low before 30ns after DSA* goes low (2.55)"},
            {2, "32 - DTACK* driven before 30ns after first falling edge of DSA* (2.97)"},
            {2, "33 - Data changed before DSA* goes high (2.56a)"},
            {2, "34 - DTACK* or BERR* goes high before both DS0* and DS1* are high (2.57)"},
            {2, "35 - RETRY* goes low before 30ns after DSA* goes low (2.99)"},
            {2, "36 - RETRY* goes low before 30ns after falling edge of DSA* (2.100)"},
            {2, "37 - DTACK* or BERR* driven low before 225ns after RETRY* is low (2.101)"},
            {2, "38 - RETRY* goes high before both DS1* and DS0* are high (2.103)"},
            {2, "39 - RETRY* not high after both DS1* and DS0* are high for 30ns (2.104)"},
        {1, "Arbitration"},
            {2, "40 - New Bus Grant before rising edge of BBSY* (3.6)"},
            {2, "41 - BGIN*[3:0] driven low before BBSY* is high for 40ns (3.15)"},
            {2, "42 - BBSY* low for less then 90ns (3.7)"},
            {2, "43 - BBSY* low less then 30ns after release of bus request (3.9)"},
            {2, "44 - BBSY* goes high before bus grant goes high (3.10)"},
            {2, "45 - Bus request withdrawn less then 50ns after BBSY* goes low (3.11)"},
        {1, "Interrupt"},
            {2, "46 - IACK* driven before AS* goes high (4.15)"},
            {2, "47 - AS* driven low before AS* is inactive for 60ns (4.17)"},
            {2, "48 - AS* driven low before IACK* is active for 35ns (4.18)"},
            {2, "49 - AS* high for less then 40ns between consecutive INTA cycles (4.19)"},
            {2, "50 - DSA* low before DTACK* and BERR* are high (4.20)"},
            {2, "51 - DSA* low before AS* is low (4.21)"},
            {2, "52 - DSA* low before both DS0* and DS1* are high for 40 ns (4.22)"},
            {2, "53 - DSA* low before WRITE* is valid for 35 ns (4.23)"},
            {2, "54 - DSB* low more then 10ns after DSA* is low (4.24)"},
            {2, "55 - Interrupt Acknowledge code valid until falling edge of DTACK* (4.25)"},
            {2, "56 - IACK* goes high before falling edge of DTACK* or BERR* (4.26)"},
            {2, "57 - AS* goes high before DTACK* or BERR* goes low (4.27)"},
            {2, "58 - AS* held low less then 40ns (4.28)"},
            {2, "59 - DSA* driven high before DTACK* or BERR* go low (4.29)"},
            {2, "60 - DSB* driven high before DTACK* or BERR* go low (4.30)"},
            {2, "61 - WRITE* high for less then 10ns after data strobes are high (4.31)"},
            {2, "62 - DTACK* or BERR* driven low before 30ns after DSA* goes low (4.37)"},
            {2, "63 - Data changed before DSA* goes high (4.38)"},
            {2, "64 - DTACK* or BERR* goes high before both DS0* and DS1* are high (4.39)"},
        {1, "Other"},
            {2, "65 - SYSRESET* not held for 200ms (5.2)"},
            {2, "66 - No SYSCLK when  SYSRESET* is low (5.3)"},
            {2, "67 - No data acknowledge"},
}};
// clang-format on

/// Whether the texts of the checks begin with their numbers.
consteval bool AreNumbered(CheckTable table) {
    int number = 0;
    for (const CheckTableRow& row : table) {
        if (row.level != anomalyCheckLevel) {
            continue;
        }
        int written = 0;
        for (const char digit : row.text.substr(0, row.text.find(' '))) {
            written = 10 * written + (digit - '0');
        }
        if (written != ++number) {
            return false;
        }
    }
    return static_cast<std::size_t>(number) <= 8 * anomalyChecklistBytes;
}
static_assert(AreNumbered(pciChecks));
static_assert(AreNumbered(vmeChecks));

} // namespace

CheckTable AnomalyTable(const BoardTraits& traits) {
    return traits.IsVmeFamily() ? CheckTable(vmeChecks) : CheckTable(pciChecks);
}

std::string_view AnomalyText(CheckTable table, int number) noexcept {
    const auto check = std::ranges::find_if(table, [number](const CheckTableRow& row) mutable {
        return row.level == anomalyCheckLevel && --number == 0;
    });
    return check == table.end() ? std::string_view() : check->text;
}

std::array<std::uint8_t, anomalyChecklistBytes> BuildAnomalyChecklist(CheckTable table,
                                                                      const Bits& enabled) {
    std::array<std::uint8_t, anomalyChecklistBytes> payload{};
    std::size_t bit = 0;
    for (std::size_t row = 0; row < table.size(); ++row) {
        if (table[row].level == anomalyCheckLevel) {
            AssignBit(payload, bit++, !enabled.Test(row));
        }
    }
    return payload;
}

} // namespace busquill
