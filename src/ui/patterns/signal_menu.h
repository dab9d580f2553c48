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
    /// The mode whose flags select the definitions that are offered.
    [[nodiscard]] virtual std::uint32_t OfferMode() const = 0;
    /// The number of samples that a new signal is to hold.
    [[nodiscard]] virtual std::uint32_t SampleCapacity() const = 0;
    /// A signal has been added to the list: load its samples and measure its column.
    virtual void SignalAdded(CSignal& signal) = 0;
    /// A signal now shows other values, or another number of digits.
    virtual void SignalReshaped(CSignal& signal) = 0;
    /// Called after every change.
    virtual void SignalsChanged() = 0;
};

/// Opens the menu on a signal at a place on the screen and carries out the choice.
void ShowSignalMenu(QWidget& parent, const QPoint& place, CSignal& signal, SignalMenuHost& host,
                    Prompts& prompts);

} // namespace busquill
