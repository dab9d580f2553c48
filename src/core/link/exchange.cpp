#include "link/exchange.h"

#include "platform/prompts.h"

#include <algorithm>

namespace busquill {

bool ExchangeOrReport(CAnalyzerLink& link, LinkRequestPtr request, Prompts& prompts,
                      const char* failure) {
    const bool succeeded = link.Exchange(std::move(request));
    if (!succeeded) {
        prompts.TopmostMessage(failure);
    }
    return succeeded;
}

bool ReadOrReport(CAnalyzerLink& link, std::uint32_t address, std::span<std::uint8_t> bytes,
                  Prompts& prompts, const char* failure) {
    return ExchangeOrReport(link, ReadRegisters(address, bytes), prompts, failure);
}

Sent SendSteps(CAnalyzerLink& link, std::vector<RunStep> steps, Prompts& prompts) {
    Sent sent = Sent::All;
    for (RunStep& step : steps) {
        if (ExchangeOrReport(link, std::move(step.request), prompts, step.failure)) {
            continue;
        }
        // With the board gone, the other steps would fail with the same messages.
        if (step.then == IfRefused::End || link.IsBoardGone()) {
            return Sent::Ended;
        }
        sent = Sent::Some;
    }
    return sent;
}

bool ReadStatus(CAnalyzerLink& link, const StatusRegister& from, std::span<std::uint8_t> status,
                Prompts& prompts) {
    std::fill(status.begin(), status.end(), from.preset);
    return ReadOrReport(link, from.address, status, prompts, from.failure);
}

} // namespace busquill
