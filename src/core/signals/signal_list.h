#pragma once

#include "signals/signal.h"
#include "signals/time_index.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace busquill {

class TextReader;
class TextWriter;

/// Signals in the order in which they are shown and filed, of the board of its tables. The list
/// owns them.
///
/// A group is a run of neighbours from a Start member to the next End member; a group that has
/// lost its End runs to the end of the list. Belongs to no thread; its owner guards it.
class CSignalList {
public:
    using Signals = std::vector<std::unique_ptr<CSignal>>;

    /// What memory is taken for by the word of a file alone. A signal that announces more samples
    /// than `maxFileSamples`, or a list more than `maxFileWords` of 32 of them, has room for what
    /// its lines hold; all others are zeros. Groups without an end overlap: rows are made for as
    /// many members as the list has, or `maxFileMembers`.
    static constexpr std::uint32_t maxFileSamples = 4096;
    static constexpr std::size_t maxFileWords = std::size_t{1} << 17;
    static constexpr std::size_t maxFileMembers = 8192;

    std::uint32_t mode = ModeState;

    /// The tables outlive the list and its copies.
    explicit CSignalList(SignalTables& tables) noexcept : tables_(&tables) {}
    CSignalList(const CSignalList&) = delete; // CopyFrom says it where it is wanted
    CSignalList& operator=(const CSignalList&) = delete;
    CSignalList(CSignalList&&) noexcept = default;
    CSignalList& operator=(CSignalList&&) noexcept = default;
    ~CSignalList() = default;

    [[nodiscard]] SignalTables& Tables() const noexcept { return *tables_; }
    [[nodiscard]] const Signals& All() const noexcept { return signals_; }
    [[nodiscard]] std::size_t Size() const noexcept { return signals_.size(); }
    [[nodiscard]] bool Empty() const noexcept { return signals_.empty(); }
    [[nodiscard]] CSignal& operator[](std::size_t index) const { return *signals_[index]; }
    /// The place of a signal in the list; the list's size when it is not there.
    [[nodiscard]] std::size_t IndexOf(const CSignal* signal) const noexcept;
    /// One past the last member of the group that starts at `index`, or of the rest of the group
    /// when it lies inside; `index + 1` for a signal without a group.
    [[nodiscard]] std::size_t GroupEnd(std::size_t index) const noexcept;

    /// The group that holds the time from sample to sample, or null.
    [[nodiscard]] const CSignal* TimeGroup() const noexcept;
    /// The time from sample `a` to sample `b`, negative when `b` comes first; nothing when one is
    /// -1 or the list has no permanent TIME.
    [[nodiscard]] std::optional<std::int64_t> TimeFrom(std::int64_t a, std::int64_t b) const;

    /// The tables too, since its signals are theirs.
    void CopyFrom(const CSignalList& other);
    void RemoveAllSignals();
    /// Fills the list with the default signals of a mode from its tables. The signals get
    /// whole words of samples: a list built with 5 samples has 32.
    void BuildFromTables(std::uint32_t numSamples, std::uint32_t forMode);
    /// Adds the signals of one definition before `before`, or at the tail when it is null;
    /// `first` to `last` are the positions of a bus definition. The first signal added, or null.
    CSignal* AddSignal(const CSignal* before, const std::shared_ptr<const CSignalDef>& def,
                       std::uint32_t numSamples, std::int32_t first, std::int32_t last,
                       std::uint32_t color, std::int32_t radix, bool showValue);
    /// Makes the packed rows and the name of the group that starts at `first`.
    void BuildGroup(CSignal* first);
    /// Makes all that files do not hold: group rows, names of decoded signals, labels.
    void RebuildAfterRead();
    void SetGroupSelected(CSignal* first, bool flag);
    void UngroupSelected();
    /// Makes one group of the selected signals, where the first of them stands.
    void CollapseSelected();
    void DeleteSelected();
    /// Deletes a signal with its group.
    void RemoveGroup(const CSignal* first);
    CSignal* InsertBlank(const CSignal* before);
    /// Colours the selected signals, and their definitions in the tables and colour files.
    void SetSelectedColor(std::uint32_t color);
    /// Moves a signal with its group; `target` null moves it to the tail.
    void MoveGroup(CSignal* group, CSignal* target);

