#pragma once

#include "document/document.h"
#include "testsuites/config_space_data.h"

namespace busquill {

/// A look at the devices of the bus. Its .cfg file has no content: saving creates an empty file,
/// and opening one leaves the device on view.
class CConfigDoc final : public CDocument {
public:
    /// Reads the names of vendors and classes from the program's folder.
    CConfigDoc(const WorkingDirectory& directory, Prompts& prompts)
        : prompts_(prompts), device_(directory, prompts) {}

    [[nodiscard]] CConfigSpaceData& Device() noexcept { return device_; }
    [[nodiscard]] const CConfigSpaceData& Device() const noexcept { return device_; }

    bool OnOpenDocument(const std::string& path) override;
    bool OnSaveDocument(const std::string& path) override;

private:
    Prompts& prompts_;
    CConfigSpaceData device_;
};

} // namespace busquill
