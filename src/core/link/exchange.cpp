#include "link/exchange.h"

#include "platform/prompts.h"

namespace busquill {

bool ExchangeOrTell(CAnalyzerLink& link, std::int32_t command, const LinkWords& words,
                    Prompts& prompts, const char* failure) {
    const bool succeeded = link.Exchange(command, words);
    if (!succeeded) {
        prompts.TopmostMessage(failure);
    }
    return succeeded;
}

bool ReadOrTell(CAnalyzerLink& link, std::uintptr_t address, std::span<std::uint8_t> bytes,
                Prompts& prompts, const char* failure) {
    return ExchangeOrTell(link, CmdReadMemory, {address, bytes.size(), bytes.data()}, prompts,
                          failure);
}

} // namespace busquill
