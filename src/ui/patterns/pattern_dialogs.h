#pragma once

#include "signals/signal_list.h"
#include "ui/patterns/pattern_table.h"

#include <QDialog>

namespace busquill {

class Prompts;

/// Edits a pattern of one row in a copy of the list, which replaces the list on OK.
class PatternDialog : public QDialog {
    Q_OBJECT
public:
    /// The list outlives the dialog.
    PatternDialog(QWidget* parent, const char* caption, const char* helpPage, CSignalList& list,
                  Prompts& prompts);

    [[nodiscard]] CPatternGrid& Grid() const noexcept { return table_->Grid(); }
    /// The copy that is edited.
    [[nodiscard]] const CSignalList& Edited() const noexcept { return copy_; }

    void accept() override;

private:
    CSignalList& list_;
    CSignalList copy_;
    CPatternTable* table_;
};

class CSearchPatternDlg final : public PatternDialog {
    Q_OBJECT
public:
    CSearchPatternDlg(QWidget* parent, CSignalList& list, Prompts& prompts)
        : PatternDialog(parent, "Search Pattern", "search.md#find", list, prompts) {}
};

class CFilterPatternDlg final : public PatternDialog {
    Q_OBJECT
public:
    CFilterPatternDlg(QWidget* parent, CSignalList& list, Prompts& prompts)
        : PatternDialog(parent, "Filter Pattern", "search.md#filter", list, prompts) {}
};

} // namespace busquill
