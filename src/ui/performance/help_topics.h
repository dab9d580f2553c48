#pragma once

namespace busquill::HelpTopic {

enum : int { Performance = 16 };

} // namespace busquill::HelpTopic
