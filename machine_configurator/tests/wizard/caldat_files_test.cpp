// The record layer of the calibration pair on pairs made byte by byte: what it
// finds, what it writes where, and what it makes of damaged files.
#include "caldat_pair_bytes.h"
#include "errtrace.h"
#include "scratch_dir.h"
#include "wizard/caldat_files.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <set>

namespace {

using namespace caldat_test;
using Keys = std::vector<std::string>;

class CaldatFiles : public ::testing::Test {
protected:
    void SetUp() override { KErrTrace_BeginContext(); }
    void TearDown() override {
        CloseKeyFiles();
        KErrTrace_ClearContext();
        KErrTrace_EndContext();
    }
    void Open(const std::string& keys, const std::string* data) {
        ASSERT_TRUE(WritePair(dir / "p.", &keys, data));
        ASSERT_TRUE(OpenKeyFiles(dir / "p.dat"));
    }
    // The hits of one enumeration, each as "k1/k2/k3".
    static Keys Enumerate(const std::string& p1, const std::string& p2, const std::string& p3) {
        Keys hits;
        for (std::string k1 = p1, k2 = p2, k3 = p3; NextKey(k1, k2, k3); k1 = p1, k2 = p2, k3 = p3)
            hits.push_back(k1 + "/" + k2 + "/" + k3);
        return hits;
    }
    static bool Traced(const std::string& part) {
        for (const std::string& line : korv::diag::error_trace_lines())
            if (line.find(part) != std::string::npos)
                return true;
        return false;
    }

