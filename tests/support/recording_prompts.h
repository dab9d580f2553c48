#pragma once

#include "platform/prompts.h"

#include <deque>
#include <mutex>
#include <string>
#include <vector>

namespace busquill::test {

/// Records every box and gives scripted answers; without a script, the first button's.
class RecordingPrompts final : public Prompts {
public:
    Answer Show(const Box& box) override {
        const std::lock_guard lock(mutex_);
        boxes_.push_back(box);
        if (!answers_.empty()) {
            const Answer answer = answers_.front();
            answers_.pop_front();
            return answer;
        }
        return box.buttons == BoxButtons::Ok || box.buttons == BoxButtons::OkCancel ? Answer::Ok
                                                                                    : Answer::Yes;
    }

    void AnswerNext(Answer answer) {
        const std::lock_guard lock(mutex_);
        answers_.push_back(answer);
    }
    void Forget() {
        const std::lock_guard lock(mutex_);
        boxes_.clear();
    }
    [[nodiscard]] std::vector<Box> Boxes() const {
        const std::lock_guard lock(mutex_);
        return boxes_;
    }
    [[nodiscard]] std::vector<std::string> Texts() const {
        std::vector<std::string> texts;
        for (const Box& box : Boxes()) {
            texts.push_back(box.text);
        }
        return texts;
    }

private:
    mutable std::mutex mutex_;
    std::vector<Box> boxes_;
    std::deque<Answer> answers_;
};

} // namespace busquill::test
