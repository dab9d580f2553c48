#include "ui/capture/print_trace_dialog.h"

#include "capture/trace_document.h"
#include "platform/settings.h"
#include "ui/framework/help_page.h"

#include <QCheckBox>
#include <QVBoxLayout>

#include <algorithm>

namespace busquill {

namespace {

constexpr const char* printSection = "Print";

/// One more than there are after the trigger can be asked for.
SampleRange RangeToPrint(CTesselDoc& document, bool isZoom) {
    return isZoom ? SampleRange{zoomSamplesBefore, zoomSampleCount - zoomSamplesBefore, true}
                  : RangeOf(document);
}

} // namespace

CPrintTraceDlg::CPrintTraceDlg(QWidget* parent, CTesselDoc& document, bool isState, bool isZoom,
                               Settings& settings, Prompts& prompts, const MainThread& mainThread)
    : CSampleRangeDialog(parent, RangeToPrint(document, isZoom), 0, prompts, mainThread),
      document_(document), isZoom_(isZoom), settings_(settings),
      scaleKey_(isState ? "ScaleWidthToPage" : "ScaleHeightToPage"),
      scale_(new QCheckBox(isState ? "Scale Width to Page" : "Scale Height To Page")) {
    setWindowTitle("Print Trace");
    SetHelpPage(*this, "printing.md");
    scale_->setChecked(settings.GetProfileInt(printSection, scaleKey_, 0) != 0);
    Rows().addWidget(scale_);
    OrderTabs(nullptr, scale_);
    scale_->setVisible(isState); // waveforms are not scaled
}

void CPrintTraceDlg::OnOk() {
    settings_.WriteProfileInt(printSection, scaleKey_, scale_->isChecked() ? 1 : 0);
}

std::optional<std::string> CPrintTraceDlg::Begin(std::int64_t first, std::int64_t last) {
    first_ = first;
    last_ = last;
    wait_.emplace(document_, first + range_.before, last + range_.before);
    return std::nullopt;
}

SampleStep CPrintTraceDlg::Work() {
    return Waits() ? wait_->Step() : SampleStep::Done;
}

std::int64_t CPrintTraceDlg::First() const {
    const std::int64_t count = document_.SampleCount(isZoom_);
    return std::max<std::int64_t>(std::min(first_ + range_.before, count - 1), 0);
}

std::int64_t CPrintTraceDlg::Last() const {
    return std::min(last_ + range_.before, document_.SampleCount(isZoom_) - 1);
}

bool CPrintTraceDlg::ScalesToPage() const {
    return scale_->isChecked();
}

} // namespace busquill
