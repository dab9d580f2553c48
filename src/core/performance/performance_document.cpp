#include "performance/performance_document.h"

#include "document/csv_line.h"
#include "document/hex_fields.h"
#include "platform/text.h"
#include "platform/text_file.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

namespace busquill {

namespace {

using Fields = std::vector<std::string>;

constexpr RecordFileKind fileKind = {"Performance File", "performance"};

constexpr const char* itemKey = "Performance Item";

/// A file may claim this many results without a row for each.
constexpr std::int64_t unprovenCount =
    ResultStore::ringSize * static_cast<std::int64_t>(performanceItems);

std::int32_t TypeNamed(std::string_view name, std::int32_t otherwise) {
    for (std::int32_t type = 0; type < performanceTypeCount; ++type) {
        if (PerformanceTypeOf(type).name == name) {
            return type;
        }
    }
    return otherwise;
}

/// The index of a text. Empty texts are gaps.
std::int32_t IndexOf(std::span<const std::string_view> texts, std::string_view text,
                     std::int32_t otherwise) {
    const auto found = std::ranges::find(texts, text);
    return text.empty() || found == texts.end() ? otherwise
                                                : static_cast<std::int32_t>(found - texts.begin());
}

std::uint32_t ParseHex(const std::string& text) {
    return static_cast<std::uint32_t>(std::strtoll(text.c_str(), nullptr, 16));
}

void AppendNumber(std::string& line, std::int64_t number) {
    char digits[24];
    line.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

} // namespace

CPerformanceDoc::CPerformanceDoc(std::function<BoardTraits()> board, Prompts& prompts)
    : RecordDocument(fileKind, OpenQuote::GoesOn, prompts), board_(std::move(board)) {}

void CPerformanceDoc::SetType(std::int32_t type) {
    setup_.SetType(type);
    UpdateAllViews(nullptr, hintLoaded);
}

void CPerformanceDoc::AddResults(std::span<const std::uint8_t, performanceResultBytes> bytes) {
    results_.Add(ParsePerformanceResults(bytes));
}

std::int32_t CPerformanceDoc::GetResult(std::size_t item, std::int64_t index) const {
    return item < performanceItems ? results_.At(index)[item] : 0;
}

bool CPerformanceDoc::OnNewDocument() {
    setup_.Clear();
    results_.Clear();
    return true;
}

// The records go into the document as they are read: a file that is refused in the end has replaced
// it, and the views are not told.
void CPerformanceDoc::BeginReading() {
    setup_.Clear();
    results_.Clear();
    claimedCount_ = 0;
}

void CPerformanceDoc::TakeRecord(const Fields& fields, TextReader& file) {
    const std::string& key = fields[0];
    if (key == "Results") {
        ReadResults(file);
        return;
    }
    if (fields.size() < 2) {
        return;
    }
    const std::string& value = fields[1];
    ResultStore::Position where = results_.Where();
    if (key == "Type") {
        setup_.type = TypeNamed(value, setup_.type);
    } else if (key == "SetupName") {
        setup_.setupName = value;
    } else if (key == "UpdateInterval") {
        setup_.updateInterval = ParseInt(value);
    } else if (key == "ChartType") {
        setup_.chartType = value == "Pie" ? PerformancePieChart : PerformanceBarChart;
    } else if (key == "Grid") {
        setup_.grid = value == "On";
    } else if (key == "Number of Results") {
        TakeCount(ParseInt(value), 0);
    } else if (key == "Next Result Index") {
        where.next = ParseInt(value);
        results_.SetWhere(where);
    } else if (key == "Wrapped") {
        where.wrapped = ParseInt(value) != 0;
        results_.SetWhere(where);
    } else if (key == itemKey && value != "Index") {
        TakeItem(fields);
    }
}

void CPerformanceDoc::TakeItem(const Fields& fields) {
    if (fields.size() < 8) {
        return;
    }
    const int number = ParseInt(fields[1]);
    if (number < 1 || number > static_cast<int>(performanceItems)) {
        return;
    }
    PerformanceItem& item = setup_.items[static_cast<std::size_t>(number) - 1];
    item.item = IndexOf(PerformanceTypeOf(setup_.type).items, fields[2], item.item);
    item.cycle = IndexOf(PerformanceCycles(board_()), fields[3], item.cycle);
    item.lowAddress = ParseHexAddress(fields[4]);
    item.highAddress = ParseHexAddress(fields[5]);
    item.color = ParseHex(fields[6]);
    item.style = ParseInt(fields[7]);
}

// Each result has its row. A count far beyond the rows of its file would make the next save write
// rows until the disk is full.
void CPerformanceDoc::TakeCount(std::int64_t count, std::int64_t rows) {
    claimedCount_ = count;
    ResultStore::Position where = results_.Where();
    where.count = std::min(count, std::max(rows, unprovenCount));
    results_.SetWhere(where);
}

void CPerformanceDoc::ReadResults(TextReader& file) {
    std::int64_t rows = 0;
    Fields fields;
    for (auto line = file.ReadLine(); line; line = file.ReadLine()) {
        fields.clear();
        static_cast<void>(CsvSplitLine(*line, fields));
        if (fields.size() <= performanceItems) {
            continue;
        }
        ++rows;
        PerformanceResults results;
        for (std::size_t item = 0; item < results.size(); ++item) {
            results[item] = ParseInt(fields[item + 1]);
        }
        results_.SetRow(ParseInt(fields[0]), results);
    }
    TakeCount(claimedCount_, rows);
}

void CPerformanceDoc::EndReading() {
    UpdateAllViews(nullptr, hintLoaded);
}

void CPerformanceDoc::WriteRecords(RecordWriter& writer) const {
    const ResultStore::Position where = results_.Where();
    writer.WriteEmptyLine();
    writer.Write({"Type", PerformanceTypeOf(setup_.type).name});
    writer.Write({"SetupName", setup_.setupName});
    writer.Write({"UpdateInterval", std::to_string(setup_.updateInterval)});
    writer.Write({"ChartType", setup_.chartType == PerformancePieChart ? "Pie" : "Bar"});
    writer.Write({"Grid", setup_.grid ? "On" : "Off"});
    writer.Write({"Number of Results", std::to_string(where.count)});
    writer.Write({"Next Result Index", std::to_string(where.next)});
    writer.Write({"Wrapped", where.wrapped ? "1" : "0"});
    writer.WriteEmptyLine();
    writer.Write(
        {itemKey, "Index", "Type", "Cycle", "Low Address", "High Address", "Color", "Line Style"});
    const BoardTraits board = board_();
    for (std::size_t row = 0; row < setup_.items.size(); ++row) {
        const PerformanceItem& item = setup_.items[row];
        writer.Write({itemKey, std::to_string(row + 1), PerformanceItemText(setup_.type, item.item),
                      PerformanceCycleText(board, item.cycle),
                      PerformanceAddressText(item.lowAddress),
                      PerformanceAddressText(item.highAddress), Printf("%08x", item.color),
                      std::to_string(item.style)});
    }
    writer.WriteEmptyLine();
    writer.Write({"Results", "A", "B", "C", "D", "E", "F", "G", "H"});
    std::string line;
    for (std::int64_t row = 0; row < where.count; ++row) {
        line.clear();
        AppendNumber(line, row);
        for (const std::int32_t value : results_.Row(row)) {
            line += ", ";
            AppendNumber(line, value);
        }
        line += "\r\n";
        writer.File().Write(line);
    }
}

} // namespace busquill
