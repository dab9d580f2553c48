#pragma once

#include "ui/framework/feature.h"

#include <QMainWindow>

#include <vector>

class QTextBrowser;

namespace busquill {

namespace HelpTopic {
enum : int { Contents = 11 };
}

/// The manual's page for a topic; the contents page for a topic without one.
[[nodiscard]] QString HelpPage(const std::vector<HelpTopicPage>& topics, int topic);

/// Shows the manual's pages.
class HelpWindow final : public QMainWindow {
    Q_OBJECT
public:
    HelpWindow(QWidget* parent, std::vector<HelpTopicPage> topics);
    void ShowTopic(int topic);

private:
    const std::vector<HelpTopicPage> topics_;
    QTextBrowser* page_;
};

} // namespace busquill
