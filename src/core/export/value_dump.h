#pragma once

#include "capture/sample_rows.h"
#include "export/export_signals.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace busquill {

/// A capture as a value change dump for waveform viewers. Buses are vectors, the trigger is a
/// one-bit signal, and each decoded signal has a text, as a vector of characters, beside its bits.
class ValueDump {
public:
    struct Capture {
        BoardTraits board;
        bool zoom = false;
        std::string description;
    };

    /// The list must outlive the dump.
    ValueDump(const CSignalList& list, ListUse use, Capture capture);

    /// Each appends to a text: the header, the values of the next samples, and the end.
    void Begin(std::string& out) const;
    void Add(const SampleRows& rows, std::string& out);
    void End(std::string& out) const;

    /// The viewer's save file: the signals to show, with the order, radix and colours of the list,
    /// and the trigger in view. Given the full paths of the dump and of this file, the viewer finds
    /// the dump wherever it is started, and even after both were moved together.
    [[nodiscard]] std::string ViewerFile(std::string_view dumpPath,
                                         std::string_view viewerPath) const;

private:
    /// What the dump has under one identifier.
    struct Item {
        std::string name;
        std::string range; // "[31:0]", empty for a single bit
        std::string id;
        std::size_t width = 1;
        std::string last; // the bits written last; initially empty
    };
    struct Value {
        ExportSignal signal;
        Item item;
        std::optional<Item> textItem;
        std::optional<DecodedText> text;
    };

    [[nodiscard]] Item NewItem(const std::string& name, std::size_t width, bool isVector);
    static void Declare(const Item& item, std::string& out);
    static void Change(Item& item, const std::string& bits, std::string& out);
    void Changes(const SampleRecord& record, bool isTrigger, std::string& out);

    const CSignalList& list_;
    Capture capture_;
    std::unordered_set<std::string> names_; // names in use
    std::vector<Value> values_;
    Item trigger_;
    ExportTime time_;
    std::int64_t now_ = -1;
    std::int64_t sum_ = 0;       // of TIME, up to the previous sample
    std::int64_t narrowest_ = 0; // shortest time between samples; 0: none yet
    std::optional<std::int64_t> triggerTime_;
    std::string bits_;
    std::string changes_;
    std::vector<std::uint8_t> bytes_;
};

} // namespace busquill
