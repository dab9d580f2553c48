#pragma once

#include <QMainWindow>

class QTextBrowser;

namespace busquill {

/// Pages of the manual by their topic number.
namespace HelpTopic {
enum : int { Contents = 11, State = 26, Waveform = 28, TraceSetup = 30, SetupWizard = 31 };
}

/// The manual's page for a topic; the contents for a topic that has none.
[[nodiscard]] QString HelpPage(int topic);

/// Shows the manual's pages.
class HelpWindow final : public QMainWindow {
    Q_OBJECT
public:
    explicit HelpWindow(QWidget* parent);
    void ShowTopic(int topic);

private:
    QTextBrowser* page_;
};

} // namespace busquill
