#include "ui/analysis/expression_line.h"

#include "platform/settings.h"
#include "platform/text.h"
#include "ui/framework/display_colors.h"
#include "ui/framework/painting.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QCoreApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QTextCharFormat>
#include <QWheelEvent>

#include <algorithm>
#include <string>
#include <utility>

namespace busquill {

namespace {

constexpr int historySize = 10;
constexpr int typingTime = 400; // milliseconds
constexpr std::uint32_t mistakeColor = 0x0000D0;

std::string HistoryKey(int i) {
    return Printf("Filter%d", i + 1);
}

} // namespace

ExpressionLine::ExpressionLine(Settings& settings, std::string section, QLabel& explanation)
    : settings_(settings), section_(std::move(section)), explanation_(explanation),
      completer_(new QCompleter(&words_, this)) {
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    setCompleter(nullptr);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(20);
    // A completer of the line itself would replace the whole text.
    completer_->setWidget(lineEdit());
    completer_->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    completer_->popup()->installEventFilter(this);
    connect(completer_, qOverload<const QString&>(&QCompleter::activated), this,
            &ExpressionLine::Take);
    connect(lineEdit(), &QLineEdit::textEdited, this, &ExpressionLine::OfferWords);
    ShowHistory();
    typing_.setSingleShot(true);
    typing_.setInterval(typingTime);
    connect(&typing_, &QTimer::timeout, this, [this] { Apply(currentText().contains('@')); });
    connect(this, &QComboBox::editTextChanged, this, &ExpressionLine::Edited);
    connect(lineEdit(), &QLineEdit::returnPressed, this, [this] {
        Apply(true);
        Remember();
    });
}

KeptExpressions UserExpressions() {
    KeptExpressions kept;
    static_cast<void>(kept.Read(KeptExpressions::UsualFile())); // without the file there are none
    return kept;
}

std::optional<ExpressionError> ExpressionLine::Mistake(const QString& text,
                                                       const KeptExpressions& kept) const {
    return text.trimmed().isEmpty() || !language_.check ? std::nullopt
                                                        : language_.check(text.toStdString(), kept);
}

void ExpressionLine::Show(const QString& applied, const QString& typed) {
    applied_ = applied;
    setEditText(typed);
    Edited(); // the text may be the same and its mistakes others
    // What is kept by a name may be another expression now.
    if (typed.trimmed() == applied && !applied.contains('@')) {
        typing_.stop();
    }
}

void ExpressionLine::Give(const QString& text) {
    setEditText(text);
    Apply(true);
    Remember();
}

// The history.

void ExpressionLine::ShowHistory() {
    const QString text = currentText();
    const QSignalBlocker quiet(this);
    clear();
    for (int i = 0; i < historySize; ++i) {
        const std::string used = settings_.GetProfileString(section_, HistoryKey(i), "");
        if (!used.empty()) {
            addItem(QString::fromStdString(used));
        }
    }
    setCurrentIndex(-1);
    setEditText(text);
}

void ExpressionLine::Remember() {
    if (applied_.isEmpty() || applied_ != currentText().trimmed()) {
        return; // the text has a mistake
    }
    QStringList texts{applied_};
    for (int i = 0; i < count(); ++i) {
        if (itemText(i) != applied_) {
            texts << itemText(i);
        }
    }
    for (int i = 0; i < std::min<int>(historySize, static_cast<int>(texts.size())); ++i) {
        settings_.WriteProfileString(section_, HistoryKey(i), texts[i].toStdString());
    }
    ShowHistory();
}

void ExpressionLine::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

// What is typed.

void ExpressionLine::Edited() {
    const auto mistake = Mistake(currentText());
    MarkMistake(mistake);
    if (mistake) {
        typing_.stop();
    } else {
        typing_.start();
    }
}

void ExpressionLine::OfferWords() {
    const QString before = currentText().left(lineEdit()->cursorPosition());
    const std::string text = currentText().toStdString();
    const std::size_t cursor = before.toStdString().size();
    const ExpressionCompletion found = language_.complete(text, cursor, UserExpressions());
    QStringList words;
    for (const std::string& word : found.texts) {
        words << QString::fromStdString(word);
    }
    wordPlace_ = static_cast<int>(QString::fromStdString(text.substr(0, found.place)).size());
    const QString begun = before.mid(wordPlace_);
    words_.setStringList(words);
    if (begun.isEmpty() || words.isEmpty() || words == QStringList(begun)) {
        completer_->popup()->hide();
        return;
    }
    QRect place = lineEdit()->rect();
    const int left = lineEdit()->fontMetrics().horizontalAdvance(before.left(wordPlace_));
    constexpr int widest = 240;
    place.setLeft(std::clamp(left, 0, std::max(place.width() - widest, 0))); // if it is scrolled
    place.setWidth(widest);
    completer_->complete(place);
}

void ExpressionLine::Take(const QString& word) {
    QString text = currentText();
    const int cursor = lineEdit()->cursorPosition();
    text.replace(wordPlace_, cursor - wordPlace_, word);
    setEditText(text);
    lineEdit()->setCursorPosition(wordPlace_ + static_cast<int>(word.size()));
}

/// In the list of words Tab and Enter take the chosen one, Tab also the first one.
bool ExpressionLine::eventFilter(QObject* watched, QEvent* event) {
    auto* const popup = completer_->popup();
    if (watched != popup || event->type() != QEvent::KeyPress) {
        return QComboBox::eventFilter(watched, event);
    }
    const int key = static_cast<QKeyEvent*>(event)->key();
    const bool isTab = key == Qt::Key_Tab;
    const bool isEnter = key == Qt::Key_Enter || key == Qt::Key_Return;
    const int chosen = popup->currentIndex().isValid() ? popup->currentIndex().row() : 0;
    if (!isTab && (!isEnter || !popup->currentIndex().isValid())) {
        return QComboBox::eventFilter(watched, event);
    }
    popup->hide();
    Take(words_.stringList().value(chosen));
    return true;
}

void ExpressionLine::Apply(bool again) {
    typing_.stop();
    const QString text = currentText().trimmed();
    if (!Mistake(text) && (std::exchange(applied_, text) != text || again)) {
        emit Changed();
    }
}

/// Underlines the text from the mistake on. A line of text takes formats only as an input method
/// sends them.
void ExpressionLine::MarkMistake(const std::optional<ExpressionError>& mistake) {
    QList<QInputMethodEvent::Attribute> formats;
    if (mistake) {
        const std::string before = currentText().toStdString().substr(0, mistake->place);
        const int length = static_cast<int>(currentText().size());
        // At the end of the text, its last character is marked.
        const int place =
            std::min(static_cast<int>(QString::fromStdString(before).size()), length - 1);
        QTextCharFormat format;
        format.setUnderlineStyle(QTextCharFormat::SingleUnderline);
        const QColor red =
            ColorOf(LegibleOn(NumberOf(palette().color(QPalette::Base)), mistakeColor));
        format.setUnderlineColor(red);
        format.setForeground(red);
        formats.append({QInputMethodEvent::TextFormat, place - lineEdit()->cursorPosition(),
                        length - place, format});
    }
    QInputMethodEvent event(QString(), formats);
    QCoreApplication::sendEvent(lineEdit(), &event);
    explanation_.setText(mistake ? QString::fromStdString(mistake->message) : QString());
    explanation_.setToolTip(explanation_.text());
}

} // namespace busquill
