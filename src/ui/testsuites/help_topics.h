#pragma once

namespace busquill::HelpTopic {

enum : int { Compliance = 18, Configuration = 22 };

} // namespace busquill::HelpTopic
