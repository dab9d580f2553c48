#pragma once

#include <QTextBrowser>

#include <map>

class QTimer;

namespace busquill {

/// Shows one page of the manual: pictures no wider than the window, words that were searched for
/// marked. Links to other places than the manual open in the browser of the desktop.
class ManualBrowser final : public QTextBrowser {
    Q_OBJECT
public:
    explicit ManualBrowser(QWidget* parent = nullptr);

    /// Opens a page of the manual: its file name, with "#heading" for a section.
    void ShowPage(const QString& page);
    /// The page shown, with the section that was asked for.
    [[nodiscard]] QString Page() const;
    /// Marks all places of the words in this page, and in others until it is called again.
    void Mark(const QStringList& words);
    /// Scrolls to the next marked place or to the previous one. The first follows the last.
    void GoToMark(bool forward);

signals:
    void MarksChanged(int count);

protected:
    QVariant loadResource(int type, const QUrl& name) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void Prepare(const QUrl& shown);
    void FindMarks();
    void FormatTables();
    void FitPictures();
    [[nodiscard]] int WidestPicture() const;
    [[nodiscard]] QVariant Picture(const QString& path);

    QStringList words_;
    QList<QTextCursor> marks_;
    qsizetype current_ = -1;
    int pictureWidth_ = 0; // to which the pictures of this page are fitted
    QTimer* fit_;
};

} // namespace busquill
