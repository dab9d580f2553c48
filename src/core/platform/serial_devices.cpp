#include "platform/serial_devices.h"

#include "platform/text.h"
#include "platform/text_file.h"

#include <algorithm>
#include <filesystem>
#include <optional>

namespace busquill {

namespace {

namespace fs = std::filesystem;

/// The first line of a file; nothing when there is none.
std::optional<std::string> FirstLine(const fs::path& path) {
    TextReader file;
    if (!file.Open(path.string())) {
        return std::nullopt;
    }
    const auto line = file.ReadLine();
    return line ? std::optional(std::string(Trim(*line))) : std::nullopt;
}

/// What the USB device tells that a terminal belongs to: it stands a few folders above.
std::string DescriptionOf(const fs::path& device) {
    constexpr int mostFolders = 4;
    std::error_code unknown;
    fs::path folder = fs::canonical(device, unknown);
    for (int i = 0; i < mostFolders && folder.has_relative_path(); ++i) {
        if (const auto product = FirstLine(folder / "product")) {
            return ToUtf8(*product);
        }
        folder = folder.parent_path();
    }
    return {};
}

} // namespace

std::vector<SerialDevice> SerialDevices(const std::string& folder) {
    std::vector<SerialDevice> devices;
    std::error_code unknown;
    for (const auto& terminal : fs::directory_iterator(folder, unknown)) {
        const fs::path device = terminal.path() / "device";
        // Consoles belong to no device, and unused serial ports have the type 0.
        if (!fs::exists(device, unknown) || FirstLine(terminal.path() / "type") == "0") {
            continue;
        }
        std::string name = terminal.path().filename().string();
        std::ranges::replace(name, '!', '/'); // as the system writes the names of folders
        devices.push_back({"/dev/" + name, DescriptionOf(device)});
    }
    std::ranges::sort(devices, {}, &SerialDevice::path);
    return devices;
}

} // namespace busquill
