#include "ui/analysis/filter_line.h"

#include "platform/settings.h"
#include "platform/text.h"
#include "ui/framework/display_colors.h"
#include "ui/framework/painting.h"

#include <QCoreApplication>
#include <QInputMethodEvent>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QTextCharFormat>
#include <QWheelEvent>

#include <algorithm>
#include <string>
#include <utility>
#include <variant>

namespace busquill {

namespace {

constexpr int historySize = 10;
constexpr int typingTime = 400; // milliseconds
constexpr std::uint32_t mistakeColor = 0x0000D0;

std::string HistoryKey(int i) {
    return Printf("Filter%d", i + 1);
}

} // namespace

FilterLine::FilterLine(Settings& settings, QLabel& explanation)
    : settings_(settings), explanation_(explanation) {
    setObjectName("TransactionFilter");
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    setCompleter(nullptr);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(20);
    lineEdit()->setPlaceholderText("such as: wait > 4 and end == retry");
    setToolTip("Show only transactions for which this holds");
    ShowHistory();
    typing_.setSingleShot(true);
    typing_.setInterval(typingTime);
    connect(&typing_, &QTimer::timeout, this, &FilterLine::Apply);
    connect(this, &QComboBox::editTextChanged, this, &FilterLine::Edited);
    connect(lineEdit(), &QLineEdit::returnPressed, this, [this] {
        Apply();
        Remember();
    });
}

std::variant<TransactionCondition, ExpressionError> FilterLine::Parsed(const QString& text) const {
    return TransactionCondition::Parse(text.toStdString(), bus_);
}

std::optional<TransactionCondition> FilterLine::Condition() const {
    auto parsed = Parsed(filter_);
    auto* const condition = std::get_if<TransactionCondition>(&parsed);
    return filter_.isEmpty() || condition == nullptr ? std::nullopt
                                                     : std::optional(std::move(*condition));
}

void FilterLine::ShowFilter(const QString& text) {
    filter_ = text;
    setEditText(text);
    typing_.stop();
}

// The history.

void FilterLine::ShowHistory() {
    const QString text = currentText();
    const QSignalBlocker quiet(this);
    clear();
    for (int i = 0; i < historySize; ++i) {
        const std::string filter =
            settings_.GetProfileString(transactionSettings, HistoryKey(i), "");
        if (!filter.empty()) {
            addItem(QString::fromStdString(filter));
        }
    }
    setCurrentIndex(-1);
    setEditText(text);
}

void FilterLine::Remember() {
    if (filter_.isEmpty() || filter_ != currentText().trimmed()) {
        return; // the text has a mistake
    }
    QStringList filters{filter_};
    for (int i = 0; i < count(); ++i) {
        if (itemText(i) != filter_) {
            filters << itemText(i);
        }
    }
    for (int i = 0; i < std::min<int>(historySize, static_cast<int>(filters.size())); ++i) {
        settings_.WriteProfileString(transactionSettings, HistoryKey(i), filters[i].toStdString());
    }
    ShowHistory();
}

void FilterLine::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

// What is typed.

void FilterLine::Edited() {
    const auto parsed = Parsed(currentText());
    const auto* const mistake = std::get_if<ExpressionError>(&parsed);
    if (mistake == nullptr || currentText().trimmed().isEmpty()) {
        MarkMistake(std::nullopt);
        typing_.start();
    } else {
        MarkMistake(*mistake);
        typing_.stop();
    }
}

void FilterLine::Apply() {
    typing_.stop();
    const QString text = currentText().trimmed();
    const bool isWrong = !text.isEmpty() && std::holds_alternative<ExpressionError>(Parsed(text));
    if (!isWrong && std::exchange(filter_, text) != text) {
        emit Changed();
    }
}

/// Underlines the text from the mistake on. A line of text takes formats only as an input method
/// sends them.
void FilterLine::MarkMistake(const std::optional<ExpressionError>& mistake) {
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
