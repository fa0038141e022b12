#include "bench_data.h"

#include <cstdint>
#include <cstdio>

namespace korv::bench {

namespace {

// A fixed generator, so every run measures the same bytes.
class Random {
public:
    std::uint32_t next(std::uint32_t bound) {
        m_state ^= m_state << 13;
        m_state ^= m_state >> 7;
        m_state ^= m_state << 17;
        return static_cast<std::uint32_t>(m_state % bound);
    }

private:
    std::uint64_t m_state = 0x9E3779B97F4A7C15ULL;
};

const char* const kWords[] = {"Drive",  "Table", "Stand",     "Axis",   "Probe",  "Speed",
                              "Offset", "Limit", "Interface", "Port",   "Camera", "Proxy",
                              "Order",  "Unit",  "Scale",     "Filter", "Mode",   "Timeout"};
constexpr std::uint32_t kWordCount = sizeof kWords / sizeof kWords[0];

void append_value(std::string& text, Random& random) {
    char buffer[160];
    switch (random.next(5)) {
    case 0:
        std::snprintf(buffer, sizeof buffer, "%u", random.next(1000000));
        break;
    case 1:
        std::snprintf(buffer, sizeof buffer, "%d.%03u", static_cast<int>(random.next(2000)) - 1000,
                      random.next(1000));
        break;
    case 2:
        std::snprintf(buffer, sizeof buffer, "C:\\ProgramData\\Korv\\%s\\%s_%u.dat",
                      kWords[random.next(kWordCount)], kWords[random.next(kWordCount)],
                      random.next(100));
        break;
    case 3:
        std::snprintf(buffer, sizeof buffer, "%s %s %s", kWords[random.next(kWordCount)],
                      kWords[random.next(kWordCount)], kWords[random.next(kWordCount)]);
        break;
    default:
        std::snprintf(buffer, sizeof buffer, "COM%u,%u,8,N,1", random.next(9) + 1,
                      9600u << random.next(4));
        break;
    }
    text += buffer;
}

} // namespace

std::string make_ini_text(std::size_t target_bytes) {
    std::string text;
    text.reserve(target_bytes + 4096);
    Random random;
    text += "; generated machine configuration\r\n# for load and save measurements\r\n";
    // Section numbers run through a permutation, so the file is not sorted.
    const std::uint32_t stride = 7919;
    char buffer[200];
    for (std::uint32_t n = 0; text.size() < target_bytes; ++n) {
        const std::uint32_t id = (n * stride) % 1000003;
        std::snprintf(buffer, sizeof buffer,
                      random.next(4) ? "[%s_%06u]\r\n" : "[%s_%06u] ; old\r\n",
                      kWords[id % kWordCount], id);
        text += buffer;
        const std::uint32_t entries = 8 + random.next(24);
        for (std::uint32_t e = 0; e < entries; ++e) {
            switch (random.next(12)) {
            case 0:
                text += "; ";
                text += kWords[random.next(kWordCount)];
                text += " settings follow\r\n";
                break;
            case 1:
                text += "\r\n";
                break;
            default:
                break;
            }
            const char* word = kWords[(e + id) % kWordCount];
            switch (random.next(4)) {
            case 0:
                std::snprintf(buffer, sizeof buffer, "%s%02u = ", word, e);
                break;
            case 1:
                std::snprintf(buffer, sizeof buffer, "  %s_%02u=", word, e);
                break;
            default:
                std::snprintf(buffer, sizeof buffer, "%s%02u=", word, e);
                break;
            }
            text += buffer;
            append_value(text, random);
            if (random.next(6) == 0)
                text += " ; was 0";
            text += "\r\n";
        }
    }
    return text;
}

} // namespace korv::bench
