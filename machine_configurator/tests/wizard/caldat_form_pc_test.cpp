// The reader of a form station's calibration data over pairs made byte by byte.
#include "caldat_pair_bytes.h"
#include "log_capture.h"
#include "scratch_dir.h"
#include "wizard/CaldatFormPC.h"
#include "wizard/caldat_files.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using namespace caldat_test;

TEST(CaldatFormPC, ReadsProbesLengthsSubsAndReferences) {
    korv::testing::ScratchDir dir;
    korv::testing::LogCapture log;
    ASSERT_TRUE(WritePair(dir / "tree.", TwoProbeTree()));
    {
        CCaldatFormPC reader(dir / "new"); // creates newKKY and newKKL, empty
        std::string out = "stale";
        EXPECT_FALSE(reader.GetFirstProbe(out));
        EXPECT_EQ(out, "");
        EXPECT_TRUE(std::filesystem::exists(dir / "newKKL"));
        reader.SetFile(dir / "tree.dat");
        EXPECT_EQ(reader.m_fileName, dir / "tree.dat");

        // Left after P1, the probe enumeration takes the next call, whatever it asks.
        ASSERT_TRUE(reader.GetFirstProbe(out));
        EXPECT_EQ(out, "P1");
        EXPECT_FALSE(reader.GetNextSub("P1", out)); // P2 went here
        EXPECT_FALSE(reader.GetFirstProbe(out));
        for (const char* sub : {"S1", "S2"})
            EXPECT_TRUE(reader.GetNextSub("P1", out) && out == sub) << out;
        EXPECT_FALSE(reader.GetNextSub("P1", out));

        const struct {
            const char *probe, *sub, *text; // sub null: the lengths; text empty: none
        } reads[] = {
            {"P1", nullptr, "  10.500 mm|  20.250 mm"},
            {"P2", nullptr, "   1.000 mm|  -2.125 mm"},
            {"P9", nullptr, "|"},
            {"", nullptr, "|"},
            {"P1", "S1", "  12.500 \xC2\xB0"},
            {"P1", "S2", "This probe has no reference !"},
            {"P2", "T1", "  -3.250 \xC2\xB0"},
            {"P1", "", "This probe has no reference !"}, // the probe's own record
            {"P2", "S1", ""},
        };
        for (const auto& r : reads) {
            std::string a = "stale", b = "stale";
            const bool first =
                r.sub ? reader.GetReference(r.probe, r.sub, a) : reader.GetLength1(r.probe, a);
            const bool ok = (r.sub || reader.GetLength2(r.probe, b)) && first;
            EXPECT_EQ(r.sub ? a : a + "|" + b, r.text) << r.probe;
            EXPECT_EQ(ok, std::string(r.text).size() > 1) << r.probe;
        }
    }
    EXPECT_FALSE(KeyFilesOpen()); // the destructor closed the pair
    EXPECT_EQ(log.errors(), std::vector<std::string>{});
}

} // namespace
