// The record layer of the calibration pair, on pairs made byte by byte: what
// it finds, what it writes where, and what it does with damaged files.
#include "caldat_pair_bytes.h"
#include "errtrace.h"
#include "scratch_dir.h"
#include "wizard/caldat_files.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace caldat_test;

struct Keys {
    std::string k1, k2, k3;
    bool operator==(const Keys&) const = default;
};

class CaldatFiles : public ::testing::Test {
protected:
    void SetUp() override { KErrTrace_BeginContext(); }
    void TearDown() override {
        CloseKeyFiles();
        KErrTrace_ClearContext();
        KErrTrace_EndContext();
    }

    // Writes the pair and opens it; `data` null leaves the data file out.
    void Open(const std::string& keys, const std::string* data) {
        ASSERT_TRUE(WritePair(stem, &keys, data));
        ASSERT_TRUE(OpenKeyFiles(stem + "dat"));
    }
    void Open(const PairBytes& pair) { Open(pair.keys, &pair.data); }

    // Every hit of an enumeration that starts with these patterns.
    static std::vector<Keys> Enumerate(Keys patterns) {
        std::vector<Keys> hits;
        for (Keys k = patterns; NextKey(k.k1, k.k2, k.k3); k = patterns)
            hits.push_back(k);
        return hits;
    }
    bool Traced(const std::string& part) const {
        for (const std::string& line : korv::diag::error_trace_lines())
            if (line.find(part) != std::string::npos)
                return true;
        return false;
    }
    std::string KeyFile() const { return ReadBytes(stem + "KKY"); }
    std::string DataFile() const { return ReadBytes(stem + "KKL"); }

    korv::testing::ScratchDir dir;
    const std::string stem = dir / "probes.";
};

TEST(CaldatRecords, FileNamesFollowTheStemRule) {
    const struct {
        const char* path;
        const char* keys;
        const char* data;
    } cases[] = {
        {"probes.dat", "probes.KKY", "probes.KKL"},
        {"probes", "probesKKY", "probesKKL"},
        {"a.b", "a.KKY", "a.KKL"},
        {"probes.", "probes.KKY", "probes.KKL"},
        {"C:\\cal.v2\\probes", "C:\\cal.KKY", "C:\\cal.KKL"}, // the last dot, wherever it is
        {"x.y.z", "x.y.KKY", "x.y.KKL"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(CaldatFileName(c.path, "KKY"), c.keys) << c.path;
        EXPECT_EQ(CaldatFileName(c.path, "KKL"), c.data) << c.path;
    }
}

TEST(CaldatRecords, FieldsSitAtTheirBytesLittleEndian) {
    KeyRecord key;
    const std::string bytes = KeyBytes("P1", "S1", "U1", -2, 0x01020304);
    std::memcpy(&key, bytes.data(), sizeof key);
    EXPECT_EQ(key.Key1(), "P1");
    EXPECT_EQ(key.Key2(), "S1");
    EXPECT_EQ(key.Key3(), "U1");
    EXPECT_EQ(key.ChildCount(), -2);
    EXPECT_EQ(key.DataOffset(), 0x01020304);
    key.SetChildCount(0x7F0000FF);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(key.childCount), 4), Le32(0x7F0000FF));

    // A key of 30 bytes has no terminator and is read no further.
    std::memcpy(&key, KeyBytes(std::string(30, 'x'), "", "", 0, 0).data(), sizeof key);
    EXPECT_EQ(key.Key1(), std::string(30, 'x'));
    EXPECT_FALSE(CaldatSetKeyText(key.key2, std::string(30, 'y')));
    EXPECT_TRUE(CaldatSetKeyText(key.key2, std::string(29, 'y')));
    EXPECT_EQ(key.Key2(), std::string(29, 'y'));

    DataRecord data;
    std::memcpy(&data, SubData(0x1F, -3.25).data(), sizeof data);
    EXPECT_TRUE(data.HasReference());
    EXPECT_EQ(data.Reference(), -3.25);
    std::memcpy(&data, ProbeData(10.5, 20.25).data(), sizeof data);
    EXPECT_FALSE(data.HasReference());
    EXPECT_EQ(data.Length1(), 10.5);
    EXPECT_EQ(data.Length2(), 20.25);
    for (unsigned flags : {0x00u, 0x01u, 0x20u, 0xF0u, 0x2Fu})
        EXPECT_FALSE(DataRecord{{static_cast<unsigned char>(flags)}}.HasReference()) << flags;
}

