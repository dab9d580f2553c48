// A call of the link that must not compile: see the tests structure.command_kind in CMakeLists.txt.
#include "link/link_request.h"

busquill::LinkRequestPtr Wrong() {
    using namespace busquill;
    [[maybe_unused]] const LinkRequest::PayloadMaker make = OneByte(1);
    [[maybe_unused]] const std::span<std::uint8_t> into;
    return CALL;
}
