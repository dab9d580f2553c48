#include "export/value_dump.h"

#include "platform/text.h"
#include "signals/signal_list.h"
#include "signals/value_text.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace busquill {

namespace {

constexpr const char* scope = "capture";

/// An identifier of as many printable characters as needed.
std::string IdentifierOf(std::size_t number) {
    constexpr std::size_t characters = 94; // '!' to '~'
    std::string id;
    do {
        id += static_cast<char>('!' + number % characters);
        number /= characters;
    } while (number != 0);
    return id;
}

std::string WithoutBlanks(std::string_view text) {
    std::string name;
    for (const char c : text) {
        // A dot would separate the names of two scopes.
        const bool plain = std::isgraph(static_cast<unsigned char>(c)) != 0 && c != '.';
        name += plain ? c : '_';
    }
    return name.empty() ? "_" : name;
}

/// A name and its range, where it ends in one such as "[31:0]" or "[5]".
std::pair<std::string, std::string> SplitRange(const std::string& name) {
    const std::size_t bracket = name.find('[');
    const bool ends = bracket != std::string::npos && bracket != 0 && name.ends_with(']') &&
                      name.find_first_not_of("0123456789:", bracket + 1) == name.size() - 1;
    return ends ? std::pair(name.substr(0, bracket), name.substr(bracket)) : std::pair(name, "");
}

/// The viewer's number for the nearest rainbow colour; 0 is its default colour.
int ViewerColor(std::uint32_t color) {
    struct Shade {
        int number;
        int red, green, blue;
    };
    constexpr std::array<Shade, 7> shades{{{1, 255, 0, 0},
                                           {2, 255, 128, 0},
                                           {3, 255, 255, 0},
                                           {4, 0, 255, 0},
                                           {5, 0, 0, 255},
                                           {6, 75, 0, 130},
                                           {7, 238, 0, 238}}};
    const int red = static_cast<int>(color & 0xFF);
    const int green = static_cast<int>(color >> 8 & 0xFF);
    const int blue = static_cast<int>(color >> 16 & 0xFF);
    const auto [least, most] = std::minmax({red, green, blue});
    constexpr int gray = 48; // colours with less difference are gray
    if (most - least < gray) {
        return 0;
    }
    const auto distance = [&](const Shade& shade) {
        const auto square = [](int value) { return value * value; };
        return square(red - shade.red) + square(green - shade.green) + square(blue - shade.blue);
    };
    return std::ranges::min(shades, {}, distance).number;
}

} // namespace

ValueDump::ValueDump(const CSignalList& list, ListUse use, Capture capture)
    : list_(list), capture_(std::move(capture)) {
    for (ExportSignal& signal : ExportSignals(list, use)) {
        const bool isVector = signal.signal->grouped && signal.field.Width() != 0;
        Item item = NewItem(signal.name, std::max<std::size_t>(1, signal.field.Width()), isVector);
        Value value{std::move(signal), std::move(item), {}, {}};
        if (value.signal.IsDecoded()) {
            value.text.emplace(list.Tables(), capture_.board, value.signal, capture_.zoom);
            value.textItem = NewItem(value.item.name + "_text", 8 * value.text->Longest(), true);
        }
        values_.push_back(std::move(value));
    }
    trigger_ = NewItem("TRIGGER", 1, false);
}

ValueDump::Item ValueDump::NewItem(const std::string& name, std::size_t width, bool isVector) {
    auto [base, range] = SplitRange(WithoutBlanks(name));
    if (isVector && (range.empty() || range.find(':') == std::string::npos)) {
        range = Printf("[%zu:0]", width - 1);
    }
    std::string unique = base;
    for (int n = 2; !names_.insert(unique + range).second; ++n) {
        unique = base + "_" + std::to_string(n);
    }
    return {unique, range, IdentifierOf(names_.size() - 1), width, {}};
}

void ValueDump::Declare(const Item& item, std::string& out) {
    out += Printf("$var wire %zu %s %s%s%s $end\n", item.width, item.id.c_str(), item.name.c_str(),
                  item.range.empty() ? "" : " ", item.range.c_str());
}

void ValueDump::Begin(std::string& out) const {
    out += "$version\nBusquill!\n$end\n";
    if (!capture_.description.empty()) {
        std::string text = capture_.description;
        std::ranges::replace(text, '$', '_'); // '$' begins a keyword of the dump
        std::erase(text, '\r');
        std::ranges::replace(text, '\n', ' ');
        out += "$comment\n" + text + "\n$end\n";
    }
    out += Printf("$timescale\n%s\n$end\n$scope module %s $end\n", capture_.zoom ? "1 ps" : "1 ns",
                  scope);
    for (const Value& value : values_) {
        Declare(value.item, out);
        if (value.textItem) {
            Declare(*value.textItem, out);
        }
    }
    Declare(trigger_, out);
    out += "$upscope $end\n$enddefinitions $end\n";
}

void ValueDump::Change(Item& item, const std::string& bits, std::string& out) {
    if (item.last == bits) {
        return;
    }
    item.last = bits;
    out += item.width == 1 && item.range.find(':') == std::string::npos ? bits : "b" + bits + " ";
    out += item.id;
    out += '\n';
}

