#pragma once

#include "signals/signal.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace busquill {

class TextReader;
class TextWriter;

/// Signals in the order in which they are shown and filed. The list owns them.
class CSignalList {
public:
    using Signals = std::vector<std::unique_ptr<CSignal>>;

    std::uint32_t mode = ModeState;

    [[nodiscard]] const Signals& All() const noexcept { return signals_; }
    [[nodiscard]] std::size_t Size() const noexcept { return signals_.size(); }
    [[nodiscard]] bool Empty() const noexcept { return signals_.empty(); }
    [[nodiscard]] CSignal& operator[](std::size_t index) const { return *signals_[index]; }
    /// The place of a signal in the list; the list's size when it is not there.
    [[nodiscard]] std::size_t IndexOf(const CSignal* signal) const noexcept;

    void CopyFrom(const CSignalList& other);
    void RemoveAllSignals();
    /// Fills the list with the default signals of a mode from the tables at hand.
    void BuildFromTables(std::uint32_t numSamples, std::uint32_t forMode);
    /// Adds the signals of one definition before `before`, or at the tail when it is null;
    /// `first` to `last` are the positions of a bus definition. The first signal added, or null.
    CSignal* AddSignal(const CSignal* before, const std::shared_ptr<const CSignalDef>& def,
                       std::uint32_t numSamples, std::int32_t first, std::int32_t last,
                       std::uint32_t color, std::int32_t radix, bool showValue);
    void BuildGroup(CSignal* first);
    void RebuildAfterRead();
    void SetGroupSelected(CSignal* first, bool flag);
    void UngroupSelected();
    void CollapseSelected();
    void DeleteSelected();
    void RemoveGroup(const CSignal* first);
    CSignal* InsertBlank(const CSignal* before);
    void SetSelectedColor(std::uint32_t color);
    /// Moves a signal with its group; `target` null moves it to the tail.
    void MoveGroup(CSignal* group, CSignal* target);

    /// ResizeSamples on every signal.
    void ResizeSamples(std::uint32_t count);
    /// Unpacks records into every signal, its group rows and labels, from sample `first` on.
    void LoadSamples(std::uint32_t first, std::span<const SampleRecord> records);
    /// The same for one signal or group, resized first.
    void LoadSignal(CSignal* signal, std::uint32_t first, std::span<const SampleRecord> records);
    void RebuildGroupRows(std::uint32_t first, std::uint32_t count);
    void RebuildLabels(std::uint32_t first, std::uint32_t count);

    void UnpackGroup(CSignal* group);
    void UnpackDecoded(CSignal* signal);
    void ApplyDecodedValue(CSignal* signal, std::uint32_t sample, std::size_t valueIndex);
    void SpreadBit(const CSignal* signal, std::uint32_t sample);

    void WriteSignals(TextWriter& file, bool withData) const;
    /// Creates a signal from one record and adds it at the tail. May read data and mask lines. A
    /// signal keeps no more samples than its lines bring, whatever number the record announces.
    void ReadSignal(const std::vector<std::string>& tokens, TextReader& file);

private:
    CSignal& Insert(const CSignal* before, std::unique_ptr<CSignal> signal);
    CSignal* AddBusSignals(const CSignal* before, const CBusSignalDef& def, std::int32_t first,
                           std::int32_t last, const CSignal& like, std::uint32_t numSamples);
    CSignal* AddDecodedSignals(const CSignal* before,
                               const std::shared_ptr<const CDecodedSignalDef>& def,
                               const CSignal& like, std::uint32_t numSamples);
    /// The place behind the last member of the group that starts at a place, or behind the signal.
    [[nodiscard]] std::size_t GroupEnd(std::size_t start) const noexcept;
    void RebuildRows(std::size_t start, std::uint32_t first, std::uint32_t count);
    void PrepareLabels(CSignal& signal) const;
    /// Labels of samples `first` on; `keepAny` also tries values that compare no bit at all.
    void LabelSamples(CSignal& signal, std::uint32_t first, std::uint32_t count,
                      bool keepAny) const;
    void LabelAll(CSignal& signal) const;
    void Unpack(CSignal* group, std::span<const int> dataIndexes);

    Signals signals_;
};

} // namespace busquill
