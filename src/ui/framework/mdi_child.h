#pragma once

#include "ui/framework/command_map.h"

#include <QMdiSubWindow>

#include <functional>

class QVBoxLayout;

namespace busquill {

class CDocument;
class CView;

/// The window around one view of a document. Its template owns the document and decides whether
/// the window may close.
class CMDIChildWnd : public QMdiSubWindow {
    Q_OBJECT
public:
    explicit CMDIChildWnd(CDocument& document);
    ~CMDIChildWnd() override;

    [[nodiscard]] CDocument& GetDocument() const noexcept { return document_; }
    [[nodiscard]] CView* GetActiveView() const noexcept { return view_; }
    /// The window that contains a widget, or null.
    [[nodiscard]] static CMDIChildWnd* FrameOf(QWidget& widget);
    /// Puts a bar above the view.
    void SetBar(QWidget* bar);
    /// Replaces the window's view by another one; destroys the old one.
    void SetView(CView* view);

    /// Set by the template: `mayClose` is asked before the window closes, `closed` is called when
    /// it is destroyed.
    std::function<bool()> mayClose = [] { return true; };
    std::function<void()> closed = [] {};
    /// What the window carries out while it is the active one: Close, and what its template adds.
    CommandMap commands;

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    CDocument& document_;
    CView* view_ = nullptr;
    QVBoxLayout* layout_;
};

} // namespace busquill
