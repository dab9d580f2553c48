#include "ui/shell/help_window.h"

#include <QAction>
#include <QFile>
#include <QTextBrowser>
#include <QToolBar>

#include <algorithm>
#include <utility>

namespace busquill {

namespace {

constexpr auto manualRoot = ":/manual/";
constexpr auto contents = "index.md";

} // namespace

QString HelpPage(const std::vector<HelpTopicPage>& topics, int topic) {
    const auto found = std::find_if(topics.begin(), topics.end(),
                                    [&](const HelpTopicPage& each) { return each.topic == topic; });
    const QString path = QString(manualRoot) + (found == topics.end() ? contents : found->page);
    return QFile::exists(path) ? path : QString(manualRoot) + contents;
}

HelpWindow::HelpWindow(QWidget* parent, std::vector<HelpTopicPage> topics)
    : QMainWindow(parent, Qt::Window), topics_(std::move(topics)), page_(new QTextBrowser(this)) {
    setWindowTitle("Busquill! Help");
    resize(760, 640);
    page_->setOpenExternalLinks(true);
    setCentralWidget(page_);
    QToolBar* bar = addToolBar("Help");
    bar->setMovable(false);
    bar->addAction("Contents", this, [this] { ShowTopic(HelpTopic::Contents); });
    QAction* back = bar->addAction("Back", page_, &QTextBrowser::backward);
    QAction* forward = bar->addAction("Forward", page_, &QTextBrowser::forward);
    back->setEnabled(false);
    forward->setEnabled(false);
    connect(page_, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
    connect(page_, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
}

void HelpWindow::ShowTopic(int topic) {
    page_->setSource(QUrl("qrc" + HelpPage(topics_, topic)), QTextDocument::MarkdownResource);
    show();
    raise();
    activateWindow();
}

} // namespace busquill
