#pragma once

#include "ui/framework/command_map.h"

#include <QMainWindow>
#include <QPointer>

#include <map>
#include <vector>

class QLabel;
class QMdiArea;
class QMenu;
class QToolBar;

namespace busquill {

class CAnalyzerLink;
class CTesselApp;
class FieldCommands;
class HelpWindow;
class KeysWindow;
class MainThread;
class Settings;
class SignalTables;

/// The program's main window: menus, tool bar, and a status bar that shows what is connected.
class CMainFrame final : public QMainWindow {
    Q_OBJECT
public:
    CMainFrame(CAnalyzerLink& link, const SignalTables& tables, const MainThread& mainThread,
               Settings& settings);

    [[nodiscard]] QMdiArea& Area() const noexcept { return *area_; }
    /// Sets the application, whose documents the menus open; null before it is destroyed, which is
    /// before the window is.
    void SetApplication(CTesselApp* app);
    /// Reads the bus configuration and shows model, mode, frequency and master lock.
    void RefreshStatusPanes();
    /// The text of a status pane, 1 to 4.
    [[nodiscard]] QString PaneText(int pane) const;
    /// Updates which entries of menus and tool bar are enabled.
    void RefreshCommands();
    void FollowBoard();

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void MakeActions();
    void MakeMenus();
    void MakeToolbar();
    void MakeStatusBar();
    [[nodiscard]] QMenu* MenuAt(const QString& path);
    void MakeCommands();
    /// The command maps that are asked for a command, in order.
    [[nodiscard]] std::vector<const CommandMap*> Targets() const;
    void FollowPanels();
    /// Puts panels and bars where the user left them.
    void RestorePanels();
    void StorePanels();
    void Run(CommandId id);
    void FillDynamicEntries();
    void ShowAbout();
    void ShowKeys();
    void ShowHelp(int topic);
    /// The page of the window that contains a widget; if it has none, that of the active window.
    void ShowHelpFor(const QWidget& widget);
    void ShowHelpPage(const QString& page);
    void PlaceBesideDialog(QWidget& window);
    void OnTimer();
    /// Says in the status bar that the board was unplugged, or nothing.
    void ShowWhetherBoardIsGone();

    CAnalyzerLink& link_;
    const SignalTables& tables_;
    Settings& settings_;
    CTesselApp* app_ = nullptr;
    QMdiArea* area_;
    CommandMap commands_;
    FieldCommands* fieldCommands_;
    QToolBar* toolBar_ = nullptr;
    QLabel* boardGone_ = nullptr;
    QLabel* panes_[4] = {};
    QPointer<HelpWindow> help_; // null until help is first asked for
    QPointer<KeysWindow> keys_; // null until the keys are first asked for
    std::map<CommandId, QAction*> actions_;
    std::map<QString, QMenu*> menus_;
    QList<QAction*> dynamicActions_; // recent files and windows
    QAction* recentMark_ = nullptr;
    QAction* windowMark_ = nullptr;
    int keepAliveDelay_ = 5;
};

} // namespace busquill
