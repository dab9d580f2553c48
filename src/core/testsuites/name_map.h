#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace busquill {

class Prompts;
class TextReader;
class WorkingDirectory;

/// Names by their numbers, from a text file with a number in hexadecimal, a blank and the name in
/// each line.
class NameMap {
public:
    /// Appends the names of a file.
    void Read(TextReader& file);
    /// The first name of a number; null when it has none.
    [[nodiscard]] const std::string* Find(std::uint32_t id) const;
    [[nodiscard]] std::size_t Size() const noexcept { return entries_.size(); }

private:
    struct Entry {
        std::uint32_t id;
        std::string name;
    };
    std::vector<Entry> entries_; // searched from the front: the first of a number counts
};

/// The names of vendors and of device classes.
struct DeviceNames {
    NameMap vendors;
    NameMap classes; // by the base class, the top byte of a class

    /// "Unknown - ID 0x1234" for a vendor without a name.
    [[nodiscard]] std::string VendorName(std::uint32_t vendorId) const;
    /// The same for a class, a number of 24 bits.
    [[nodiscard]] std::string ClassName(std::uint32_t classCode) const;
};

/// Reads PCIVendors.txt and PCIClass.txt from the program's folder. A file that is missing is
/// reported, and its names are then empty.
[[nodiscard]] DeviceNames LoadDeviceNames(const WorkingDirectory& directory, Prompts& prompts);

} // namespace busquill
