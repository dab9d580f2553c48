#include "ui/tracesetup/trace_levels.h"

#include "ui/tracesetup/condition_dialog.h"
#include "ui/tracesetup/expression_dialog.h"

namespace busquill {

namespace {

LevelCell ExpressionCell(Expression& bytes) {
    return {[&bytes] { return FormatExpression(bytes); },
            [&bytes](QWidget* parent) {
                CTraceExpressionDialog dialog(parent, bytes);
                if (dialog.exec() != QDialog::Accepted) {
                    return false;
                }
                bytes = dialog.Result();
                return true;
            }};
}

LevelCell BranchCell(std::int32_t& level, bool& trigger) {
    return {[&level, &trigger] { return FormatTraceGoto(level, trigger); },
            [&level, &trigger](QWidget* parent) {
                CTraceConditionDialog dialog(parent, level, trigger);
                if (dialog.exec() != QDialog::Accepted) {
                    return false;
                }
                level = dialog.Level();
                trigger = dialog.Trigger();
                return true;
            }};
}

} // namespace

LevelForm TraceLevels() {
    return {.levels = traceLevels,
            .label = "L",
            .output = "Store",
            .occurrences = traceOccurrences,
            .cells = [](TraceLevel& level) {
                return LevelCells{ExpressionCell(level.ifExpr), ExpressionCell(level.storeExpr),
                                  BranchCell(level.thenGoto, level.thenTrigger),
                                  BranchCell(level.elseGoto, level.elseTrigger)};
            }};
}

} // namespace busquill
