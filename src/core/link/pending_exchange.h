#pragma once

#include "link/link_request.h"

#include <atomic>
#include <memory>

namespace busquill {

class CAnalyzerLink;

/// An exchange that the main thread does not wait for: it asks now and then whether the exchange
/// has ended. May be destroyed before that. What the request refers to belongs to the request.
class PendingExchange {
public:
    enum class State { Pending, Succeeded, Failed };

    /// Submits the request, which has no completion yet.
    PendingExchange(CAnalyzerLink& link, LinkRequestPtr request);

    [[nodiscard]] State GetState() const noexcept { return *state_; }

private:
    std::shared_ptr<std::atomic<State>> state_;
};

} // namespace busquill
