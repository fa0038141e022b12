// A test fixture that runs each test inside its own error trace context.
#pragma once

#include "errtrace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace korv::testing {

class TraceContextTest : public ::testing::Test {
protected:
    void SetUp() override { KErrTrace_BeginContext(); }
    void TearDown() override {
        KErrTrace_ClearContext();
        KErrTrace_EndContext();
    }
    static std::vector<std::string> trace() { return diag::error_trace_lines(); }
    // The trace so far; a fresh one for the next check.
    static std::vector<std::string> take_trace() {
        std::vector<std::string> lines = trace();
        KErrTrace_ClearContext();
        return lines;
    }
    // True if some line of the trace so far is `text`.
    static bool traced(const std::string& text) {
        const std::vector<std::string> lines = trace();
        return std::find(lines.begin(), lines.end(), text) != lines.end();
    }
};

} // namespace korv::testing
