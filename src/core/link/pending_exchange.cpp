#include "link/pending_exchange.h"

#include "link/analyzer_link.h"

namespace busquill {

PendingExchange::PendingExchange(CAnalyzerLink& link, LinkRequestPtr request)
    : state_(std::make_shared<std::atomic<State>>(State::Pending)) {
    request->completion = [state = state_](const LinkRequestPtr& done) {
        *state = done->result == LinkOk ? State::Succeeded : State::Failed;
    };
    link.Submit(std::move(request));
}

} // namespace busquill
