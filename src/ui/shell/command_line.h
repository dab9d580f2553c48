#pragma once

#include <string>
#include <vector>

namespace busquill {

constexpr auto stockName = "Busquill!";

/// The last switch of a command line, without its "-" or "/"; empty when there is none. File names
/// are ignored. Since paths may begin with "/", an argument that begins with "/" is a switch only
/// if it contains no second one.
[[nodiscard]] std::string CommandLineSwitch(const std::vector<std::string>& arguments);

/// The name of the application, and so of its settings, under a switch.
[[nodiscard]] std::string ApplicationName(const std::string& commandLineSwitch);

} // namespace busquill
