#include "ui/stimulus/stimulus_view.h"

#include "platform/prompts.h"
#include "stimulus/stimulus_document.h"
#include "ui/framework/ask_for_file.h"
#include "ui/framework/help_page.h"
#include "ui/framework/mdi_child.h"
#include "ui/levels/level_panel.h"
#include "ui/patterns/pattern_grid.h"
#include "ui/patterns/pattern_table.h"
#include "ui/stimulus/stimulus_levels.h"

#include <QPushButton>
#include <QStyle>

#include <algorithm>

namespace busquill {

namespace {

constexpr int groupsTop = 5;
constexpr int groupsBottom = 38; // from the bottom of the view
constexpr int groupGap = 5;
constexpr int groupEdge = 6; // around the content of a group, without the title

} // namespace

CStimulusView::CStimulusView(CStimulusDoc& document, const Settings& settings,
                             BoardRun::Parts parts, std::function<void()> showHelp)
    : CFormView(settings), document_(document), prompts_(parts.prompts),
      patterns_(MakeTable("STIMULUS", "S%d:", stimulusPatterns)),
      events_(MakeTable("EVENT", "E%d:", document.Program().eventCount)),
      levels_(new CLevelPanel(document.Program().control, StimulusLevels(prompts_), prompts_)),
      run_(std::move(parts), [this](bool running) { emit RunningChanged(running); }) {
    patterns_->setObjectName("Stimulus");
    events_->setObjectName("Events");
    levels_->setObjectName("Control");
    SetHelpPage(*levels_, "stimulus.md#levels");
    levels_->setParent(this);
    AddButton("&Load", Form::SlotLeft(0), [this] { Load(); });
    AddButton("&Save", Form::SlotLeft(1), [this] { Save(); });
    AddButton("&Options", Form::SlotLeft(4),
              [this] { prompts_.Message("No options are available."); });
    AddButton("&Help", Form::SlotLeft(5), std::move(showHelp));
    AddButton("&Close", Form::SlotLeft(6), [this] { CMDIChildWnd::FrameOf(*this)->close(); });
}

CPatternTable* CStimulusView::MakeTable(const char* heading, const char* rowFormat, int rows) {
    auto* table = new CPatternTable(rows, prompts_, PatternRows::Scrolled);
    table->Grid().SetText(heading, rowFormat);
    table->setParent(this);
    return table;
}

void CStimulusView::Go() {
    run_.Go(document_.Program());
}

void CStimulusView::Stop() {
    run_.Stop();
}

void CStimulusView::OnUpdate(DocumentView* /*sender*/, int hint, const HintObject* /*object*/) {
    update();
    if (hint != CDocument::hintLoaded) {
        return; // the tables keep their places and the widths of their columns
    }
    patterns_->SetList(document_.Program().patterns, ModeStimulus);
    events_->SetList(document_.Program().control.events, ModeEvents);
    levels_->Refresh();
}

void CStimulusView::Load() {
    const std::string path = AskForFile(
        this, QuestionFor(FileUse::Open, "Stimulus", ".stm", document_.GetPathName()), prompts_);
    if (!path.empty()) {
        static_cast<void>(document_.OnOpenDocument(path)); // updates the views
    }
}

void CStimulusView::Save() {
    const std::string path = AskForFile(
        this, QuestionFor(FileUse::Save, "Stimulus", ".stm", document_.GetPathName()), prompts_);
    if (!path.empty()) {
        static_cast<void>(document_.OnSaveDocument(path)); // reports its failure
    }
}

/// The tables side by side, no higher than their rows, and the levels below. At the usual size all
/// events show, and two levels.
void CStimulusView::LayOut() {
    const int frame = fontMetrics().height() + 2 * groupEdge;
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    const int room = height() - groupsTop - groupsBottom;
    const int tables = std::min(HeightOfPatterns(stimulusPatterns) + bar + frame, room * 7 / 12);
    const int width = (this->width() - 2 * Form::margin - groupGap) / 2;
    const QRect left(Form::margin, groupsTop, width, tables);
    PlaceInGroup("Stimulus", left, *patterns_);
    PlaceInGroup("Events", left.translated(width + groupGap, 0), *events_);
    PlaceInGroup("Control",
                 QRect(Form::margin, groupsTop + tables + groupGap,
                       this->width() - 2 * Form::margin, room - tables - groupGap),
                 *levels_);
}

void CStimulusView::PlaceInGroup(const QString& title, const QRect& group, QWidget& content) {
    AddGroup(title, group);
    content.setGeometry(
        group.adjusted(groupEdge, fontMetrics().height() + groupEdge, -groupEdge, -groupEdge));
}

} // namespace busquill
