#include "ui/tracesetup/level_panel.h"

#include "ui/framework/painting.h"
#include "ui/tracesetup/condition_dialog.h"
#include "ui/tracesetup/expression_dialog.h"
#include "ui/tracesetup/occurrence_dialog.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>

namespace busquill {

namespace {

// In dialog units.
constexpr int lineHeight = 14;
constexpr int buttonHeight = 13;
constexpr int levelHeight = 42; // two lines and the gap to the next level
constexpr int shownLevels = 3;

constexpr std::uint32_t background = 0xD0D0D0;

// Columns of the layout.
enum Column : int { levelLabel, firstLabel, expression, secondLabel, count, thirdLabel, condition };

} // namespace

CLevelPanel::CLevelPanel(TraceSetup& setup, Prompts& prompts) : setup_(setup), prompts_(prompts) {
    auto* panel = new QWidget;
    QPalette palette = panel->palette();
    palette.setColor(QPalette::Window, ColorOf(background));
    panel->setPalette(palette);
    setPalette(palette);
    panel->setAutoFillBackground(true);
    auto* grid = new QGridLayout(panel);
    grid->setVerticalSpacing(0);
    grid->setContentsMargins(8, 4, 8, 0);
    grid->setColumnStretch(expression, 3);
    grid->setColumnStretch(condition, 2);
    for (std::size_t number = 0; number < traceLevels; ++number) {
        AddLevel(*grid, number);
    }
    grid->setRowStretch(3 * traceLevels, 1);
    setWidget(panel);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    FitWidth();
    setMinimumHeight(DialogUnits(*this, 0, levelHeight).height());
    verticalScrollBar()->setSingleStep(DialogUnits(*this, 0, levelHeight).height());
}

QSize CLevelPanel::sizeHint() const {
    return {minimumWidth(), DialogUnits(*this, 0, shownLevels * levelHeight).height()};
}

void CLevelPanel::AddLevel(QGridLayout& grid, std::size_t number) {
    TraceLevel& level = setup_.levels[number];
    const int first = static_cast<int>(number) * 3;
    const int second = first + 1;
    const auto label = [&](int row, int column, const QString& text) {
        grid.addWidget(new QLabel(text), row, column);
    };
    const QString suffix = QString::number(number + 1);
    label(first, levelLabel, "L" + suffix + ":");
    label(first, firstLabel, "IF");
    AddCell(grid, first, expression, "If" + suffix, ExpressionCell(level.ifExpr));
    label(first, secondLabel, "OCCURS");
    AddCell(grid, first, count, "Occurs" + suffix, OccurrenceCell(level.occurs));
    label(first, thirdLabel, "THEN");
    AddCell(grid, first, condition, "Then" + suffix,
            ConditionCell(level.thenGoto, level.thenTrigger));
    label(second, firstLabel, "STORE");
    AddCell(grid, second, expression, "Store" + suffix, ExpressionCell(level.storeExpr));
    label(second, thirdLabel, "ELSE");
    AddCell(grid, second, condition, "Else" + suffix,
            ConditionCell(level.elseGoto, level.elseTrigger));
    const int line = DialogUnits(*this, 0, lineHeight).height();
    grid.setRowMinimumHeight(first, line);
    grid.setRowMinimumHeight(second, line);
    grid.setRowMinimumHeight(second + 1, DialogUnits(*this, 0, levelHeight).height() - 2 * line);
}

void CLevelPanel::AddCell(QGridLayout& grid, int row, int column, const QString& name, Cell cell) {
    cell.button = new QPushButton;
    cell.button->setObjectName(name);
    cell.button->setAutoDefault(false);
    cell.button->setFixedHeight(DialogUnits(*this, 0, buttonHeight).height());
    grid.addWidget(cell.button, row, column);
    const std::size_t index = cells_.size();
    connect(cell.button, &QPushButton::clicked, this, [this, index] {
        const Cell& clicked = cells_[index];
        if (clicked.edit()) {
            ShowCell(clicked);
            FitWidth();
            emit Modified();
        }
    });
    ShowCell(cell);
    cells_.push_back(std::move(cell));
}

CLevelPanel::Cell CLevelPanel::ExpressionCell(Expression& bytes) {
    return {nullptr, [&bytes] { return FormatExpression(bytes); },
            [this, &bytes] {
                CTraceExpressionDialog dialog(this, bytes);
                if (dialog.exec() != QDialog::Accepted) {
                    return false;
                }
                bytes = dialog.Result();
                return true;
            }};
}

CLevelPanel::Cell CLevelPanel::OccurrenceCell(std::int32_t& times) {
    return {nullptr, [&times] { return std::to_string(times); },
            [this, &times] {
                COccurrenceCountDialog dialog(this, times, traceOccurrences, prompts_);
                if (dialog.exec() != QDialog::Accepted) {
                    return false;
                }
                times = dialog.Count();
                return true;
            }};
}

CLevelPanel::Cell CLevelPanel::ConditionCell(std::int32_t& level, bool& trigger) {
    return {nullptr, [&] { return FormatTraceGoto(level, trigger); },
            [this, &level, &trigger] {
                CTraceConditionDialog dialog(this, level, trigger);
                if (dialog.exec() != QDialog::Accepted) {
                    return false;
                }
                level = dialog.Level();
                trigger = dialog.Trigger();
                return true;
            }};
}

void CLevelPanel::ShowCell(const Cell& cell) {
    cell.button->setText(QString::fromStdString(cell.text()));
}

void CLevelPanel::Refresh() {
    for (const Cell& cell : cells_) {
        ShowCell(cell);
    }
    FitWidth();
}

/// All columns must show, since the panel has no horizontal scroll bar.
void CLevelPanel::FitWidth() {
    widget()->layout()->activate();
    setMinimumWidth(widget()->minimumSizeHint().width() + verticalScrollBar()->sizeHint().width() +
                    2 * frameWidth());
}

} // namespace busquill
