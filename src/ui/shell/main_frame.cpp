#include "ui/shell/main_frame.h"

#include "link/analyzer_link.h"
#include "platform/libraries.h"
#include "platform/settings.h"
#include "ui/framework/bar_button.h"
#include "ui/framework/dialog_titles.h"
#include "ui/framework/help_page.h"
#include "ui/framework/icons.h"
#include "ui/framework/mdi_child.h"
#include "ui/framework/panel.h"
#include "ui/framework/view.h"
#include "ui/framework/window_place.h"
#include "ui/framework/window_timer.h"
#include "ui/shell/command_line.h"
#include "ui/shell/field_commands.h"
#include "ui/shell/help_key.h"
#include "ui/shell/help_window.h"
#include "ui/shell/keys_window.h"
#include "ui/shell/tessel_app.h"
#include "ui/signals/define_signal_dialog.h"

#include <QAbstractEventDispatcher>
#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QIcon>
#include <QLabel>
#include <QMdiArea>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QScreen>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <QUrl>

#include <optional>

// The resources are in a static library, so they must be registered explicitly. The macro must be
// used outside every namespace.
static void RegisterResources() {
    Q_INIT_RESOURCE(busquill);
}

namespace busquill {

namespace {

constexpr QSize usualSize(900, 600);
constexpr int timerPeriod = 1000;
constexpr QSize toolIconSize(18, 18);
constexpr const char* panelsKey = "Panels";

/// Sample texts, from which the panes get their widths.
constexpr const char* paneWidths[] = {"MODEL000-0", "MODE", "FREQ MHz", "Master Lock"};

QStringList FilesIn(const QMimeData& data) {
    QStringList files;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile()) {
            files << url.toLocalFile();
        }
    }
    return files;
}

CMDIChildWnd* ActiveFrame(const QMdiArea& area) {
    return dynamic_cast<CMDIChildWnd*>(area.activeSubWindow());
}

/// The target that can carry the command out now, or null. The first target that has the command
/// decides.
const CommandMap* EnabledTarget(CommandId id, const std::vector<const CommandMap*>& targets,
                                const BoardTraits& board) {
    if (!CommandOf(id).onBoard(board)) {
        return nullptr;
    }
    for (const CommandMap* target : targets) {
        if (const std::optional<bool> can = target->CanDo(id)) {
            return *can ? target : nullptr;
        }
    }
    return nullptr;
}

/// Whether a switch is on; nothing for other commands.
std::optional<bool> IsOn(CommandId id, const std::vector<const CommandMap*>& targets) {
    for (const CommandMap* target : targets) {
        if (const std::optional<bool> isOn = target->IsOn(id)) {
            return isOn;
        }
    }
    return std::nullopt;
}

} // namespace

CMainFrame::CMainFrame(CAnalyzerLink& link, const SignalTables& tables,
                       const MainThread& mainThread, Settings& settings)
    : link_(link), tables_(tables), settings_(settings), area_(new QMdiArea),
      fieldCommands_(new FieldCommands(*this)) {
    RegisterResources();
    setWindowTitle(stockName);
    WidenDialogsToTitles(*this);
    new HelpKey(
        this, [this](const QWidget& focus) { ShowHelpFor(focus); }, [this] { ShowKeys(); });
    setWindowIcon(QIcon(":/icons/busquill.svg"));
    area_->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    area_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setCentralWidget(area_);
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    resize(usualSize.boundedTo(screen.size()));
    move(screen.center() - rect().center());
    new WindowPlace(*this, settings, "Main");
    setAcceptDrops(true);

    MakeCommands();
    MakeActions();
    MakeMenus();
    MakeToolbar();
    MakeStatusBar();
    connect(area_, &QMdiArea::subWindowActivated, this, [this] { RefreshCommands(); });
    // Updates buttons and shortcuts after whatever has happened, before the next event.
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            [this] { RefreshCommands(); });
    auto* timer = new WindowTimer(this, mainThread, [this] { OnTimer(); });
    timer->start(timerPeriod);
}

void CMainFrame::SetApplication(CTesselApp* app) {
    app_ = app;
    if (app_ != nullptr) {
        app_->showHelp = [this](int topic) { ShowHelp(topic); };
        app_->boardChanged = [this] { RefreshStatusPanes(); };
        RestorePanels();
    }
    RefreshCommands();
}

