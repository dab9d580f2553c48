#include "trace_writer.h"

#include <cstdio>
#include <string_view>

namespace boardsim {

namespace {

/// A bus of the PCI family: name, width, first bit of the record.
struct Bus {
    std::string_view name;
    int width;
    int bit;
};

// clang-format off
constexpr Bus pciBuses[] = {
    {"AD",    64,   0}, {"C/BE",   8,  64}, {"PAR",    1,  86}, {"PAR64",  1,  87},
    {"FRAME",  1,  72}, {"IRDY",   1,  74}, {"TRDY",   1,  73}, {"DEVSEL", 1,  76},
    {"REQ64",  1,  84}, {"ACK64",  1,  85}, {"CLK",    1, 109}, {"RST",    1,  79},
    {"PERR",   1,  80}, {"SERR",   1,  81}, {"TDI",    1, 104}, {"TDO",    1, 105},
    {"TCK",    1, 106}, {"TMS",    1, 107}, {"TRST",   1, 108}, {"IDSEL",  1,  77},
    {"BSTOP",  1,  75}, {"BLOCK",  1,  78}, {"REQ",    1,  82}, {"GNT",    1,  83},
    {"INTA",   1,  88}, {"INTB",   1,  89}, {"INTC",   1,  90}, {"INTD",   1,  91},
    {"EXT",    8,  96},
};
// clang-format on

constexpr Bus timeBus = {"TIME", 18, 110};

/// How a group of bits is shown: a decoded one has its own name.
struct Row {
    Bus bus;
    std::string_view decoded = {}; // decoded definition, which gives the row its name
    unsigned color = 0;
    bool hiddenTime = false; // the field from which times between samples are summed
};

constexpr const char* header =
    "\"Signal\",\"Name\",\"BaseName\",\"Grouped\",\"GroupName\",\"GroupAttribute\",\"BitIndex\","
    "\"DataIndex\",\"NumSamples\",\"Height\",\"Width\",\"Color\",\"ShowValue\",\"Radix\","
    "\"Masked\",\"Decoded\",\"Hidden\",\"Permanent\"\"BitReverse\"\n";

std::string Quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

std::string GroupName(const Row& row) {
    if (!row.decoded.empty()) {
        return std::string(row.decoded);
    }
    return std::string(row.bus.name) + "[" + std::to_string(row.bus.width - 1) + ":0]";
}

std::string Attribute(const Row& row, int position) {
    if (position == 0) {
        return row.decoded.empty() ? "Start" : "Start+NoUngroup";
    }
    return position == row.bus.width - 1 ? "End" : "";
}

std::string SignalRow(const Row& row, int position, bool masked) {
    const bool group = row.bus.width > 1;
    const bool head = position == 0;
    std::string name(row.bus.name);
    if (group) {
        name += "[" + std::to_string(position) + "]";
    }
    char numbers[64];
    std::snprintf(numbers, sizeof numbers, "%d,%d,%d,20,30,%u", group ? position : -1,
                  row.bus.bit + position, masked ? 32 : 0, row.color);
    std::string text = "\"Signal\"," + Quoted(name) + "," + Quoted(row.bus.name) + ",";
    text += Quoted(group ? "Grouped" : "") + ",";
    text += Quoted(group && head ? GroupName(row) : "") + ",";
    text += Quoted(group ? Attribute(row, position) : "") + ",";
    text += numbers;
    text += "," + Quoted(group ? "Show" : "") + ",";
    text += Quoted(row.hiddenTime && head ? "Time" : "Hex") + ",";
    text += Quoted(masked ? "Masked" : "") + ",";
    text += Quoted(head ? row.decoded : "") + ",";
    text += row.hiddenTime ? "\"Hidden\",\"Permanent\"," : "\"\",\"\",";
    return text + "\"\"\n";
}

/// The first event: the address phase of a memory write.
struct EventBit {
    bool value = false;
    bool compared = false;
};

EventBit FirstEvent(int bit) {
    if (bit == writeEvent.addressBit) {
        return {true, true};
    }
    const int lane = bit - writeEvent.commandBit;
    return lane >= 0 && lane < 4 ? EventBit{(writeEvent.command >> lane & 1) != 0, true}
                                 : EventBit();
}

void AppendRow(std::string& text, const Row& row, bool masked) {
    std::string others;
    for (int i = 1; i < 32; ++i) {
        others += ",0";
    }
    for (int position = 0; position < row.bus.width; ++position) {
        text += SignalRow(row, position, masked);
        if (masked) {
            const EventBit event = FirstEvent(row.bus.bit + position);
            text += std::string("\"Data\"") + (event.value ? ",1" : ",0") + others + "\n";
            text += std::string("\"Mask\"") + (event.compared ? ",1" : ",0") + others + "\n";
        }
    }
}

void AppendSetup(std::string& text, const Recording& recording) {
    text += "\"Trace Setup\"\n\"Name\"," + Quoted(recording.name) + "\n";
    text += "\"Description\",\"\"\n\"Clock\",\"Sync\"\n\"Trigger\",\"50%\"\n";
    text += "\"PowerZoomClock\",\"3.75 ns\"\n\n\"Events\"\n";
    text += header;
    if (recording.pciEvents) {
        for (const Bus& bus : pciBuses) {
            AppendRow(text, {bus}, true);
        }
        AppendRow(text, {{"ADR/DATA", 1, writeEvent.addressBit}}, true);
    }
    text += "\n\"TraceControl\"\n";
    text += "\"Control\",\"Level\",\"If\",\"Occurs\",\"Then\",\"Else\",\"Store\"\n";
    text += std::string("\"Control\",1,") + (recording.pciEvents ? "\"E1\"" : "\"All\"") +
            ",1,\"Goto L1, Trigger\",\"Goto L1\",\"All\"\n";
    for (int level = 2; level <= 8; ++level) {
        text += "\"Control\"," + std::to_string(level) +
                ",\"None\",1,\"Goto L1\",\"Goto L1\",\"None\"\n";
    }
    text += "\"End of Setup Data\"\n";
}

void AppendList(std::string& text, bool state) {
    text += state ? "\n\"State Signals\"\n" : "\n\"Waveform Signals\"\n";
    text += header;
    if (state) {
        AppendRow(text, {timeBus, "TIME", 0x00FF00}, false);
    }
    AppendRow(text, {{"C/BE", 8, 64}, "COMMAND"}, false);
    AppendRow(text, {{"AD", 32, 0}, "ADDRESS32"}, false);
    AppendRow(text, {{"AD", 32, 0}, "DATA32"}, false);
    if (state) {
        AppendRow(text, {{"RULE CHECK", 8, 128}, "RULE CHECK", 0x0000FF}, false);
    }
    for (const Bus& bus : pciBuses) {
        AppendRow(text, {bus}, false);
    }
    AppendRow(text, {timeBus, "", 0x00FF00, true}, false);
    text += state ? "\"End of State Signals\"\n" : "\"End of Wave Signals\"\n";
}

void AppendSamples(std::string& text, const std::vector<Record>& records, long first,
                   const std::vector<bool>& missing = {}) {
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (!missing.empty() && missing[i]) {
            continue;
        }
        text += std::to_string(first + static_cast<long>(i));
        for (const std::uint8_t byte : records[i]) {
            text += "," + std::to_string(byte);
        }
        text += "\n";
    }
}

} // namespace

std::string TraceText(const Recording& recording) {
    std::string text = "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n";
    text += "\"Description\"," + Quoted(recording.description) + "\n\n";
    AppendSetup(text, recording);
    if (recording.pciWaveformList) {
        AppendList(text, false);
    }
    if (recording.pciStateList) {
        AppendList(text, true);
    }
    const long first = -static_cast<long>(recording.trigger);
    const long last = first + static_cast<long>(recording.samples.size()) - 1;
    text += "\n\"Trace Data\"," + std::to_string(first) + "," + std::to_string(last) + "\n";
    AppendSamples(text, recording.samples, first, recording.missing);
    text += "\"End of Trace Data\"\n";
    if (!recording.zoom.empty()) {
        text += "\n\"Power Zoom Data\",255,256\n";
        AppendSamples(text, recording.zoom, -255);
        text += "\"End of Power Zoom Data\"\n";
    }
    return text;
}

} // namespace boardsim
