#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

namespace busquill::cli {

class TextSink;

/// One of many jobs, by its number from 0. It may throw, and writes its result to the sink.
using NumberedJob = std::function<void(std::size_t number, TextSink& result)>;

/// Runs jobs on some threads, one of them the caller's. The results arrive in `output` in the order
/// of the jobs, whatever the order in which they are done: the first job that is not done writes to
/// `output` itself, the others keep some kilobytes in memory and the rest in temporary files. To
/// bound both, a job begins only if at most `jobsAhead` for each thread are before it and not
/// written yet. `between` is written between two results that are not empty. `done` is called with
/// the number of jobs that are done, on any thread, by one at a time.
///
/// The first exception of a job, or of the output, interrupts the other jobs and is thrown when
/// they have ended.
void RunSideBySide(std::size_t jobs, std::size_t threads, TextSink& output,
                   std::string_view between, const NumberedJob& job,
                   const std::function<void(std::size_t)>& done);

inline constexpr std::size_t jobsAhead = 4;

} // namespace busquill::cli
