#include "cli/program.h"

#include "cli/arguments.h"
#include "cli/interrupt.h"
#include "cli/output.h"
#include "cli/stop.h"

#include <new>

namespace busquill::cli {

int Run(std::span<const std::string> texts) {
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
    } catch (const Stop& stop) {
        if (!stop.message.empty()) {
            Say(stop.message);
        }
        return stop.status;
    } catch (const std::bad_alloc&) {
        Say("there is not enough memory");
        return ExitStatus::Failure;
    }
}

} // namespace busquill::cli
