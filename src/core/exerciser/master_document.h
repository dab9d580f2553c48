#pragma once

#include "document/record_document.h"
#include "exerciser/form_values.h"
#include "exerciser/master_form.h"
#include "link/board_identity.h"

#include <functional>
#include <string>
#include <vector>

namespace busquill {

/// The form of the master exerciser, which a .mst file holds. Main thread.
class CMasterDoc final : public RecordDocument {
public:
    /// `board` returns the board whose fields files are read and written for.
    CMasterDoc(std::function<BoardTraits()> board, Prompts& prompts);

    [[nodiscard]] MasterForm& Form() noexcept { return form_; }
    [[nodiscard]] const MasterForm& Form() const noexcept { return form_; }
    /// What the form has on the board.
    [[nodiscard]] const MasterFamily& Family() const { return MasterFamilyOf(board_()); }

protected:
    void BeginReading() override;
    void TakeRecord(const std::vector<std::string>& fields, TextReader& file) override;
    /// Takes over what the board's form has, and updates the views.
    void EndReading() override;
    void WriteRecords(RecordWriter& writer) const override;

private:
    const std::function<BoardTraits()> board_;
    MasterForm form_;
    FormValues values_; // of the file that is being read
};

} // namespace busquill
