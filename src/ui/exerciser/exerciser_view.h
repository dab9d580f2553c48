#pragma once

#include "exerciser/bus_address.h"
#include "exerciser/exerciser_run.h"
#include "ui/framework/form_view.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

class QComboBox;
class QLineEdit;

namespace busquill {

class CAnalyzerLink;
class CMemoryListBox;
class CPatternEdit;
class MainThread;
class RecordDocument;
class Settings;

/// What the views of the exercisers share: a dump, and a form whose controls are tied to the fields
/// of the document's form. Each change goes into the document at once.
class ExerciserView : public CFormView {
    Q_OBJECT
public:
    /// What a view works with; all outlive it.
    struct Parts {
        CAnalyzerLink& link;
        Settings& settings;
        Prompts& prompts;
        const MainThread& mainThread;
        std::function<void()> showHelp;
    };
    /// The words in which views of master and target differ.
    struct Words {
        const char* filter;    // of the form's files
        const char* extension; // ".mst"
        const char* dataTitle; // of the dialog for data files
        const char* dataKey;   // the setting that keeps the last one
    };

    ExerciserView(const Parts& parts, const Words& words, RecordDocument& document);

    void OnUpdate(DocumentView* sender, int hint, const HintObject* object) override;

signals:
    void RunningChanged(bool running);

protected:
    // These make controls that show a field and change it. A name is the object's name.

    QComboBox& AddList(const QString& name, std::span<const std::string_view> texts,
                       std::int32_t& index);
    /// A list whose texts depend on the board.
    QComboBox& AddChangingList(const QString& name,
                               std::function<std::span<const std::string_view>()> texts,
                               std::int32_t& index);
    CPatternEdit& AddValue(const QString& name, BusAddress& value);
    CPatternEdit& AddValue(const QString& name, unsigned bits, std::uint8_t& value);
    /// Shows the path of the data file, which the button File changes.
    QLineEdit& AddDataFile(std::string& path);
    /// A field of another kind: `show` sets its control.
    void AddShown(std::function<void()> show) { shown_.push_back(std::move(show)); }

    void AddButtons(std::function<void()> options);

    // Called from LayOut:

    static constexpr int fieldMargin = 8; // in a group, on both sides
    // Widths of the column of labels in a group.
    static constexpr int shortLabels = 46;
    static constexpr int longLabels = 74;

    /// Places a field in a group of the form, with its label.
    void PlaceField(QWidget& field, const QString& label, int row, const QRect& group,
                    int labelWidth = shortLabels);
    /// The places of groups from left to right, with their widths.
    [[nodiscard]] std::vector<QRect> GroupPlaces(std::span<const int> widths, int top,
                                                 int bottom) const;
    /// A share of the view's width.
    [[nodiscard]] int Share(int parts, int of, int less, int atLeast) const;
    /// The dump ends so far above the bottom.
    void PlaceDump(int bottom);

    [[nodiscard]] const Parts& Machine() const noexcept { return parts_; }
    [[nodiscard]] CMemoryListBox& Dump() const noexcept { return *dump_; }
    [[nodiscard]] BoardRun::Parts RunParts() const;

private:
    void Load();
    void Save();
    void ChooseDataFile();
    void ShowForm();

    const Parts parts_;
    const Words words_;
    RecordDocument& document_;
    CMemoryListBox* dump_;
    std::string* dataPath_ = nullptr;
    std::vector<std::function<void()>> shown_;
};

} // namespace busquill