    korv::testing::ScratchDir dir;
    DataRecord data{};
    KeyRecord key{};
};

TEST(CaldatRecords, StemRuleAndFieldBytes) {
    for (auto [path, name] : {std::pair{"probes.dat", "probes.KKY"},
                              {"probes", "probesKKY"},
                              {"a.b", "a.KKY"},
                              {"C:\\cal.v2\\p", "C:\\cal.KKY"}})
        EXPECT_EQ(CaldatFileName(path, "KKY"), name);
    KeyRecord key;
    std::memcpy(&key, KeyBytes(std::string(30, 'x'), "S1", "", -2, 0x01020304).data(), 98);
    EXPECT_EQ(key.Key1(), std::string(30, 'x')); // no terminator: read no further
    EXPECT_EQ(key.ChildCount(), -2);
    EXPECT_EQ(key.DataOffset(), 0x01020304);
    for (auto [flags, reference] : {std::pair<unsigned char, bool>{0x10, true},
                                    {0x1F, true},
                                    {0x00, false},
                                    {0x20, false},
                                    {0xF0, false},
                                    {0x01, false}})
        EXPECT_EQ(DataRecord{{flags}}.HasReference(), reference) << int(flags);
}

TEST_F(CaldatFiles, FindsAndEnumeratesTheTree) {
    const PairBytes tree = TwoProbeTree();
    Open(tree.keys, &tree.data);
    EXPECT_FALSE(OpenKeyFiles(dir / "q.dat")); // one pair at a time
    for (auto [k1, k2, k3, position] : {std::tuple{"P1", "", "", 0},
                                        {"P1", "S1", "", 98},
                                        {"P2", "T1", "U1", 588},
                                        {"P2", "U1", "", -1},
                                        {"Old", "Gone", "", -1},
                                        {"", "S1", "", -1}})
        EXPECT_EQ(FindKey(k1, k2, k3, &key), position) << k1 << k2 << k3;
    EXPECT_TRUE(Traced("FindKey(): no first key"));
    EXPECT_EQ(FindFreeData(&key), 876);
    EXPECT_EQ(Enumerate("*", "", ""), (Keys{"P1//", "P2//"}));
    EXPECT_EQ(Enumerate("P1", "*", ""), (Keys{"P1/S1/", "P1/S2/"}));
    EXPECT_EQ(Enumerate("P2", "T1", "*"), (Keys{"P2/T1/U1"}));
    ASSERT_TRUE(ReadData("P2", "T1", "", &data));
    EXPECT_EQ(std::string(reinterpret_cast<char*>(data.bytes), 146), tree.data.substr(584, 146));

    // Left early, an enumeration goes on with its own patterns, past other reads.
    std::string k1 = "*", k2, k3;
    ASSERT_TRUE(NextKey(k1, k2, k3));
    FindKey("P2", "T1", "U1", &key);
    k1 = "P1", k2 = "*";
    ASSERT_TRUE(NextKey(k1, k2, k3));
    EXPECT_EQ(k1 + k2, "P2");
    CloseKeyFiles();
    EXPECT_FALSE(KeyEnumerationRunning());
}

TEST_F(CaldatFiles, DamagedPairsGiveWhatIsWholeAndNeverMore) {
    const PairBytes tree = TwoProbeTree();
    const std::string twoProbes = KeyBytes("P1", "", "", 0, 0) + KeyBytes("P2", "", "", 0, 100);
    const std::string oneRecord = ProbeData(1, 2), none;
    const struct {
        const char* name;
        std::string keys;
        const std::string* data; // null: no data file
        Keys probes;
        bool p1Data, p2Data;
        const char* trace;
    } cases[] = {
        {"no data file", tree.keys, nullptr, {"P1//", "P2//"}, false, false, "at 0 cannot be"},
        {"past the end", twoProbes, &oneRecord, {"P1//", "P2//"}, true, false, "record at 100"},
        {"fragment",
         twoProbes + KeyBytes("P3", "", "", 0, 0).substr(0, 50),
         &oneRecord,
         {"P1//", "P2//"},
         true,
         false,
         "50 bytes at the end of the key file are no whole record"},
        {"loop",
         KeyBytes("P1", "", "", 1, 0) + KeyBytes("P1", "P1", "", 0, 0) + twoProbes,
         &oneRecord,
         {"P1//", "P1//", "P2//"},
         true,
         false,
         "record at 100"},
        {"empty", "", &none, {}, false, false, "no whole data record"},
    };
    for (const auto& c : cases) {
        KErrTrace_ClearContext();
        Open(c.keys, c.data);
        EXPECT_EQ(Enumerate("*", "", ""), c.probes) << c.name;
        EXPECT_EQ(FindKey("P3", "", "", &key), -1) << c.name; // only the fragment holds it
        EXPECT_EQ(ReadData("P1", "", "", &data), c.p1Data) << c.name;
        EXPECT_EQ(ReadData("P2", "", "", &data) || ReadDataAt(1 << 30, data), c.p2Data) << c.name;
        EXPECT_TRUE(Traced(c.trace)) << c.name;
        // Nothing new goes behind a fragment; a key is written once.
        EXPECT_EQ(WriteKey("P1", "", "", 0, 0, kWriteKeyNew), c.probes.empty()) << c.name;
        EXPECT_EQ(WriteKey("P4", "", "", 0, 0, kWriteKeyNew), std::string(c.name) != "fragment");
        CloseKeyFiles();
        EXPECT_EQ(dir.read("p.KKY").size() % 98, std::string(c.name) == "fragment" ? 50u : 0u);
    }
}

TEST_F(CaldatFiles, WritersReuseFreedRecordsAndKeepTheirAsymmetry) {
    const PairBytes tree = TwoProbeTree();
    Open(tree.keys, &tree.data);
    std::memcpy(&data, SubData(0x10, 45.0, 0x21).data(), 146);
    // A new three-key entry takes free slot 2 and its data at 876, and raises (P1, S1) only.
    EXPECT_EQ(WriteData("P1", "S1", "V1", &data, 0), 876);
    std::string keys = tree.keys;
    keys.replace(98, 196, KeyBytes("P1", "S1", "", 1, 146) + KeyBytes("P1", "S1", "V1", 0, 876));
    EXPECT_EQ(dir.read("p.KKY"), keys);
    EXPECT_EQ(dir.read("p.KKL").substr(876), SubData(0x10, 45.0, 0x21));
    // Deleting it lowers (P1, S1) and P1 both.
    EXPECT_TRUE(DeleteEntry("P1", "S1", "V1"));
    EXPECT_EQ(dir.read("p.KKY").substr(0, 294), KeyBytes("P1", "", "", 1, 0) +
                                                    KeyBytes("P1", "S1", "", 0, 146) +
                                                    FreeKeyBytes("P1", "S1", 876, "V1"));
    // Without (P2, X) a new entry raises P2 instead; no count goes below 0.
    EXPECT_EQ(WriteData("P2", "X", "Y", &data, 0), 876);
    EXPECT_EQ(dir.read("p.KKY").substr(294, 98), KeyBytes("P2", "", "", 2, 292));
    EXPECT_FALSE(ClearKey("P2", "T1", ""));
    EXPECT_FALSE(WriteKey("P1", "S2", "", 0, -1, kWriteKeyAddChildren));
    // New data for an existing key is appended, and the key never names it.
    const std::string before = dir.read("p.KKY");
    EXPECT_EQ(WriteData("P1", "S2", "", &data, 0), 1022);
    EXPECT_EQ(WriteData("P1", "S2", "", &data, kWriteDataReplace), 438);
    EXPECT_EQ(dir.read("p.KKY"), before);
    EXPECT_EQ(dir.read("p.KKL").size(), 1022u + 146);
    EXPECT_EQ(DeleteTree("P2", "", ""), 4);
    EXPECT_EQ(Enumerate("*", "", ""), (Keys{"P1//"}));
}

TEST_F(CaldatFiles, ReadOnlyOrNoPairTakesNoWrites) {
    EXPECT_EQ(WriteData("P1", "", "", &data, 0), -1);
    EXPECT_TRUE(Traced("WriteData(): no data file open"));
    EXPECT_FALSE(OpenKeyFilesReadOnly(dir / "none"));
    EXPECT_FALSE(std::filesystem::exists(dir / "noneKKY"));
    const PairBytes tree = TwoProbeTree();
    ASSERT_TRUE(WritePair(dir / "p.", tree));
    ASSERT_TRUE(OpenKeyFilesReadOnly(dir / "p.KKY"));
    EXPECT_EQ(WriteData("P1", "S3", "", &data, 0), -1);
    EXPECT_FALSE(WriteKey("P1", "", "", 0, 1, kWriteKeyAddChildren));
    EXPECT_EQ(DeleteTree("P1", "", ""), -1);
    EXPECT_TRUE(Traced("writing the key record at 0 failed"));
    CloseKeyFiles();
    EXPECT_EQ(dir.read("p.KKY") + dir.read("p.KKL"), tree.keys + tree.data);
}

TEST_F(CaldatFiles, TenThousandKeysAreEachVisitedOnce) {
    std::string keys;
    for (int i = 0; i < 10000; ++i) // each probe with a sub-entry that is no hit
        keys += KeyBytes("P" + std::to_string(i), "", "", 1, 0) +
                KeyBytes("P" + std::to_string(i), "S", "", 0, 0);
    Open(keys, nullptr);
    const Keys hits = Enumerate("*", "", "");
    EXPECT_EQ(hits.size(), 10000u);
    EXPECT_EQ(std::set<std::string>(hits.begin(), hits.end()).size(), 10000u);
    EXPECT_EQ(FindKey("P9999", "S", "", &key), 19999 * 98);
}

} // namespace
