#pragma once

namespace busquill {

/// Range, page and position of a scroll bar.
struct BarState {
    int maximum = 0; // the last position
    int page = 0;
    int position = 0;
    bool needed = false; // the content does not fit

    friend bool operator==(const BarState&, const BarState&) = default;
};

} // namespace busquill
