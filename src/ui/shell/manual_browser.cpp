#include "ui/shell/manual_browser.h"

#include "ui/shell/manual.h"

#include <QImage>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextTable>
#include <QTimer>

#include <algorithm>

namespace busquill {

namespace {

constexpr int pageMargin = 16;
constexpr int leastPictureWidth = 200;
constexpr int fitDelay = 100; // milliseconds after the last change of the size
const QColor markGround(0xFF, 0xE0, 0x66);
const QColor currentMarkGround(0xFF, 0xA6, 0x33);

} // namespace

ManualBrowser::ManualBrowser(QWidget* parent) : QTextBrowser(parent), fit_(new QTimer(this)) {
    setOpenExternalLinks(true);
    document()->setDocumentMargin(pageMargin);
    fit_->setSingleShot(true);
    fit_->setInterval(fitDelay);
    connect(this, &QTextBrowser::sourceChanged, this, &ManualBrowser::Prepare);
    connect(fit_, &QTimer::timeout, this, &ManualBrowser::FitPictures);
}

void ManualBrowser::ShowPage(const QString& page) {
    setSource(QUrl(Manual::root + page), QTextDocument::MarkdownResource);
}

QString ManualBrowser::Page() const {
    return source().toString().remove(Manual::root);
}

/// Called whenever a page has been read, also on the way back.
void ManualBrowser::Prepare(const QUrl& shown) {
    AnchorHeadings(*document());
    FormatTables();
    FindMarks();
    if (shown.hasFragment()) {
        scrollToAnchor(shown.fragment()); // the heading has its anchor only now
    }
}

/// Gives tables light lines, and cells with a margin.
void ManualBrowser::FormatTables() {
    for (QTextFrame* frame : document()->rootFrame()->childFrames()) {
        if (auto* table = qobject_cast<QTextTable*>(frame)) {
            QTextTableFormat format = table->format();
            format.setBorderCollapse(true);
            format.setBorder(1);
            format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
            format.setBorderBrush(palette().mid());
            format.setCellPadding(4);
            table->setFormat(format);
        }
    }
}

// Pictures.

QVariant ManualBrowser::loadResource(int type, const QUrl& name) {
    if (type != QTextDocument::ImageResource) {
        return QTextBrowser::loadResource(type, name);
    }
    pictureWidth_ = WidestPicture();
    return Picture(':' + QUrl(Manual::root).resolved(name).path());
}

int ManualBrowser::WidestPicture() const {
    // Leaves room for a scroll bar, which would otherwise come and go with the pictures' heights.
    const int bar = verticalScrollBar()->isVisible() ? 0 : verticalScrollBar()->sizeHint().width();
    return std::max(leastPictureWidth, viewport()->width() - 2 * pageMargin - bar);
}

QVariant ManualBrowser::Picture(const QString& path) {
    QImage picture(path);
    const int pixels = static_cast<int>(pictureWidth_ * devicePixelRatioF());
    if (picture.width() > pictureWidth_) {
        if (picture.width() > pixels) {
            picture = picture.scaledToWidth(pixels, Qt::SmoothTransformation);
        }
        picture.setDevicePixelRatio(picture.width() / static_cast<double>(pictureWidth_));
    }
    return picture;
}

void ManualBrowser::resizeEvent(QResizeEvent* event) {
    QTextBrowser::resizeEvent(event);
    if (WidestPicture() != pictureWidth_) {
        fit_->start();
    }
}

void ManualBrowser::FitPictures() {
    pictureWidth_ = WidestPicture();
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        for (auto at = block.begin(); !at.atEnd(); ++at) {
            const QTextCharFormat format = at.fragment().charFormat();
            if (format.isImageFormat()) {
                const QUrl name(format.toImageFormat().name());
                document()->addResource(QTextDocument::ImageResource,
                                        QUrl(Manual::root).resolved(name),
                                        Picture(':' + QUrl(Manual::root).resolved(name).path()));
            }
        }
    }
    document()->markContentsDirty(0, document()->characterCount());
}

// Marks.

void ManualBrowser::Mark(const QStringList& words) {
    words_ = words;
    FindMarks();
}

void ManualBrowser::FindMarks() {
    marks_.clear();
    current_ = -1;
    for (const QString& word : words_) {
        for (QTextCursor at = document()->find(word); !at.isNull();
             at = document()->find(word, at)) {
            marks_ << at;
        }
    }
    std::sort(marks_.begin(), marks_.end());
    // If the words stand together somewhere, the mark there is the first to be shown.
    const QTextCursor together = document()->find(words_.join(' '));
    while (!together.isNull() && current_ + 1 < marks_.size() &&
           marks_[current_ + 1].selectionStart() < together.selectionStart()) {
        ++current_;
    }
    GoToMark(true);
    emit MarksChanged(static_cast<int>(marks_.size()));
}

void ManualBrowser::GoToMark(bool forward) {
    if (!marks_.isEmpty()) {
        const qsizetype count = marks_.size();
        current_ = current_ < 0 ? 0 : (current_ + (forward ? 1 : count - 1)) % count;
        QTextCursor place = marks_[current_];
        place.setPosition(place.selectionStart());
        setTextCursor(place);
        ensureCursorVisible();
    }
    QList<QTextEdit::ExtraSelection> shown;
    for (qsizetype i = 0; i < marks_.size(); ++i) {
        QTextCharFormat format;
        format.setBackground(i == current_ ? currentMarkGround : markGround);
        format.setForeground(Qt::black);
        shown << QTextEdit::ExtraSelection{marks_[i], format};
    }
    setExtraSelections(shown);
}

} // namespace busquill
