#pragma once

#include "ui/framework/feature.h"
#include "ui/framework/win_app.h"

#include <vector>

namespace busquill {

/// The application object: a template, commands and help pages for each function of the board.
class CTesselApp final : public CWinApp {
public:
    struct Parts {
        Settings& settings;
        Prompts& prompts;
        const MainThread& mainThread;
        const WorkingDirectory& directory;
        Analyzer& analyzer;
        QMdiArea& area;
    };
    explicit CTesselApp(const Parts& parts);

    /// The pages of the manual from all functions.
    [[nodiscard]] const std::vector<HelpTopicPage>& HelpTopics() const noexcept {
        return helpTopics_;
    }

private:
    std::vector<HelpTopicPage> helpTopics_;
};

} // namespace busquill
