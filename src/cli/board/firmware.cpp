// A download of firmware.

#include "cli/board/board_session.h"
#include "cli/board/commands.h"
#include "cli/board/line_output.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/exit_request.h"
#include "cli/input.h"
#include "cli/output.h"
#include "link/firmware_download.h"
#include "link/hex_records.h"
#include "platform/text.h"

#include <memory>

namespace busquill::cli::board {

namespace {

struct FirmwareOptions {
    BoardOptions board;
    std::string file;
};

/// Ends the program if a file is wrong, while the board still has its old firmware.
void CheckRecords(const std::string& path) {
    TextReader file = OpenInput(path);
    std::string text;
    for (auto piece = file.AtHand(); !piece.empty(); piece = file.AtHand()) {
        text.append(piece);
        file.Skip(piece.size());
    }
    HexRecords records(std::move(text));
    int count = 0;
    HexRecord record;
    while (true) {
        switch (records.Next(record)) {
        case HexRecords::Step::Record:
            ++count;
            break;
        case HexRecords::Step::Invalid:
            Fail(Printf("Invalid hex record %d in file %s.", count, path.c_str()));
        case HexRecords::Step::EndOfFile:
            if (count == 0) {
                Fail(path + " has no records");
            }
            return;
        }
    }
}

/// Waits for the end of a download; not for ever for a record on which the board hangs.
WaitEnd Follow(BoardSession& session, const FirmwareDownload& download, bool isQuiet) {
    std::optional<Progress> progress;
    if (!isQuiet) {
        progress.emplace("Download", download.Total());
    }
    std::uint32_t count = 0;
    session.SetLimit(patience);
    return session.WaitUntil([&] {
        if (download.Count() != count) {
            count = download.Count();
            session.SetLimit(patience);
        }
        if (progress) {
            progress->At(count);
        }
        return download.GetState() != FirmwareDownload::State::Running;
    });
}

int RunFirmware(const FirmwareOptions& options) {
    CheckRecords(options.file);
    BoardSession session(options.board);
    if (!session.Boxes().AskYesNo("Replace the firmware of the " +
                                  session.Link().Identity().modelString + " by " + options.file +
                                  "?")) {
        Fail("nothing was downloaded");
    }
    FirmwareDownload download(session.Link(), session.Boxes());
    WaitEnd end = WaitEnd::Done;
    if (download.Start(options.file)) {
        end = Follow(session, download, options.board.quiet);
    }
    if (end != WaitEnd::Done) {
        download.Cancel();
    }
    session.PrintMessages();
    const bool isComplete = download.GetState() == FirmwareDownload::State::Complete;
    LineOutput output;
    if (options.board.json) {
        output.Print(Printf(R"({"complete": %s, "records": %u, "of": %u})",
                            isComplete ? "true" : "false", download.Count(), download.Total()));
    } else if (isComplete) {
        output.Print("Download complete.");
    }
    output.Close();
    if (!isComplete) {
        Fail(Printf("%s after %u of %u records; the board holds a part of the new firmware: "
                    "download again before you use it",
                    end == WaitEnd::Interrupted ? "interrupted" : "the download has ended",
                    download.Count(), download.Total()));
    }
    return ExitStatus::Done;
}

} // namespace

void AddFirmware(CLI::App& program) {
    const auto options = std::make_shared<FirmwareOptions>();
    CLI::App& command = AddCommand(program, "firmware", "replaces the board's firmware",
                                   [options] { return RunFirmware(*options); });
    CompletedWithFiles(AddOperand(command, "FILE.hex", options->file), ".hex");
    AddBoardOptions(command, options->board);
    AddAnswers(command, options->board);
}

} // namespace busquill::cli::board
