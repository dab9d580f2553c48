#pragma once

#include "ui/framework/command_map.h"
#include "ui/framework/doc_template.h"
#include "ui/framework/printing.h"

#include <QStringList>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class QWidget;

namespace busquill {

class Settings;

/// A name as the text of a menu entry, without a mnemonic.
[[nodiscard]] QString MenuText(QString name);
/// The files' names for a menu; files of the same name are shown with their folders.
[[nodiscard]] QStringList MenuNamesOf(const QStringList& paths);

/// The application's templates and files. Main thread.
class CWinApp {
public:
    CWinApp(Settings& settings, Prompts& prompts) : settings_(settings), prompts_(prompts) {}
    virtual ~CWinApp() = default;
    CWinApp(const CWinApp&) = delete;
    CWinApp& operator=(const CWinApp&) = delete;

    [[nodiscard]] const std::vector<std::unique_ptr<CMultiDocTemplate>>& Templates() const {
        return templates_;
    }
    /// The template that a document belongs to, or null.
    [[nodiscard]] CMultiDocTemplate* TemplateOf(const CDocument& document) const;

    /// The template whose documents have that name, or null.
    [[nodiscard]] CMultiDocTemplate* TemplateNamed(std::string_view documentName) const;

    /// Opens a file by its extension, or brings its window to the front if it is open already. Null
    /// when it cannot be opened; the user has then been told.
    CDocument* OpenDocumentFile(const std::string& path);
    /// Asks for a file and opens it.
    void OnFileOpen(QWidget* parent);
    /// Asks for every modified document. False when the user cancels.
    [[nodiscard]] bool SaveAllModified();

    [[nodiscard]] QStringList RecentFiles() const;
    void AddRecentFile(const std::string& path);

    /// Redraws every document's views.
    void DocumentChanged();

    /// Opens the manual at a topic.
    void ShowHelp(int topic) { showHelp(topic); }
    /// Set by the main window, which shows it.
    std::function<void(int topic)> showHelp = [](int) {};
    /// Called when the connection or the bus may have changed. Set by the main window, which shows
    /// both.
    std::function<void()> boardChanged = [] {};
    /// What the application carries out, whichever window is active.
    CommandMap commands;
    /// Kept until the program ends.
    PrinterChoice printer;

protected:
    void AddDocTemplate(std::unique_ptr<CMultiDocTemplate> added);

    Settings& settings_;
    Prompts& prompts_;

private:
    std::vector<std::unique_ptr<CMultiDocTemplate>> templates_;
};

} // namespace busquill
