// Writes the seeds of caldat_pair_fuzz into the folder given, from the pairs
// the tests build byte by byte:
//   c++ -std=c++20 -I machine_configurator/tests/wizard -o caldat_pair_seeds
//       fuzz/caldat_pair_seeds.cpp && ./caldat_pair_seeds fuzz/corpus/caldat_pair
#include "caldat_pair_bytes.h"

#include <cstdio>
#include <string>

using namespace caldat_test;

namespace {

// The harness's input: flags, the key file's length, the operations, the files.
std::string Seed(bool readOnly, const PairBytes& pair, const std::string& ops) {
    std::string seed;
    seed += char(readOnly ? 1 : 0);
    seed += char(pair.keys.size() & 0xFF);
    seed += char(pair.keys.size() >> 8 & 0xFF);
    seed += char(ops.size());
    return seed + ops + pair.keys + pair.data;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: caldat_pair_seeds FOLDER\n");
        return 2;
    }
    const PairBytes tree = TwoProbeTree();
    // Each kind of operation once, on known keys and on names of the table.
    std::string every;
    for (int op = 0; op < 12; ++op)
        every += char(op | (op % 8) << 4);
    const PairBytes fragment{KeyBytes("P1", "", "", 1, 0) + KeyBytes("P1", "S1", "", 0, 146) +
                                 KeyBytes("P2", "", "", 0, 0).substr(0, 40),
                             ProbeData(1, 2) + SubData(0x10, 3)};
    const PairBytes loop{KeyBytes("P1", "", "", 1, 0) + KeyBytes("P1", "P1", "", 1, 146) +
                             KeyBytes("P1", "P1", "P1", 0, 292) + KeyBytes("P1", "", "", 1, 0),
                         ProbeData(1, 2) + ProbeData(3, 4)};
    const PairBytes outside{KeyBytes("P1", "", "", 0, 5000) + KeyBytes("P2", "", "", 0, -146) +
                                KeyBytes("P3", "", "", 0, 100),
                            ProbeData(1, 2)};
    const struct {
        const char* name;
        std::string bytes;
    } seeds[] = {
        {"tree_read", Seed(false, tree, "")},
        {"tree_every_op", Seed(false, tree, every)},
        {"tree_read_only", Seed(true, tree, every)},
        {"empty_every_op", Seed(false, PairBytes{}, every)},
        {"keys_without_data", Seed(false, PairBytes{tree.keys, ""}, every)},
        {"fragment", Seed(false, fragment, every)},
        {"loop", Seed(false, loop, every)},
        {"outside", Seed(false, outside, every)},
    };
    for (const auto& seed : seeds) {
        const std::string path = std::string(argv[1]) + "/" + seed.name;
        std::FILE* file = std::fopen(path.c_str(), "wb");
        if (!file ||
            std::fwrite(seed.bytes.data(), 1, seed.bytes.size(), file) != seed.bytes.size())
            return 1;
        std::fclose(file);
    }
    return 0;
}