void CMainFrame::MakeActions() {
    for (const Command& command : Commands()) {
        if (command.id == CommandId::None) {
            continue;
        }
        auto* action = new QAction(command.text, this);
        action->setStatusTip(command.tip);
        QString name = QString(command.text).remove('&').remove("...");
        action->setToolTip(TipWithKey(name, command.id));
        if (*command.icon != '\0') {
            action->setIcon(IconOf(command.icon));
            action->setIconVisibleInMenu(false);
        }
        if (*command.shortcut != '\0') {
            action->setShortcuts(QKeySequence::listFromString(command.shortcut));
        }
        action->setAutoRepeat(RepeatsWithItsKey(command.id));
        connect(action, &QAction::triggered, this, [this, id = command.id] { Run(id); });
        actions_[command.id] = action;
    }
}

QMenu* CMainFrame::MenuAt(const QString& path) {
    if (menus_.contains(path)) {
        return menus_[path];
    }
    const qsizetype cut = path.lastIndexOf('>');
    QMenu* menu =
        cut < 0 ? menuBar()->addMenu(path) : MenuAt(path.left(cut))->addMenu(path.mid(cut + 1));
    connect(menu, &QMenu::aboutToShow, this, [this] {
        FillDynamicEntries();
        RefreshCommands();
    });
    menus_[path] = menu;
    return menu;
}

void CMainFrame::MakeMenus() {
    for (const Command& command : Commands()) {
        if (*command.menu == '\0') {
            addAction(actions_[command.id]); // for its key
            continue;
        }
        QMenu* menu = MenuAt(command.menu);
        if (command.id == CommandId::None) {
            menu->addSeparator();
        } else {
            menu->addAction(actions_[command.id]);
        }
    }
    // Hidden entries that mark where the recent files and the open windows are listed.
    recentMark_ = actions_[CommandId::RecentFile];
    windowMark_ = actions_[CommandId::WindowList];
    recentMark_->setVisible(false);
    windowMark_->setVisible(false);
    for (const CommandId id : {CommandId::ViewToolbar, CommandId::ViewStatusBar}) {
        actions_[id]->setCheckable(true);
        actions_[id]->setChecked(true);
    }
}

void CMainFrame::MakeToolbar() {
    toolBar_ = addToolBar("Toolbar");
    toolBar_->setObjectName("Toolbar");
    toolBar_->setIconSize(toolIconSize);
    toolBar_->toggleViewAction()->setVisible(false);
    for (const CommandId id : ToolbarButtons()) {
        if (id == CommandId::None) {
            toolBar_->addSeparator();
            continue;
        }
        toolBar_->addAction(actions_[id]);
        if (id == CommandId::FileNew) {
            auto* button = qobject_cast<QToolButton*>(toolBar_->widgetForAction(actions_[id]));
            button->setMenu(MenuAt("&File>&New"));
            button->setPopupMode(QToolButton::InstantPopup);
        }
    }
}

// The window's layout positions the panes at every resize.
void CMainFrame::MakeStatusBar() {
    boardGone_ = new QLabel;
    boardGone_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    statusBar()->addWidget(boardGone_, 1);
    for (std::size_t i = 0; i < std::size(paneWidths); ++i) {
        panes_[i] = new QLabel;
        panes_[i]->setMinimumWidth(fontMetrics().horizontalAdvance(paneWidths[i]) + 12);
        panes_[i]->setFrameStyle(QFrame::Panel | QFrame::Sunken);
        statusBar()->addPermanentWidget(panes_[i]);
    }
}

void CMainFrame::RefreshStatusPanes() {
    BusConfig bus;
    link_.ReadBusConfig(bus);
    panes_[0]->setText(QString::fromStdString(link_.Identity().modelString));
    panes_[1]->setText(QString::fromStdString(std::string(BusModeName(bus.busMode))));
    panes_[2]->setText(QString("%1 MHz").arg(bus.busFrequency));
    panes_[3]->setText(bus.masterLock != 0 ? "Master Lock" : "");
    ShowWhetherBoardIsGone();
    RefreshCommands();
}

QString CMainFrame::PaneText(int pane) const {
    return panes_[pane - 1]->text();
}

std::vector<const CommandMap*> CMainFrame::Targets() const {
    std::vector<const CommandMap*> targets = fieldCommands_->Maps();
    if (const CMDIChildWnd* frame = ActiveFrame(*area_)) {
        if (const CView* view = frame->GetActiveView()) {
            targets.push_back(&view->commands);
        }
        targets.push_back(&frame->commands);
    }
    if (app_ != nullptr) {
        targets.push_back(&app_->commands);
    }
    targets.push_back(&commands_);
    return targets;
}

