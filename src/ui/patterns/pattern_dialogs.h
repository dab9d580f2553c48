#pragma once

#include "signals/signal_list.h"

#include <QDialog>

class QScrollBar;

namespace busquill {

class CPatternGrid;
class Prompts;

/// A pattern of one row, edited in a copy of the list that OK puts in its place.
class PatternDialog : public QDialog {
    Q_OBJECT
public:
    /// The list outlives the dialog.
    PatternDialog(QWidget* parent, const char* caption, CSignalList& list, Prompts& prompts);

    [[nodiscard]] CPatternGrid& Grid() const noexcept { return *grid_; }
    /// The copy that is edited.
    [[nodiscard]] const CSignalList& Edited() const noexcept { return copy_; }

    void accept() override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void SetBar();
    void Scrolled(int action);

    CSignalList& list_;
    CSignalList copy_;
    CPatternGrid* grid_;
    QScrollBar* bar_;
};

class CSearchPatternDlg final : public PatternDialog {
    Q_OBJECT
public:
    CSearchPatternDlg(QWidget* parent, CSignalList& list, Prompts& prompts)
        : PatternDialog(parent, "Search Pattern", list, prompts) {}
};

class CFilterPatternDlg final : public PatternDialog {
    Q_OBJECT
public:
    CFilterPatternDlg(QWidget* parent, CSignalList& list, Prompts& prompts)
        : PatternDialog(parent, "Filter Pattern", list, prompts) {}
};

} // namespace busquill
