#pragma once

namespace busquill::HelpTopic {

enum : int { Master = 10, Target = 14 };

} // namespace busquill::HelpTopic
