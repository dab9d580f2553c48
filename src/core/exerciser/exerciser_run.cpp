#include "exerciser/exerciser_run.h"

#include "exerciser/data_file.h"
#include "platform/prompts.h"
#include "platform/text.h"

#include <algorithm>
#include <filesystem>

namespace busquill {

namespace {

constexpr const char* endBelowStart = "End Address must be >= Start Address.";
constexpr const char* fileTooShort =
    "Warning: File length of %d is less than address length of %d. Zeros will be padded at the end "
    "of the file. Continue?";
constexpr const char* nameMissing =
    "File name must first be specified by pressing the FILE button.";
constexpr const char* fileExists = "File already exists. Overwrite?";
constexpr const char* createFailed = "Error creating file for master operation.";
constexpr const char* writeFailed = "Error writing file %s.";

} // namespace

ExerciserRun::ExerciserRun(Parts parts, std::uint8_t stepLimit, ExerciserObserver& observer)
    : BoardRun(std::move(parts)), stepLimit_(stepLimit), observer_(observer) {}

bool ExerciserRun::OpenData(bool isFile, bool read, const std::string& path,
                            const char* cannotLoad) {
    if (!isFile) {
        CloseDataFile();
        fileData_ = {};
        filePosition_ = 0;
        return true;
    }
    if (path.empty()) {
        Boxes().Message(nameMissing);
        return false;
    }
    filePosition_ = 0;
    return read ? CreateDataFile(path) : LoadDataFile(path, cannotLoad);
}

bool ExerciserRun::CreateDataFile(const std::string& path) {
    std::error_code error;
    if (std::filesystem::exists(path, error) && !Boxes().AskYesNo(fileExists)) {
        return false;
    }
    CloseDataFile();
    dataFilePath_ = path;
    if (!dataFile_.emplace().Create(path)) {
        dataFile_.reset();
        Boxes().Message(createFailed);
        return false;
    }
    return true;
}

bool ExerciserRun::LoadDataFile(const std::string& path, const char* cannotLoad) {
    auto data = ReadDataFile(path);
    if (!data) {
        Boxes().Message(cannotLoad);
        return false;
    }
    CloseDataFile();
    fileData_ = std::move(*data);
    return true;
}

void ExerciserRun::CloseDataFile() {
    if (!dataFile_) {
        return;
    }
    const bool written = dataFile_->Close();
    dataFile_.reset();
    if (!written) {
        Boxes().Message(Printf(writeFailed, dataFilePath_.c_str()));
    }
}

bool ExerciserRun::BeginRange(const BusAddress& start, const BusAddress& end) {
    currentAddress_ = start;
    endAddress_ = end;
    const RangeStep step = StepLength(start, end, stepLimit_);
    stepLength_ = step.length;
    if (step.exhausted) {
        Boxes().Message(endBelowStart);
    }
    return !step.exhausted;
}

bool ExerciserRun::MayPadFile() {
    const std::uint64_t range = RangeLength(currentAddress_, endAddress_);
    if (!HasFileData() || range <= fileData_.size()) {
        return true;
    }
    return Boxes().AskYesNo(Printf(fileTooShort, static_cast<int>(fileData_.size()),
                                   static_cast<std::int32_t>(static_cast<std::uint32_t>(range))));
}

bool ExerciserRun::NextStep() noexcept {
    const RangeStep step = StepLength(currentAddress_, endAddress_, stepLimit_);
    // A step of no bytes: behind the last address of all, the current one is 0 again.
    if (step.exhausted || step.length == 0) {
        return false;
    }
    stepLength_ = step.length;
    return true;
}

void ExerciserRun::Rewind(const BusAddress& start) noexcept {
    filePosition_ = 0;
    currentAddress_ = start;
}

std::vector<std::uint8_t> ExerciserRun::TakeFileData() {
    const auto from = fileData_.begin() + static_cast<std::ptrdiff_t>(filePosition_);
    const std::size_t count = std::min<std::size_t>(stepLimit_, fileData_.size() - filePosition_);
    filePosition_ += count;
    return {from, from + static_cast<std::ptrdiff_t>(count)};
}

void ExerciserRun::BeginMemory() {
    memory_.emplace(LowAddress(currentAddress_));
    observer_.OnMemoryChanged();
}

void ExerciserRun::KeepRead(std::span<const std::uint8_t> step) {
    if (!memory_ || !memory_->Add(step)) {
        return;
    }
    if (dataFile_) {
        dataFile_->Write(DataFileLine(step));
    }
    observer_.OnMemoryChanged();
}

} // namespace busquill
