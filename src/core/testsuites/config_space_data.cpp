#include "testsuites/config_space_data.h"

#include <algorithm>

namespace busquill {

CConfigSpaceData::CConfigSpaceData(const WorkingDirectory& directory, Prompts& prompts)
    : names_(LoadDeviceNames(directory, prompts)) {}

void CConfigSpaceData::Import(std::span<const std::uint8_t, configBlockBytes> block) {
    std::ranges::copy(block.first<configHeaderBytes>(), header_.begin());
    std::ranges::copy(block.subspan<configHeaderBytes>(), identity_.address.begin());
    identity_.vendorId = Half(0);
    identity_.deviceId = Half(2);
    identity_.vendorName = names_.VendorName(identity_.vendorId);
    identity_.className = names_.ClassName(std::uint32_t{header_[11]} << 16 |
                                           std::uint32_t{header_[10]} << 8 | header_[9]);
}

} // namespace busquill
