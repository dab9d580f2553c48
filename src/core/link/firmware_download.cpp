#include "link/firmware_download.h"

#include "link/analyzer_link.h"
#include "link/hex_records.h"
#include "platform/prompts.h"
#include "platform/text.h"
#include "platform/text_file.h"

#include <atomic>

namespace busquill {

namespace {

/// Far more than any firmware needs. A larger file must not exhaust the memory.
constexpr std::size_t largestFile = std::size_t{1} << 28;

} // namespace

/// The part of a download that its requests share. One thread at a time sends records: the
/// main thread the first, then whichever completes one.
class FirmwareDownload::Chain : public std::enable_shared_from_this<Chain> {
public:
    Chain(CAnalyzerLink& link, Prompts& prompts) : link_(link), prompts_(prompts) {}

    void Start(const std::string& path, std::string text) {
        path_ = path;
        records_ = HexRecords(std::move(text));
        total = static_cast<std::uint32_t>(records_.Colons());
        state = State::Running;
        SendRecord();
    }

    std::atomic<State> state = State::Idle;
    std::atomic<bool> cancelled = false;
    std::atomic<std::uint32_t> total = 0;
    std::atomic<std::uint32_t> count = 0;

private:
    /// Each completion comes here again. Without a board that is a loop of the queue, so the stack
    /// does not grow with the file.
    void SendRecord() {
        if (LinkRequestPtr request = NextRequest()) {
            link_.Submit(std::move(request));
        }
    }

    /// The request for the next record that has data; null when nothing is left to send.
    LinkRequestPtr NextRequest() {
        HexRecord record;
        while (!cancelled) {
            switch (records_.Next(record)) {
            case HexRecords::Step::EndOfFile:
                state = State::Complete;
                return nullptr;
            case HexRecords::Step::Invalid:
                Fail(Printf("Invalid hex record %d in file %s.", static_cast<int>(count),
                            path_.c_str()));
                return nullptr;
            case HexRecords::Step::Record:
                break;
            }
            if (record.type == HexRecord::Segment && record.data.size() >= 2) {
                segmentBase_ = (record.data[0] * 256U + record.data[1]) * 16;
            }
            ++count;
            if (record.type == HexRecord::Data && !record.data.empty()) {
                return RequestFor(record);
            }
        }
        state = State::Idle;
        return nullptr;
    }

    LinkRequestPtr RequestFor(const HexRecord& record) {
        LinkRequestPtr request = WriteMemory(CmdDownloadRecord, segmentBase_ + record.address,
                                             [data = record.data] { return data; });
        request->completion = [self = shared_from_this()](const LinkRequestPtr& done) {
            self->RecordDone(done->result);
        };
        return request;
    }

    void RecordDone(std::int32_t result) {
        if (result != LinkOk) {
            Fail(Printf("Serial connection error sending firmware record %d.",
                        static_cast<int>(count)));
        } else {
            SendRecord();
        }
    }

    void Fail(const std::string& message) {
        prompts_.TopmostMessage(message);
        state = State::Idle;
    }

    CAnalyzerLink& link_;
    Prompts& prompts_;
    std::string path_;
    HexRecords records_{""};
    std::uint32_t segmentBase_ = 0;
};

FirmwareDownload::FirmwareDownload(CAnalyzerLink& link, Prompts& prompts)
    : link_(link), prompts_(prompts), chain_(std::make_shared<Chain>(link, prompts)) {}

FirmwareDownload::~FirmwareDownload() {
    chain_->cancelled = true;
}

bool FirmwareDownload::Start(const std::string& path) {
    TextReader file;
    std::string text;
    bool readable = file.Open(path);
    while (readable) {
        const std::string_view piece = file.AtHand();
        if (piece.empty()) {
            break;
        }
        text.append(piece);
        file.Skip(piece.size());
        readable = text.size() <= largestFile;
    }
    if (!readable || file.Failed()) {
        prompts_.TopmostMessage(Printf("Error opening file %s.", path.c_str()));
        return false;
    }
    chain_->Start(path, std::move(text));
    return true;
}

void FirmwareDownload::Cancel() {
    chain_->cancelled = true;
    link_.WaitIdle();
}

FirmwareDownload::State FirmwareDownload::GetState() const noexcept {
    return chain_->state;
}

std::uint32_t FirmwareDownload::Total() const noexcept {
    return chain_->total;
}

std::uint32_t FirmwareDownload::Count() const noexcept {
    return chain_->count;
}

} // namespace busquill
