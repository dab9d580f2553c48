#pragma once

#include "capture/capture_run.h"

#include <QDialog>

#include <array>
#include <optional>

class QLabel;

namespace busquill {

class TraceSetup;

/// Shows the state of a running capture: counts, indicators, and the program's active level.
/// Updates a field only when its value has changed.
class CTraceStatusDialog final : public QDialog {
    Q_OBJECT
public:
    /// The setup outlives the dialog.
    CTraceStatusDialog(QWidget* parent, const TraceSetup& setup);

    void Follow(const RunState& state);

private:
    enum Field {
        Before,
        After,
        Occurrences,
        Active,
        Triggered,
        BufferFull,
        Level,
        Store,
        IfEvent,
        Occurs,
        Then,
        Else,
        FieldCount
    };

    QLabel* AddField(Field field, const char* name);
    void SetText(Field field, const std::string& text);
    void SetLamp(Field field, bool lit);

    const TraceSetup& setup_;
    std::array<QLabel*, FieldCount> fields_{};
    std::optional<RunState> shown_;
};

} // namespace busquill
