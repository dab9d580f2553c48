/// Unpacks records into signals. A record holds all bits of one sample, a word of a signal one bit
/// of 32 samples. So blocks of 32 records are transposed into a word for each bit of the record,
/// once for all signals, and signals copy whole words.
#include "signals/group_rows.h"
#include "signals/signal_list.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace busquill {

namespace {

constexpr std::size_t recordBytes = sizeof(SampleRecord);
/// Words of each record bit that are transposed at a time: a cache line of every signal's data.
constexpr std::size_t tileWords = 16;

using Tile = std::array<std::array<std::uint32_t, tileWords>, SampleRecord::bitCount>;

/// Transposes 32 records into word `word` of the tile.
void TransposeBlock(const SampleRecord* block, Tile& tile, std::size_t word) {
    for (std::size_t byte = 0; byte < recordBytes; ++byte) {
        std::array<std::uint32_t, 8> bits{};
        for (std::size_t part = 0; part < 4; ++part) {
            std::uint64_t x = 0;
            for (std::size_t i = 0; i < 8; ++i) {
                x |= std::uint64_t{block[part * 8 + i].bytes[byte]} << (8 * i);
            }
            x = Transpose8(x);
            for (std::size_t bit = 0; bit < 8; ++bit) {
                bits[bit] |= static_cast<std::uint32_t>((x >> (8 * bit)) & 0xFF) << (8 * part);
            }
        }
        for (std::size_t bit = 0; bit < 8; ++bit) {
            tile[byte * 8 + bit][word] = bits[bit];
        }
    }
}

/// Consecutive records, the first of which is sample `first`.
struct Run {
    std::size_t first = 0;
    std::span<const SampleRecord> records;

    [[nodiscard]] std::size_t End() const noexcept { return first + records.size(); }
};

/// Transposes the records of the samples in the words `firstWord` to `endWord - 1`. Samples outside
/// the run are 0.
void TransposeTile(const Run& run, std::size_t firstWord, std::size_t endWord, Tile& tile) {
    for (std::size_t word = firstWord; word < endWord; ++word) {
        const std::size_t begin = word * wordBits;
        if (begin >= run.first && begin + wordBits <= run.End()) {
            TransposeBlock(&run.records[begin - run.first], tile, word - firstWord);
            continue;
        }
        std::array<SampleRecord, wordBits> block{};
        const std::size_t from = std::max(begin, run.first);
        const std::size_t to = std::min(begin + wordBits, run.End());
        std::copy_n(run.records.begin() + static_cast<std::ptrdiff_t>(from - run.first), to - from,
                    block.begin() + static_cast<std::ptrdiff_t>(from - begin));
        TransposeBlock(block.data(), tile, word - firstWord);
    }
}

bool AllAbsent(std::span<const std::uint32_t> absent, std::size_t firstWord,
               std::size_t endWord) noexcept {
    return endWord <= absent.size() &&
           std::ranges::all_of(absent.subspan(firstWord, endWord - firstWord),
                               [](std::uint32_t word) { return word == ~0U; });
}

bool HasBit(const CSignal& signal) noexcept {
    return signal.dataIndex >= 0 && signal.dataIndex < SampleRecord::bitCount;
}

/// Sets a signal's bits in the words `firstWord` to `endWord - 1`.
void TakeWords(CSignal& signal, const Tile& tile, std::size_t firstWord, std::size_t endWord) {
    const std::size_t room = signal.Room();
    if (!HasBit(signal) || room <= firstWord * wordBits) {
        return;
    }
    const auto& words = tile[static_cast<std::size_t>(signal.dataIndex)];
    const std::size_t whole = std::min(endWord, room / wordBits);
    for (std::size_t word = firstWord; word < whole; ++word) {
        signal.data[word] |= words[word - firstWord];
    }
    if (whole < endWord && room % wordBits != 0) {
        signal.data[whole] |= words[whole - firstWord] & LowBits<std::uint32_t>(room % wordBits);
    }
}

/// Whether the group's rows are a part of the record: its members have neighbouring bits in
/// ascending order, and data and rows have the same room.
bool LiesInRecord(std::span<const std::unique_ptr<CSignal>> members) {
    const CSignal& start = *members.front();
    if (start.groupWidth != members.size() ||
        start.groupData.size() != start.RowBytes() * start.numSamples) {
        return false;
    }
    for (std::size_t k = 0; k < members.size(); ++k) {
        const CSignal& member = *members[k];
        if (!HasBit(member) || member.dataIndex != start.dataIndex + static_cast<std::int32_t>(k) ||
            member.numSamples != start.numSamples ||
            member.data.size() != WordsFor(member.numSamples)) {
            return false;
        }
    }
    return true;
}

std::uint64_t EightBytes(const std::uint8_t* bytes) noexcept {
    std::uint64_t value = 0;
    for (int i = 0; i < 8; ++i) {
        value |= std::uint64_t{bytes[i]} << (8 * i);
    }
    return value;
}

/// Copies rows of up to eight bytes; `records` begins with the sample of the first row. The row
/// size is a template parameter because a RecordField would work out offset and width again for
/// each row.
template <std::size_t rowBytes>
void CopyShortRows(std::span<const SampleRecord> records, std::size_t dataIndex, unsigned width,
                   std::uint8_t* row) {
    // Near the end of the record, the eight bytes read end with it.
    const std::size_t byte = std::min(dataIndex / 8, recordBytes - 8);
    const std::size_t shift = dataIndex - byte * 8;
    const auto mask = LowBits<std::uint64_t>(width);
    for (const SampleRecord& record : records) {
        std::uint64_t bits = EightBytes(&record.bytes[byte]) >> shift & mask;
        for (std::size_t j = 0; j < rowBytes; ++j) {
            bits |= std::uint64_t{row[j]} << (8 * j);
        }
        for (std::size_t j = 0; j < rowBytes; ++j) {
            row[j] = static_cast<std::uint8_t>(bits >> (8 * j));
        }
        row += rowBytes;
    }
}

using CopyShort = void (*)(std::span<const SampleRecord>, std::size_t, unsigned, std::uint8_t*);
constexpr std::array<CopyShort, 8> copyShortRows = {
    CopyShortRows<1>, CopyShortRows<2>, CopyShortRows<3>, CopyShortRows<4>,
    CopyShortRows<5>, CopyShortRows<6>, CopyShortRows<7>, CopyShortRows<8>,
};

/// Whether eight bytes of the record contain the whole group.
bool IsShort(std::size_t dataIndex, std::size_t width) noexcept {
    return dataIndex - std::min(dataIndex / 8, recordBytes - 8) * 8 + width <= 64;
}

void CopyLongRows(std::span<const SampleRecord> records, std::size_t dataIndex, unsigned width,
                  std::uint8_t* row) {
    for (const SampleRecord& record : records) {
        for (std::size_t k = 0; k < width; k += 8) {
            const auto first = static_cast<int>(dataIndex + k);
            const std::size_t count = std::min<std::size_t>(8, width - k);
            row[k / 8] |= static_cast<std::uint8_t>(record.Field(first, count));
        }
        row += BytesFor(width);
    }
}

/// Sets the bits in the rows of a group that lies in the record, for those of the samples `begin`
/// to `end - 1` that are in the run.
void CopyRows(CSignal& start, const Run& run, std::size_t begin, std::size_t end) {
    begin = std::max(begin, run.first);
    end = std::min({end, run.End(), std::size_t{start.numSamples}});
    if (begin >= end) {
        return;
    }
    const auto dataIndex = static_cast<std::size_t>(start.dataIndex);
    const std::size_t rowBytes = start.RowBytes();
    const auto copy =
        IsShort(dataIndex, start.groupWidth) ? copyShortRows[rowBytes - 1] : CopyLongRows;
    copy(run.records.subspan(begin - run.first, end - begin), dataIndex, start.groupWidth,
         &start.groupData[begin * rowBytes]);
}

struct GroupToLoad {
    std::span<const std::unique_ptr<CSignal>> members;
    bool liesInRecord = false;
};

} // namespace

