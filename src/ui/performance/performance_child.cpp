#include "ui/performance/performance_child.h"

#include "capture/analyzer.h"
#include "performance/performance_document.h"
#include "performance/performance_setup_file.h"
#include "platform/periodic_timer.h"
#include "ui/framework/bar_button.h"
#include "ui/framework/help_page.h"
#include "ui/framework/painting.h"
#include "ui/framework/win_app.h"
#include "ui/performance/help_topics.h"
#include "ui/performance/performance_setup_dialog.h"
#include "ui/performance/performance_view.h"

#include <QComboBox>
#include <QLabel>

namespace busquill {

namespace {

constexpr QSize childSize(720, 500);
constexpr int setupCharacters = 20;

} // namespace

CPerformanceChild::CPerformanceChild(const FeatureParts& parts, CPerformanceDoc& document)
    : CGoStopChild(document, "Performance", "performance", childSize), parts_(parts),
      document_(document),
      view_(new CPerformanceView({document, parts.analyzer.Link(), parts.prompts, parts.settings,
                                  parts.mainThread, std::make_unique<ThreadTimer>(),
                                  [&app = parts.app] { app.ShowHelp(HelpTopic::Performance); }},
                                 ReadValueDisplay(parts.settings))),
      setups_(new QComboBox), display_(new QComboBox), count_(new QLabel) {
    SetHelpPage(*this, "performance.md");
    MakeBar();
    connect(view_, &CPerformanceView::RunningChanged, this, [this](bool running) {
        SetRunState(running ? RunPicture::Running : RunPicture::Stopped);
    });
    connect(view_, &CPerformanceView::TypeShown, this, [this](std::int32_t type) {
        const std::string_view title = PerformanceTypeOf(type).windowTitle;
        setWindowTitle(QString::fromUtf8(title.data(), static_cast<qsizetype>(title.size())));
        FillSetups(); // a file that was loaded names its setup
    });
    connect(view_, &CPerformanceView::ResultCountChanged, this, &CPerformanceChild::ShowCount);
    go = [this] { view_->Go(); };
    stop = [this] { view_->Stop(); };
    view_->AttachDocument(&document);
    SetView(view_);
}

void CPerformanceChild::MakeBar() {
    setups_->setObjectName("Setup Box");
    setups_->setToolTip(TipWithKey("The setup of the measurement", CommandId::ChooseSetup));
    setups_->setMinimumContentsLength(setupCharacters);
    setups_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setups_->setFocusPolicy(Qt::ClickFocus);
    connect(setups_, &QComboBox::activated, this,
            [this] { SetupChosen(setups_->currentText().toStdString()); });
    display_->setObjectName("Value Display");
    display_->setToolTip("The number that the rows show");
    display_->setFocusPolicy(Qt::ClickFocus);
    for (const std::string_view text : valueDisplayTexts) {
        display_->addItem(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
    }
    display_->setCurrentIndex(static_cast<int>(ReadValueDisplay(parts_.settings)));
    connect(display_, &QComboBox::activated, this, [this](int index) {
        const auto display = static_cast<ValueDisplay>(index);
        WriteValueDisplay(parts_.settings, display);
        view_->SetValueDisplay(display);
    });
    count_->setObjectName("Result Count");
    count_->setToolTip("Results so far");
    count_->setFont(FontOfCellHeight(14, QFont::Normal, FontFace::Proportional));
    ShowCount(0);
    AddToBar(*setups_);
    AddToBar(CommandButton(CommandId::EditSetup, "Edit the setup", [this] { EditSetup(""); }));
    commands.On(CommandId::ChooseSetup, [this] { setups_->showPopup(); });
    AddToBar(*display_);
    AddToBar(*count_);
    FillSetups();
}

void CPerformanceChild::FillSetups() {
    setups_->clear();
    setups_->addItem(PerformanceSetup::unnamed);
    for (const std::string& name : FindPerformanceSetups(parts_.directory)) {
        setups_->addItem(QString::fromStdString(name));
    }
    const QString current = QString::fromStdString(document_.Setup().setupName);
    if (setups_->findText(current) < 0) {
        setups_->addItem(current); // its file is gone, or it came with a measurement
    }
    setups_->setCurrentText(current);
}

void CPerformanceChild::SetupChosen(const std::string& name) {
    document_.Setup().setupName = name;
    EditSetup(name == PerformanceSetup::unnamed ? "" : name);
}

void CPerformanceChild::EditSetup(const std::string& nameToLoad) {
    CPerformanceSetupDialog dialog(this, document_.Setup(),
                                   {parts_.analyzer.Link().Traits(), parts_.directory,
                                    parts_.prompts,
                                    [&app = parts_.app] { app.ShowHelp(HelpTopic::Performance); }});
    if (!nameToLoad.empty()) {
        dialog.Load(nameToLoad);
    }
    if (dialog.exec() == QDialog::Accepted) {
        // What was measured belongs to the old setup.
        document_.ClearResults();
        document_.UpdateAllViews(nullptr, CDocument::hintLoaded);
        if (view_->IsRunning()) {
            view_->Go();
        }
    }
    FillSetups();
}

void CPerformanceChild::ShowCount(std::int64_t count) {
    count_->setText(QString("%1").arg(count, 8, 10, QChar('0')));
}

} // namespace busquill
