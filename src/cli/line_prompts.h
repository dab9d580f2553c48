#pragma once

#include "platform/prompts.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace busquill::cli {

/// The text of a box on one line.
[[nodiscard]] std::string AsLine(std::string text);

/// Message boxes without windows: their texts are collected, and questions are answered with no.
class LinePrompts final : public Prompts {
public:
    Answer Show(const Box& box) override;

    /// From now on questions are not collected, but answered by this function.
    void SetQuestions(std::function<Answer(const Box&)> answer) { answer_ = std::move(answer); }

    /// The texts since the last call, each on one line.
    [[nodiscard]] std::vector<std::string> Take();
    /// The first text since the last call, or `otherwise` if there were no texts.
    [[nodiscard]] std::string TakeFirst(const std::string& otherwise);

private:
    std::vector<std::string> said_;
    std::function<Answer(const Box&)> answer_;
};

} // namespace busquill::cli
