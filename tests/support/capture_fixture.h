#pragma once

#include "capture/board_capture.h"
#include "capture/trace_document.h"
#include "support/board_tables.h"
#include "support/link_fixture.h"

namespace busquill::test {

/// Holds up the board at a read of samples until it is opened.
class Gate {
public:
    void AwaitReached() { state_->reached.get_future().wait(); }
    void Open() { state_->open.set_value(); }
    void Pass() {
        state_->reached.set_value();
        state_->open.get_future().wait();
    }

private:
    struct State {
        std::promise<void> reached;
        std::promise<void> open;
    };
    // Shared by copies: the link's thread may reach the gate when the test has already ended.
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

/// A board's store on a scripted wire. The samples on the wire hold their position: the first two
/// bytes of a record are its distance from the trigger.
class CaptureFixture : public LinkFixture {
protected:
    CaptureFixture() {
        analyzer->Tables().Load();
        context.analyzer = analyzer.get();
        context.newDocRealTime = true;
        board.onSampleRead = [](const WireBoard::SampleRead& read) { return Records(read); };
    }

    /// Sets the live status that the wire returns.
    void SetLive(int status, std::uint32_t before, std::uint32_t after, int occurrences = 0) {
        const auto byte = [](std::uint32_t value, int shift) {
            return static_cast<std::uint8_t>(value >> shift);
        };
        const auto count = static_cast<std::uint32_t>(occurrences);
        line->Do([&] {
            board.contents[425] = {static_cast<std::uint8_t>(status),
                                   byte(before, 0),
                                   byte(before, 8),
                                   byte(before, 16),
                                   byte(after, 0),
                                   byte(after, 8),
                                   byte(after, 16),
                                   byte(count, 0),
                                   byte(count, 8)};
        });
    }

    static Bytes Records(const WireBoard::SampleRead& read) {
        const bool before = read.function == 3 || read.function == 35;
        const auto distance = static_cast<std::int32_t>(read.distance) * (before ? -1 : 1);
        Bytes bytes;
        for (std::int32_t i = 0; i < static_cast<std::int32_t>(read.length); ++i) {
            const SampleRecord record = RecordAt(distance + i);
            bytes.insert(bytes.end(), record.bytes.begin(), record.bytes.end());
        }
        return bytes;
    }
    static SampleRecord RecordAt(std::int32_t distance) {
        SampleRecord record;
        record.bytes[0] = static_cast<std::uint8_t>(distance);
        record.bytes[1] = static_cast<std::uint8_t>(distance >> 8);
        return record;
    }

    /// The first read of samples, or the first read equal to `at`, stops at the gate.
    void StopAt(Gate& gate, std::optional<WireBoard::SampleRead> at = std::nullopt) {
        line->Do([&] {
            board.onSampleRead = [gate, at, passed = false](const auto& read) mutable {
                if (!passed && read == at.value_or(read)) {
                    passed = true;
                    gate.Pass();
                }
                return Records(read);
            };
        });
    }
    /// Uploads the whole capture from the wire.
    void Upload() {
        upload.BeginUpload();
        EXPECT_TRUE(Eventually([&] { return !upload.IsUploading(); }));
    }
    std::vector<WireBoard::SampleRead> Reads() {
        std::vector<WireBoard::SampleRead> reads;
        line->Do([&] { reads = board.sampleReads; });
        return reads;
    }
    /// The requested blocks, by the index of their first sample.
    std::vector<int> BlockOrder() {
        std::vector<int> order;
        const int before = store.SamplesBefore();
        for (const WireBoard::SampleRead& read : Reads()) {
            if (read.function == 3 || read.function == 5) {
                order.push_back(before +
                                static_cast<int>(read.distance) * (read.function == 3 ? -1 : 1));
            }
        }
        return order;
    }
    CTesselDoc& NewDocument() {
        document = std::make_unique<CTesselDoc>(context, prompts);
        EXPECT_TRUE(document->OnNewDocument());
        return *document;
    }

    /// A document with a complete capture.
    void Capture(std::uint32_t before, std::uint32_t after, const char* model = "PCIWren") {
        OpenBoard(model);
        SetLive(0x20, before, after);
        Upload();
        NewDocument();
        document->OnCaptureStopped();
        document->FlushBlockUpdates();
    }
    /// A document whose upload stops at its first block.
    void BeginHeldUpload(Gate& gate) {
        OpenBoard("PCIWren");
        SetLive(0x20, 500, 500);
        StopAt(gate);
        upload.BeginUpload();
        gate.AwaitReached();
        NewDocument();
        document->OnCaptureStopped();
    }

    BoardCapture& capture = analyzer->Capture();
    CSampleStore& store = capture.store;
    SampleUpload& upload = capture.upload;
    SignalTables& tables = analyzer->Tables();
    NewTraceContext context{tables};
    bool silent = false; // the test sets the answers itself
    std::unique_ptr<CTesselDoc> document;
};

} // namespace busquill::test
