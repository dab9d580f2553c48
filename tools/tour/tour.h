#pragma once

#include <QPointer>
#include <QString>

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string_view>

class QAbstractButton;
class QPoint;
class QWidget;

namespace busquill {

class CMainFrame;
class CSignalList;

/// Does what a user would do in the windows, and saves pictures of them in a folder. A dialog that
/// opens meanwhile is answered, or pictured and closed.
class Tour {
public:
    explicit Tour(QString folder) : folder_(std::move(folder)) {}

    /// Saves a picture of a window as `name`.png.
    void Picture(QWidget& window, const QString& name);

    /// Chooses an entry; saves a picture of a dialog that it opens under `name`, and closes the
    /// dialog.
    void Choose(CMainFrame& frame, const QString& path, const QString& name);

    /// Clicks a button; saves a picture of a dialog that it opens under `name`, and of the dialogs
    /// that its buttons open in turn (`inside`: their object names or texts, and the names of the
    /// pictures), and closes them.
    void Click(QAbstractButton& button, const QString& name,
               const std::map<QString, QString>& inside = {});

    /// What to do with the dialogs that open, one after the other. An answer must close its dialog
    /// or open the next one, by PressLater or ClickLater.
    using Answers = std::deque<std::function<void(QWidget&)>>;
    /// Clicks a button and answers the dialogs that it opens.
    void Click(QAbstractButton& button, Answers answers);
    /// The same for an entry of a menu.
    void Choose(CMainFrame& frame, const QString& path, Answers answers);
    /// Presses the button after the caller has returned, so that no dialog blocks the caller.
    static void PressLater(QAbstractButton& button);
    /// Clicks at a place in a widget, after the caller has returned.
    static void ClickLater(QWidget& widget, const QPoint& place, Qt::MouseButton button);
    /// Saves a picture of the menu on a place of a window as `menu`, chooses one of its entries,
    /// and saves a picture of the dialog that opens as `dialog`.
    void ChooseOn(QWidget& widget, const QPoint& place, const QString& menu, const QString& entry,
                  const QString& dialog);

    /// Saves a picture of an open modal window, and closes it.
    void WatchModal();

    void Fail(const QString& why);
    [[nodiscard]] bool Failed() const { return failed_; }

private:
    void WatchMenu(QWidget& menu);

    QString folder_;
    QString modalName_ = "message";
    QString menuName_;
    QString menuEntry_;
    std::map<QString, QString> inside_;
    Answers answers_;
    QPointer<QWidget> answered_; // the dialog that had the last answer
    QWidget* pictured_ = nullptr;
    bool failed_ = false;
};

/// Runs the event loop until a condition holds, at most `limit` milliseconds. Returns whether it
/// holds.
bool WaitFor(const std::function<bool()>& holds, int limit);

/// The button of a window with a text, without its mnemonic, or with an object name. Ends the
/// program if there is none.
QAbstractButton& ButtonOf(const QWidget& window, const QString& text);

/// Writes a value of the decoded signal COMMAND into a pattern.
void SetCommand(CSignalList& list, std::uint32_t pattern, std::string_view label);

} // namespace busquill
