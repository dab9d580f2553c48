/// Text helpers: printf-like formatting, and parsing and case as in the C library.
#pragma once

#include <string>
#include <string_view>

namespace busquill {

/// The text that printf would print.
[[nodiscard]] std::string Printf(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// The leading number of a text as the C library's atoi reads it: white space, a sign, decimal
/// digits; 0 when there is none. A number that does not fit 32 bits becomes the nearest limit.
[[nodiscard]] int ParseInt(std::string_view text) noexcept;

/// The text in lower case; only the letters A to Z change.
[[nodiscard]] std::string ToLower(std::string_view text);
[[nodiscard]] char ToLower(char c) noexcept;

/// The text as UTF-8; text that is not valid UTF-8 is taken as Latin-1.
[[nodiscard]] std::string ToUtf8(std::string_view text);

/// The text as a message can quote it: the end of a long one becomes "...".
[[nodiscard]] std::string Shortened(std::string_view text);

/// Whether two texts are equal without regard to the case of A to Z.
[[nodiscard]] bool EqualIgnoringCase(std::string_view a, std::string_view b) noexcept;

/// The text without white space at its end.
[[nodiscard]] std::string TrimRight(std::string_view text);

/// The text without white space at both ends.
[[nodiscard]] std::string_view Trim(std::string_view text) noexcept;

} // namespace busquill
