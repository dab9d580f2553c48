#include "platform/text.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <limits>

namespace busquill {

namespace {

bool IsSpace(char c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Length in bytes of a character by its first byte; 0 for a byte that begins no character.
std::size_t CharacterLength(unsigned char first) noexcept {
    return first < 0x80                    ? 1
           : first >= 0xC2 && first < 0xE0 ? 2
           : first >= 0xE0 && first < 0xF0 ? 3
           : first >= 0xF0 && first < 0xF5 ? 4
                                           : 0;
}

bool IsUtf8(std::string_view text) noexcept {
    while (!text.empty()) {
        const auto first = static_cast<unsigned char>(text[0]);
        const std::size_t length = CharacterLength(first);
        if (length == 0 || length > text.size()) {
            return false;
        }
        for (const char c : text.substr(1, length - 1)) {
            if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) {
                return false;
            }
        }
        // Overlong forms, surrogate halves, and values after the last character.
        const auto second = static_cast<unsigned char>(length > 1 ? text[1] : 0);
        if ((first == 0xE0 && second < 0xA0) || (first == 0xED && second >= 0xA0) ||
            (first == 0xF0 && second < 0x90) || (first == 0xF4 && second >= 0x90)) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

} // namespace

std::string Printf(const char* format, ...) {
    std::va_list args;
    va_start(args, format);
    std::va_list again;
    va_copy(again, args);
    const int length = std::vsnprintf(nullptr, 0, format, args);
    va_end(args);
    std::string text;
    if (length > 0) {
        text.resize(static_cast<std::size_t>(length) + 1);
        std::vsnprintf(text.data(), text.size(), format, again);
        text.pop_back();
    }
    va_end(again);
    return text;
}

int ParseInt(std::string_view text) noexcept {
    std::size_t i = 0;
    while (i < text.size() && IsSpace(text[i])) {
        ++i;
    }
    bool negative = false;
    if (i < text.size() && (text[i] == '-' || text[i] == '+')) {
        negative = text[i] == '-';
        ++i;
    }
    constexpr long long limit = std::numeric_limits<int>::max();
    long long value = 0;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
        value = std::min(value * 10 + (text[i] - '0'), limit + 1);
    }
    return static_cast<int>(negative ? -value : std::min(value, limit));
}

char ToLower(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

std::string ToLower(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) { return ToLower(c); });
    return lower;
}

std::string Shortened(std::string_view text) {
    constexpr std::size_t most = 60;
    if (text.size() <= most) {
        return std::string(text);
    }
    std::size_t end = most;
    const auto isInsideCharacter = [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
    };
    while (end > most - 3 && isInsideCharacter(text[end])) {
        --end;
    }
    return std::string(text.substr(0, end)) + "...";
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) noexcept {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return ToLower(x) == ToLower(y); });
}

std::string TrimRight(std::string_view text) {
    while (!text.empty() && IsSpace(text.back())) {
        text.remove_suffix(1);
    }
    return std::string(text);
}

std::string_view Trim(std::string_view text) noexcept {
    while (!text.empty() && IsSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && IsSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::string ToUtf8(std::string_view text) {
    if (IsUtf8(text)) {
        return std::string(text);
    }
    std::string converted;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            converted += c;
        } else {
            converted += static_cast<char>(0xC0 | byte >> 6);
            converted += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return converted;
}

} // namespace busquill
