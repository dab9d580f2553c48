#include "ui/trace/child_frame.h"

#include "capture/analyzer.h"
#include "platform/settings.h"
#include "platform/working_directory.h"
#include "tracesetup/setup_file.h"
#include "ui/capture/new_window_dialog.h"
#include "ui/capture/position_gauge.h"
#include "ui/display/trace_view.h"
#include "ui/framework/help_page.h"
#include "ui/framework/win_app.h"
#include "ui/trace/help_topics.h"
#include "ui/trace/trace_bar.h"
#include "ui/tracesetup/trace_setup_dialog.h"

#include <QComboBox>
#include <QFile>
#include <QMdiArea>
#include <QToolButton>

#include <algorithm>

namespace busquill {

namespace {

constexpr int largestWidth = 0x352;
constexpr QSize zoomFrameSize(560, 360);
constexpr int usualHeight = 420;

constexpr const char* newSetup = "<New>";

} // namespace

CChildFrame::CChildFrame(const FeatureParts& parts, TraceActions actions, CTesselDoc& document,
                         TraceViewKind kind)
    : CMDIChildWnd(document), parts_(parts), actions_(std::move(actions)),
      isState_(kind == TraceViewKind::State), isZoom_(kind == TraceViewKind::PowerZoom),
      bar_(new CTraceBar), titleKind_(isZoom_ ? "Power Zoom" : "Trace") {
    resize(isZoom_ ? zoomFrameSize
                   : QSize(std::min(parts.area.width(), largestWidth), usualHeight));
    MakeBar();
    SetBar(bar_);
    SetView(MakeView());
    UpdateTitle();
}

CTraceView* CChildFrame::MakeView() {
    auto* view = new CTraceView(this, isState_, isZoom_,
                                {parts_.settings, &parts_.analyzer.Link(), &parts_.prompts,
                                 &parts_.mainThread, &parts_.app.printer});
    view->AttachDocument(&GetDocument());
    view->SetFrame(this);
    SetHelpPage(*this, isZoom_    ? "waveforms.md#power-zoom"
                       : isState_ ? "listing.md"
                                  : "waveforms.md");
    return view;
}

void CChildFrame::MakeBar() {
    connect(&bar_->HelpButton(), &QToolButton::clicked, this,
            [this] { parts_.app.ShowHelp(isState_ ? HelpTopic::State : HelpTopic::Waveform); });
    connect(&bar_->SetupBox(), &QComboBox::activated, this, &CChildFrame::SetupChosen);
    bar_->ShowStateButton(!isState_);
    if (isZoom_) {
        bar_->HideRunControls();
    } else {
        MakeCommands();
    }
    if (!HasPowerZoom()) {
        bar_->HideZoomButton();
    }
    FillSetupBox();
}

void CChildFrame::MakeCommands() {
    const auto add = [this](QToolButton& button, CommandId id, std::function<void()> act) {
        commands.On(id, std::move(act));
        connect(&button, &QToolButton::clicked, this, [this, id] { commands.Do(id); });
    };
    add(bar_->GoButton(), CommandId::Go, [this] { OnGo(); });
    add(bar_->StopButton(), CommandId::Stop, [this] { OnStop(); });
    add(bar_->SetupButton(), CommandId::EditSetup,
        [this] { EditSetup(bar_->SetupBox().currentData().toString().toStdString()); });
    add(bar_->DisplayButton(), CommandId::SwitchDisplay, [this] { OnDisplay(); });
    if (HasPowerZoom()) {
        add(bar_->ZoomButton(), CommandId::PowerZoom, [this] { OnPowerZoom(); });
    }
    commands.On(
        CommandId::ChooseSetup, [this] { bar_->SetupBox().showPopup(); },
        [this] { return Trace().IsRealTime(); });
}

bool CChildFrame::HasPowerZoom() const {
    return parts_.analyzer.Link().Traits().HasPowerZoom();
}

CTraceView& CChildFrame::TraceView() const {
    return static_cast<CTraceView&>(*GetActiveView());
}

CTesselDoc& CChildFrame::Trace() const {
    return static_cast<CTesselDoc&>(GetDocument());
}

void CChildFrame::FocusView() {
    setFocus();
    GetActiveView()->setFocus();
}

// What the view shows in the frame.

void CChildFrame::SetTitleName(const std::string& name) {
    titleName_ = QString::fromStdString(name);
    UpdateTitle();
}

void CChildFrame::SetComment(const std::string& text) {
    // A title is one line; a description may have several.
    titleComment_ = QString::fromStdString(text).replace("\r\n", " ").replace('\n', ' ');
    UpdateTitle();
}

void CChildFrame::UpdateTitle() {
    const QString title = titleKind_ + " - " + titleName_;
    setWindowTitle(titleComment_.isEmpty() ? title : title + " (" + titleComment_ + ")");
}

void CChildFrame::SetCounters(std::int64_t before, std::int64_t after) {
    bar_->SetCounters(before, after);
}

void CChildFrame::SetIndicator(RunIndicator indicator, int level) {
    bar_->SetIndicator(indicator, level);
}

void CChildFrame::SetTimes(const std::array<std::string, 3>& times) {
    bar_->SetTimes(times);
}

CPositionGauge& CChildFrame::GetGauge() {
    return bar_->Gauge();
}

// The setup box.

void CChildFrame::FillSetupBox() {
    QComboBox& box = bar_->SetupBox();
    box.clear();
    if (!Trace().IsRealTime()) {
        return; // the setup of a saved trace cannot be exchanged
    }
    box.addItem(newSetup, QString());
    const std::string directory = parts_.settings.GetProfileString(
        SettingsSection::setup, SettingsKey::lastSetupFolder, parts_.directory.Path());
    for (const SetupFileEntry& entry : FindSetupFiles(directory)) {
        box.addItem(QString::fromStdString(entry.name), QString::fromStdString(entry.path));
    }
    box.setCurrentIndex(-1);
}

void CChildFrame::ShowSetupName() {
    QComboBox& box = bar_->SetupBox();
    const QString name = QString::fromStdString(Trace().setupName);
    if (Trace().IsRealTime()) {
        const QString path = QString::fromStdString(Trace().setupPath);
        const auto isIn = [&] {
            const int own = box.findData(path);
            return own >= 0 && box.itemText(own) == name;
        };
        if (!path.isEmpty() && !isIn()) {
            FillSetupBox(); // another frame has changed the folder or written the file
        }
        // If two setups have the same name, the document's own is chosen.
        box.setCurrentIndex(isIn() ? box.findData(path) : box.findText(name));
    } else {
        box.clear();
        box.addItem(name);
    }
}

void CChildFrame::SetupChosen() {
    CTesselDoc& document = Trace();
    if (!document.IsRealTime()) {
        return;
    }
    const std::string path = bar_->SetupBox().currentData().toString().toStdString();
    document.SetSetupName(path, bar_->SetupBox().currentText().toStdString());
    parts_.settings.WriteProfileString(SettingsSection::setup, SettingsKey::lastSetupFile, path);
    if (path.empty()) {
        document.setup.Reset();
        EditSetup("");
    } else {
        // A failure has been reported; what could be read is sent all the same.
        static_cast<void>(LoadSetupFile(document.setup, path, parts_.prompts));
        DownloadSetup(parts_.analyzer.Link(), document.setup, parts_.prompts);
    }
    FocusView();
}

void CChildFrame::EditSetup(const std::string& path) {
    CTesselDoc& document = Trace();
    const auto help = [this](int topic) { return [this, topic] { parts_.app.ShowHelp(topic); }; };
    CTraceSetupDialog dialog(this, document.setup, path,
                             {parts_.settings, parts_.prompts, parts_.directory,
                              document.IsRealTime(), [&document] { return document.IsRunning(); },
                              help(HelpTopic::TraceSetup), help(HelpTopic::SetupWizard)});
    const bool accepted = dialog.exec() == QDialog::Accepted && document.IsRealTime();
    if (accepted && (dialog.IsModified() || dialog.IsSaved()) && !document.IsRunning()) {
        if (dialog.IsModified()) {
            document.ClearData();
        }
        document.SetModifiedFlag();
        DownloadSetup(parts_.analyzer.Link(), document.setup, parts_.prompts);
        RememberSetupFile(dialog.Path());
    }
    FillSetupBox();
    if (!document.IsRealTime()) {
        ShowSetupName();
    } else if (!accepted) {
        ChooseSetupFile(document.setupPath); // the file may have been written or deleted
    } else {
        // Go reads the chosen file again, so a file that does not hold this setup must not stay
        // chosen.
        ChooseSetupFile(dialog.IsInFile() ? dialog.Path() : "");
    }
    FocusView();
}

void CChildFrame::ChooseSetupFile(const std::string& path) {
    const bool exists = QFile::exists(QString::fromStdString(path));
    Trace().SetSetupName(exists ? path : "", exists ? SetupNameOf(path) : newSetup);
}

void CChildFrame::RememberSetupFile(const std::string& path) {
    parts_.settings.WriteProfileString(SettingsSection::setup, SettingsKey::lastSetupFile, path);
    if (!path.empty()) {
        parts_.settings.WriteProfileString(SettingsSection::setup, SettingsKey::lastSetupFolder,
                                           std::string(FolderOf(path)));
    }
}

// The buttons.

void CChildFrame::OnGo() {
    CTesselDoc& document = Trace();
    if (document.IsRealTime()) {
        document.Run().Go(document.setup, bar_->SetupBox().currentData().toString().toStdString());
        FocusView();
        return;
    }
    actions_.clone(document, isState_ ? TraceViewKind::State : TraceViewKind::Waveform);
}

void CChildFrame::OnStop() {
    if (Trace().IsRealTime() && Trace().CaptureActive()) {
        Trace().Run().Stop();
        FocusView();
    }
}

void CChildFrame::OnDisplay() {
    for (DocumentView* each : Trace().Views()) {
        auto* view = dynamic_cast<CTraceView*>(each);
        if (view != nullptr && view->IsState() != isState_) {
            parts_.area.setActiveSubWindow(FrameOf(*view));
            return;
        }
    }
    CNewWindowDialog dialog(this, parts_.settings);
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    if (dialog.OpensNewWindow()) {
        actions_.addFrame(Trace(), isState_ ? TraceViewKind::Waveform : TraceViewKind::State);
    } else {
        SwitchDisplay(!isState_);
    }
}

/// The new window comes to the front, but the focus stays here.
void CChildFrame::OnPowerZoom() {
    CMDIChildWnd& added = actions_.addFrame(Trace(), TraceViewKind::PowerZoom);
    parts_.area.setActiveSubWindow(this);
    FocusView();
    added.raise();
}

void CChildFrame::SwitchDisplay(bool toState) {
    isState_ = toState;
    bar_->ShowStateButton(!isState_);
    const std::int64_t center = TraceView().CenterSample();
    CTraceView* view = MakeView();
    SetView(view);
    view->show();
    view->OnInitialUpdate();
    view->ShowSample(center);
    view->setFocus();
}

} // namespace busquill
