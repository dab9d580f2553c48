#include "export/capture_export.h"

#include "platform/text.h"
#include "platform/working_directory.h"
#include "tracesetup/trace_setup.h"

#include <filesystem>
#include <utility>

namespace busquill {

namespace {

std::string WholePath(std::string_view path) {
    std::error_code unknown;
    return std::filesystem::absolute(path, unknown).lexically_normal().string();
}

} // namespace

std::optional<ExportFormat> ExportFormatOf(std::string_view path) {
    const std::string name = ToLower(std::string(path));
    for (const ExportFileType& type : exportFileTypes) {
        if (name.ends_with(std::string(".") + type.extension)) {
            return type.format;
        }
    }
    return std::nullopt;
}

std::string ViewerPathOf(const std::string& dumpPath) {
    const std::size_t point =
        dumpPath.size() - FileNameOf(dumpPath).size() + BaseNameOf(dumpPath).size();
    return dumpPath.substr(0, point) + ".gtkw";
}

CaptureExport::CaptureExport(ExportFormat format, const Capture& capture)
    : format_(format), capture_(capture) {
    const BoardTraits board = capture.list.Tables().Board();
    switch (format) {
    case ExportFormat::Dump:
        dump_.emplace(capture.list, capture.use,
                      ValueDump::Capture{board, capture.zoom, capture.description});
        break;
    case ExportFormat::Table:
        table_.emplace(capture.list, capture.use,
                       ValueTable::Capture{board, capture.zoom, capture.changesOnly});
        break;
    case ExportFormat::Session:
        period_ = capture.zoom ? PowerZoomPeriod(capture.setup.powerZoomClock)
                               : ClockPeriod(capture.setup.clock);
        hasClock_ = period_.has_value();
    }
}

bool CaptureExport::NeedsSurvey() const noexcept {
    return format_ == ExportFormat::Session && !hasClock_ && !capture_.zoom;
}

void CaptureExport::Survey(const SampleRows& rows) {
    surveyedRun_.Take(rows);
    surveyed_.Take(rows);
}

bool CaptureExport::Put(std::string_view bytes) const {
    return bytes.empty() || sink_(bytes);
}

/// The archive of an abandoned session file writes once more when it is destroyed, and the sink may
/// be gone by then.
bool CaptureExport::InSession(const std::function<bool()>& write) {
    takes_ = true;
    const bool good = write();
    takes_ = false;
    return good;
}

bool CaptureExport::Begin(Sink sink) {
    sink_ = std::move(sink);
    std::string text;
    if (dump_) {
        dump_->Begin(text);
    } else if (table_) {
        table_->Begin(text);
    } else {
        return BeginSession();
    }
    return Put(text);
}

bool CaptureExport::BeginSession() {
    if (NeedsSurvey() && !surveyedRun_.hasGaps) {
        period_ = surveyed_.Period(); // that of the bus clock, if it runs without a pause
    }
    SessionFile::Capture capture;
    capture.channels = SessionChannels(capture_.list.Tables());
    if (period_) {
        capture.sampleRate = SampleRate(*period_);
    }
    steady_.emplace(period_.value_or(0), capture_.zoom);
    return InSession([&] {
        session_ = std::make_unique<SessionFile>(
            capture, [this](std::string_view bytes) { return takes_ && Put(bytes); });
        return true;
    });
}

bool CaptureExport::Add(const SampleRows& rows) {
    if (rows.Empty()) {
        return true;
    }
    run_.Take(rows);
    std::string text;
    if (dump_) {
        dump_->Add(rows, text);
    } else if (table_) {
        table_->Add(rows, text);
    } else {
        steady_->Take(rows);
        return InSession([&] { return session_->Add(rows); });
    }
    return Put(text);
}

bool CaptureExport::End() {
    if (session_) {
        return InSession([&] { return session_->End(); });
    }
    std::string text;
    if (dump_) {
        dump_->End(text);
    }
    return Put(text);
}

std::string CaptureExport::ClockNote() const {
    if (format_ != ExportFormat::Session) {
        return {};
    }
    if (!period_) {
        return Printf("the clock of the samples is \"%s\", that of the bus; a session file knows "
                      "one rate only, so it shows samples, one a second, not time",
                      std::string(ClockText(capture_.setup.clock)).c_str());
    }
    return steady_ && !steady_->Holds()
               ? "the samples are not evenly spaced; a session file knows one rate only, so it "
                 "shows samples, not time"
               : std::string();
}

std::string CaptureExport::ViewerFile(std::string_view dumpPath,
                                      std::string_view viewerPath) const {
    return dump_ ? dump_->ViewerFile(WholePath(dumpPath), WholePath(viewerPath)) : std::string();
}

void CaptureExport::Run::Take(const SampleRows& rows) {
    if (rows.Empty()) {
        return;
    }
    const std::int64_t first = rows.numbers.front();
    const std::int64_t end = rows.numbers.back();
    hasGaps = hasGaps || (last && first != *last + 1) ||
              end - first + 1 != static_cast<std::int64_t>(rows.Size());
    last = end;
}

} // namespace busquill
