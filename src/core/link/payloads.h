/// What preparation makes of a request's parameter words.
#pragma once

#include "link/analyzer_link.h"

#include <map>

namespace busquill {

using PayloadEncoders = std::map<std::int32_t, CAnalyzerLink::Encoder>;

/// Makes the payload of a request from the words that its caller gave, and puts the register's
/// address and byte count in their place. A number that is no command is left alone.
void PreparePayload(LinkRequest& request, const PayloadEncoders& encoders);

/// The board's code of a rate in bits per second; 0 for one that it does not know, and for 9600.
[[nodiscard]] std::uint8_t BaudCode(std::int32_t rate) noexcept;

/// A parameter word where it is a number.
[[nodiscard]] constexpr std::uint32_t Number(std::uintptr_t word) noexcept {
    return static_cast<std::uint32_t>(word);
}

} // namespace busquill
