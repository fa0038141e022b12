#include "errtrace.h"
#include "log_capture.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

using korv::testing::LogCapture;
using korv::testing::ScopedEnv;
using korv::testing::ScratchDir;

TEST(Trace, LevelsFilterPerModuleAndFormatOnlyWhenActive) {
    ScopedEnv levels("KORV_TRACE", "2,loud=5");
    LogCapture log;
    int formatted = 0;
    auto count = [&] { return ++formatted; };
    KTRACE(3, "quiet %d", count());
    EXPECT_EQ(formatted, 0);
    KTRACE(2, "kept %d", count());
    EXPECT_TRUE(_KTrace_TestLevel("loud", 5));
    EXPECT_FALSE(_KTrace_TestLevel("other", 3));
    _KTrace_SetLevel("other", 4);
    EXPECT_TRUE(_KTrace_TestLevel("other", 4));
    EXPECT_FALSE(_KTrace_TestLevel("other", 5));
    ASSERT_EQ(log.traces(), std::vector<std::string>{"kept 1"});
    EXPECT_NE(log.records()[0].source_path.find("diagnostics_test.cpp"), std::string::npos);
    EXPECT_EQ(log.records()[0].source_path.front(), 'k') << "source path relative to the tree";
}

TEST(ErrorTrace, DumpWritesLinesInOrderThenTheClosingLine) {
    LogCapture log;
    KErrTrace_BeginContext();
    KERRTRACE("inner(): %s", "root cause");
    KERRTRACE("outer(): inner() failed");
    KERRTRACE_DUMP("top(): outer() failed");
    KErrTrace_EndContext();
    EXPECT_EQ(log.errors(),
              (std::vector<std::string>{"inner(): root cause", "outer(): inner() failed",
                                        "top(): outer() failed"}));
    EXPECT_TRUE(korv::diag::error_trace_lines().empty());
}

TEST(ErrorTrace, ClearedContextIsLostAndEndHandsLeftoversOutwards) {
    LogCapture log;
    KErrTrace_BeginContext();
    KERRTRACE("outer line");
    KErrTrace_BeginContext();
    KERRTRACE("thrown away");
    KErrTrace_ClearContext();
    KERRTRACE("kept");
    KErrTrace_EndContext();
    EXPECT_EQ(korv::diag::error_trace_lines(), (std::vector<std::string>{"outer line", "kept"}));
    KErrTrace_ClearContext();
    KErrTrace_EndContext();
    EXPECT_TRUE(log.errors().empty());
}

TEST(ErrorLog, LinesReachTheFilesOfTheLogFolder) {
    ScratchDir dir;
    {
        ScopedEnv where("KORV_LOG_DIR", dir / "logs");
        KERRLOG("Expand(): get registry key %s failed", "TargetDir");
        KTRACE(1, "RigCfg start");
    }
    const std::string errors = dir.read("logs/error.log");
    EXPECT_NE(errors.find("Expand(): get registry key TargetDir failed"), std::string::npos);
    EXPECT_NE(errors.find(" RigCfg ERR ksl/kerror/tests/diagnostics_test.cpp("), std::string::npos);
    EXPECT_NE(dir.read("logs/trace.log").find("T1 ksl/kerror/tests/"), std::string::npos);
}

TEST(ErrorLog, DefaultFolderFollowsTheCommonDataFolder) {
    ScratchDir dir;
    ScopedEnv unset_dir("KORV_LOG_DIR", "");
    ScopedEnv config("KORV_CONFIGPATH", dir.path());
    KERRLOG("moved");
    korv::diag::reset_log_settings();
    EXPECT_NE(dir.read("Korv/log/error.log").find("moved"), std::string::npos);
}
