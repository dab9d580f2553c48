#include "link/exchange.h"

#include "platform/prompts.h"

namespace busquill {

bool ExchangeOrTell(CAnalyzerLink& link, LinkRequestPtr request, Prompts& prompts,
                    const char* failure) {
    const bool succeeded = link.Exchange(std::move(request));
    if (!succeeded) {
        prompts.TopmostMessage(failure);
    }
    return succeeded;
}

bool ReadOrTell(CAnalyzerLink& link, std::uint32_t address, std::span<std::uint8_t> bytes,
                Prompts& prompts, const char* failure) {
    return ExchangeOrTell(link, ReadRegisters(address, bytes), prompts, failure);
}

} // namespace busquill
