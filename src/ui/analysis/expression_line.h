#pragma once

#include "capture/expression.h"
#include "capture/kept_expressions.h"

#include <QComboBox>
#include <QStringListModel>
#include <QTimer>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

class QCompleter;
class QLabel;

namespace busquill {

class Settings;

/// The user's kept expressions, as they are in the file now.
[[nodiscard]] KeptExpressions UserExpressions();

/// The names that an expression may use, as a line of text needs them.
struct ExpressionLanguage {
    /// The first mistake of an expression.
    std::function<std::optional<ExpressionError>(std::string_view text,
                                                 const KeptExpressions& kept)>
        check;
    /// What can stand at the cursor.
    std::function<ExpressionCompletion(std::string_view text, std::size_t cursor,
                                       const KeptExpressions& kept)>
        complete;
};

/// An expression as a line of text, with those that were used before. It is checked while the user
/// types: the first mistake is marked, and explained in a label. Words that can follow are listed
/// below the line.
class ExpressionLine final : public QComboBox {
    Q_OBJECT
public:
    /// `section` of the settings keeps the expressions that were used. The settings and the label
    /// outlive it.
    ExpressionLine(Settings& settings, std::string section, QLabel& explanation);

    void SetLanguage(ExpressionLanguage language) { language_ = std::move(language); }
    /// Shows what was typed for another capture, and what was applied of it, without emitting
    /// Changed.
    void Show(const QString& applied, const QString& typed);
    /// Puts a text into the line and applies it, as if it were typed.
    void Give(const QString& text);
    /// The first mistake of a text; an empty one has none.
    [[nodiscard]] std::optional<ExpressionError>
    Mistake(const QString& text, const KeptExpressions& kept = UserExpressions()) const;
    /// The text when Changed was emitted last; empty, or without a mistake.
    [[nodiscard]] QString Applied() const { return applied_; }

signals:
    /// The user has given an expression, which has no mistake. It is another one, or one that may
    /// mean something else now: Enter searches again.
    void Changed();

protected:
    /// A turn of the wheel over the line would choose another expression.
    void wheelEvent(QWheelEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void ShowHistory();
    void Remember();
    void Edited();
    /// Lists what the word before the cursor can become.
    void OfferWords();
    /// Puts a listed word in the place of the one that was begun.
    void Take(const QString& word);
    /// Emits Changed for the same text only if it is to be applied again.
    void Apply(bool again);
    void MarkMistake(const std::optional<ExpressionError>& mistake);

    Settings& settings_;
    std::string section_;
    QLabel& explanation_;
    ExpressionLanguage language_;
    QString applied_;
    QStringListModel words_; // that can stand at the cursor
    QCompleter* completer_;
    int wordPlace_ = 0; // where the begun word begins
    QTimer typing_;     // until a text without a mistake is applied
};

} // namespace busquill
