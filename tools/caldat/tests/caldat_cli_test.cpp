// caldat end to end: the built binary on pairs made byte by byte in a scratch
// folder, judged by its exit code, its output and the bytes it leaves on disk.
#include "caldat_pair_bytes.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <fstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using namespace caldat_test;
using korv::testing::ScratchDir;

struct CaldatRun {
    int code;
    std::string out;
    std::string err;
};

class Caldat : public ::testing::Test {
protected:
    // Runs caldat with `args`; standard output and error go through files.
    CaldatRun caldat(const std::vector<std::string>& args) {
        const std::string out = io / "out", err = io / "err";
        const pid_t child = fork();
        if (child == 0) {
            const int out_fd = open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            const int err_fd = open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            if (out_fd < 0 || err_fd < 0 || dup2(out_fd, 1) < 0 || dup2(err_fd, 2) < 0)
                _exit(126);
            std::vector<char*> argv{const_cast<char*>(CALDAT_BINARY)};
            for (const std::string& arg : args)
                argv.push_back(const_cast<char*>(arg.c_str()));
            argv.push_back(nullptr);
            execv(CALDAT_BINARY, argv.data());
            _exit(127);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, io.read("out"), io.read("err")};
    }

    // Writes the pair as probes.KKY and probes.KKL; the stem to pass is "probes.dat".
    std::string Pair(const PairBytes& pair) {
        EXPECT_TRUE(WritePair(dir / "probes.", pair));
        return dir / "probes.dat";
    }
    bool Unchanged(const PairBytes& pair) const {
        return dir.read("probes.KKY") == pair.keys && dir.read("probes.KKL") == pair.data;
    }

    ScratchDir dir;
    ScratchDir io;
};

const char* const kTreeList = "P1   10.500 mm   20.250 mm\n"
                              "  S1   12.500 \xC2\xB0\n"
                              "  S2 This probe has no reference !\n"
                              "P2    1.000 mm   -2.125 mm\n"
                              "  T1   -3.250 \xC2\xB0\n"
                              "    U1\n";

