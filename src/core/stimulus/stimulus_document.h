#pragma once

#include "document/record_document.h"
#include "stimulus/stimulus_program.h"

namespace busquill {

/// A stimulus program, which a .stm file holds. Main thread.
class CStimulusDoc final : public RecordDocument {
public:
    /// A default program for the board of the tables, which outlive the document.
    CStimulusDoc(SignalTables& tables, Prompts& prompts);

    [[nodiscard]] StimulusProgram& Program() noexcept { return program_; }
    [[nodiscard]] const StimulusProgram& Program() const noexcept { return program_; }

    bool OnNewDocument() override;

protected:
    void BeginReading() override;
    void TakeRecord(const std::vector<std::string>& fields, TextReader& file) override;
    void EndReading() override;
    /// Keeps what the file has brought, without a message.
    void Refuse(const char* what, const std::string& found) override;
    void WriteRecords(RecordWriter& writer) const override;

private:
    StimulusProgram program_;
    CSignalList* current_; // to which the signals of the file that is being read belong
};

} // namespace busquill
