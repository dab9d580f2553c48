/// The commands of busquill-trace. Each returns the exit status, and throws ExitRequest when it
/// cannot continue.
#pragma once

namespace busquill::cli {

struct Arguments;

int RunInfo(const Arguments& arguments);
int RunList(const Arguments& arguments);
int RunSearch(const Arguments& arguments);
int RunFilter(const Arguments& arguments);
int RunConvert(const Arguments& arguments);
int RunCompare(const Arguments& arguments);
int RunStats(const Arguments& arguments);
int RunNames(const Arguments& arguments);
int RunSetup(const Arguments& arguments);
int RunBoard(const Arguments& arguments);
int RunCapture(const Arguments& arguments);

} // namespace busquill::cli
