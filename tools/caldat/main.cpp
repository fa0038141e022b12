// caldat: shows and checks a calibration data pair without changing it.
#include "caldat_commands.h"
#include "errtrace.h"

#include <iostream>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    korv::diag::set_program_name("caldat");
    const std::vector<std::string> args(argv + 1, argv + argc);
    const int code = caldat::run(args, std::cout, std::cerr);
    std::cout.flush();
    return std::cout.fail() && code == caldat::kExitOk ? caldat::kExitFailure : code;
}
