#include "cli/arguments.h"
#include "cli/board_facts.h"
#include "cli/commands.h"
#include "cli/exit_request.h"
#include "cli/output.h"
#include "cli/session.h"

namespace busquill::cli {

int RunBoard(const Arguments& arguments) {
    Session session(PortOptionsOf(arguments));
    CAnalyzerLink& link = session.Link();
    const std::vector<Fact> facts = BoardFacts(link.Identity(), link.Traits().bus);
    Output output(arguments.Value("output"));
    output.Write(arguments.Has("json") ? FactsAsJson(facts) + "\n" : FactsAsText(facts));
    output.Close();
    return ExitStatus::Done;
}

} // namespace busquill::cli
