#include "ui/trace/trace_bar.h"

#include "ui/capture/position_gauge.h"
#include "ui/framework/bar_button.h"
#include "ui/framework/icons.h"
#include "ui/framework/painting.h"

#include <QComboBox>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

namespace busquill {

namespace {

constexpr int margin = 5;
constexpr int iconSize = 18;
constexpr int setupBoxCharacters = 20;
constexpr int timeCharacters = 12;

const char* PictureOf(RunIndicator indicator) {
    switch (indicator) {
    case RunIndicator::Running:
        return "status-running";
    case RunIndicator::Uploading:
        return "status-uploading";
    case RunIndicator::File:
        return "status-file";
    case RunIndicator::Idle:
        break;
    }
    return "status-idle";
}

const char* TipOf(RunIndicator indicator) {
    switch (indicator) {
    case RunIndicator::Running:
        return "The capture runs";
    case RunIndicator::Uploading:
        return "Samples are being read from the analyzer";
    case RunIndicator::File:
        return "A saved trace";
    default:
        return "No capture runs";
    }
}

QString Counter(std::int64_t count) {
    return QString("%1").arg(count, 7, 10, QChar('0'));
}

} // namespace

CTraceBar::CTraceBar(QWidget* parent)
    : QWidget(parent), group_(new QWidget(this)),
      go_(MakeBarButton(CommandId::Go, "Start a capture", iconSize)),
      stop_(MakeBarButton(CommandId::Stop, "Stop the capture", iconSize)),
      setup_(MakeBarButton(CommandId::EditSetup, "Edit the trace setup", iconSize)),
      display_(MakeBarButton(CommandId::SwitchDisplay, "", iconSize)),
      zoom_(MakeBarButton(CommandId::PowerZoom, "Show the Power Zoom samples", iconSize)),
      help_(MakeBarButton(CommandId::HelpContents, "Help on this window", iconSize)),
      setupBox_(new QComboBox), indicator_(new QLabel), level_(AddText("Level", "L8")),
      before_(AddText("Before", "0000000")), after_(AddText("After", "0000000")),
      gauge_(new CPositionGauge) {
    setupBox_->setObjectName("Setup Box");
    setupBox_->setToolTip(TipWithKey("The setup of the next capture", CommandId::ChooseSetup));
    help_->setObjectName("Help");
    setupBox_->setMinimumContentsLength(setupBoxCharacters);
    setupBox_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setupBox_->setFocusPolicy(Qt::ClickFocus);
    setupBox_->installEventFilter(this);
    indicator_->setObjectName("Indicator");
    before_->setToolTip("Samples before the trigger");
    after_->setToolTip("Samples after the trigger");
    before_->setText(Counter(0));
    after_->setText(Counter(0));
    level_->setText("L1");
    level_->setToolTip("Active level");

    auto* layout = new QGridLayout(group_);
    layout->setContentsMargins(0, 3, 0, 3);
    layout->setSpacing(3);
    auto* top = new QHBoxLayout;
    top->setSpacing(3);
    for (QWidget* part : std::initializer_list<QWidget*>{indicator_, level_, go_, stop_, setupBox_,
                                                         setup_, display_, zoom_, help_}) {
        top->addWidget(part);
    }
    top->insertStretch(0);
    auto* bottom = new QHBoxLayout;
    bottom->setSpacing(3);
    bottom->addWidget(before_);
    bottom->addWidget(gauge_, 1);
    bottom->addWidget(after_);
    layout->addLayout(top, 0, 0);
    layout->addLayout(bottom, 1, 0);
    MakeTimes();
    SetIndicator(RunIndicator::Idle, -1);
    indicator_->setPixmap(IconOf(PictureOf(RunIndicator::Idle)).pixmap(iconSize, iconSize));
    setMinimumHeight(group_->sizeHint().height());
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

QLabel* CTraceBar::AddText(const char* name, const QString& sample) {
    auto* label = new QLabel;
    label->setObjectName(name);
    label->setFont(FontOfCellHeight(14, QFont::Normal, FontFace::Proportional));
    label->setMinimumWidth(QFontMetrics(label->font()).horizontalAdvance(sample) + 4);
    label->setAlignment(Qt::AlignCenter);
    return label;
}

void CTraceBar::MakeTimes() {
    const std::pair<const char*, const char*> kinds[] = {
        {"time-markers", "Time from marker 1 to marker 2"},
        {"time-marker1", "Time from marker 1 to the trigger"},
        {"time-marker2", "Time from marker 2 to the trigger"}};
    for (std::size_t i = 0; i < times_.size(); ++i) {
        auto* whole = new QWidget(this);
        whole->setToolTip(kinds[i].second);
        auto* picture = new QLabel;
        picture->setPixmap(IconOf(kinds[i].first).pixmap(iconSize, iconSize));
        auto* text = AddText(kinds[i].first, QString(timeCharacters, '0'));
        text->setFrameStyle(QFrame::Panel | QFrame::Sunken);
        text->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        auto* row = new QHBoxLayout(whole);
        row->setContentsMargins(0, 0, 0, 0);
        row->setSpacing(2);
        row->addWidget(picture);
        row->addWidget(text);
        times_[i] = {whole, text};
    }
}

QSize CTraceBar::sizeHint() const {
    return {group_->sizeHint().width() + 2 * margin, group_->sizeHint().height()};
}

void CTraceBar::resizeEvent(QResizeEvent* /*event*/) {
    PlaceParts();
}

/// A choice sends a setup to the board, so the wheel changes it only while the box has the focus.
bool CTraceBar::eventFilter(QObject* watched, QEvent* event) {
    return (event->type() == QEvent::Wheel && !setupBox_->hasFocus()) ||
           QWidget::eventFilter(watched, event);
}

void CTraceBar::PlaceParts() {
    const QSize wanted = group_->sizeHint();
    const int left = width() - margin - wanted.width();
    group_->setGeometry(left, 0, wanted.width(), height());
    int x = margin;
    for (const TimeField& time : times_) {
        const QSize size = time.whole->sizeHint();
        time.whole->setGeometry(x, (height() - size.height()) / 2, size.width(), size.height());
        x += size.width() + margin;
        time.whole->setVisible(x <= left);
    }
}

void CTraceBar::SetCounters(std::int64_t before, std::int64_t after) {
    if (before == shownBefore_ && after == shownAfter_) {
        return;
    }
    shownBefore_ = before;
    shownAfter_ = after;
    before_->setText(Counter(before));
    after_->setText(Counter(after));
}

void CTraceBar::SetIndicator(RunIndicator indicator, int level) {
    if (indicator != shownIndicator_) {
        shownIndicator_ = indicator;
        indicator_->setPixmap(IconOf(PictureOf(indicator)).pixmap(iconSize, iconSize));
        indicator_->setToolTip(TipOf(indicator));
    }
    if (level != -1 && level != shownLevel_) {
        shownLevel_ = level;
        level_->setText(QString("L%1").arg(level));
    }
}

void CTraceBar::SetTimes(const std::array<std::string, 3>& times) {
    for (std::size_t i = 0; i < times.size(); ++i) {
        times_[i].text->setText(QString::fromStdString(times[i]));
    }
}

void CTraceBar::ShowStateButton(bool leadsToState) {
    display_->setIcon(IconOf(leadsToState ? "state" : "waveform"));
    display_->setToolTip(TipWithKey(leadsToState ? "Show a State window" : "Show a Waveform window",
                                    CommandId::SwitchDisplay));
}

void CTraceBar::HideRunControls() {
    for (QWidget* control :
         std::initializer_list<QWidget*>{help_, zoom_, display_, go_, stop_, setup_, setupBox_}) {
        control->hide();
    }
    PlaceParts();
}

void CTraceBar::HideZoomButton() {
    zoom_->hide();
    PlaceParts();
}

} // namespace busquill
