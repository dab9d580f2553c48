#pragma once

#include "platform/prompts.h"

#include <string>
#include <vector>

namespace busquill::cli {

/// Message boxes without windows: their texts are collected, and questions are answered with no.
class LinePrompts final : public Prompts {
public:
    Answer Show(const Box& box) override;

    /// The texts since the last call, each on one line.
    [[nodiscard]] std::vector<std::string> Take();

private:
    std::vector<std::string> said_;
};

} // namespace busquill::cli
