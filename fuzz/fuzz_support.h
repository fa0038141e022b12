// Shared by the harnesses: a scratch KORV_ROOT per process, file helpers, and
// the split of one input into the several files a parser reads together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace korv::fuzz {

// The host path of this process's scratch folder, made at the first call in
// $TMPDIR, else in /dev/shm where there is one:
// KORV_ROOT and KORV_CONFIGPATH point into it, logs go to a folder there, and
// the whole folder is removed at exit.
const std::string& scratch();

// Writes `bytes` to the host path, making the folders above it.
void write_file(const std::string& path, std::string_view bytes);
std::string read_file(const std::string& path);
void remove_tree(const std::string& path);

// Called once per input: every so many inputs the log files are emptied, so
// that a long run doesn't fill the disk.
void trim_logs();

// The input cut into the files a parser reads together: one part in front of
// each separator line ("\n" + separator + "\n"), in the order given, then the
// rest. A separator that isn't found leaves its part and those behind empty.
// Seeds and crash files stay readable as text this way.
std::vector<std::string_view> split_parts(const std::uint8_t* data, std::size_t size,
                                          std::initializer_list<std::string_view> separators);

// One error trace context per input, dropped at the end, so that the lines of
// failed calls don't pile up over a run.
class ErrTraceScope {
public:
    ErrTraceScope();
    ~ErrTraceScope();
    ErrTraceScope(const ErrTraceScope&) = delete;
    ErrTraceScope& operator=(const ErrTraceScope&) = delete;
};

// A small deterministic reader of leading bytes for choices.
class Choices {
public:
    Choices(const std::uint8_t*& data, std::size_t& size) : m_data(data), m_size(size) {}
    std::uint8_t byte() {
        if (m_size == 0)
            return 0;
        --m_size;
        return *m_data++;
    }

private:
    const std::uint8_t*& m_data;
    std::size_t& m_size;
};

} // namespace korv::fuzz

// Stops the run with a message and an abort, which libFuzzer reports as a
// crash with the input that caused it.
#define FUZZ_CHECK(cond, ...)                                                                      \
    do {                                                                                           \
        if (!(cond))                                                                               \
            ::korv::fuzz::fail(__FILE__, __LINE__, #cond, __VA_ARGS__);                            \
    } while (0)

namespace korv::fuzz {
[[noreturn]] void fail(const char* file, int line, const char* condition, const char* format, ...)
    __attribute__((format(printf, 4, 5)));
} // namespace korv::fuzz
