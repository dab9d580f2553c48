#include "document/csv_line.h"
#include "platform/text.h"
#include "platform/text_file.h"
#include "signals/signal_list.h"

#include <algorithm>
#include <array>

namespace busquill {

namespace {

constexpr std::size_t bitsPerLine = 32;

constexpr std::array<std::string_view, 4> radixNames = {"Binary", "Hex", "Octal", "Time"};

struct AttributeName {
    std::uint8_t bit;
    std::string_view name;
};
constexpr AttributeName attributeNames[] = {{GroupAttribute::Start, "Start"},
                                            {GroupAttribute::End, "End"},
                                            {GroupAttribute::NoUngroup, "NoUngroup"}};

std::string AttributeText(std::uint8_t attribute) {
    std::string text;
    for (const AttributeName& each : attributeNames) {
        if ((attribute & each.bit) != 0) {
            text += text.empty() ? "" : "+";
            text += each.name;
        }
    }
    return text;
}

std::string_view RadixText(std::int32_t radix) {
    return radix >= 0 && radix < 4 ? radixNames[static_cast<std::size_t>(radix)] : "";
}

std::string RecordRow(const CSignal& signal, bool withData) {
    const auto flag = [](bool set, const char* text) { return CsvQuote(set ? text : ""); };
    const auto number = [](std::int64_t value) { return std::to_string(value); };
    const std::array fields = {
        CsvQuote("Signal"),
        CsvQuote(signal.name),
        CsvQuote(signal.baseName),
        flag(signal.grouped, "Grouped"),
        CsvQuote(signal.groupName),
        CsvQuote(AttributeText(signal.groupAttribute)),
        number(signal.bitIndex),
        number(signal.dataIndex),
        number(withData ? signal.numSamples : 0),
        number(signal.height),
        number(signal.width),
        number(signal.color),
        flag(signal.showValue, "Show"),
        CsvQuote(RadixText(signal.radix)),
        flag(!signal.mask.empty(), "Masked"),
        CsvQuote(signal.decoded ? signal.decoded->name : ""),
        flag(signal.hidden, "Hidden"),
        flag(signal.permanent, "Permanent"),
        flag(signal.bitReverse, "BitReverse"),
    };
    std::string row;
    for (const std::string& field : fields) {
        row += row.empty() ? "" : ",";
        row += field;
    }
    return row + "\n";
}

// Each line after the first repeats the lines before it: readers take the first 32 bits of a line,
// and no list that is written with data has more samples.
void WriteBits(TextWriter& file, std::string_view word, const std::vector<std::uint32_t>& words,
               std::uint32_t count) {
    std::string text = CsvQuote(word);
    for (std::uint32_t s = 0; s < count; ++s) {
        text += (words[s / 32] >> (s % 32) & 1) != 0 ? ",1" : ",0";
        if (s % bitsPerLine == bitsPerLine - 1 || s == count - 1) {
            file.Write(text + "\n");
        }
    }
}

/// Reads up to `lines` lines of bits that begin with `word`; one word for each line that came.
std::vector<std::uint32_t> ReadBits(TextReader& file, std::string_view word, std::size_t lines) {
    std::vector<std::uint32_t> words;
    std::vector<std::string> fields;
    while (words.size() < lines) {
        const auto line = file.ReadLine();
        fields.clear();
        if (!line || (static_cast<void>(CsvSplitLine(*line, fields)), fields.empty()) ||
            fields[0] != word) {
            break; // the line is lost
        }
        std::uint32_t bits = 0;
        for (std::size_t i = 1; i < std::min(fields.size(), bitsPerLine + 1); ++i) {
            bits |= fields[i].starts_with('1') ? 1U << (i - 1) : 0;
        }
        words.push_back(bits);
    }
    return words;
}

std::int32_t RadixOf(std::string_view text, std::int32_t fallback) {
    const auto found = std::find(radixNames.begin(), radixNames.end(), text);
    return found == radixNames.end() ? fallback
                                     : static_cast<std::int32_t>(found - radixNames.begin());
}

/// Sets one field of a signal from the text at its position in the record row.
void ReadField(CSignal& signal, std::size_t position, const std::string& text) {
    switch (position) {
    case 1:
        signal.name = text;
        break;
    case 2:
        signal.baseName = text;
        break;
    case 3:
        signal.grouped = text == "Grouped";
        break;
    case 4:
        signal.groupName = text;
        break;
    case 5:
        for (const AttributeName& each : attributeNames) {
            if (text.find(each.name) != std::string::npos) {
                signal.groupAttribute |= each.bit;
            }
        }
        break;
    case 6:
        signal.bitIndex = ParseInt(text);
        break;
    case 7:
        signal.dataIndex = ParseInt(text);
        break;
    case 8:
        signal.numSamples = static_cast<std::uint32_t>(ParseInt(text));
        break;
    case 9:
        signal.height = ParseInt(text);
        break;
    case 10:
        signal.width = ParseInt(text);
        break;
    case 11:
        signal.color = static_cast<std::uint32_t>(ParseInt(text));
        break;
    case 12:
        signal.showValue = text == "Show";
        break;
    case 13:
        signal.radix = RadixOf(text, signal.radix);
        break;
    case 15:
        signal.decoded =
            text.empty() ? nullptr : SignalTables::Current().decodedSignals.FindByName(text);
        break;
    case 16:
        signal.hidden = text == "Hidden";
        break;
    case 17:
        signal.permanent = text == "Permanent";
        break;
    case 18:
        signal.bitReverse = text == "BitReverse";
        break;
    default:
        break;
    }
}

} // namespace

void CSignalList::WriteSignals(TextWriter& file, bool withData) const {
    file.Write("\"Signal\",\"Name\",\"BaseName\",\"Grouped\",\"GroupName\",\"GroupAttribute\","
               "\"BitIndex\",\"DataIndex\",\"NumSamples\",\"Height\",\"Width\",\"Color\","
               "\"ShowValue\",\"Radix\",\"Masked\",\"Decoded\",\"Hidden\","
               // Readers skip this row, and files have always had it without the last comma.
               "\"Permanent\"\"BitReverse\"\n");
    for (const auto& signal : signals_) {
        file.Write(RecordRow(*signal, withData));
        if (withData && !signal->data.empty()) {
            WriteBits(file, "Data", signal->data, signal->numSamples);
            if (!signal->mask.empty()) {
                WriteBits(file, "Mask", signal->mask, signal->numSamples);
            }
        }
    }
}

void CSignalList::ReadSignal(const std::vector<std::string>& tokens, TextReader& file) {
    auto signal = std::make_unique<CSignal>();
    for (std::size_t i = 1; i < tokens.size(); ++i) {
        ReadField(*signal, i, tokens[i]);
    }
    if (signal->dataIndex < -1 || signal->dataIndex >= static_cast<int>(sizeof(SampleRecord) * 8)) {
        signal->dataIndex = -1; // no bit of a sample
    }
    if (signal->numSamples != 0) {
        signal->data = ReadBits(file, "Data", WordsFor(signal->numSamples));
        // At least the first word; beyond it only what the file really holds.
        signal->data.resize(std::max<std::size_t>(signal->data.size(), 1));
        signal->numSamples = static_cast<std::uint32_t>(
            std::min<std::uint64_t>(signal->numSamples, signal->data.size() * 32));
        if (tokens.size() > 14 && tokens[14] == "Masked") {
            signal->mask = ReadBits(file, "Mask", signal->data.size());
            signal->mask.resize(signal->data.size());
        }
    }
    signals_.push_back(std::move(signal));
}

} // namespace busquill
