#pragma once

#include "ui/framework/view.h"

#include <QPointer>

#include <functional>
#include <vector>

class QPushButton;

namespace busquill {

/// Where the parts of a form stand, in pixels; rows are counted from the bottom of the view.
namespace Form {
constexpr int margin = 10;
constexpr int buttonPitch = 80;

/// A button of the row along the bottom, by its left edge.
[[nodiscard]] QRect ButtonPlace(int left, int viewHeight) noexcept;
/// The left edge of a slot of that row.
[[nodiscard]] constexpr int SlotLeft(int slot) noexcept {
    return margin + slot * buttonPitch;
}
/// A field of row `row`, from `left` on.
[[nodiscard]] QRect FieldPlace(int row, int left, int width, int viewHeight) noexcept;
/// A group box between two distances from the bottom.
[[nodiscard]] QRect GroupPlace(int left, int width, int top, int bottom, int viewHeight) noexcept;
} // namespace Form

/// A view with buttons along its bottom and fields whose labels it draws itself. Derived views say
/// where their fields stand each time that the form is laid out: when the size changes, and when
/// they ask for it.
class CFormView : public CView {
    Q_OBJECT
public:
    using CView::CView;

protected:
    QPushButton& AddButton(const QString& text, int left, std::function<void()> act);
    /// Lays the form out anew: some fields show now and others do not.
    void LayOutAgain();

    // Within LayOut:

    /// A label in front of a field; drawn while the field shows.
    void AddLabel(const QString& text, const QWidget& field, const QRect& place);
    void AddGroup(const QString& title, const QRect& place);
    /// Where everything but the buttons stands now.
    virtual void LayOut() = 0;

    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Button {
        QPushButton* button;
        int left;
    };
    struct Label {
        QString text;
        QPointer<const QWidget> field;
        QRect place;
    };
    struct Group {
        QString title;
        QRect place;
    };
    std::vector<Button> buttons_;
    std::vector<Label> labels_;
    std::vector<Group> groups_;
};

} // namespace busquill
