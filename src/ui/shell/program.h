#pragma once

#include "capture/analyzer.h"
#include "platform/main_thread.h"
#include "ui/shell/main_frame.h"
#include "ui/shell/tessel_app.h"

namespace busquill {

/// Sets the application's name, under which its settings are stored. The display name is left
/// empty, since Qt would add it to the title of every window.
void NameApplication(const std::string& name);

/// The whole program: everything that lives as long as it does, created in order and destroyed in
/// reverse.
class Program {
public:
    /// What differs between the program itself, the screenshot tour and tests. All outlive the
    /// program.
    using Machine = Analyzer::Machine;

    explicit Program(Machine machine);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// Shows the main window, connects to the board and loads its tables. Blocks for seconds.
    void InitInstance();

    /// Opens a file that the desktop asks for, and brings the main window to the front.
    void OpenFile(const std::string& path);

    [[nodiscard]] CMainFrame& Frame() noexcept { return *frame_; }
    [[nodiscard]] CTesselApp& App() noexcept { return *app_; }
    [[nodiscard]] CAnalyzerLink& Link() noexcept { return analyzer_.Link(); }
    [[nodiscard]] SignalTables& Tables() noexcept { return analyzer_.Tables(); }

private:
    Machine machine_;
    Analyzer analyzer_;
    std::unique_ptr<CMainFrame> frame_;
    std::unique_ptr<CTesselApp> app_;
};

} // namespace busquill
