#pragma once

#include "ui/framework/feature.h"
#include "ui/shell/manual.h"

#include <QMainWindow>

#include <vector>

class QLineEdit;
class QTabWidget;
class QTreeWidget;
class QTreeWidgetItem;

namespace busquill {

class ManualBrowser;

namespace HelpTopic {
enum : int { Contents = 11 };
}

/// The manual's page for a topic; the contents page for a topic without one.
[[nodiscard]] QString HelpPage(const std::vector<HelpTopicPage>& topics, int topic);

/// Shows the manual: a page at the right; at the left the contents, the index and a search.
class HelpWindow final : public QMainWindow {
    Q_OBJECT
public:
    explicit HelpWindow(QWidget* parent);
    /// Shows a page, in front of the other windows: a file name, with "#heading" for a section.
    void ShowPage(const QString& page);

private:
    void MakeBar();
    void MakePanes();
    [[nodiscard]] QWidget* MakeContents();
    [[nodiscard]] QWidget* MakeIndex();
    [[nodiscard]] QWidget* MakeSearch();
    /// A field over a list. Enter in the field opens the list's first entry, Down moves to it.
    [[nodiscard]] QWidget* MakeFinder(QLineEdit& field, QTreeWidget& list);
    void OpenEntry(const QTreeWidgetItem& entry);
    void SelectInContents(const QUrl& shown);
    void FillIndex();
    void FilterIndex(const QString& part);
    void Search(const QString& question);
    void GoToSearch();

    Manual manual_;
    ManualBrowser* page_;
    QTabWidget* panes_;
    QTreeWidget* contents_;
    QTreeWidget* index_;
    QLineEdit* question_;
    QTreeWidget* found_;
};

} // namespace busquill
