#pragma once

#include <string>

namespace busquill {

enum class BoxButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class Answer { Ok, Cancel, Yes, No };

/// A message box: its text, whether it stays above all windows, and its possible answers.
struct Box {
    std::string text;
    bool topmost = false;
    BoxButtons buttons = BoxButtons::Ok;
};

/// Message boxes and questions. May be called on any thread; returns when the user has answered.
class Prompts {
public:
    virtual ~Prompts() = default;
    virtual Answer Show(const Box& box) = 0;

    void Message(const std::string& text) { Show({text, false, BoxButtons::Ok}); }
    void TopmostMessage(const std::string& text) { Show({text, true, BoxButtons::Ok}); }
    [[nodiscard]] bool AskYesNo(const std::string& text) {
        return Show({text, false, BoxButtons::YesNo}) == Answer::Yes;
    }
};

} // namespace busquill
