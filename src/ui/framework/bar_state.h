#pragma once

namespace busquill {

/// How a scroll bar stands to its content.
struct BarState {
    int maximum = 0; // the last position
    int page = 0;
    int position = 0;
    bool needed = false; // the content does not fit

    friend bool operator==(const BarState&, const BarState&) = default;
};

} // namespace busquill