TEST_F(CaldatFiles, FirstOpenCreatesBothFilesEmptyAndOnlyOnePairOpens) {
    ASSERT_TRUE(OpenKeyFiles(dir / "new.dat"));
    EXPECT_EQ(ReadBytes(dir / "new.KKY"), "");
    EXPECT_TRUE(std::ifstream(dir / "new.KKY").good());
    EXPECT_TRUE(std::ifstream(dir / "new.KKL").good());
    EXPECT_FALSE(OpenKeyFiles(dir / "other.dat")); // ignored: a pair is open
    EXPECT_FALSE(std::ifstream(dir / "other.KKY").good());
    CloseKeyFiles();
    EXPECT_FALSE(KeyFilesOpen());
    EXPECT_FALSE(OpenKeyFiles(""));
    // A read-only open creates nothing and needs both files.
    EXPECT_FALSE(OpenKeyFilesReadOnly(dir / "missing"));
    EXPECT_FALSE(std::ifstream(dir / "missingKKY").good());
    dir.write("halfKKY", "");
    EXPECT_FALSE(OpenKeyFilesReadOnly(dir / "half"));
    EXPECT_FALSE(KeyFilesOpen());
    EXPECT_FALSE(std::ifstream(dir / "halfKKL").good());
    EXPECT_TRUE(Traced("cannot open"));
}

TEST_F(CaldatFiles, EverythingFailsQuietlyWithNoPairOpen) {
    KeyRecord key;
    DataRecord data{};
    std::string k1 = "*", k2, k3;
    EXPECT_EQ(FindKey("P1", "", "", &key), -1);
    EXPECT_EQ(FindFreeData(&key), -1);
    EXPECT_FALSE(WriteKey("P1", "", "", 0, 0, kWriteKeyNew));
    EXPECT_FALSE(ClearKey("P1", "", ""));
    EXPECT_EQ(DeleteTree("P1", "", ""), -1);
    EXPECT_FALSE(ReadData("P1", "", "", &data));
    EXPECT_EQ(WriteData("P1", "", "", &data, 0), -1);
    EXPECT_FALSE(NextKey(k1, k2, k3));
    EXPECT_EQ(k1, "");
    EXPECT_FALSE(KeyEnumerationRunning());
    EXPECT_EQ(KeyFileLength(), -1);
    EXPECT_TRUE(Traced("FindKey(): no key file open"));
    EXPECT_TRUE(Traced("WriteData(): no data file open"));
}