TEST_F(Caldat, HelpAndUsageErrors) {
    const CaldatRun help = caldat({"--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_EQ(help.out.rfind("usage: caldat", 0), 0u);
    for (const std::vector<std::string>& args :
         std::vector<std::vector<std::string>>{{},
                                               {"frobnicate", "p"},
                                               {"list"},
                                               {"list", "p", "extra"},
                                               {"check"},
                                               {"dump", "p"},
                                               {"dump", "p", "a", "b", "c", "d"}}) {
        const CaldatRun run = caldat(args);
        EXPECT_EQ(run.code, 2) << args.size();
        EXPECT_EQ(run.out, "");
        EXPECT_NE(run.err.find("usage: caldat"), std::string::npos);
    }
}

TEST_F(Caldat, ListShowsTheTreeForEveryFormOfTheStem) {
    const PairBytes tree = TwoProbeTree();
    Pair(tree);
    for (const char* stem : {"probes.dat", "probes.KKY", "probes."}) {
        const CaldatRun run = caldat({"list", dir / stem});
        EXPECT_EQ(run.code, 0) << stem << run.err;
        EXPECT_EQ(run.out, kTreeList) << stem;
        EXPECT_EQ(run.err, "");
    }
    // Without a dot the extension follows the name directly.
    ASSERT_TRUE(WritePair(dir / "plain", tree));
    EXPECT_EQ(caldat({"list", dir / "plain"}).out, kTreeList);
    EXPECT_TRUE(Unchanged(tree));
}

TEST_F(Caldat, AMissingFileIsAnUnreadablePairAndIsNotCreated) {
    const PairBytes tree = TwoProbeTree();
    ASSERT_TRUE(WritePair(dir / "keys.", &tree.keys, nullptr));
    for (const std::vector<std::string>& args :
         std::vector<std::vector<std::string>>{{"list", dir / "keys.dat"},
                                               {"check", dir / "keys.dat"},
                                               {"dump", dir / "keys.dat", "P1"},
                                               {"list", dir / "nothing"},
                                               {"check", dir.path()}}) {
        const CaldatRun run = caldat(args);
        EXPECT_EQ(run.code, 2) << args[1];
        EXPECT_EQ(run.out, "") << args[1];
        EXPECT_NE(run.err.find("caldat: cannot read the pair"), std::string::npos) << run.err;
    }
    EXPECT_EQ(dir.read("keys.KKL"), "");
    EXPECT_FALSE(std::ifstream(dir / "keys.KKL").good());
    EXPECT_FALSE(std::ifstream(dir / "nothingKKY").good());
}

TEST_F(Caldat, SoundPairsCheckClean) {
    const PairBytes tree = TwoProbeTree();
    const CaldatRun run = caldat({"check", Pair(tree)});
    EXPECT_EQ(run.code, 0) << run.out;
    EXPECT_EQ(run.out, dir / "probes.KKY" + ": 7 records, 6 in use; " + dir / "probes.KKL" +
                           ": 1022 bytes; 0 problems\n");

    const std::string empty = Pair(PairBytes{});
    EXPECT_EQ(caldat({"list", empty}).code, 0);
    EXPECT_EQ(caldat({"list", empty}).out, "");
    const CaldatRun none = caldat({"check", empty});
    EXPECT_EQ(none.code, 0);
    EXPECT_NE(none.out.find(": 0 records, 0 in use; "), std::string::npos) << none.out;
}

TEST_F(Caldat, CheckReportsEachKindOfDamage) {
    const std::string ok = ProbeData(1, 2) + ProbeData(3, 4) + SubData(0x10, 5);
    const struct {
        const char* name;
        std::string keys;
        std::string data;
        std::vector<std::string> lines; // each somewhere in the output
    } cases[] = {
        {"past the end",
         KeyBytes("P1", "", "", 0, 0) + KeyBytes("P2", "", "", 0, 400) +
             KeyBytes("P3", "", "", 0, -5),
         ok,
         {"record 1 P2: data offset 400 lies outside the data file (438 bytes)",
          "record 2 P3: data offset -5 lies outside the data file (438 bytes)", "2 problems"}},
        {"loop",
         KeyBytes("P1", "", "", 1, 0) + KeyBytes("P1", "P1", "", 1, 146) +
             KeyBytes("P1", "P1", "P1", 0, 292) + KeyBytes("P1", "", "", 1, 0),
         ok,
         {"record 1 P1/P1: loop: a name that repeats one above it on its path",
          "record 2 P1/P1/P1: loop: a name that repeats one above it on its path",
          "record 3 P1: loop: the same key as record 0",
          "record 3 P1: shares its data record with record 0", "4 problems"}},
        {"child counts",
         KeyBytes("P1", "", "", 2, 0) + KeyBytes("P1", "S1", "", 0, 146) +
             KeyBytes("P1", "S1", "U1", 3, 292),
         ok,
         {"record 0 P1: child count 2, but 1 found below",
          "record 1 P1/S1: child count 0, but 1 found below",
          "record 2 P1/S1/U1: child count 3, but nothing lies below a third key", "3 problems"}},
        {"no parent",
         KeyBytes("P1", "S1", "", 0, 0) + FreeKeyBytes("P1", "", 146),
         ok,
         {"no entry P1, but 1 below it", "1 problem\n"}},
        {"fragment",
         KeyBytes("P1", "", "", 0, 0) + KeyBytes("P2", "", "", 0, 146).substr(0, 97),
         ok,
         {"probes.KKY: 97 bytes behind the last whole record", ": 1 records, 1 in use;"}},
        {"odd fields",
         KeyBytes(std::string(30, 'L'), "", "", 0, 0) + KeyBytes("P1", "", "U\x01", 0, 146),
         ok,
         {"record 0 " + std::string(30, 'L') + ": a key field without its terminator",
          "record 1 P1//U\\x01: a third key without a second"}},
    };
    for (const auto& c : cases) {
        const PairBytes pair{c.keys, c.data};
        const CaldatRun run = caldat({"check", Pair(pair)});
        EXPECT_EQ(run.code, 1) << c.name << "\n" << run.out << run.err;
        for (const std::string& line : c.lines)
            EXPECT_NE(run.out.find(line), std::string::npos) << c.name << ": " << line << "\n"
                                                             << run.out;
        EXPECT_TRUE(Unchanged(pair)) << c.name;
        // list never hangs or crashes on it either.
        const CaldatRun list = caldat({"list", dir / "probes.dat"});
        EXPECT_TRUE(list.code == 0 || list.code == 1) << c.name << list.err;
    }
}

TEST_F(Caldat, ListMarksEntriesWithoutDataAndFails) {
    const PairBytes pair{KeyBytes("P1", "", "", 1, 0) + KeyBytes("P1", "S1", "", 0, 9999) +
                             KeyBytes("P2", "", "", 0, 100),
                         ProbeData(1, 2)};
    const CaldatRun run = caldat({"list", Pair(pair)});
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.out, "P1    1.000 mm    2.000 mm\n  S1 (no data)\nP2 (no data)\n");
    EXPECT_EQ(run.err, "caldat: 2 entries without data; caldat check tells more\n");
}

TEST_F(Caldat, DumpPrintsOneEntryAndItsData) {
    const PairBytes tree = TwoProbeTree();
    const std::string stem = Pair(tree);
    const CaldatRun run = caldat({"dump", stem, "P2", "T1"});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.out.rfind("key         P2/T1\n"
                            "record      5 (byte 490)\n"
                            "children    1\n"
                            "data offset 584\n"
                            "flags       0x1F (reference)\n"
                            "reference     -3.250 \xC2\xB0 (byte 46)\n"
                            "length 1    ",
                            0),
              0u)
        << run.out;
    // 146 bytes, 16 a line: the flag byte first, the pattern behind it.
    EXPECT_NE(run.out.find("bytes       1F 61 62 63"), std::string::npos) << run.out;
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 8 + 10);

    const CaldatRun missing = caldat({"dump", stem, "P2", "T9"});
    EXPECT_EQ(missing.code, 1);
    EXPECT_EQ(missing.err, "caldat: no entry P2/T9 in " + dir / "probes.KKY" + "\n");

    const PairBytes bad{KeyBytes("P1", "", "", 0, 10), ProbeData(1, 2)};
    const CaldatRun outside = caldat({"dump", Pair(bad), "P1"});
    EXPECT_EQ(outside.code, 1);
    EXPECT_NE(outside.out.find("data        outside the data file (146 bytes)"), std::string::npos)
        << outside.out;
    EXPECT_TRUE(Unchanged(bad));
}

} // namespace
