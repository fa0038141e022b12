// kini: reads and changes ini files exactly as the configuration tool does.
#include "errtrace.h"
#include "kini_commands.h"

#include <iostream>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    korv::diag::set_program_name("kini");
    const std::vector<std::string> args(argv + 1, argv + argc);
    const int code = korv::kini::run(args, std::cout, std::cerr);
    std::cout.flush();
    return std::cout.fail() && code == korv::kini::KINI_EXIT_OK ? korv::kini::KINI_EXIT_FAILURE
                                                                : code;
}
