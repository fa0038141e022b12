// The reader of a form station's calibration data over pairs made byte by byte.
#include "caldat_pair_bytes.h"
#include "errtrace.h"
#include "log_capture.h"
#include "scratch_dir.h"
#include "wizard/CaldatFormPC.h"
#include "wizard/caldat_files.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace caldat_test;

class CaldatFormPCTest : public ::testing::Test {
protected:
    void SetUp() override { _KTrace_SetLevel("RigCfg", 5); }
    void TearDown() override {
        CloseKeyFiles();
        korv::diag::reset_log_settings();
    }

    std::vector<std::string> Probes(CCaldatFormPC& reader) {
        std::vector<std::string> probes;
        for (std::string probe; reader.GetFirstProbe(probe);)
            probes.push_back(probe);
        return probes;
    }

    korv::testing::ScratchDir dir;
    korv::testing::LogCapture log;
};

TEST_F(CaldatFormPCTest, ReadsProbesLengthsSubsAndReferences) {
    ASSERT_TRUE(WritePair(dir / "tree.", TwoProbeTree()));
    CCaldatFormPC reader(dir / "tree.dat");
    EXPECT_EQ(reader.m_fileName, dir / "tree.dat");
    EXPECT_EQ(Probes(reader), (std::vector<std::string>{"P1", "P2"}));

    const struct {
        const char* probe;
        bool ok;
        const char* length1;
        const char* length2;
    } lengths[] = {
        {"P1", true, "  10.500 mm", "  20.250 mm"},
        {"P2", true, "   1.000 mm", "  -2.125 mm"},
        {"P9", false, "", ""},
        {"", false, "", ""},
    };
    for (const auto& c : lengths) {
        std::string out = "stale";
        EXPECT_EQ(reader.GetLength1(c.probe, out), c.ok) << c.probe;
        EXPECT_EQ(out, c.length1) << c.probe;
        out = "stale";
        EXPECT_EQ(reader.GetLength2(c.probe, out), c.ok) << c.probe;
        EXPECT_EQ(out, c.length2) << c.probe;
    }

    const struct {
        const char* probe;
        const char* sub;
        const char* reference; // empty: none found
    } references[] = {
        {"P1", "S1", "  12.500 \xC2\xB0"},           {"P1", "S2", "This probe has no reference !"},
        {"P2", "T1", "  -3.250 \xC2\xB0"},           {"P2", "S1", ""},
        {"P1", "", "This probe has no reference !"}, // an empty sub: the probe's own record
    };
    for (const auto& c : references) {
        std::string out = "stale";
        EXPECT_EQ(reader.GetReference(c.probe, c.sub, out), *c.reference != '\0') << c.sub;
        EXPECT_EQ(out, c.reference) << c.probe << "/" << c.sub;
    }

    std::vector<std::string> subs;
    for (std::string sub; reader.GetNextSub("P1", sub);)
        subs.push_back(sub);
    EXPECT_EQ(subs, (std::vector<std::string>{"S1", "S2"}));
    std::string out = "stale";
    EXPECT_FALSE(reader.GetNextSub("P9", out));
    EXPECT_EQ(out, "");
    // Failures stay in the trace; the error log gets nothing.
    EXPECT_EQ(log.errors(), std::vector<std::string>{});
    EXPECT_EQ(korv::diag::error_trace_lines(), std::vector<std::string>{});
    bool traced = false;
    for (const std::string& line : log.traces())
        traced = traced || line.find("GetLength1(): FindKey(): no first key") == 0;
    EXPECT_TRUE(traced);
}

TEST_F(CaldatFormPCTest, AnEnumerationLeftEarlyGoesOnWithItsOwnPatterns) {
    ASSERT_TRUE(WritePair(dir / "tree.", TwoProbeTree()));
    CCaldatFormPC reader(dir / "tree.dat");
    std::string out;
    ASSERT_TRUE(reader.GetFirstProbe(out));
    EXPECT_EQ(out, "P1");
    // The probe enumeration is still running: its next hit is a top node,
    // which has no second key.
    EXPECT_FALSE(reader.GetNextSub("P1", out));
    EXPECT_EQ(out, "");
    EXPECT_FALSE(reader.GetFirstProbe(out)); // P2 went to the call before
    EXPECT_TRUE(reader.GetNextSub("P1", out));
    EXPECT_EQ(out, "S1");
}

TEST_F(CaldatFormPCTest, OpensCreatesAndSwitchesPairs) {
    const std::string fresh = dir / "fresh";
    {
        CCaldatFormPC reader(fresh);
        EXPECT_TRUE(KeyFilesOpen());
        EXPECT_EQ(ReadBytes(fresh + "KKY"), "");
        EXPECT_TRUE(std::ifstream(fresh + "KKL").good());
        std::string out = "stale";
        EXPECT_FALSE(reader.GetFirstProbe(out));
        EXPECT_EQ(out, "");

        ASSERT_TRUE(WritePair(dir / "tree.", TwoProbeTree()));
        reader.SetFile(dir / "tree.KKY");
        EXPECT_EQ(reader.m_fileName, dir / "tree.KKY");
        EXPECT_EQ(Probes(reader), (std::vector<std::string>{"P1", "P2"}));
    }
    EXPECT_FALSE(KeyFilesOpen()); // the destructor closed it

    // A pair that cannot be opened leaves every answer false.
    CCaldatFormPC reader(dir / "missing/p.dat");
    EXPECT_FALSE(KeyFilesOpen());
    reader.SetFile(dir / "missing/q.dat");
    EXPECT_FALSE(KeyFilesOpen());
    std::string out = "stale";
    EXPECT_FALSE(reader.GetFirstProbe(out));
    EXPECT_FALSE(reader.GetLength1("P1", out));
    EXPECT_EQ(out, "");
}

} // namespace
