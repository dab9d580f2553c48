#include "testsuites/name_map.h"

#include "platform/prompts.h"
#include "platform/text.h"
#include "platform/text_file.h"
#include "platform/working_directory.h"

#include <algorithm>
#include <cstdlib>

namespace busquill {

namespace {

void ReadNames(NameMap& names, const std::string& path, const char* notFound, Prompts& prompts) {
    TextReader file;
    if (!file.Open(path)) {
        prompts.Message(Printf(notFound, path.c_str()));
        return;
    }
    names.Read(file);
}

} // namespace

void NameMap::Read(TextReader& file) {
    while (const auto line = file.ReadLine()) {
        const std::string_view text = Trim(*line);
        const auto blank = text.find(' '); // a tab does not separate
        if (blank == std::string_view::npos || blank == 0) {
            continue;
        }
        const std::string number(text.substr(0, blank));
        entries_.push_back({static_cast<std::uint32_t>(std::strtoll(number.c_str(), nullptr, 16)),
                            ToUtf8(Trim(text.substr(blank)))});
    }
}

const std::string* NameMap::Find(std::uint32_t id) const {
    const auto found = std::ranges::find(entries_, id, &Entry::id);
    return found == entries_.end() ? nullptr : &found->name;
}

std::string DeviceNames::VendorName(std::uint32_t vendorId) const {
    const std::string* name = vendors.Find(vendorId);
    return name != nullptr ? *name : Printf("Unknown - ID 0x%04x", vendorId);
}

std::string DeviceNames::ClassName(std::uint32_t classCode) const {
    const std::string* name = classes.Find(classCode >> 16);
    return name != nullptr ? *name : Printf("Unknown - ID 0x%06x", classCode);
}

DeviceNames LoadDeviceNames(const WorkingDirectory& directory, Prompts& prompts) {
    DeviceNames names;
    ReadNames(names.vendors, directory.FilePath("PCIVendors.txt"),
              "Warning: Vendor map file %s not found", prompts);
    ReadNames(names.classes, directory.FilePath("PCIClass.txt"),
              "Warning: Class map file %s not found", prompts);
    return names;
}

} // namespace busquill
