#include "export/session_file.h"

#include "platform/text.h"
#include "signals/signal_names.h"

#include <algorithm>
#include <archive.h>
#include <archive_entry.h>

namespace busquill {

namespace {

constexpr std::size_t chunkSamples = std::size_t{1} << 18; // 4.5 MB
// Records of a bus are so repetitive that more effort gains little.
constexpr const char* effort = "3";

std::string Metadata(const SessionFile::Capture& capture) {
    std::string text =
        Printf("[global]\nsigrok version=0.5.2\n\n[device 1]\ncapturefile=logic-1\n"
               "total probes=%d\nsamplerate=%llu Hz\ntotal analog=0\n",
               SampleRecord::bitCount, static_cast<unsigned long long>(capture.sampleRate));
    for (std::size_t i = 0; i < capture.channels.size(); ++i) {
        text += Printf("probe%zu=%s\n", i + 1, capture.channels[i].c_str());
    }
    return text + Printf("unitsize=%zu\n", sizeof(SampleRecord));
}

} // namespace

class SessionFile::Archive {
public:
    explicit Archive(Sink sink) : sink_(std::move(sink)), archive_(archive_write_new()) {
        good_ = archive_ && archive_write_set_format_zip(archive_.get()) == ARCHIVE_OK &&
                archive_write_set_format_option(archive_.get(), "zip", "compression-level",
                                                effort) == ARCHIVE_OK &&
                archive_write_set_bytes_in_last_block(archive_.get(), 1) == ARCHIVE_OK &&
                archive_write_open(archive_.get(), this, nullptr, Write, nullptr) == ARCHIVE_OK;
    }

    [[nodiscard]] bool Put(const std::string& name, std::string_view bytes) {
        const std::unique_ptr<archive_entry, Freer> entry(archive_entry_new());
        if (!good_ || !entry) {
            return false;
        }
        archive_entry_set_pathname(entry.get(), name.c_str());
        archive_entry_set_filetype(entry.get(), AE_IFREG);
        archive_entry_set_perm(entry.get(), 0644);
        archive_entry_set_size(entry.get(), static_cast<la_int64_t>(bytes.size()));
        good_ = archive_write_header(archive_.get(), entry.get()) == ARCHIVE_OK;
        while (good_ && !bytes.empty()) {
            const la_ssize_t count = archive_write_data(archive_.get(), bytes.data(), bytes.size());
            good_ = count > 0;
            bytes.remove_prefix(good_ ? static_cast<std::size_t>(count) : 0);
        }
        return good_;
    }

    [[nodiscard]] bool Close() {
        good_ = good_ && archive_write_close(archive_.get()) == ARCHIVE_OK;
        return good_;
    }

private:
    struct Freer {
        void operator()(archive_entry* entry) const noexcept { archive_entry_free(entry); }
        void operator()(archive* file) const noexcept { archive_write_free(file); }
    };

    static la_ssize_t Write(archive*, void* self, const void* bytes, std::size_t count) {
        auto* const owner = static_cast<Archive*>(self);
        const bool taken = owner->sink_({static_cast<const char*>(bytes), count});
        return taken ? static_cast<la_ssize_t>(count) : -1;
    }

    Sink sink_;
    std::unique_ptr<archive, Freer> archive_;
    bool good_ = false;
};

SessionFile::SessionFile(const Capture& capture, Sink sink)
    : archive_(std::make_unique<Archive>(std::move(sink))) {
    good_ = archive_->Put("version", "2") && archive_->Put("metadata", Metadata(capture));
    chunk_.reserve(chunkSamples * sizeof(SampleRecord));
}

SessionFile::~SessionFile() = default;

bool SessionFile::Add(const SampleRows& rows) {
    for (const SampleRecord& record : rows.records) {
        chunk_.append(reinterpret_cast<const char*>(record.bytes.data()), record.bytes.size());
        if (chunk_.size() >= chunkSamples * sizeof(SampleRecord) && !WriteChunk()) {
            return false;
        }
    }
    return good_;
}

bool SessionFile::WriteChunk() {
    good_ = good_ && archive_->Put(Printf("logic-1-%d", ++chunks_), chunk_);
    chunk_.clear();
    return good_;
}

bool SessionFile::End() {
    if ((!chunk_.empty() || chunks_ == 0) && !WriteChunk()) {
        return false;
    }
    return archive_->Close();
}

std::vector<std::string> SessionChannels(const SignalTables& tables) {
    std::vector<std::string> channels;
    for (int bit = 0; bit < SampleRecord::bitCount; ++bit) {
        std::string name = BitName(tables, bit);
        std::ranges::replace(name, ' ', '_');
        const auto isTaken = [&](const std::string& each) {
            return std::ranges::find(channels, each) != channels.end();
        };
        std::string unique = name;
        for (int n = 2; isTaken(unique); ++n) {
            unique = name + "_" + std::to_string(n);
        }
        channels.push_back(unique);
    }
    return channels;
}

} // namespace busquill
