#include "ui/shell/help_window.h"

#include <QAction>
#include <QFile>
#include <QTextBrowser>
#include <QToolBar>

namespace busquill {

namespace {

constexpr auto manualRoot = ":/manual/";

} // namespace

QString HelpPage(int topic) {
    const char* page = "index.md";
    switch (topic) {
    case HelpTopic::State:
        page = "listing.md";
        break;
    case HelpTopic::Waveform:
        page = "waveforms.md";
        break;
    case HelpTopic::TraceSetup:
        page = "trace-setup.md";
        break;
    case HelpTopic::SetupWizard:
        page = "setup-wizard.md";
        break;
    default:
        break;
    }
    const QString path = QString(manualRoot) + page;
    return QFile::exists(path) ? path : QString(manualRoot) + "index.md";
}

HelpWindow::HelpWindow(QWidget* parent)
    : QMainWindow(parent, Qt::Window), page_(new QTextBrowser(this)) {
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
    page_->setSource(QUrl("qrc" + HelpPage(topic)), QTextDocument::MarkdownResource);
    show();
    raise();
    activateWindow();
}

} // namespace busquill
