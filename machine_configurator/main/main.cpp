#include "application/RigCfg.h"
#include "application/information_request.h"

int main(int argc, char** argv) {
    if (AnswerInformationRequest(argc, argv, stdout))
        return 0;
    CMidSpanCfgApp app;
    return korv::ui::AfxWinMain(app, argc, argv);
}
