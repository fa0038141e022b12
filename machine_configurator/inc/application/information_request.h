// "--help" ("-h", "/?") and "--version": answered before the application
// starts, so that asking touches no file, no log and no registry.
#pragma once

#include <cstdio>

// True if an argument asks for help or the version; the answer has then been
// printed to `out` and the run ends with 0. Other arguments are left alone:
// no key of the command line begins with "-h", "/?" or "--".
bool AnswerInformationRequest(int argc, char** argv, std::FILE* out);
