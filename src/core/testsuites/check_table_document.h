#pragma once

#include "document/record_document.h"
#include "platform/bits.h"
#include "testsuites/check_table.h"

#include <functional>

namespace busquill {

/// A document whose file names the enabled rows of a fixed table. Which table depends on the board,
/// so the same flags belong to other rows when the board's family changes.
class CheckTableDocument : public RecordDocument {
public:
    /// Called whenever the table is needed.
    using TableInUse = std::function<CheckTable()>;

    [[nodiscard]] CheckTable Table() const { return tableInUse_(); }

    /// One flag for each row, groups too, all set at first. A row that has none is never enabled.
    [[nodiscard]] const Bits& Enabled() const noexcept { return enabled_; }
    [[nodiscard]] bool IsEnabled(int row) const noexcept {
        return enabled_.Test(static_cast<std::size_t>(row));
    }
    void Enable(int row, bool enabled) noexcept {
        enabled_.Assign(static_cast<std::size_t>(row), enabled);
    }
    void EnableAll(bool enabled) { enabled_.Reset(enabled_.Size(), enabled); }

protected:
    CheckTableDocument(RecordFileKind kind, std::size_t flags, TableInUse tableInUse,
                       Prompts& prompts)
        : RecordDocument(kind, OpenQuote::GoesOn, prompts), tableInUse_(std::move(tableInUse)),
          enabled_(flags, true) {}

    void WriteRecords(RecordWriter& writer) const override;

    static constexpr const char* testKey = "Test";

private:
    const TableInUse tableInUse_;
    Bits enabled_;
};

} // namespace busquill