void CSignalList::ResizeSamples(std::uint32_t count) {
    for (const auto& signal : signals_) {
        signal->ResizeSamples(count);
    }
    times_.Forget();
}

void CSignalList::LoadSamples(std::uint32_t first, std::span<const SampleRecord> records,
                              std::span<const std::uint32_t> absent) {
    LoadRange(0, signals_.size(), first, records, absent);
}

void CSignalList::LoadSignal(CSignal* signal, std::uint32_t first,
                             std::span<const SampleRecord> records,
                             std::span<const std::uint32_t> absent) {
    const std::size_t begin = IndexOf(signal);
    const std::size_t end = GroupEnd(begin);
    const std::size_t most = std::numeric_limits<std::uint32_t>::max();
    const auto needed = static_cast<std::uint32_t>(std::min(first + records.size(), most));
    for (std::size_t i = begin; i < end; ++i) {
        signals_[i]->ResizeSamples(std::max(signals_[i]->numSamples, needed));
    }
    times_.Forget();
    LoadRange(begin, end, first, records, absent);
}

void CSignalList::LoadRange(std::size_t begin, std::size_t end, std::uint32_t first,
                            std::span<const SampleRecord> records,
                            std::span<const std::uint32_t> absent) {
    std::size_t room = 0;
    std::vector<GroupToLoad> groups;
    for (std::size_t i = begin; i < end; ++i) {
        room = std::max<std::size_t>(room, signals_[i]->Room());
        if (signals_[i]->IsGroupStart() && signals_[i]->groupWidth != 0) {
            const auto members = Members(i);
            groups.push_back({members, LiesInRecord(members)});
        }
    }
    if (records.empty() || first >= room) {
        return;
    }
    const Run run{first, records.first(std::min(records.size(), room - first))};
    times_.Forget(first, run.records.size());
    const std::size_t lastWord = (run.End() - 1) / wordBits;
    const auto tile = std::make_unique<Tile>();
    std::size_t labelled = run.first;
    const auto labelUpTo = [&](std::size_t sample) {
        if (labelled < sample) {
            LabelRange(begin, end, labelled, sample - labelled);
        }
    };
    for (std::size_t word = first / wordBits; word <= lastWord; word += tileWords) {
        const std::size_t endWord = std::min(word + tileWords, lastWord + 1);
        if (AllAbsent(absent, word, endWord)) {
            labelUpTo(word * wordBits);
            labelled = std::max(labelled, endWord * wordBits);
            continue;
        }
        TransposeTile(run, word, endWord, *tile);
        for (std::size_t i = begin; i < end; ++i) {
            TakeWords(*signals_[i], *tile, word, endWord);
        }
        for (const GroupToLoad& group : groups) {
            if (group.liesInRecord) {
                CopyRows(*group.members.front(), run, word * wordBits, endWord * wordBits);
            } else {
                PackGroupRows(group.members, word, endWord);
            }
        }
    }
    labelUpTo(run.End());
}

void CSignalList::RebuildGroupRows(std::uint32_t first, std::uint32_t count) {
    const std::size_t end = std::size_t{first} + count;
    times_.Forget(); // whole words of rows were packed
    for (std::size_t i = 0; i < signals_.size() && count != 0; ++i) {
        if (signals_[i]->IsGroupStart()) {
            PackGroupRows(Members(i), first / wordBits, WordsFor(end));
        }
    }
}

} // namespace busquill
