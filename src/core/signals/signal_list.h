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

/// Signals of the board whose tables the list has, in the order in which they are shown and saved.
/// The list owns them.
///
/// A group is a run of neighbours from a Start member to the next End member; a group that has lost
/// its End runs to the end of the list. May be used from any thread; its owner guards it.
class CSignalList {
public:
    using Signals = std::vector<std::unique_ptr<CSignal>>;

    /// Limits on the memory taken because a file announces it. A signal that announces more than
    /// `maxFileSamples` samples, or a list that announces more than `maxFileWords` words of 32,
    /// gets room only for what its lines hold; all other samples are zero. Groups without an end
    /// overlap: rows are made for as many members as the list has, or `maxFileMembers`.
    static constexpr std::uint32_t maxFileSamples = 4096;
    static constexpr std::size_t maxFileWords = std::size_t{1} << 17;
    static constexpr std::size_t maxFileMembers = 8192;

    std::uint32_t mode = ModeState;

    /// The tables outlive the list and its copies.
    explicit CSignalList(SignalTables& tables) noexcept : tables_(&tables) {}
    CSignalList(const CSignalList&) = delete; // copying must be explicit: CopyFrom
    CSignalList& operator=(const CSignalList&) = delete;
    CSignalList(CSignalList&&) noexcept = default;
    CSignalList& operator=(CSignalList&&) noexcept = default;
    ~CSignalList() = default;

    [[nodiscard]] SignalTables& Tables() const noexcept { return *tables_; }
    [[nodiscard]] const Signals& All() const noexcept { return signals_; }
    [[nodiscard]] std::size_t Size() const noexcept { return signals_.size(); }
    [[nodiscard]] bool Empty() const noexcept { return signals_.empty(); }
    [[nodiscard]] CSignal& operator[](std::size_t index) const { return *signals_[index]; }
    /// The index of a signal in the list; the list's size when it is not in the list.
    [[nodiscard]] std::size_t IndexOf(const CSignal* signal) const noexcept;
    /// One past the last member of the group that starts at `index`, also from inside the group;
    /// `index + 1` for a signal without a group.
    [[nodiscard]] std::size_t GroupEnd(std::size_t index) const noexcept;

    /// The group that holds the time between samples, or null.
    [[nodiscard]] const CSignal* TimeGroup() const noexcept;
    /// The time from sample `a` to sample `b`, negative when `b` is earlier; nothing when one is -1
    /// or the list has no permanent TIME.
    [[nodiscard]] std::optional<std::int64_t> TimeFrom(std::int64_t a, std::int64_t b) const;

    /// Copies signals and tables, since the signals refer to their tables.
    void CopyFrom(const CSignalList& other);
    void RemoveAllSignals();
    /// Fills the list with the default signals of a mode from its tables. Signals get whole words
    /// of samples: a list built with 5 samples has 32.
    void BuildFromTables(std::uint32_t numSamples, std::uint32_t forMode);
    /// Adds the signals of one definition before `before`, or at the tail when it is null; `first`
    /// to `last` are the positions of a bus definition. Returns the first signal added, or null.
    CSignal* AddSignal(const CSignal* before, const std::shared_ptr<const CSignalDef>& def,
                       std::uint32_t numSamples, std::int32_t first, std::int32_t last,
                       std::uint32_t color, std::int32_t radix, bool showValue);
    /// Builds the packed rows and the name of the group that starts at `first`.
    void BuildGroup(CSignal* first);
    /// Builds what files do not hold: group rows, names of decoded signals, labels.
    void RebuildAfterRead();
    void SetGroupSelected(CSignal* first, bool flag);
    void UngroupSelected();
    /// Combines the selected signals to one group at the place of the first.
    void CollapseSelected();
    void DeleteSelected();
    /// Deletes a signal with its group.
    void RemoveGroup(const CSignal* first);
    CSignal* InsertBlank(const CSignal* before);
    /// Colours the selected signals, and their definitions in the tables and colour files.
    void SetSelectedColor(std::uint32_t color);
    /// Moves a signal with its group before `target`, or to the tail when that is null.
    void MoveGroup(CSignal* group, CSignal* target);

    /// ResizeSamples on every signal.
    void ResizeSamples(std::uint32_t count);
    /// Unpacks records into every signal, its group rows and labels, from sample `first` on.
    /// `absent` has a bit for each sample of the list, set for missing ones; long runs of these
    /// take neither time nor memory.
    void LoadSamples(std::uint32_t first, std::span<const SampleRecord> records,
                     std::span<const std::uint32_t> absent = {});
    /// The same for one signal or group, which is cleared first and sized for the records and for
    /// the samples that it had room for.
    void LoadSignal(CSignal* signal, std::uint32_t first, std::span<const SampleRecord> records,
                    std::span<const std::uint32_t> absent = {});
    /// Packs the rows of every group again from its members, by whole words of samples.
    void RebuildGroupRows(std::uint32_t first, std::uint32_t count);
    /// Looks up the labels of every decoded signal again.
    void RebuildLabels(std::uint32_t first, std::uint32_t count);

    /// Unpacks the changed rows of a group into every signal with one of its bits. The bits count
    /// up from the first member's, or down for a bit-reversed bus.
    void UnpackGroup(CSignal* group);
    /// The same for a decoded group, at the positions of its definition.
    void UnpackDecoded(CSignal* signal);
    /// Writes a value of the decoded definition (the last one for an index past the end) into one
    /// column of every signal with one of its bits.
    void ApplyDecodedValue(CSignal* signal, std::uint32_t sample, std::size_t valueIndex);
    /// Copies one column of a signal to every other signal of the same bit.
    void SpreadBit(const CSignal* signal, std::uint32_t sample);

    /// Writes the header row and a record for each signal; `withData` adds sample bits and masks.
    void WriteSignals(TextWriter& file, bool withData) const;
    /// Creates a signal from one record and adds it at the tail. May read data and mask lines.
    void ReadSignal(const std::vector<std::string>& tokens, TextReader& file);

private:
    /// One past the members from `first` to the next End, marked as grouped or not.
    [[nodiscard]] std::size_t MembersEnd(std::size_t first) const noexcept;
    [[nodiscard]] std::span<const std::unique_ptr<CSignal>> Members(std::size_t first) const;
    /// Inserts signals before `before`, or at the tail when that is null or not in this list.
    void Insert(const CSignal* before, Signals added);
    /// Inserts signals, as a group if there are several. Returns the first, or null.
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
    /// Looks up the labels of all samples of a signal that has got a new definition.
    void Decode(CSignal& signal) const;
    void LoadRange(std::size_t begin, std::size_t end, std::uint32_t first,
                   std::span<const SampleRecord> records, std::span<const std::uint32_t> absent);
    void LabelRange(std::size_t begin, std::size_t end, std::size_t first, std::size_t count);
    void UnpackRows(const CSignal& group, const std::vector<int>& dataIndexes);

    SignalTables* tables_;
    Signals signals_;
    mutable TimeIndex times_;   // reset where group rows are built or filled
    std::size_t fileWords_ = 0; // words of samples used by the records of a file
};

} // namespace busquill
