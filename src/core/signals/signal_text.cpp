#include "document/csv_line.h"
#include "platform/text.h"
#include "platform/text_file.h"
#include "signals/signal_list.h"

#include <algorithm>
#include <array>

namespace busquill {

namespace {

/// Fields of a record row, in order.
enum Field : std::size_t {
    FieldSignal,
    FieldName,
    FieldBaseName,
    FieldGrouped,
    FieldGroupName,
    FieldGroupAttribute,
    FieldBitIndex,
    FieldDataIndex,
    FieldNumSamples,
    FieldHeight,
    FieldWidth,
    FieldColor,
    FieldShowValue,
    FieldRadix,
    FieldMasked,
    FieldDecoded,
    FieldHidden,
    FieldPermanent,
    FieldBitReverse,
    FieldCount
};

// Readers skip this row. All existing files lack the comma at its end.
constexpr std::string_view headerRow =
    R"("Signal","Name","BaseName","Grouped","GroupName","GroupAttribute","BitIndex","DataIndex",)"
    R"("NumSamples","Height","Width","Color","ShowValue","Radix","Masked","Decoded","Hidden",)"
    R"("Permanent""BitReverse")";

constexpr std::array<std::string_view, 4> radixTexts = {"Binary", "Hex", "Octal", "Time"};

struct AttributeText {
    std::uint8_t bit;
    std::string_view text;
};
constexpr std::array<AttributeText, 3> attributeTexts = {{
    {GroupAttribute::Start, "Start"},
    {GroupAttribute::End, "End"},
    {GroupAttribute::NoUngroup, "NoUngroup"},
}};

std::string FlagText(bool flag, const char* text) {
    return flag ? text : "";
}

std::string AttributesText(std::uint8_t attributes) {
    std::string text;
    for (const auto& [bit, word] : attributeTexts) {
        if ((attributes & bit) != 0) {
            text += text.empty() ? "" : "+";
            text += word;
        }
    }
    return text;
}

std::string RadixText(std::int32_t radix) {
    return radix >= 0 && radix < static_cast<std::int32_t>(radixTexts.size())
               ? std::string(radixTexts[static_cast<std::size_t>(radix)])
               : std::string();
}

std::string RecordRow(const CSignal& signal, bool withData) {
    const std::array<std::string, FieldCount> fields = {
        "Signal",
        signal.name,
        signal.baseName,
        FlagText(signal.grouped, "Grouped"),
        signal.groupName,
        AttributesText(signal.groupAttribute),
        std::to_string(signal.bitIndex),
        std::to_string(signal.dataIndex),
        std::to_string(withData ? signal.numSamples : 0),
        std::to_string(signal.height),
        std::to_string(signal.width),
        std::to_string(signal.color),
        FlagText(signal.showValue, "Show"),
        RadixText(signal.radix),
        FlagText(!signal.mask.empty(), "Masked"),
        signal.decoded ? signal.decoded->name : std::string(),
        FlagText(signal.hidden, "Hidden"),
        FlagText(signal.permanent, "Permanent"),
        FlagText(signal.bitReverse, "BitReverse"),
    };
    std::string row;
    for (const std::string& field : fields) {
        row += row.empty() ? "" : ",";
        row += CsvQuote(field);
    }
    row += '\n';
    return row;
}

/// Writes sample bits, 32 to a line. Each further line repeats the bits of the lines before it, and
/// readers take the first 32 of each line, so only the first 32 samples survive. Existing readers
/// expect this, and no setup has more samples.
void WriteBits(TextWriter& file, std::string_view word, std::span<const std::uint32_t> words,
               std::uint32_t numSamples) {
    const std::size_t count = std::min<std::size_t>(numSamples, words.size() * wordBits);
    std::string line = CsvQuote(word);
    for (std::size_t sample = 0; sample < count; ++sample) {
        line += TestBit(words, sample) ? ",1" : ",0";
        if ((sample + 1) % wordBits == 0 || sample + 1 == count) {
            file.Write(line);
            file.Write("\n");
        }
    }
}

/// Reads up to `lines` lines of bits, a word from each, up to the first line of another kind; that
/// line is lost.
std::vector<std::uint32_t> ReadBits(TextReader& file, std::string_view word, std::size_t lines) {
    std::vector<std::uint32_t> words;
    std::vector<std::string> fields;
    for (std::size_t read = 0; read < lines; ++read) {
        const auto line = file.ReadLine();
        fields.clear();
        if (line) {
            static_cast<void>(CsvSplitLine(*line, fields));
        }
        if (fields.empty() || fields.front() != word) {
            break;
        }
        std::uint32_t& bits = words.emplace_back();
        for (std::size_t i = 1; i < std::min(fields.size(), wordBits + 1); ++i) {
            AssignBit(std::span(&bits, 1), i - 1, fields[i].starts_with('1'));
        }
    }
    return words;
}

/// The fields of a record row by index; empty past the row's end.
class RecordFields {
public:
    explicit RecordFields(const std::vector<std::string>& tokens) : tokens_(tokens) {}