TEST_F(CaldatFiles, FindsKeysOfTheTreeAndRefusesBadArguments) {
    Open(TwoProbeTree());
    KeyRecord key;
    const struct {
        Keys keys;
        std::int32_t position, children, offset;
    } cases[] = {
        {{"P1", "", ""}, 0, 2, 0},         {{"P1", "S1", ""}, 98, 0, 146},
        {{"P2", "", ""}, 294, 1, 292},     {{"P1", "S2", ""}, 392, 0, 438},
        {{"P2", "T1", "U1"}, 588, 0, 730}, {{"P2", "U1", ""}, -1, 0, 0},
        {{"p1", "", ""}, -1, 0, 0},        {{"Old", "Gone", ""}, -1, 0, 0},
        {{"P1", "S1", "x"}, -1, 0, 0},     {{"S1", "", ""}, -1, 0, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(FindKey(c.keys.k1, c.keys.k2, c.keys.k3, &key), c.position) << c.keys.k1;
        EXPECT_EQ(KeyExists(c.keys.k1, c.keys.k2, c.keys.k3), c.position >= 0) << c.keys.k1;
        if (c.position >= 0) {
            EXPECT_EQ(key.ChildCount(), c.children) << c.keys.k1 << "/" << c.keys.k2;
            EXPECT_EQ(key.DataOffset(), c.offset) << c.keys.k1 << "/" << c.keys.k2;
        }
    }
    EXPECT_EQ(FindKey("", "S1", "", &key), -1);
    EXPECT_EQ(FindKey("P1", "", "", nullptr), -1);
    EXPECT_TRUE(Traced("FindKey(): no first key"));
    EXPECT_TRUE(Traced("FindKey(): no record buffer"));
    EXPECT_EQ(FindFreeData(&key), 876);
    EXPECT_EQ(key.Key2(), ""); // the free record itself
}

TEST_F(CaldatFiles, EnumeratesEachLevelAndResumesWhereItWasLeft) {
    Open(TwoProbeTree());
    EXPECT_EQ(Enumerate({"*", "", ""}), (std::vector<Keys>{{"P1", "", ""}, {"P2", "", ""}}));
    EXPECT_EQ(Enumerate({"P1", "*", ""}), (std::vector<Keys>{{"P1", "S1", ""}, {"P1", "S2", ""}}));
    EXPECT_EQ(Enumerate({"P2", "*", ""}), (std::vector<Keys>{{"P2", "T1", ""}}));
    EXPECT_EQ(Enumerate({"P2", "T1", "*"}), (std::vector<Keys>{{"P2", "T1", "U1"}}));
    EXPECT_EQ(Enumerate({"P3", "*", ""}), std::vector<Keys>{});

    // Left after the first probe, the enumeration goes on with its own patterns.
    Keys k{"*", "", ""};
    ASSERT_TRUE(NextKey(k.k1, k.k2, k.k3));
    EXPECT_EQ(k, (Keys{"P1", "", ""}));
    KeyRecord key;
    EXPECT_EQ(FindKey("P2", "T1", "U1", &key), 588); // reads the same file in between
    k = {"P1", "*", ""};
    ASSERT_TRUE(NextKey(k.k1, k.k2, k.k3));
    EXPECT_EQ(k, (Keys{"P2", "", ""}));
    EXPECT_TRUE(KeyEnumerationRunning());
    EXPECT_FALSE(NextKey(k.k1, k.k2, k.k3));
    EXPECT_EQ(k, Keys{});
    EXPECT_FALSE(KeyEnumerationRunning());

    // Closing the pair ends a running enumeration.
    k = {"*", "", ""};
    ASSERT_TRUE(NextKey(k.k1, k.k2, k.k3));
    CloseKeyFiles();
    EXPECT_FALSE(KeyEnumerationRunning());
}

TEST_F(CaldatFiles, ReadsDataAndRefusesRecordsOutsideTheDataFile) {
    PairBytes pair = TwoProbeTree();
    const auto size = static_cast<std::int32_t>(pair.data.size()); // 1022
    // Offsets of the data that do not hold a whole record.
    const std::int32_t outside[] = {size, size - 145, -1, -146, 0x7FFFFFFF, size + 146};
    for (std::int32_t offset : outside)
        pair.keys += KeyBytes("Bad" + std::to_string(offset), "", "", 0, offset);
    Open(pair);
    DataRecord data;
    ASSERT_TRUE(ReadData("P1", "", "", &data));
    EXPECT_EQ(std::string(reinterpret_cast<char*>(data.bytes), sizeof data),
              pair.data.substr(0, 146));
    ASSERT_TRUE(ReadData("P2", "T1", "", &data));
    EXPECT_EQ(data.Reference(), -3.25);
    for (std::int32_t offset : outside) {
        data.bytes[0] = 0x5A;
        EXPECT_FALSE(ReadData("Bad" + std::to_string(offset), "", "", &data)) << offset;
        EXPECT_EQ(data.bytes[0], 0x5A) << offset;
    }
    EXPECT_TRUE(Traced("ReadDataAt(): no whole data record at -1"));
    EXPECT_FALSE(ReadData("P9", "", "", &data));
    EXPECT_FALSE(ReadData("P1", "", "", nullptr));

    // Replacing data that cannot be reached appends instead, and leaves the key.
    const DataRecord fresh = [] {
        DataRecord r;
        std::memcpy(&r, ProbeData(3.0, 4.0, 0x33).data(), sizeof r);
        return r;
    }();
    const std::string keysBefore = KeyFile();
    EXPECT_EQ(WriteData("Bad" + std::to_string(size - 145), "", "", &fresh, kWriteDataReplace),
              size);
    EXPECT_EQ(DataFile(), pair.data + ProbeData(3.0, 4.0, 0x33));
    EXPECT_EQ(KeyFile(), keysBefore);
    // Replacing reachable data writes over it in place.
    EXPECT_EQ(WriteData("P2", "", "", &fresh, kWriteDataReplace), 292);
    EXPECT_EQ(DataFile().substr(292, 146), ProbeData(3.0, 4.0, 0x33));
    EXPECT_EQ(DataFile().size(), pair.data.size() + 146);
}

TEST_F(CaldatFiles, KeyFileWithoutDataFile) {
    const PairBytes pair = TwoProbeTree();
    Open(pair.keys, nullptr);
    EXPECT_EQ(DataFile(), ""); // created empty
    EXPECT_EQ(KeyFile(), pair.keys);
    DataRecord data;
    EXPECT_FALSE(ReadData("P1", "", "", &data));
    EXPECT_TRUE(Traced("ReadData(): the data of \"P1\" at 0 cannot be read"));
    EXPECT_EQ(Enumerate({"*", "", ""}), (std::vector<Keys>{{"P1", "", ""}, {"P2", "", ""}}));
}

TEST_F(CaldatFiles, BytesBehindTheLastWholeRecordAreNoRecord) {
    PairBytes pair;
    // Two whole records, then the first 50 bytes of a third.
    pair.keys = KeyBytes("P1", "", "", 0, 0) + KeyBytes("P2", "", "", 0, 146) +
                KeyBytes("P3", "", "", 0, 292).substr(0, 50);
    pair.data = ProbeData(1, 2) + ProbeData(3, 4) + ProbeData(5, 6).substr(0, 100);
    Open(pair);
    KeyRecord key;
    EXPECT_EQ(FindKey("P2", "", "", &key), 98);
    EXPECT_EQ(FindKey("P3", "", "", &key), -1);
    EXPECT_TRUE(Traced("FindKey(): 50 bytes at the end of the key file are no whole record"));
    EXPECT_EQ(Enumerate({"*", "", ""}), (std::vector<Keys>{{"P1", "", ""}, {"P2", "", ""}}));
    DataRecord data;
    EXPECT_TRUE(ReadData("P2", "", "", &data));
    // No new record goes behind the fragment; the files stay as they were.
    EXPECT_FALSE(WriteKey("P4", "", "", 0, 0, kWriteKeyNew));
    EXPECT_TRUE(Traced("no whole record can be added to a key file of 246 bytes"));
    EXPECT_EQ(KeyFile(), pair.keys);
    // Records in place can still change.
    EXPECT_TRUE(WriteKey("P1", "", "", 0, 3, kWriteKeyAddChildren));
    EXPECT_EQ(KeyFile(), KeyBytes("P1", "", "", 3, 0) + pair.keys.substr(98));
}

TEST_F(CaldatFiles, EmptyPair) {
    Open(PairBytes{});
    KeyRecord key;
    DataRecord data;
    EXPECT_EQ(FindKey("P1", "", "", &key), -1);
    EXPECT_EQ(FindFreeData(&key), -1);
    EXPECT_FALSE(ReadData("P1", "", "", &data));
    EXPECT_EQ(Enumerate({"*", "", ""}), std::vector<Keys>{});
    EXPECT_FALSE(WriteKey("P1", "", "", 0, 1, kWriteKeyAddChildren));
    EXPECT_FALSE(ClearKey("P1", "", ""));
    EXPECT_FALSE(DeleteEntry("P1", "S1", ""));
    EXPECT_EQ(DeleteTree("P1", "", ""), 0);
    EXPECT_EQ(KeyFile(), "");
    EXPECT_EQ(DataFile(), "");

    // The first entries of an empty pair, byte by byte.
    std::memcpy(&data, ProbeData(10.5, 20.25).data(), sizeof data);
    EXPECT_EQ(WriteData("P1", "", "", &data, 0), 0);
    std::memcpy(&data, SubData(0x10, 12.5).data(), sizeof data);
    EXPECT_EQ(WriteData("P1", "S1", "", &data, 0), 146);
    EXPECT_EQ(KeyFile(), KeyBytes("P1", "", "", 1, 0) + KeyBytes("P1", "S1", "", 0, 146));
    EXPECT_EQ(DataFile(), ProbeData(10.5, 20.25) + SubData(0x10, 12.5));
}

TEST_F(CaldatFiles, WritersReuseFreedRecordsAndKeepTheirAsymmetry) {
    const PairBytes pair = TwoProbeTree();
    Open(pair);
    DataRecord data;
    std::memcpy(&data, SubData(0x10, 45.0, 0x21).data(), sizeof data);

    // A new three-key entry takes the free slot 2 and its data at 876, and
    // raises the count of (P1, S1) only.
    EXPECT_EQ(WriteData("P1", "S1", "V1", &data, 0), 876);
    std::string keys = pair.keys;
    keys.replace(196, 98, KeyBytes("P1", "S1", "V1", 0, 876));
    keys.replace(98, 98, KeyBytes("P1", "S1", "", 1, 146));
    EXPECT_EQ(KeyFile(), keys);
    EXPECT_EQ(DataFile().substr(876), SubData(0x10, 45.0, 0x21));

    // Deleting it lowers (P1, S1) and P1 both.
    EXPECT_TRUE(DeleteEntry("P1", "S1", "V1"));
    std::string cleared = KeyBytes("P1", "S1", "V1", 0, 876);
    cleared[0] = cleared[30] = cleared[60] = '\0';
    keys.replace(196, 98, cleared);
    keys.replace(98, 98, KeyBytes("P1", "S1", "", 0, 146));
    keys.replace(0, 98, KeyBytes("P1", "", "", 1, 0));
    EXPECT_EQ(KeyFile(), keys);

    // Without (P2, X) the new entry raises P2 instead.
    EXPECT_EQ(WriteData("P2", "X", "Y", &data, 0), 876);
    EXPECT_EQ(KeyFile().substr(294, 98), KeyBytes("P2", "", "", 2, 292));

    // An entry with children is not cleared; a count does not go below 0.
    EXPECT_FALSE(ClearKey("P2", "T1", ""));
    EXPECT_FALSE(DeleteEntry("P2", "T1", ""));
    EXPECT_FALSE(WriteKey("P1", "S2", "", 0, -1, kWriteKeyAddChildren));
    EXPECT_FALSE(WriteKey("P1", "", "", 0, 7, 1)); // no such mode
    EXPECT_FALSE(WriteKey(std::string(30, 'k'), "", "", 0, 0, kWriteKeyNew));
    EXPECT_TRUE(Traced("does not fit a key field"));

    // Adding data to an existing key appends a record the key never names.
    const std::string before = KeyFile();
    const auto end = static_cast<std::int32_t>(DataFile().size());
    EXPECT_EQ(WriteData("P1", "S2", "", &data, 0), end);
    EXPECT_EQ(KeyFile(), before);
    EXPECT_EQ(DataFile().size(), std::size_t(end) + 146);

    // A new key with no free record goes to the end; a key is written once.
    EXPECT_TRUE(WriteKey("P3", "", "", 42, 0, kWriteKeyNew));
    EXPECT_FALSE(WriteKey("P3", "", "", 43, 0, kWriteKeyNew));
    EXPECT_EQ(KeyFile().substr(before.size()), KeyBytes("P3", "", "", 0, 42));
}

TEST_F(CaldatFiles, DeleteTreeFreesOnlyTheFirstByteOfMatchingRecords) {
    const PairBytes pair = TwoProbeTree();
    Open(pair);
    EXPECT_EQ(DeleteTree("P2", "T1", ""), 2);
    std::string keys = pair.keys;
    keys[5 * 98] = keys[6 * 98] = '\0';
    EXPECT_EQ(KeyFile(), keys); // P2's count stays
    EXPECT_EQ(DeleteTree("P1", "", ""), 3);
    EXPECT_EQ(Enumerate({"*", "", ""}), (std::vector<Keys>{{"P2", "", ""}}));
    EXPECT_EQ(DeleteTree("", "", ""), -1);
}

TEST_F(CaldatFiles, ReadOnlyPairTakesNoWrites) {
    const PairBytes pair = TwoProbeTree();
    ASSERT_TRUE(WritePair(stem, pair));
    ASSERT_TRUE(OpenKeyFilesReadOnly(stem + "x"));
    DataRecord data;
    ASSERT_TRUE(ReadData("P1", "S1", "", &data));
    EXPECT_EQ(WriteData("P1", "S3", "", &data, 0), -1);
    EXPECT_FALSE(WriteKey("P1", "", "", 0, 1, kWriteKeyAddChildren));
    EXPECT_FALSE(ClearKey("P1", "S1", ""));
    EXPECT_EQ(DeleteTree("P1", "", ""), -1);
    EXPECT_TRUE(Traced("writing the key record at 0 failed"));
    CloseKeyFiles();
    EXPECT_EQ(KeyFile(), pair.keys);
    EXPECT_EQ(DataFile(), pair.data);
}

// Keys that come back on their own path, twice the same key: every walk ends,
// and each record is visited once.
TEST_F(CaldatFiles, LoopingKeyChainEnds) {
    PairBytes pair;
    pair.keys = KeyBytes("P1", "", "", 1, 0) + KeyBytes("P1", "P1", "", 1, 0) +
                KeyBytes("P1", "P1", "P1", 0, 0) + KeyBytes("P1", "", "", 1, 146);
    pair.data = ProbeData(1, 2) + ProbeData(3, 4);
    Open(pair);
    EXPECT_EQ(Enumerate({"*", "", ""}), (std::vector<Keys>{{"P1", "", ""}, {"P1", "", ""}}));
    EXPECT_EQ(Enumerate({"P1", "*", ""}), (std::vector<Keys>{{"P1", "P1", ""}}));
    EXPECT_EQ(Enumerate({"P1", "P1", "*"}), (std::vector<Keys>{{"P1", "P1", "P1"}}));
    KeyRecord key;
    EXPECT_EQ(FindKey("P1", "", "", &key), 0); // the first of the two
    DataRecord data;
    ASSERT_TRUE(ReadData("P1", "", "", &data));
    EXPECT_EQ(data.Length1(), 1);
}

TEST_F(CaldatFiles, TenThousandKeysAreEachVisitedOnce) {
    constexpr int kCount = 10000;
    PairBytes pair;
    pair.keys.reserve(kCount * 2 * kKeySize);
    auto name = [](int i) { return "P" + std::to_string(100000 + i); };
    for (int i = 0; i < kCount; ++i) {
        pair.keys += KeyBytes(name(i), "", "", 1, 0);
        pair.keys += KeyBytes(name(i), "S", "", 0, 0); // no top node, skipped
    }
    pair.data = ProbeData(1, 2);
    Open(pair);
    std::set<std::string> seen;
    int hits = 0;
    for (Keys k{"*", "", ""}; NextKey(k.k1, k.k2, k.k3); k = {"*", "", ""}) {
        ++hits;
        seen.insert(k.k1);
        ASSERT_EQ(k.k2, "");
    }
    EXPECT_EQ(hits, kCount);
    EXPECT_EQ(seen.size(), std::size_t(kCount));
    EXPECT_EQ(*seen.begin(), name(0));
    EXPECT_EQ(*seen.rbegin(), name(kCount - 1));
    KeyRecord key;
    EXPECT_EQ(FindKey(name(kCount - 1), "S", "", &key), (2 * kCount - 1) * 98);
}

} // namespace
