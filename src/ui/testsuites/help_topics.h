#pragma once

namespace busquill::HelpTopic {

enum : int { Compliance = 18, AnomalyDetection = 20, Configuration = 22, Backplane = 32 };

} // namespace busquill::HelpTopic
