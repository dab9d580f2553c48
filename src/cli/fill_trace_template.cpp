// At build time: fills a template with the commands and options of busquill-trace.
#include "cli/fill_template.h"
#include "cli/program.h"

int main(int argc, char** argv) {
    return argc == 2 ? busquill::cli::PrintTemplate(*busquill::cli::MakeTraceProgram(), argv[1])
                     : 2;
}