void CMainFrame::RefreshCommands() {
    const std::vector<const CommandMap*> targets = Targets();
    const BoardTraits board = link_.Traits();
    for (const auto& [id, action] : actions_) {
        action->setEnabled(EnabledTarget(id, targets, board) != nullptr);
        if (const std::optional<bool> isOn = IsOn(id, targets)) {
            action->setCheckable(true);
            action->setChecked(*isOn);
        }
    }
    // Other windows have nothing to analyze.
    menus_["&Analyze"]->menuAction()->setVisible(actions_[CommandId::Transactions]->isEnabled());
    FollowBoard();
    FollowPanels();
}

// A command may have changed the board or its bus even if it was cancelled: opening the dialog of
// the bus reads the board.
void CMainFrame::FollowBoard() {
    for (const QMdiSubWindow* window : area_->subWindowList()) {
        const auto* frame = dynamic_cast<const CMDIChildWnd*>(window);
        if (frame != nullptr && frame->GetActiveView() != nullptr) {
            frame->GetActiveView()->FollowBoard();
        }
    }
}

void CMainFrame::FollowPanels() {
    for (const QDockWidget* dock :
         findChildren<QDockWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (auto* panel = dynamic_cast<Panel*>(dock->widget())) {
            panel->Follow(ActiveFrame(*area_));
        }
    }
}

void CMainFrame::RestorePanels() {
    const std::string stored = settings_.GetProfileString(SettingsSection::windows, panelsKey, "");
    restoreState(QByteArray::fromBase64(QByteArray::fromStdString(stored)));
    toolBar_->show(); // its entry begins with a mark
}

void CMainFrame::StorePanels() {
    settings_.WriteProfileString(SettingsSection::windows, panelsKey,
                                 saveState().toBase64().toStdString());
}

void CMainFrame::FillDynamicEntries() {
    qDeleteAll(dynamicActions_);
    dynamicActions_.clear();
    if (app_ == nullptr) {
        return;
    }
    const QStringList recent = app_->RecentFiles();
    const QStringList names = MenuNamesOf(recent);
    for (qsizetype i = 0; i < recent.size(); ++i) {
        const QString& path = recent[i];
        auto* action = new QAction(QString("&%1 %2").arg(i + 1).arg(names[i]), this);
        action->setStatusTip(path);
        connect(action, &QAction::triggered, this, [this, path] {
            app_->OpenDocumentFile(path.toStdString());
            RefreshCommands();
        });
        menus_["&File"]->insertAction(recentMark_, action);
        dynamicActions_ << action;
    }
    int number = 1;
    for (QMdiSubWindow* window : area_->subWindowList()) {
        auto* action =
            new QAction(QString("&%1 %2").arg(number++).arg(MenuText(window->windowTitle())), this);
        action->setCheckable(true);
        action->setChecked(window == area_->activeSubWindow());
        connect(action, &QAction::triggered, area_,
                [this, window] { area_->setActiveSubWindow(window); });
        menus_["&Window"]->insertAction(windowMark_, action);
        dynamicActions_ << action;
    }
}

void CMainFrame::Run(CommandId id) {
    if (const CommandMap* target = EnabledTarget(id, Targets(), link_.Traits())) {
        target->Do(id);
    }
    RefreshCommands();
}

void CMainFrame::MakeCommands() {
    commands_.On(CommandId::FileNew, [] {}); // its button opens a menu
    commands_.On(CommandId::Exit, [this] { close(); });
    commands_.On(CommandId::ViewToolbar,
                 [this] { toolBar_->setVisible(actions_[CommandId::ViewToolbar]->isChecked()); });
    commands_.On(CommandId::ViewStatusBar, [this] {
        statusBar()->setVisible(actions_[CommandId::ViewStatusBar]->isChecked());
    });
    commands_.On(CommandId::DefineSignals, [this] { CDefineSignalDialog(this, tables_).exec(); });
    const auto hasWindows = [this] { return !area_->subWindowList().isEmpty(); };
    commands_.On(
        CommandId::Cascade, [this] { area_->cascadeSubWindows(); }, hasWindows);
    commands_.On(
        CommandId::Tile, [this] { area_->tileSubWindows(); }, hasWindows);
    for (const CommandId id : {CommandId::HelpContents, CommandId::HelpTopics}) {
        commands_.On(id, [this] { ShowHelp(HelpTopic::Contents); });
    }
    commands_.On(CommandId::About, [this] { ShowAbout(); });
    commands_.On(CommandId::ShowKeys, [this] { ShowKeys(); });
}

void CMainFrame::ShowHelp(int topic) {
    ShowHelpPage(
        HelpPage(app_ != nullptr ? app_->HelpTopics() : std::vector<HelpTopicPage>(), topic));
}

