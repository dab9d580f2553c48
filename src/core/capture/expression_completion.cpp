#include "capture/expression_parser.h"
#include "capture/expression_reader.h"
#include "platform/text.h"

#include <optional>

namespace busquill {

namespace {

/// Where the word begins that ends at the end of the text: with its quote if that is open.
std::size_t WordBegin(std::string_view text) {
    std::optional<std::size_t> quote;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (quote ? text[i] == text[*quote] : text[i] == '"' || text[i] == '`') {
            quote = quote ? std::nullopt : std::optional(i);
        }
    }
    if (quote) {
        return *quote;
    }
    const auto runBegin = [&](auto belongs) {
        std::size_t begin = text.size();
        while (begin > 0 && belongs(text[begin - 1])) {
            --begin;
        }
        return begin;
    };
    const std::size_t word = runBegin([](char c) {
        return IsInName(c) || c == '[' || c == ']' || c == ':' || c == '-' || c == '@';
    });
    return word < text.size()
               ? word
               : runBegin([](char c) { return c == '=' || c == '!' || c == '<' || c == '>'; });
}

bool BeginsWith(std::string_view text, std::string_view word) {
    const auto bare = [](std::string_view quoted) {
        const bool isQuoted = quoted.starts_with('"') || quoted.starts_with('`');
        return isQuoted ? quoted.substr(1) : quoted;
    };
    const bool isOfQuote = word.empty() || IsInName(word.front()) || word.front() == text.front();
    return isOfQuote && EqualIgnoringCase(bare(text).substr(0, bare(word).size()), bare(word));
}

} // namespace

ExpressionCompletion CompleteExpression(std::string_view text, std::size_t cursor,
                                        ExpressionNames& names, const KeptExpressions* kept) {
    text = text.substr(0, cursor);
    const auto complete = [&](std::size_t place) {
        ExpressionCompletion completion{place, OffersAfter(text.substr(0, place), names, kept)};
        const std::string_view word = text.substr(place);
        std::erase_if(completion.texts, [&](const std::string& each) {
            return each == word || !BeginsWith(each, word);
        });
        return completion;
    };
    ExpressionCompletion completion = complete(WordBegin(text));
    // After a complete sign, or a complete text in quotes, comes what follows it.
    const bool isPlain = text.empty() || IsInName(text.back());
    return completion.texts.empty() && !isPlain ? complete(text.size()) : completion;
}

} // namespace busquill
