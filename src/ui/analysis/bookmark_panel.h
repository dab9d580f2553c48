#pragma once

#include "ui/framework/feature.h"
#include "ui/framework/panel.h"

#include <QPointer>

#include <cstdint>
#include <optional>
#include <vector>

class QLabel;
class QModelIndex;

namespace busquill {

class BookmarkModel;
class CTesselDoc;
class CTraceView;
class PanelTable;

/// The bookmarks of the active capture as a table. Choosing a row takes the windows of the capture
/// to its sample; notes are changed in the table.
class BookmarkPanel final : public Panel {
    Q_OBJECT
public:
    explicit BookmarkPanel(const FeatureParts& parts);

    void Follow(CMDIChildWnd* active) override;
    void TakeKeyboard() override;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void MakeTable();
    void MakeCommands();
    /// Shows the bookmarks of a view's capture; null: none.
    void Show(CTraceView* view);
    void Listen(CTraceView* view);
    void ShowNote();
    [[nodiscard]] QString NoteOf(const CTraceView* view) const;
    void ChooseRow(int row, bool selects);
    void RowChosen(const QModelIndex& index);
    [[nodiscard]] std::vector<int> SelectedRows() const;
    void EditNote();
    void RemoveRows();
    void CopyRows() const;
    void OpenMenu(const QPoint& place);
    [[nodiscard]] bool KeyPressed(const QKeyEvent& key);

    const FeatureParts parts_;
    BookmarkModel* model_;
    PanelTable* table_;
    QLabel* note_; // below the table
    QPointer<CTraceView> view_;
    const CTesselDoc* document_ = nullptr; // of the rows; only compared
    std::optional<std::int64_t> last_;     // the bookmark that the windows were last taken to
    bool follows_ = false;                 // a row is chosen by the panel, not by the user
};

} // namespace busquill
