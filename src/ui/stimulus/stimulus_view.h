#pragma once

#include "stimulus/stimulus_run.h"
#include "ui/framework/form_view.h"

namespace busquill {

class CLevelPanel;
class CPatternTable;
class CStimulusDoc;

/// Edits a stimulus program and runs it: its patterns, its events and its levels.
class CStimulusView final : public CFormView {
    Q_OBJECT
public:
    /// The document, the settings, and the parts but the timer, outlive the view.
    CStimulusView(CStimulusDoc& document, const Settings& settings, BoardRun::Parts parts,
                  std::function<void()> showHelp);

    void Go();
    /// Stops the board, whether or not a run is on.
    void Stop();

    void OnUpdate(DocumentView* sender, int hint, const HintObject* object) override;

signals:
    void RunningChanged(bool running);

protected:
    void LayOut() override;

private:
    [[nodiscard]] CPatternTable* MakeTable(const char* heading, const char* rowFormat, int rows);
    void PlaceInGroup(const QString& title, const QRect& group, QWidget& content);
    void Load();
    void Save();

    CStimulusDoc& document_;
    Prompts& prompts_;
    CPatternTable* patterns_;
    CPatternTable* events_;
    CLevelPanel* levels_;
    StimulusRun run_;
};

} // namespace busquill