    [[nodiscard]] bool Has(Field field) const { return field < tokens_.size(); }
    [[nodiscard]] std::string Text(Field field) const {
        return Has(field) ? tokens_[field] : std::string();
    }
    [[nodiscard]] bool Is(Field field, std::string_view text) const {
        return Has(field) && tokens_[field] == text;
    }
    [[nodiscard]] std::int32_t Number(Field field, std::int32_t fallback) const {
        return Has(field) ? ParseInt(tokens_[field]) : fallback;
    }

private:
    const std::vector<std::string>& tokens_;
};

std::uint8_t ParseAttributes(const std::string& text) {
    std::uint8_t attributes = 0;
    for (const auto& [bit, word] : attributeTexts) {
        if (text.find(word) != std::string::npos) {
            attributes |= bit;
        }
    }
    return attributes;
}

void ReadFields(const RecordFields& fields, const SignalTables& tables, CSignal& signal) {
    signal.name = fields.Text(FieldName);
    signal.baseName = fields.Text(FieldBaseName);
    signal.grouped = fields.Is(FieldGrouped, "Grouped");
    signal.groupName = fields.Text(FieldGroupName);
    signal.groupAttribute = ParseAttributes(fields.Text(FieldGroupAttribute));
    signal.bitIndex = fields.Number(FieldBitIndex, signal.bitIndex);
    signal.dataIndex = fields.Number(FieldDataIndex, signal.dataIndex);
    signal.numSamples = static_cast<std::uint32_t>(fields.Number(FieldNumSamples, 0));
    signal.height = fields.Number(FieldHeight, signal.height);
    signal.width = fields.Number(FieldWidth, signal.width);
    signal.color = static_cast<std::uint32_t>(fields.Number(FieldColor, 0));
    signal.showValue = fields.Is(FieldShowValue, "Show");
    for (std::size_t radix = 0; radix < radixTexts.size(); ++radix) {
        if (fields.Is(FieldRadix, radixTexts[radix])) {
            signal.radix = static_cast<std::int32_t>(radix);
        }
    }
    if (const std::string name = fields.Text(FieldDecoded); !name.empty()) {
        signal.decoded = tables.decodedSignals.FindByName(name);
    }
    signal.hidden = fields.Is(FieldHidden, "Hidden");
    signal.permanent = fields.Is(FieldPermanent, "Permanent");
    signal.bitReverse = fields.Is(FieldBitReverse, "BitReverse");
}

/// Reads the lines of bits that follow a record. They are padded with zeros if all samples fit in
/// `most` words. Returns the number of words that the signal takes.
std::size_t ReadSamples(TextReader& file, bool masked, std::size_t most, CSignal& signal) {
    const std::size_t announced = WordsFor(signal.numSamples);
    if (announced == 0) {
        return 0;
    }
    std::vector<std::uint32_t> data = ReadBits(file, "Data", announced);
    std::vector<std::uint32_t> mask =
        masked ? ReadBits(file, "Mask", announced) : std::vector<std::uint32_t>();
    const std::size_t words =
        announced <= most ? announced : std::max({data.size(), mask.size(), std::size_t{1}});
    data.resize(words);
    signal.data = data;
    if (masked) {
        mask.resize(words);
        signal.mask = mask;
    }
    return words;
}

} // namespace

void CSignalList::WriteSignals(TextWriter& file, bool withData) const {
    file.Write(headerRow);
    file.Write("\n");
    for (const auto& signal : signals_) {
        file.Write(RecordRow(*signal, withData));
        if (withData && !signal->data.empty()) {
            WriteBits(file, "Data", signal->data, signal->numSamples);
            WriteBits(file, "Mask", signal->mask, signal->numSamples);
        }
    }
}

void CSignalList::ReadSignal(const std::vector<std::string>& tokens, TextReader& file) {
    auto signal = std::make_unique<CSignal>();
    const RecordFields fields(tokens);
    ReadFields(fields, *tables_, *signal);
    const std::size_t most =
        std::min(WordsFor(maxFileSamples), maxFileWords - std::min(maxFileWords, fileWords_));
    fileWords_ += ReadSamples(file, fields.Is(FieldMasked, "Masked"), most, *signal);
    signals_.push_back(std::move(signal));
}

} // namespace busquill
