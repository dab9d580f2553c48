#include "cli/capture_report.h"
#include "cli/exit_request.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <functional>
#include <string>

namespace busquill::cli {
namespace {

class Report : public testing::Test {
protected:
    Report() {
        options_.operands = {"a.tra", "b.tra", "c.tra"};
        options_.output.path = dir_.File("out");
        options_.format = Format::Csv;
    }
    /// The exit status after a report on three captures.
    int Run(const CaptureReport::Job& job) {
        CaptureReport report(options_);
        report.WriteCsvTitles("sample");
        report.ForEach(job);
        return report.End("nothing");
    }
    [[nodiscard]] std::string Written() const {
        return std::filesystem::exists(options_.output.path)
                   ? test::ReadWholeFile(options_.output.path)
                   : "no file";
    }

private:
    const test::TempDir dir_;
    CapturesOptions options_;
};

TEST_F(Report, KeepsTheRowsOfACaptureThatFailedAfterThem) {
    EXPECT_EQ(Run([](const ReportedCapture& capture, TextSink& result) {
                  if (capture.path == "b.tra") {
                      result.Write(capture.CsvBegin() + "1\n");
                      Fail("b.tra: it has changed while it was read");
                  }
                  return false;
              }),
              ExitStatus::Failure);
    EXPECT_EQ(Written(), "file,sample\nb.tra,1\n");
}

TEST_F(Report, LeavesNoFileWithoutAnyRow) {
    EXPECT_EQ(Run([](const ReportedCapture& capture, TextSink&) {
                  if (capture.path == "b.tra") {
                      Fail("b.tra: it cannot be read to its end");
                  }
                  return false;
              }),
              ExitStatus::Failure);
    EXPECT_EQ(Written(), "no file");
}

TEST_F(Report, GoesOnAfterAMistakeThatConcernsOneCapture) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(Run([](const ReportedCapture& capture, TextSink& result) {
                  if (capture.path == "b.tra") {
                      WrongUse("no signal \"MYLINE\" on this bus");
                  }
                  result.Write(capture.CsvBegin() + "1\n");
                  return true;
              }),
              ExitStatus::Failure);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                testing::EndsWith(": b.tra: no signal \"MYLINE\" on this bus\n"));
    EXPECT_EQ(Written(), "file,sample\na.tra,1\nc.tra,1\n");
}

} // namespace
} // namespace busquill::cli
