#include "testsuites/backplane_document.h"

#include "document/csv_line.h"
#include "testsuites/backplane_table.h"

#include <algorithm>

namespace busquill {

namespace {

constexpr RecordFileKind fileKind = {"Backplane Test File", "backplane"};
constexpr std::size_t flagCount = 256;
constexpr const char* resultsKey = "Results";

} // namespace

CBackplaneTestDoc::CBackplaneTestDoc(TableInUse tableInUse, Prompts& prompts)
    : CheckTableDocument(fileKind, flagCount, std::move(tableInUse), prompts) {}

void CBackplaneTestDoc::BeginReading() {
    results_.clear();
    readNames_.clear();
}

void CBackplaneTestDoc::TakeRecord(const std::vector<std::string>& fields, TextReader& file) {
    if (fields[0] == testKey && fields.size() >= 2 && !fields[1].empty()) {
        readNames_.push_back(fields[1]);
    } else if (fields[0] == resultsKey) {
        for (std::vector<std::string> line; ReadCsvRecord(file, line);) {
            if (!line.empty()) {
                results_.push_back(std::move(line[0]));
            }
        }
    }
}

void CBackplaneTestDoc::EndReading() {
    const CheckTable table = PciBackplaneTable();
    EnableAll(false);
    for (const std::string& name : readNames_) {
        const auto row = std::ranges::find(table, name, &CheckTableRow::text);
        if (row != table.end()) {
            Enable(static_cast<int>(row - table.begin()), true);
        }
    }
    readNames_.clear();
    UpdateAllViews(nullptr, hintLoaded);
}

void CBackplaneTestDoc::WriteRecords(RecordWriter& writer) const {
    CheckTableDocument::WriteRecords(writer);
    if (results_.empty()) {
        return;
    }
    writer.WriteEmptyLine();
    writer.Write({resultsKey});
    for (const std::string& line : results_) {
        writer.Write({line});
    }
}

} // namespace busquill
