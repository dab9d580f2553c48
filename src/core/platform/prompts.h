#pragma once

#include <string>

namespace busquill {

enum class BoxButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class Answer { Ok, Cancel, Yes, No };

/// A message box: its text, whether it stays above all windows, its possible answers, and what may
/// help the user, shown below the text.
struct Box {
    std::string text;
    bool topmost = false;
    BoxButtons buttons = BoxButtons::Ok;
    std::string hint = {};
};

/// Message boxes and questions. May be called on any thread; returns when the user has answered.
class Prompts {
public:
    virtual ~Prompts() = default;
    virtual Answer Show(const Box& box) = 0;

    void Message(const std::string& text, const std::string& hint = {}) {
        Show({text, false, BoxButtons::Ok, hint});
    }
    void TopmostMessage(const std::string& text, const std::string& hint = {}) {
        Show({text, true, BoxButtons::Ok, hint});
    }
    [[nodiscard]] bool AskYesNo(const std::string& text) {
        return Show({text, false, BoxButtons::YesNo}) == Answer::Yes;
    }
};

} // namespace busquill
