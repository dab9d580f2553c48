#pragma once

namespace busquill::HelpTopic {

enum : int { Stimulus = 12 };

} // namespace busquill::HelpTopic
