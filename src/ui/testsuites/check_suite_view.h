#pragma once

#include "ui/framework/ask_for_file.h"
#include "ui/framework/form_view.h"

class QListWidget;

namespace busquill {

class CAnalyzerLink;
class CCheckTree;
class CheckTableDocument;
class MainThread;
class Prompts;
class Settings;

/// A check list, the results of a run, and buttons for both. A derived view has the run.
class CCheckSuiteView : public CFormView {
    Q_OBJECT
public:
    /// What the view works with; all outlive it.
    struct Parts {
        CAnalyzerLink& link;
        Prompts& prompts;
        const Settings& settings;
        const MainThread& mainThread;
        std::function<void()> showHelp;
    };

    virtual void Start() = 0;
    virtual void Stop() = 0;

signals:
    void RunningChanged(bool running);

protected:
    struct Words {
        const char* checklistTitle;
        /// Without its use.
        FileQuestion file;
    };

    CCheckSuiteView(CheckTableDocument& document, Parts parts, Words words);

    [[nodiscard]] const Parts& With() const noexcept { return parts_; }
    [[nodiscard]] const CCheckTree& Tree() const noexcept { return *tree_; }

    virtual void Options() = 0;
    /// Ticks the rows that the document has enabled.
    virtual void RefreshTree();
    /// Called when a file has been read, or refused.
    virtual void OnFileRead() {}
    /// Called after a click or a key in the tree: the document has the ticks.
    virtual void OnTreeRead() {}

    void ClearResults();
    /// Adds a line, and scrolls to it unless the user has scrolled away from the end.
    void AddResult(std::string_view line);
    void SelectResult(int row);
    void SelectLastResult();

    void LayOut() override;

private:
    void EnableAll(bool enabled);
    void ReadTree();
    [[nodiscard]] std::string AskFor(FileUse use);
    void Load();
    void Save();

    CheckTableDocument& document_;
    const Parts parts_;
    const Words words_;
    CCheckTree* tree_;
    QListWidget* results_;
};

} // namespace busquill
