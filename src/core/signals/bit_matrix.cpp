#include "signals/bit_matrix.h"

namespace busquill {

ChunkWords TransposeRecords(std::span<const SampleRecord> records) noexcept {
    ChunkWords words{};
    for (std::size_t eight = 0; eight * 8 < records.size(); ++eight) {
        const auto part =
            records.subspan(eight * 8, std::min<std::size_t>(8, records.size() - eight * 8));
        for (std::size_t byte = 0; byte < sizeof(SampleRecord); ++byte) {
            std::uint64_t rows = 0;
            for (std::size_t r = 0; r < part.size(); ++r) {
                rows |= std::uint64_t{part[r].bytes[byte]} << (8 * r);
            }
            if (rows == 0) {
                continue;
            }
            const std::uint64_t columns = Transpose8(rows);
            for (std::size_t bit = 0; bit < 8; ++bit) {
                const auto column = static_cast<std::uint32_t>(columns >> (8 * bit) & 0xFF);
                words[byte * 8 + bit] |= column << (8 * eight);
            }
        }
    }
    return words;
}

} // namespace busquill
