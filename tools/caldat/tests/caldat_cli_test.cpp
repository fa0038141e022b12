// caldat end to end: the built binary on pairs made byte by byte in a scratch
// folder, judged by its exit code, its output and the bytes it leaves on disk.
#include "caldat_pair_bytes.h"
#include "program_run.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using korv::testing::ProgramRun;

using namespace caldat_test;

class Caldat : public ::testing::Test {
protected:
    ProgramRun caldat(const std::vector<std::string>& args) {
        return korv::testing::run_program(korv::testing::build_tree_path(CALDAT_BINARY).c_str(),
                                          args, io);
    }
    // probes.KKY and probes.KKL; answers the stem to pass.
    std::string Pair(const PairBytes& pair) {
        EXPECT_TRUE(WritePair(dir / "probes.", pair));
        return dir / "probes.dat";
    }

    korv::testing::ScratchDir dir, io;
};

TEST_F(Caldat, ListAndDumpReadTheTreeAndChangeNothing) {
    const PairBytes tree = TwoProbeTree();
    Pair(tree);
    ASSERT_TRUE(WritePair(dir / "plain", tree));
    for (const char* stem : {"probes.dat", "probes.KKY", "plain"}) {
        const ProgramRun run = caldat({"list", dir / stem});
        EXPECT_EQ(run.code, 0) << stem << run.err;
        EXPECT_EQ(run.out, "P1   10.500 mm   20.250 mm\n"
                           "  S1   12.500 \xC2\xB0\n"
                           "  S2 This probe has no reference !\n"
                           "P2    1.000 mm   -2.125 mm\n"
                           "  T1   -3.250 \xC2\xB0\n"
                           "    U1\n")
            << stem;
    }
    const ProgramRun dump = caldat({"dump", dir / "probes.dat", "P2", "T1"});
    EXPECT_EQ(dump.code, 0);
    EXPECT_EQ(dump.out.substr(0, dump.out.find("length 1")),
              "key         P2/T1\nrecord      5 (byte 490)\nchildren    1\ndata offset 584\n"
              "flags       0x1F (reference)\nreference     -3.250 \xC2\xB0 (byte 46)\n");
    EXPECT_NE(dump.out.find("\nbytes       1F 61 62 63 "), std::string::npos) << dump.out;
    EXPECT_EQ(dir.read("probes.KKY") + dir.read("probes.KKL"), tree.keys + tree.data);
}

TEST_F(Caldat, UsageErrorsAndUnreadablePairsEndWith2) {
    const PairBytes tree = TwoProbeTree();
    ASSERT_TRUE(WritePair(dir / "keys.", &tree.keys, nullptr));
    for (auto [args, message] : std::vector<std::pair<std::vector<std::string>, const char*>>{
             {{}, "usage: caldat"},
             {{"frobnicate", "p"}, "usage: caldat"},
             {{"list", "p", "extra"}, "usage: caldat"},
             {{"dump", "p"}, "usage: caldat"},
             {{"list", dir / "keys.dat"}, "cannot read the pair"},
             {{"dump", dir / "none", "P1"}, "cannot read the pair"}}) {
        const ProgramRun run = caldat(args);
        EXPECT_EQ(run.code, 2) << message;
        EXPECT_EQ(run.out, "");
        EXPECT_NE(run.err.find(message), std::string::npos) << run.err;
    }
    EXPECT_FALSE(std::filesystem::exists(dir / "keys.KKL"));
    EXPECT_FALSE(std::filesystem::exists(dir / "noneKKY"));
    EXPECT_EQ(caldat({"--help"}).code, 0);
}

TEST_F(Caldat, CheckReportsEachKindOfDamage) {
    const PairBytes tree = TwoProbeTree();
    const std::string data = ProbeData(1, 2) + ProbeData(3, 4) + SubData(0x10, 5);
    const struct {
        std::string keys, data;
        int listCode;
        std::vector<std::string> lines; // each in the output; none: a sound pair
    } cases[] = {
        {tree.keys, tree.data, 0, {}},
        {"", "", 0, {}},
        {KeyBytes("P1", "", "", 0, 0) + KeyBytes("P2", "", "", 0, 400) +
             KeyBytes("P3", "", "", 0, -5),
         data,
         1,
         {"record 1 P2: data offset 400 lies outside the data file (438 bytes)",
          "record 2 P3: data offset -5 lies outside"}},
        {KeyBytes("P1", "", "", 1, 0) + KeyBytes("P1", "P1", "", 0, 146) +
             KeyBytes("P1", "", "", 1, 292),
         data,
         0,
         {"record 1 P1/P1: loop: a name that repeats one above it on its path",
          "record 2 P1: loop: the same key as record 0", "; 2 problems"}},
        {KeyBytes("P1", "", "", 2, 0) + KeyBytes("P1", "S1", "U1", 3, 146) +
             KeyBytes("P2", "S1", "", 0, 292) + KeyBytes("P1", "", "U", 0, 0),
         data,
         0,
         {"record 0 P1: child count 2, but 0 found below",
          "record 1 P1/S1/U1: child count 3, but nothing lies below a third key",
          "no entry P1/S1, but 1 below it", "no entry P2, but 1 below it",
          "record 3 P1//U: a third key without a second"}},
        {KeyBytes("P1", "", "", 0, 0) + KeyBytes(std::string(30, 'L'), "", "", 0, 0).substr(0, 97),
         data,
         1,
         {"probes.KKY: 97 bytes behind the last whole record", ": 1 records, 1 in use;"}},
    };
    for (const auto& c : cases) {
        const PairBytes pair{c.keys, c.data};
        const ProgramRun check = caldat({"check", Pair(pair)});
        EXPECT_EQ(check.code, c.lines.empty() ? 0 : 1) << check.out;
        EXPECT_NE(check.out.find(" in use; "), std::string::npos) << check.out;
        EXPECT_EQ(check.out.find("; 0 problems\n") != std::string::npos, c.lines.empty())
            << check.out;
        for (const std::string& line : c.lines)
            EXPECT_NE(check.out.find(line), std::string::npos) << line << "\n" << check.out;
        EXPECT_EQ(caldat({"list", dir / "probes.dat"}).code, c.listCode) << check.out;
        EXPECT_EQ(dir.read("probes.KKY") + dir.read("probes.KKL"), c.keys + c.data);
    }
}

} // namespace
