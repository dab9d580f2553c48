#include "capture/trace_parser.h"

#include "document/csv_line.h"
#include "platform/text.h"
#include "platform/text_file.h"
#include "signals/signal_list.h"
#include "tracesetup/setup_file.h"

#include <limits>

namespace busquill {

TraceParser::Event TraceParser::Next() {
    rows_.Clear();
    while (waiting_.empty() && rows_.Size() < rowsAtOnce) {
        if (inBlock_) {
            file_.Skip(skims_ && ascends_ && !inZoom_
                           ? SkipAscendingRows(file_.AtHand(), lastNumber_)
                           : ParsePlainRows(file_.AtHand(), rowsAtOnce, rows_));
            if (rows_.Size() >= rowsAtOnce) {
                break;
            }
        }
        const auto line = file_.ReadLine();
        if (!line) {
            blockLine_ = file_.LineStart();
            hasEndOfBlock_ = hasEndOfBlock_ && !inBlock_;
            EndBlock();
            waiting_.push_back(Event::End);
        } else if (!inBlock_ || !ParsePlainRow(*line, rows_)) {
            const std::uint64_t start = file_.LineStart();
            SplitCsvRecord(*line, file_, fields_);
            if (!fields_.empty()) {
                Dispatch(fields_);
            }
            if (!waiting_.empty()) {
                blockLine_ = start;
            }
        }
        if (skims_) {
            SkimRows();
        }
    }
    if (!rows_.Empty()) {
        return Event::Rows;
    }
    const Event event = waiting_.front();
    if (event != Event::End) { // Next returns End repeatedly
        waiting_.pop_front();
    }
    return event;
}

void TraceParser::Dispatch(const Fields& fields) {
    const std::string& key = fields[0];
    if (TakePart(fields)) {
        partsAfter_ = partsAfter_ || hadSamples_;
    } else if (key == "Trace Data") {
        if (fields.size() >= 3) {
            Begin(Event::Samples);
            first_ = ParseInt(fields[1]);
            last_ = ParseInt(fields[2]);
        }
    } else if (key == "Power Zoom Data") {
        if (fields.size() >= 3) {
            Begin(Event::Zoom);
        }
    } else if (key == "End of Trace Data" || key == "End of Power Zoom Data") {
        hasEndOfBlock_ = true;
        EndBlock();
    } else if (inBlock_) {
        static_cast<void>(ParseRow(fields, rows_)); // other lines are ignored
    }
}

/// Handles a line outside the samples; false for lines of samples and unknown lines.
bool TraceParser::TakePart(const Fields& fields) {
    const std::string& key = fields[0];
    const bool hasValue = fields.size() > 1;
    const auto beginList = [&](CSignalList& list, std::uint32_t mode, bool& has) {
        list_ = &list;
        list.mode = mode;
        has = true;
    };
    if (key == "FileType" || key == "Version" || key == "Description") {
        if (hasValue) {
            (key == "FileType"  ? fileType_
             : key == "Version" ? version_
                                : parts_.comment) = fields[1];
        }
    } else if (key == "Trace Setup") {
        ReadSetupBody(parts_.setup, file_);
    } else if (key == "State Signals") {
        beginList(parts_.stateList, ModeState, hasState_);
    } else if (key == "Waveform Signals") {
        beginList(parts_.waveformList, ModeWaveform, hasWaveform_);
    } else if (key == "Power Zoom Signals") {
        beginList(parts_.zoomList, ModeState, hasZoom_);
    } else if (key == "Signal") {
        // A title row is recognized by its second field, wherever it is.
        if (list_ != nullptr && hasValue && fields[1] != "Name") {
            list_->ReadSignal(fields, file_);
        }
    } else {
        return false;
    }
    return true;
}

/// Skips rows, checking only whether they ascend.
void TraceParser::SkimRows() {
    for (const std::int32_t number : rows_.numbers) {
        ascends_ = ascends_ && (inZoom_ || number > lastNumber_);
        lastNumber_ = number;
    }
    rows_.Clear();
}

void TraceParser::Begin(Event event) {
    EndBlock();
    hasEndOfBlock_ = false;
    inBlock_ = true;
    inZoom_ = event == Event::Zoom;
    hadSamples_ = hadSamples_ || !inZoom_;
    lastNumber_ = std::numeric_limits<std::int64_t>::min();
    waiting_.push_back(event);
}

void TraceParser::EndBlock() {
    if (inBlock_) {
        inBlock_ = false;
        waiting_.push_back(Event::EndOfBlock);
    }
}

} // namespace busquill