void CMainFrame::ShowHelpFor(const QWidget& widget) {
    while (QWidget* menu = QApplication::activePopupWidget()) {
        menu->close();
    }
    QString page = HelpPageOf(&widget);
    if (page.isEmpty() && QApplication::activeModalWidget() == nullptr) {
        page = HelpPageOf(area_->activeSubWindow());
    }
    ShowHelpPage(page.isEmpty() ? Manual::contents : page);
}

void CMainFrame::ShowHelpPage(const QString& page) {
    if (help_ == nullptr) {
        help_ = new HelpWindow(this);
        new WindowPlace(*help_, settings_, "Help");
    }
    PlaceBesideDialog(*help_);
    help_->ShowPage(page);
}

/// While a modal dialog is open, the user can reach only windows that belong to it.
void CMainFrame::PlaceBesideDialog(QWidget& window) {
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    QWidget* owner = dialog != nullptr ? static_cast<QWidget*>(dialog) : this;
    if (window.parentWidget() == owner) {
        return;
    }
    const bool wasShown = window.isVisible();
    const QRect place = window.geometry();
    window.setParent(owner, window.windowFlags());
    window.setGeometry(place);
    window.setVisible(wasShown);
    if (dialog != nullptr) {
        connect(dialog, &QDialog::finished, &window,
                [this, &window] { PlaceBesideDialog(window); });
    }
}

void CMainFrame::ShowAbout() {
    QStringList libraries{QString("Qt ") + qVersion()};
    for (const std::string& library : Libraries()) {
        libraries << QString::fromStdString(library);
    }
    QMessageBox box(
        QMessageBox::NoIcon, "About Busquill!",
        QString("<h3>Busquill! " BUSQUILL_VERSION "</h3>"
                "<p>Control and analysis of bus analyzer and exerciser boards for PCI, "
                "PCI-X, VME and VSB.</p>"
                "<p>Copyright 2026 Tarnlight Labs. Licensed under the MIT licence: free "
                "to use, change and pass on, without warranty.</p>"
                "<p>Runs on %1. Names of PCI vendors and classes are those of the PCI "
                "ID Project.</p>")
            .arg(libraries.join(", ")),
        QMessageBox::Ok, this);
    box.setIconPixmap(windowIcon().pixmap(QSize(64, 64), devicePixelRatio()));
    box.setTextInteractionFlags(Qt::TextBrowserInteraction);
    box.exec();
}

void CMainFrame::ShowKeys() {
    if (keys_ == nullptr) {
        keys_ = new KeysWindow(this);
        new WindowPlace(*keys_, settings_, "Keys");
    }
    PlaceBesideDialog(*keys_);
    keys_->show();
    keys_->raise();
    keys_->activateWindow();
}

void CMainFrame::ShowWhetherBoardIsGone() {
    const QString hint = QString::fromStdString(link_.UnpluggedHint());
    boardGone_->setText(hint);
    boardGone_->setToolTip(hint); // for a window too narrow for the text
}

void CMainFrame::OnTimer() {
    ShowWhetherBoardIsGone();
    if (keepAliveDelay_ > 0) {
        --keepAliveDelay_;
    } else {
        link_.SendKeepAlive();
    }
}

/// Qt would append the title of a maximised child to this one.
void CMainFrame::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::WindowTitleChange && windowTitle() != stockName) {
        setWindowTitle(stockName);
    }
}

void CMainFrame::dragEnterEvent(QDragEnterEvent* event) {
    // Something can be dragged even to a window that waits for a dialog.
    if (QApplication::activeModalWidget() == nullptr && !FilesIn(*event->mimeData()).isEmpty()) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
    }
}

/// Opens the files when the drag has ended: the program that they come from waits for its end, and
/// a file may need an answer of the user.
void CMainFrame::dropEvent(QDropEvent* event) {
    event->setDropAction(Qt::CopyAction);
    event->accept();
    const QStringList files = FilesIn(*event->mimeData());
    QMetaObject::invokeMethod(
        this,
        [this, files] {
            for (const QString& file : files) {
                if (app_ != nullptr) {
                    app_->OpenDocumentFile(file.toStdString());
                }
            }
            RefreshCommands();
        },
        Qt::QueuedConnection);
}

void CMainFrame::closeEvent(QCloseEvent* event) {
    if (app_ == nullptr || app_->SaveAllModified()) {
        StorePanels();
        event->accept();
    } else {
        event->ignore();
    }
}

} // namespace busquill
