#include "cli/program.h"

#include "cli/arguments.h"
#include "cli/exit_request.h"
#include "cli/interrupt.h"
#include "cli/output.h"

#include <new>

namespace busquill::cli {

int Run(std::span<const std::string> texts) {
    SetProgramName("busquill-trace");
    NoticeInterrupts();
    try {
        const Arguments arguments = ParseArguments(texts);
        if (arguments.Has("help") || arguments.Has("version")) {
            Output output("");
            output.Write(arguments.Has("help") ? HelpText(arguments.command)
                                               : "busquill-trace " BUSQUILL_VERSION "\n");
            output.Close();
            return ExitStatus::Done;
        }
        CheckTarget(arguments, arguments.Value("output"));
        return arguments.command->run(arguments);
    } catch (const ExitRequest& request) {
        if (!request.message.empty()) {
            Say(request.message);
        }
        return request.status;
    } catch (const std::bad_alloc&) {
        Say("there is not enough memory");
        return ExitStatus::Failure;
    }
}

} // namespace busquill::cli
