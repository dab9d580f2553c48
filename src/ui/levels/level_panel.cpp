#include "ui/levels/level_panel.h"

#include "ui/framework/painting.h"
#include "ui/levels/occurrence_dialog.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>

#include <algorithm>

namespace busquill {

namespace {

// In dialog units.
constexpr int lineHeight = 14;
constexpr int buttonHeight = 13;
constexpr int levelHeight = 42; // two lines and the gap to the next level
constexpr int widestCell = 150; // unless its text needs more
constexpr int shownLevels = 3;

constexpr std::uint32_t background = 0xD0D0D0;

// Columns of the layout.
enum Column : int {
    levelLabel,
    firstLabel,
    expression,
    secondLabel,
    count,
    thirdLabel,
    condition,
    rest // empty
};

void ShowText(QPushButton& button, const LevelCell& content) {
    button.setText(QString::fromStdString(content.text()));
    button.setMaximumWidth(
        std::max(DialogUnits(button, widestCell, 0).width(), button.sizeHint().width()));
}

} // namespace

CLevelPanel::CLevelPanel(TraceSetup& setup, LevelForm form, Prompts& prompts)
    : setup_(setup), form_(std::move(form)), prompts_(prompts) {
    setFont(form_.font);
    auto* panel = new QWidget;
    QPalette palette = panel->palette();
    palette.setColor(QPalette::Window, ColorOf(background));
    palette.setColor(QPalette::WindowText, Qt::black); // a form's may be light
    panel->setPalette(palette);
    setPalette(palette);
    panel->setAutoFillBackground(true);
    auto* grid = new QGridLayout(panel);
    grid->setVerticalSpacing(0);
    grid->setContentsMargins(8, 4, 8, 0);
    // What the cells cannot take goes to the right of them.
    grid->setColumnStretch(expression, 300);
    grid->setColumnStretch(condition, 200);
    grid->setColumnStretch(rest, 1);
    for (int number = 0; number < form_.levels; ++number) {
        AddLevel(*grid, static_cast<std::size_t>(number));
    }
    grid->setRowStretch(3 * form_.levels, 1);
    setWidget(panel);
    setWidgetResizable(true);
    verticalScrollBar()->setSingleStep(LevelHeight());
}

QSize CLevelPanel::minimumSizeHint() const {
    widget()->layout()->activate();
    return {widget()->minimumSizeHint().width() + verticalScrollBar()->sizeHint().width() +
                2 * frameWidth(),
            LevelHeight()};
}

QSize CLevelPanel::sizeHint() const {
    return {minimumSizeHint().width(), shownLevels * LevelHeight()};
}

int CLevelPanel::LevelHeight() const {
    return DialogUnits(*this, 0, levelHeight).height();
}

void CLevelPanel::AddLevel(QGridLayout& grid, std::size_t number) {
    TraceLevel& level = setup_.levels[number];
    LevelCells cells = form_.cells(level);
    const int first = static_cast<int>(number) * 3;
    const int second = first + 1;
    const auto label = [&](int row, int column, const QString& text) {
        grid.addWidget(new QLabel(text), row, column);
    };
    const QString suffix = QString::number(number + 1);
    const QString output = form_.output;
    label(first, levelLabel, form_.label + suffix + ":");
    label(first, firstLabel, "IF");
    AddCell(grid, first, expression, "If" + suffix, std::move(cells.condition));
    label(first, secondLabel, "OCCURS");
    AddCell(grid, first, count, "Occurs" + suffix, OccurrenceCell(level.occurs));
    label(first, thirdLabel, "THEN");
    AddCell(grid, first, condition, "Then" + suffix, std::move(cells.then));
    label(second, firstLabel, output.toUpper());
    AddCell(grid, second, expression, output + suffix, std::move(cells.output));
    label(second, thirdLabel, "ELSE");
    AddCell(grid, second, condition, "Else" + suffix, std::move(cells.otherwise));
    const int line = DialogUnits(*this, 0, lineHeight).height();
    grid.setRowMinimumHeight(first, line);
    grid.setRowMinimumHeight(second, line);
    grid.setRowMinimumHeight(second + 1, LevelHeight() - 2 * line);
}

void CLevelPanel::AddCell(QGridLayout& grid, int row, int column, const QString& name,
                          LevelCell content) {
    auto* button = new QPushButton;
    button->setObjectName(name);
    button->setAutoDefault(false);
    button->setFixedHeight(DialogUnits(*this, 0, buttonHeight).height());
    grid.addWidget(button, row, column);
    const std::size_t index = cells_.size();
    connect(button, &QPushButton::clicked, this, [this, index] {
        const Cell& clicked = cells_[index];
        if (clicked.content.edit(this)) {
            ShowText(*clicked.button, clicked.content);
            updateGeometry();
            emit Modified();
        }
    });
    ShowText(*button, content);
    cells_.push_back({button, std::move(content)});
}

LevelCell CLevelPanel::OccurrenceCell(std::int32_t& times) {
    return {[&times] { return std::to_string(times); },
            [this, &times](QWidget* parent) {
                COccurrenceCountDialog dialog(parent, times, form_.occurrences, prompts_);
                if (dialog.exec() != QDialog::Accepted) {
                    return false;
                }
                times = dialog.Count();
                return true;
            }};
}

void CLevelPanel::Refresh() {
    for (const Cell& cell : cells_) {
        ShowText(*cell.button, cell.content);
    }
    updateGeometry();
}

} // namespace busquill
