#pragma once

#include <QPoint>

#include <cstdint>

class QWidget;

namespace busquill {

class CSignal;
class CSignalList;
class HeaderControl;
class Prompts;

/// A table window whose signals the menu changes.
class SignalMenuHost {
public:
    virtual ~SignalMenuHost() = default;
    [[nodiscard]] virtual CSignalList& MenuList() = 0;
    [[nodiscard]] virtual HeaderControl& MenuHeader() = 0;
    /// Whose flags say which definitions are offered.
    [[nodiscard]] virtual std::uint32_t OfferMode() const = 0;
    /// Samples that a new signal is to hold.
    [[nodiscard]] virtual std::uint32_t SampleRoom() const = 0;
    /// A signal is new in the list: its samples are to be loaded and its column measured.
    virtual void SignalAdded(CSignal& signal) = 0;
    /// A signal shows other values than before, or more or fewer digits of them.
    virtual void SignalReshaped(CSignal& signal) = 0;
    /// Something has changed.
    virtual void SignalsChanged() = 0;
};

/// Opens the menu on a signal at a place on the screen and does what is chosen.
void ShowSignalMenu(QWidget& parent, const QPoint& place, CSignal& signal, SignalMenuHost& host,
                    Prompts& prompts);

} // namespace busquill
