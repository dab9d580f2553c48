#pragma once

#include <string>

namespace busquill {

/// What a trace view tells the window around it.
class TraceFrame {
public:
    virtual ~TraceFrame() = default;
    virtual void SetTitleName(const std::string& name) = 0;
    virtual void SetComment(const std::string& text) = 0;
};

} // namespace busquill
