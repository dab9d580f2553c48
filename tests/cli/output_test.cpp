#include "cli/exit_request.h"
#include "cli/output.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <iterator>
#include <string>
#include <sys/resource.h>
#include <utility>

namespace busquill::cli {
namespace {

/// Writes far more than there is room for. Returns the message about it, and how much was written
/// before.
std::pair<std::string, std::size_t> FillUp(Output& output) {
    constexpr std::size_t most = std::size_t{1} << 24;
    std::size_t written = 0;
    try {
        for (; written < most; written += 1000) {
            output.Write(std::string(1000, 'a'));
        }
    } catch (const ExitRequest& request) {
        return {request.message, written};
    }
    return {"nothing was said", written};
}

TEST(Output, AFullDiskIsNoticedByTheWriteThatFails) {
    Output output("/dev/full");
    const auto [message, written] = FillUp(output);
    EXPECT_EQ(message, "Error writing file /dev/full.");
    EXPECT_LT(written, std::size_t{200'000});
}

/// Files of this process are limited during its lifetime, as on a disk that is nearly full.
class SmallDisk {
public:
    explicit SmallDisk(rlim_t bytes) : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~SmallDisk() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, signal_);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

private:
    void (*signal_)(int);
    rlimit before_{};
};

TEST(Output, AFullDiskLeavesTheOldFileAndNoOther) {
    const test::TempDir dir;
    dir.Write("out", "the old one");
    {
        const SmallDisk disk(300'000);
        Output output(dir.File("out"));
        const auto [message, written] = FillUp(output);
        EXPECT_EQ(message, "Error writing file " + dir.File("out") + ".");
        EXPECT_LT(written, std::size_t{500'000});
    }
    EXPECT_EQ(test::ReadWholeFile(dir.File("out")), "the old one");
    const auto names = std::filesystem::directory_iterator(dir.Path());
    EXPECT_EQ(std::distance(begin(names), end(names)), 1);
}

} // namespace
} // namespace busquill::cli
