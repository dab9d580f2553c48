#pragma once

#include "platform/prompts.h"

#include <string>
#include <vector>

namespace busquill::cli {

/// Message boxes where there are no windows: their texts are kept, and questions answered with no.
class LinePrompts final : public Prompts {
public:
    Answer Show(const Box& box) override;

    /// What has been said since the last call, each on one line.
    [[nodiscard]] std::vector<std::string> Take();

private:
    std::vector<std::string> said_;
};

} // namespace busquill::cli
