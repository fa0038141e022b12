#include "application/information_request.h"

#include "kversioninfo.h"
#include "stl_utilities.h"

namespace {

constexpr const char kUsage[] =
    "Usage: rigcfg [key=value ...]\n"
    "\n"
    "Without file= the main dialog opens; with it, the machine description file\n"
    "decides: mode copy or create runs silently, mode new opens the wizard.\n"
    "\n"
    "Keys (a leading - or / is dropped; a later key wins):\n"
    "  control=FAMILY             midspan, korecon or mtmillikor (any case)\n"
    "  cwd=FOLDER                 working folder; may begin with <CSIDL_PROGRAM_FILES>\n"
    "  lang=CODE                  language of the texts, e.g. EN or DE\n"
    "  productgroup=KEY           product group preset in the wizard, which opens at once\n"
    "  machine=NAME               machine preset in the wizard\n"
    "  file=PATH                  machine description file: a silent copy or create\n"
    "  variant=NAME               variant in the machine description file\n"
    "  proxy=NAME                 proxy for a create\n"
    "  alias_machine_name=NAME    machine name written instead of the file's, for a create\n"
    "  alias_variant=NAME         order number written instead of the variant, for a create\n"
    "  --help, -h, /?             this text\n"
    "  --version                  product name and version\n"
    "\n"
    "Exit codes (POSIX keeps 8 bits: -1 is seen as 255, -5 as 251):\n"
    "   0  copy or create succeeded\n"
    "   1  a new run saved its configuration into the machine file\n"
    "   2  the dialog was cancelled\n"
    "  -1  failed; the error log says why\n"
    "  -5  the cwd= folder does not exist\n"
    "\n"
    "Environment:\n"
    "  KORV_ROOT           folder standing for the drives (C:\\x is $KORV_ROOT/drive_c/x)\n"
    "                      and holding registry.reg; default /var/lib/korv\n"
    "  KORV_CONFIGPATH     replaces the common data folder (C:\\ProgramData)\n"
    "  KORV_LOG_DIR        folder of trace.log and error.log; - for standard error\n"
    "  KORV_TRACE          trace levels, e.g. 4,RigCfg=5\n"
    "  KORV_UI_SCRIPT      runs every dialog from this script instead of a user\n"
    "  KORV_UI_TRANSCRIPT  where the script's transcript goes; standard output if unset\n"
    "  DISPLAY             the X display of the dialogs\n"
    "\n"
    "See rigcfg(1).\n";

} // namespace

bool AnswerInformationRequest(int argc, char** argv, std::FILE* out) {
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (korv::stl_string_is_one_of(arg, {"--help", "-h", "/?"})) {
            std::fputs(kUsage, out);
            return true;
        }
        if (arg == "--version") {
            // The resource's own version: the service pack would need the registry.
            const korv::FileVersionInfo version;
            std::fprintf(out, "%s %s\n", version.GetProductName().c_str(),
                         version.GetValue("ProductVersion").c_str());
            return true;
        }
    }
    return false;
}