    /// ResizeSamples on every signal.
    void ResizeSamples(std::uint32_t count);
    /// Unpacks records into every signal, its group rows and labels, from sample `first` on.
    /// `absent` has a bit for each sample of the list, set for those that are not there: where many
    /// follow one another they take neither time nor memory.
    void LoadSamples(std::uint32_t first, std::span<const SampleRecord> records,
                     std::span<const std::uint32_t> absent = {});
    /// The same for one signal or group, which is emptied first and sized to hold the records and
    /// the samples that it had room for.
    void LoadSignal(CSignal* signal, std::uint32_t first, std::span<const SampleRecord> records,
                    std::span<const std::uint32_t> absent = {});
    /// Packs the rows of every group anew from its members, by whole words of samples.
    void RebuildGroupRows(std::uint32_t first, std::uint32_t count);
    /// Looks up the labels of every decoded signal anew.
    void RebuildLabels(std::uint32_t first, std::uint32_t count);

    /// Writes the changed rows of a group back to every signal that looks at one of its bits. The
    /// bits follow the first member's, upward, or downward for a bit-reversed bus.
    void UnpackGroup(CSignal* group);
    /// The same for a decoded group, at the positions of its definition.
    void UnpackDecoded(CSignal* signal);
    /// Writes a value of the decoded definition (the last one for an index past the end) into one
    /// column of every signal that looks at one of its bits.
    void ApplyDecodedValue(CSignal* signal, std::uint32_t sample, std::size_t valueIndex);
    /// Copies the bit of one column to every other signal that looks at it.
    void SpreadBit(const CSignal* signal, std::uint32_t sample);

    /// Writes the header row and a record for each signal; `withData` with sample bits and masks.
    void WriteSignals(TextWriter& file, bool withData) const;
    /// Creates a signal from one record and adds it at the tail. May read data and mask lines.
    void ReadSignal(const std::vector<std::string>& tokens, TextReader& file);

private:
    /// One past the members from `first` to the next End, whether they are marked as grouped or
    /// not.
    [[nodiscard]] std::size_t MembersEnd(std::size_t first) const noexcept;
    [[nodiscard]] std::span<const std::unique_ptr<CSignal>> Members(std::size_t first) const;
    /// Puts signals before `before`, or at the tail when it is null or not of this list.
    void Insert(const CSignal* before, Signals added);
    /// Puts signals in, as a group where there are several. The first of them, or null.
    CSignal* InsertGroup(const CSignal* before, Signals added,
                         const std::shared_ptr<const CDecodedSignalDef>& decoded = nullptr);
    CSignal* AddBusSignal(const CSignal* before, const CBusSignalDef& def, std::uint32_t numSamples,
                          std::int32_t first, std::int32_t last, std::uint32_t color,
                          std::int32_t radix, bool showValue);
    CSignal* AddDecodedSignal(const CSignal* before,
                              const std::shared_ptr<const CDecodedSignalDef>& def,
                              std::uint32_t numSamples, std::uint32_t color, std::int32_t radix,
                              bool showValue);
    void AddDefaultBusSignals(const CBusSignalDef& def, std::uint32_t numSamples);
    void AddDefaultDecodedSignal(const std::shared_ptr<const CDecodedSignalDef>& def,
                                 std::uint32_t numSamples);
    void BuildGroupAt(std::size_t first);
    /// Labels of all samples of a signal whose definition is new to it.
    void Decode(CSignal& signal) const;
    void LoadRange(std::size_t begin, std::size_t end, std::uint32_t first,
                   std::span<const SampleRecord> records, std::span<const std::uint32_t> absent);
    void LabelRange(std::size_t begin, std::size_t end, std::size_t first, std::size_t count);
    void UnpackRows(const CSignal& group, const std::vector<int>& dataIndexes);

    SignalTables* tables_;
    Signals signals_;
    mutable TimeIndex times_;   // forgets where group rows are made or filled
    std::size_t fileWords_ = 0; // of samples, that the records of a file have taken
};

} // namespace busquill
