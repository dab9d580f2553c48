#pragma once

#include <string>

namespace busquill::cli {

/// Exit statuses of the program.
namespace ExitStatus {
enum : int { Done = 0, NothingFound = 1, WrongUse = 2, Failure = 3 };
}

/// Thrown to end the program, with a line for the user unless the message is empty. The only
/// exception of the program; it does not leave this room.
struct ExitRequest {
    int status = ExitStatus::Failure;
    std::string message;
};

/// The request of an interrupt. Where many captures are read, it ends all of them, while another
/// failure ends one.
struct Interruption : ExitRequest {
    Interruption() { message = "interrupted"; }
};

[[noreturn]] inline void WrongUse(const std::string& message) {
    throw ExitRequest{ExitStatus::WrongUse, message};
}
[[noreturn]] inline void Fail(const std::string& message) {
    throw ExitRequest{ExitStatus::Failure, message};
}

} // namespace busquill::cli
