#pragma once

#include "ui/framework/view.h"

#include <QPointer>

#include <functional>
#include <vector>

class QPushButton;

namespace busquill {

class Settings;

/// Layout of a form, in pixels; rows are counted from the bottom of the view.
namespace Form {
constexpr int margin = 10;
constexpr int buttonPitch = 80;

/// A button of the row along the bottom, by its left edge.
[[nodiscard]] QRect ButtonPlace(int left, int viewHeight) noexcept;
/// The left edge of a slot of that row.
[[nodiscard]] constexpr int SlotLeft(int slot) noexcept {
    return margin + slot * buttonPitch;
}
/// A field in row `row` whose left edge is at `left`.
[[nodiscard]] QRect FieldPlace(int row, int left, int width, int viewHeight) noexcept;
/// A group box between two distances from the bottom.
[[nodiscard]] QRect GroupPlace(int left, int width, int top, int bottom, int viewHeight) noexcept;
} // namespace Form

/// A view on the user's background, with buttons along its bottom and fields whose labels it draws
/// itself. Derived views
/// place their fields in LayOut, which is called when the size changes and by LayOutAgain.
class CFormView : public CView {
    Q_OBJECT
public:
    /// The settings outlive the view.
    explicit CFormView(const Settings& settings) : settings_(settings) {}

protected:
    QPushButton& AddButton(const QString& text, int left, std::function<void()> act);
    /// Lays the form out again, after fields have been shown or hidden.
    void LayOutAgain();

    // Called from LayOut:

    /// A label in front of a field; drawn while the field shows.
    void AddLabel(const QString& text, const QWidget& field, const QRect& place);
    void AddGroup(const QString& title, const QRect& place);
    /// Places everything but the buttons.
    virtual void LayOut() = 0;

    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void FollowColors();

    const Settings& settings_;
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
