#pragma once

#include "capture/sample_rows.h"
#include "link/board_identity.h"
#include "signals/cell_text.h"
#include "signals/record_field.h"
#include "signals/signal_list.h"

#include <cstdint>
#include <string>
#include <vector>

namespace busquill {

/// The listing of a capture as text, with the same cells as in the State window if that begins with
/// the first row requested here. Samples are loaded in pieces; rows are requested in order.
class TraceListing {
public:
    struct Capture {
        BoardTraits board;
        bool zoom = false;
        bool hasGaps = false;   // samples of its range are missing
        std::int64_t first = 0; // number of the first sample
        std::int64_t trigger = 0;
        std::int64_t timeToTrigger = 0; // the sum of TIME from the first sample to the trigger
    };

    /// Each piece is unpacked into the list's signals; the list outlives the listing.
    TraceListing(CSignalList& list, Capture capture);

    /// The signals that have a column, in order.
    [[nodiscard]] const std::vector<const CSignal*>& Columns() const noexcept { return columns_; }
    /// Whether a column shows times, which are too short where samples are missing.
    [[nodiscard]] bool ShowsTime() const noexcept { return showsTime_ || showsAccum_; }
    /// Width of a column in characters, the wider of its title and its values.
    [[nodiscard]] static std::size_t WidthOf(const CSignal& column);

    /// Loads the next samples, which must live until the next call. Rows of the piece before are
    /// lost.
    void Load(const SampleRows& rows);
    /// The texts of a row of the current piece, without its number.
    void Cells(std::size_t row, std::vector<std::string>& cells);

private:
    [[nodiscard]] RowTimes TimesOf(std::size_t row);

    CSignalList& list_;
    const Capture capture_;
    RunningTime time_; // up to the end of the piece
    std::vector<const CSignal*> columns_;
    bool showsTime_ = false;
    bool showsAccum_ = false;
    const SampleRows* rows_ = nullptr;
    bool unpacked_ = false;          // whether the piece is in the list
    std::vector<std::int64_t> sums_; // of TIME, up to each row of the piece
    std::int64_t sumAbove_ = 0;      // up to the row that was listed last
};

} // namespace busquill
