#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace boardsim {

/// The board's end of a pseudo terminal. Hosts may come and go at the other end.
class PseudoTerminal {
public:
    PseudoTerminal() = default;
    ~PseudoTerminal() { Close(); }
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    [[nodiscard]] bool IsOpen() const noexcept { return board_ >= 0; }
    /// The path that a host opens.
    [[nodiscard]] const std::string& Path() const noexcept { return path_; }
    /// The rate that the host has set on the line, in bits per second.
    [[nodiscard]] int Rate() const;
    [[nodiscard]] int Handle() const noexcept { return board_; }
    void Write(std::span<const std::uint8_t> bytes);
    /// Gets a pseudo terminal; not while one is open. Its path differs from time to time.
    void Open();
    /// Hangs up on a host.
    void Close();

private:
    int board_ = -1;
    int keeper_ = -1; // keeps the host's end open when a host leaves
    std::string path_;
};

} // namespace boardsim
