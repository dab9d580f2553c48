#include "capture/listing.h"
#include "capture/listing_columns.h"
#include "cli/capture_options.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/commands.h"
#include "cli/exit_request.h"
#include "cli/input.h"
#include "cli/json.h"
#include "cli/name_list.h"
#include "cli/output.h"
#include "cli/range.h"
#include "document/csv_line.h"
#include "platform/text.h"
#include "signals/value_text.h"

#include <algorithm>

namespace busquill::cli {

namespace {

struct Options : CaptureOptions {
    NumberRange range;
    std::vector<std::string> columns; // empty: those of the capture
    bool zoom = false;
};

/// Writes rows of texts below their titles.
class ListingWriter {
public:
    ListingWriter(Output& output, Format format, const TraceListing& listing,
                  std::size_t numberWidth)
        : output_(output), format_(format), widths_{std::max<std::size_t>(numberWidth, 6)} {
        std::vector<std::string> titles;
        for (const CSignal* column : listing.Columns()) {
            titles.push_back(column->RowName());
            widths_.push_back(TraceListing::WidthOf(*column));
        }
        if (format_ == Format::Json) {
            output_.Write("{\"columns\": " + JsonRow("\"SAMPLE\"", titles) + ",\n\"rows\": [");
        } else {
            Row("SAMPLE", titles);
        }
    }

    void Add(std::int64_t number, const std::vector<std::string>& cells) {
        if (format_ == Format::Json) {
            array_.AddJson(JsonRow(std::to_string(number), cells));
        } else {
            Row(std::to_string(number), cells);
        }
        any_ = true;
    }

    void End() {
        if (format_ == Format::Json) {
            array_.End();
        }
    }

    [[nodiscard]] bool Any() const noexcept { return any_; }

private:
    /// An array: first a value that is JSON already, then texts.
    const std::string& JsonRow(const std::string& first, const std::vector<std::string>& texts) {
        line_ = '[' + first;
        for (const std::string& text : texts) {
            line_ += ", ";
            AppendJsonText(line_, text);
        }
        return line_ += ']';
    }

    void Row(const std::string& number, const std::vector<std::string>& cells) {
        line_.clear();
        if (format_ == Format::Csv) {
            line_ = number;
            for (const std::string& cell : cells) {
                line_ += ',';
                AppendCsvCell(line_, cell);
            }
        } else {
            line_ = std::string(widths_[0] - std::min(widths_[0], number.size()), ' ') + number;
            for (std::size_t i = 0; i < cells.size(); ++i) {
                line_ += "  " + cells[i];
                line_.append(widths_[i + 1] - std::min(widths_[i + 1], cells[i].size()), ' ');
            }
            line_.erase(line_.find_last_not_of(' ') + 1);
        }
        output_.Write(line_ + "\n");
    }

    Output& output_;
    JsonArray array_{output_, {"\n", ",\n", "\n]}\n", "\n]}\n"}};
    const Format format_;
    std::vector<std::size_t> widths_;
    std::string line_;
    bool any_ = false;
};

int Run(const Options& options) {
    CheckTarget(options.output, {options.file});
    const NumberRange& range = options.range;
    CheckRange(range);
    const Format format = FormatOf(options);
    Bus bus(options.bus);
    const bool zoom = options.zoom;
    TraceInput input(options.file, bus.Tables());
    const TraceSurvey survey = input.Survey();
    if (zoom) {
        input.RequireZoom(survey);
    }
    TraceStream& stream = input.Stream();
    CSignalList& list = zoom ? stream.zoomList : stream.stateList;
    if (!options.columns.empty()) {
        const std::string wrong = ShowColumns(list, SplitNames(options.columns), bus.Tables());
        if (!wrong.empty()) {
            WrongUse(wrong);
        }
    }
    TraceListing::Capture capture{
        bus.Board(),         zoom, survey.HasGaps(), survey.first, stream.TriggerNumber(),
        survey.timeToTrigger};
    const SampleRows zoomRows = ZoomRowsOf(survey);
    if (zoom) {
        capture.first = zoomFirstNumber;
        capture.trigger = 0;
        RunningTime toTrigger{SampleTime(list)};
        for (std::size_t i = 0; i <= zoomSamplesBefore; ++i) {
            toTrigger.Add(zoomRows.records[i]);
        }
        capture.timeToTrigger = toTrigger.Sum();
    }
    TraceListing listing(list, capture);
    if (!zoom && survey.HasGaps() && !survey.cutOff && listing.ShowsTime()) {
        Say(SamplesAreMissing(input.Name()));
    }
    Output output(options.output.path);
    const std::size_t numberWidth =
        std::max(std::to_string(survey.first).size(), std::to_string(survey.last).size());
    ListingWriter writer(output, format, listing, numberWidth);
    Progress progress("Listing", survey.rows);
    std::vector<std::string> cells;
    std::int64_t done = 0;
    const auto write = [&](const SampleRows& rows) {
        listing.Load(rows);
        for (std::size_t i = 0; i < rows.Size(); ++i) {
            if (range.Has(rows.numbers[i])) {
                listing.Cells(i, cells);
                writer.Add(rows.numbers[i], cells);
            }
        }
        done += static_cast<std::int64_t>(rows.Size());
        progress.At(done);
        return rows.numbers.back() < range.to;
    };
    if (zoom) {
        write(zoomRows);
    } else {
        for (const SampleRows* rows = input.NextRows(); rows != nullptr && write(*rows);
             rows = input.NextRows()) {
        }
    }
    writer.End();
    output.CloseOrDiscard(writer.Any());
    if (!writer.Any()) {
        Say("there are no such samples");
    }
    return writer.Any() ? ExitStatus::Done : ExitStatus::NothingFound;
}

} // namespace

void AddList(CLI::App& program) {
    const auto options = std::make_shared<Options>();
    CLI::App& command = AddCommand(program, "list", "the listing, as the State window shows it",
                                   [options] { return Run(*options); });
    AddCaptureOptions(command, *options);
    AddRange(command, options->range);
    Completed(AddTexts(command, "--columns", options->columns, "NAME,...", "these columns only"),
              Completion::Kind::Names);
    AddFlag(command, "--zoom", options->zoom, "the Power Zoom samples");
}

} // namespace busquill::cli