void ValueDump::Changes(const SampleRecord& record, bool isTrigger, std::string& out) {
    for (Value& value : values_) {
        const RecordField& field = value.signal.field;
        bytes_.resize(field.Bytes());
        field.Take(record, bytes_.data());
        bits_.clear();
        const std::uint64_t shown =
            value.text ? value.text->ShownDigits(record) : DecodedText::allDigits;
        for (std::size_t bit = field.Width(); bit-- > 0;) {
            const bool isShown = (shown >> (bit / DecodedText::digitBits) & 1) != 0;
            bits_ += !isShown ? 'x' : TestBit(bytes_, bit) ? '1' : '0';
        }
        Change(value.item, bits_, out);
        if (value.textItem) {
            // Right-aligned, as hardware description languages store texts in vectors.
            const std::string& text = value.text->Of(record);
            const std::size_t room = value.textItem->width / 8;
            const std::size_t length = std::min(text.size(), room);
            bits_.assign((room - length) * 8, '0');
            for (std::size_t i = 0; i < length; ++i) {
                for (int bit = 7; bit >= 0; --bit) {
                    bits_ += (static_cast<unsigned char>(text[i]) >> bit & 1) != 0 ? '1' : '0';
                }
            }
            Change(*value.textItem, bits_, out);
        }
    }
    Change(trigger_, isTrigger ? "1" : "0", out);
}

void ValueDump::Add(const SampleRows& rows, std::string& out) {
    for (std::size_t i = 0; i < rows.Size(); ++i) {
        const bool isFirst = now_ < 0;
        // Two samples at the same time would hide one another.
        const std::int64_t sum = time_.Next(rows.records[i]);
        now_ = std::max(AddTimes(now_, 1), sum);
        // The sums do not include the time before the first sample.
        const std::int64_t step = isFirst ? SampleTime().Of(rows.records[i]) : sum - sum_;
        if (step > 0 && (narrowest_ == 0 || step < narrowest_)) {
            narrowest_ = step;
        }
        sum_ = sum;
        const bool isTrigger = rows.numbers[i] == 0;
        if (isTrigger) {
            triggerTime_ = now_;
        }
        changes_.clear();
        Changes(rows.records[i], isTrigger, changes_);
        if (changes_.empty()) {
            continue;
        }
        out += '#';
        out += std::to_string(now_);
        out += '\n';
        out += isFirst ? "$dumpvars\n" + changes_ + "$end\n" : changes_;
    }
}

void ValueDump::End(std::string& out) const {
    if (now_ >= 0) {
        // The duration of the last sample is unknown. Without an end it would not be visible.
        const std::int64_t end = AddTimes(now_, std::max<std::int64_t>(narrowest_, 1));
        out += Printf("#%lld\n", static_cast<long long>(end));
    }
}

std::string ValueDump::ViewerFile(std::string_view dumpPath, std::string_view viewerPath) const {
    // The viewer's display flags of a value: alignment and radix.
    constexpr unsigned rightAligned = 0x20;
    constexpr unsigned hexadecimal = 0x02;
    constexpr unsigned decimal = 0x04;
    constexpr unsigned binary = 0x08;
    constexpr unsigned octal = 0x10;
    constexpr unsigned characters = 0x800;
    // 200 pixels are two to this power wide, in the dump's time units.
    const int zoom = capture_.zoom ? 16 : 12;
    std::string text = "[dumpfile] \"" + std::string(dumpPath) + "\"\n[savefile] \"" +
                       std::string(viewerPath) + "\"\n";
    const std::int64_t leftOfTrigger = (std::int64_t{1} << zoom) / 2;
    const std::int64_t start = std::max<std::int64_t>(triggerTime_.value_or(0) - leftOfTrigger, 0);
    text += Printf("[timestart] %lld\n", static_cast<long long>(start));
    if (triggerTime_) {
        text += Printf("*-%d.000000 %lld", zoom, static_cast<long long>(*triggerTime_));
        for (char marker = 'a'; marker <= 'z'; ++marker) {
            text += " -1";
        }
        text += "\n";
    }
    const auto show = [&](const Item& item, unsigned flags, std::uint32_t color) {
        text += Printf("@%x\n[color] %d\n%s.%s%s\n", flags | rightAligned, ViewerColor(color),
                       scope, item.name.c_str(), item.range.c_str());
    };
    std::size_t next = 0;
    for (std::size_t i = 0; i < list_.Size(); i = list_.GroupEnd(i)) {
        const CSignal& signal = list_[i];
        if (next == values_.size() || values_[next].signal.signal != &signal) {
            const bool isBlank = signal.IsBlank() && !signal.hidden;
            text += isBlank ? "@200\n-\n" : "";
            continue;
        }
        const Value& value = values_[next++];
        const bool isBit = value.item.width == 1;
        const unsigned base = isBit || signal.radix == Radix::Binary ? binary
                              : signal.radix == Radix::Octal         ? octal
                              : signal.radix == Radix::Time          ? decimal
                                                                     : hexadecimal;
        show(value.item, base, signal.color);
        if (value.textItem) {
            show(*value.textItem, characters, signal.color);
        }
    }
    show(trigger_, binary, 0);
    return text;
}

} // namespace busquill
