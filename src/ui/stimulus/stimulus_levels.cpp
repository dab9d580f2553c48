#include "ui/stimulus/stimulus_levels.h"

#include "stimulus/stimulus_program.h"
#include "ui/framework/painting.h"
#include "ui/stimulus/stimulus_condition_dialog.h"

#include <QMenu>

#include <algorithm>

namespace busquill {

namespace {

constexpr int fontHeight = 14;

/// The menu has all events that a condition can name, also on a board with fewer.
constexpr int eventEntries = TokenLastEvent;

/// Shows a menu at the cursor, with a mark on the present text. Returns the index of the chosen
/// text, or nothing.
std::optional<int> ChooseText(QWidget* parent, const std::vector<std::string>& texts,
                              const std::string& present) {
    QMenu menu(parent);
    for (const std::string& text : texts) {
        QAction* entry = menu.addAction(QString::fromStdString(text));
        entry->setCheckable(true);
        entry->setChecked(text == present);
    }
    const QAction* chosen = menu.exec(QCursor::pos());
    return chosen == nullptr ? std::nullopt
                             : std::optional(static_cast<int>(menu.actions().indexOf(chosen)));
}

LevelCell ConditionCell(Expression& bytes) {
    return {[&bytes] { return FormatExpression(bytes); },
            [&bytes](QWidget* parent) {
                std::vector<Expression> conditions = {expressionNone};
                for (int event = 1; event <= eventEntries; ++event) {
                    SetTokenAt(conditions.emplace_back(), expressionTokens - 1,
                               static_cast<std::uint8_t>(event));
                }
                conditions.push_back(expressionAll);
                std::vector<std::string> texts(conditions.size());
                std::ranges::transform(conditions, texts.begin(), FormatExpression);
                const auto chosen = ChooseText(parent, texts, FormatExpression(bytes));
                if (chosen) {
                    bytes = conditions[static_cast<std::size_t>(*chosen)];
                }
                return chosen.has_value();
            }};
}

LevelCell PatternCell(std::int32_t& pattern) {
    return {[&pattern] { return FormatStimulusRef(pattern); },
            [&pattern](QWidget* parent) {
                std::vector<std::string> texts;
                for (int each = 0; each <= stimulusPatterns; ++each) {
                    texts.push_back(FormatStimulusRef(each));
                }
                const auto chosen = ChooseText(parent, texts, FormatStimulusRef(pattern));
                pattern = chosen.value_or(pattern);
                return chosen.has_value();
            }};
}

LevelCell BranchCell(std::int32_t& level, std::int32_t& duration, std::int32_t& wait, bool& trigger,
                     Prompts& prompts) {
    return {[&level, &duration, &wait] { return FormatStimulusGoto(level, duration, wait); },
            [&level, &duration, &wait, &trigger, &prompts](QWidget* parent) {
                CStimulusConditionDialog dialog(parent, {level, duration, wait}, prompts);
                if (dialog.exec() != QDialog::Accepted) {
                    return false;
                }
                level = dialog.Result().level;
                duration = dialog.Result().duration;
                wait = dialog.Result().wait;
                trigger = false; // nothing of a trace program is left in the branch
                return true;
            }};
}

} // namespace

LevelForm StimulusLevels(Prompts& prompts) {
    return {.levels = stimulusLevels,
            .label = "SL",
            .output = "Stimulus",
            .occurrences = stimulusOccurrences,
            .font = FontOfCellHeight(fontHeight, QFont::Normal, FontFace::Proportional),
            .cells = [&prompts](TraceLevel& level) {
                return LevelCells{ConditionCell(level.ifExpr), PatternCell(level.stimulus),
                                  BranchCell(level.thenGoto, level.thenDuration, level.thenWait,
                                             level.thenTrigger, prompts),
                                  BranchCell(level.elseGoto, level.elseDuration, level.elseWait,
                                             level.elseTrigger, prompts)};
            }};
}

} // namespace busquill
