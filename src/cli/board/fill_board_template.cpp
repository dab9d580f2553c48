// At build time: fills a template with the commands and options of busquill-board.
#include "cli/board/program.h"
#include "cli/fill_template.h"

int main(int argc, char** argv) {
    return argc == 2
               ? busquill::cli::PrintTemplate(*busquill::cli::board::MakeBoardProgram(), argv[1])
               : 2;
}
