#include "link/analyzer_commands.h"

#include <algorithm>
#include <array>

namespace busquill {

namespace {

constexpr FunctionCode noFunction{};
constexpr std::int32_t lastSendingState = 38;

// States 14 and 16, and 15 and 17, do the same; the board's table lists both.
// clang-format off
constexpr std::array<StateRow, lastSendingState> stateRows{{
    { 1, StateSends::AddressLow,    noFunction,               StateReply::Acknowledgement},
    { 2, StateSends::AddressMiddle, noFunction,               StateReply::Acknowledgement},
    { 3, StateSends::AddressHigh,   noFunction,               StateReply::Acknowledgement},
    { 4, StateSends::LengthLow,     noFunction,               StateReply::Acknowledgement},
    { 5, StateSends::LengthHigh,    noFunction,               StateReply::Acknowledgement},
    { 6, StateSends::Function,      FunctionFirmwareRecord,   StateReply::Acknowledgement},
    { 7, StateSends::Payload,       noFunction,               StateReply::Acknowledgement},
    { 8, StateSends::Function,      FunctionWriteMemory,      StateReply::Acknowledgement},
    { 9, StateSends::Payload,       noFunction,               StateReply::Acknowledgement},
    {10, StateSends::Function,      FunctionApplyBaudRate,    StateReply::Acknowledgement},
    {11, StateSends::Function,      FunctionReadMemory,       StateReply::Bytes},
    {12, StateSends::Function,      FunctionSamplesBefore,    StateReply::Samples},
    {13, StateSends::Function,      FunctionSamplesAfter,     StateReply::Samples},
    {14, StateSends::Function,      FunctionWriteMemory,      StateReply::Acknowledgement},
    {15, StateSends::Payload,       noFunction,               StateReply::Acknowledgement},
    {16, StateSends::Function,      FunctionWriteMemory,      StateReply::Acknowledgement},
    {17, StateSends::Payload,       noFunction,               StateReply::Acknowledgement},
    {18, StateSends::Function,      FunctionStartTrace,       StateReply::Acknowledgement},
    {19, StateSends::Function,      FunctionStopTrace,        StateReply::Acknowledgement},
    {20, StateSends::Function,      FunctionStartSearch,      StateReply::Acknowledgement},
    {21, StateSends::Function,      FunctionStartPerformance, StateReply::Acknowledgement},
    {22, StateSends::Function,      FunctionStopPerformance,  StateReply::Acknowledgement},
    {23, StateSends::Function,      FunctionStartAnomaly,     StateReply::Acknowledgement},
    {24, StateSends::Function,      FunctionStopAnomaly,      StateReply::Acknowledgement},
    {25, StateSends::Function,      FunctionStartConfigScan,  StateReply::Acknowledgement},
    {26, StateSends::Function,      FunctionStopConfigScan,   StateReply::Acknowledgement},
    {27, StateSends::Function,      FunctionStartCompliance,  StateReply::Acknowledgement},
    {28, StateSends::Function,      FunctionStopCompliance,   StateReply::Acknowledgement},
    {29, StateSends::Function,      FunctionExerciserGo,      StateReply::Acknowledgement},
    {30, StateSends::Function,      FunctionExerciserStop,    StateReply::Acknowledgement},
    {31, StateSends::Function,      FunctionStartStimulus,    StateReply::Acknowledgement},
    {32, StateSends::Function,      FunctionStopStimulus,     StateReply::Acknowledgement},
    {33, StateSends::Function,      FunctionZoomBefore,       StateReply::Samples},
    {34, StateSends::Function,      FunctionZoomAfter,        StateReply::Samples},
    {35, StateSends::Function,      FunctionReadTarget,       StateReply::Bytes},
    {36, StateSends::Function,      FunctionWriteTarget,      StateReply::Acknowledgement},
    {37, StateSends::Function,      FunctionStartBackplane,   StateReply::Acknowledgement},
    {38, StateSends::Function,      FunctionStopBackplane,    StateReply::Acknowledgement},
}};
// clang-format on

constexpr bool StateRowsAreInOrder() {
    std::int32_t expected = 0;
    return std::ranges::all_of(stateRows,
                               [&](const StateRow& row) { return row.state == ++expected; });
}
static_assert(StateRowsAreInOrder());

/// A sequence of states, and the commands that use it. Unused entries are 0.
struct Sequence {
    bool setsRegisters; // states 1 to 5 come first
    std::array<std::int32_t, 4> states;
    std::array<std::int32_t, 21> commands;
};

// clang-format off
constexpr std::array sequences{
    Sequence{true,  {6, 7, finalState},     {1}},
    Sequence{true,  {8, 9, 10, finalState}, {2}},
    Sequence{true,  {11, finalState},       {3}},
    Sequence{true,  {12, finalState},       {4}},
    Sequence{true,  {13, finalState},       {5}},
    Sequence{true,  {14, 15, finalState},   {6, 8, 11, 12, 15, 18, 23, 24, 25, 28, 29, 30, 31, 36, 38, 41, 42, 44, 45, 50, 51}},
    Sequence{true,  {16, 17, finalState},   {7, 13, 37, 43}},
    Sequence{true,  {33, finalState},       {39}},
    Sequence{true,  {34, finalState},       {40}},
    Sequence{true,  {35, finalState},       {46}},
    Sequence{true,  {36, 15, finalState},   {47}},
    Sequence{false, {18, finalState},       {9}},
    Sequence{false, {19, finalState},       {10}},
    Sequence{false, {20, finalState},       {14}},
    Sequence{false, {21, finalState},       {16}},
    Sequence{false, {22, finalState},       {17}},
    Sequence{false, {23, finalState},       {19}},
    Sequence{false, {24, finalState},       {20}},
    Sequence{false, {25, finalState},       {21}},
    Sequence{false, {26, finalState},       {22}},
    Sequence{false, {27, finalState},       {26}},
    Sequence{false, {28, finalState},       {27}},
    Sequence{false, {29, finalState},       {32}},
    Sequence{false, {30, finalState},       {33}},
    Sequence{false, {31, finalState},       {34}},
    Sequence{false, {32, finalState},       {35}},
    Sequence{false, {37, finalState},       {48}},
    Sequence{false, {38, finalState},       {49}},
    Sequence{false, {1, finalState},        {52}},
};
// clang-format on

/// Calls `take` with each row of all sequences, in order.
template <typename Take>
constexpr void ForEachRow(Take take) {
    constexpr std::int32_t registerStates = 5;
    for (const Sequence& sequence : sequences) {
        for (const std::int32_t command : sequence.commands) {
            if (command == 0) {
                break;
            }
            std::int32_t state = 0;
            const auto goTo = [&](std::int32_t next) {
                take(CommandStateRow{command, state, next});
                state = next;
            };
            for (std::int32_t next = 1; sequence.setsRegisters && next <= registerStates; ++next) {
                goTo(next);
            }
            for (const std::int32_t next : sequence.states) {
                if (next != 0) {
                    goTo(next);
                }
            }
        }
    }
}

constexpr std::size_t CountRows() {
    std::size_t count = 0;
    ForEachRow([&](const CommandStateRow&) { ++count; });
    return count;
}

constexpr auto MakeCommandStateTable() {
    std::array<CommandStateRow, CountRows() + 1> table{};
    std::size_t at = 0;
    ForEachRow([&](const CommandStateRow& row) { table[at++] = row; });
    return table;
}

constexpr auto commandStateTable = MakeCommandStateTable();
static_assert(commandStateTable.back().command == 0);

constexpr bool EveryCommandStartsOnce() {
    for (std::int32_t command = 1; command <= linkCommandCount; ++command) {
        if (std::ranges::count_if(commandStateTable, [=](const CommandStateRow& row) {
                return row.command == command && row.state == 0;
            }) != 1) {
            return false;
        }
    }
    return true;
}
static_assert(EveryCommandStartsOnce());

} // namespace

const StateRow* FindState(std::int32_t state) noexcept {
    if (state < 1 || state > lastSendingState) {
        return nullptr;
    }
    return &stateRows[static_cast<std::size_t>(state - 1)];
}

std::span<const CommandStateRow> CommandStateTable() noexcept {
    return commandStateTable;
}

std::int32_t NextState(std::int32_t command, std::int32_t state) noexcept {
    for (const CommandStateRow* row = commandStateTable.data(); row->command != 0; ++row) {
        if (row->command == command && row->state == state) {
            return row->next;
        }
    }
    return 0;
}

} // namespace busquill
