#pragma once

#include "document/record_document.h"
#include "exerciser/form_values.h"
#include "exerciser/target_form.h"
#include "link/board_identity.h"

#include <functional>
#include <string>
#include <vector>

namespace busquill {

/// The form of the target exerciser, of which a .tgt file holds a part: not where on the bus the
/// board answers, nor wait states, response, command and the name of the data file. Main thread.
class CTargetDoc final : public RecordDocument {
public:
    /// `board` returns the board whose fields files are read and written for.
    CTargetDoc(std::function<BoardTraits()> board, Prompts& prompts);

    [[nodiscard]] TargetForm& Form() noexcept { return form_; }
    [[nodiscard]] const TargetForm& Form() const noexcept { return form_; }
    /// What the form has on the board.
    [[nodiscard]] const TargetFamily& Family() const { return TargetFamilyOf(board_()); }

protected:
    void BeginReading() override;
    void TakeRecord(const std::vector<std::string>& fields, TextReader& file) override;
    /// Takes over what the board's form has, and updates the views.
    void EndReading() override;
    void WriteRecords(RecordWriter& writer) const override;

private:
    const std::function<BoardTraits()> board_;
    TargetForm form_;
    FormValues values_; // of the file that is being read
};

} // namespace busquill
