// How the program finds the Qt host: a display that cannot be opened gives a
// reason, not a crash; a dialog becomes visible soon after the process starts.
#include "qt_test_support.h"

#include <cstdio>
#include <ctime>
#include <sstream>
#include <unistd.h>

namespace {

// Runs this program with `probe` under `env` (an `env` argument list), both
// output streams together; the exit status in `status`.
std::string run_probe(const std::string& env, const char* probe, int& status) {
    char self[4096] = {};
    const ssize_t n = ::readlink("/proc/self/exe", self, sizeof self - 1);
    self[n > 0 ? n : 0] = 0;
    const std::string command =
        "env -u KORV_UI_SCRIPT -u QT_QPA_PLATFORM " + env + " '" + self + "' " + probe + " 2>&1";
    std::string out;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe)
        return out;
    char buffer[4096];
    for (std::size_t got; (got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        out.append(buffer, got);
    status = ::pclose(pipe);
    return out;
}

int lines_with(const std::string& text, const std::string& part) {
    std::istringstream lines(text);
    int count = 0;
    for (std::string line; std::getline(lines, line);)
        count += line.find(part) != std::string::npos;
    return count;
}

long long now_ns() {
    timespec t{};
    clock_gettime(CLOCK_MONOTONIC, &t);
    return t.tv_sec * 1000000000LL + t.tv_nsec;
}

} // namespace

TEST(QtHostSelection, ADisplayThatCannotBeOpenedMeansNoHostWithAReason) {
    const std::pair<const char*, const char*> rows[] = {
        {"DISPLAY=:4711", "cannot show dialogs: the display :4711 cannot be opened"},
        {"-u DISPLAY", "cannot show dialogs: DISPLAY is not set"}};
    for (const auto& [env, reason] : rows) {
        SCOPED_TRACE(env);
        int status = -1;
        const std::string out =
            run_probe(std::string(env) + " KORV_LOG_DIR=-", "--no-host-probe", status);
        EXPECT_EQ(status, 0) << out;
        EXPECT_EQ(lines_with(out, "result -1 answer 0"), 1) << out;
        // One line for a person, besides the two error log lines.
        EXPECT_EQ(lines_with(out, "ui_qt_tests: no dialog can be shown: KORV_UI_SCRIPT is not set "
                                  "and the toolkit module "),
                  1)
            << out;
        EXPECT_EQ(lines_with(out, reason), 3) << out;
    }
}

TEST(QtHostSelection, TheSampleDialogIsVisibleSoonAfterTheProcessStarts) {
    std::string why;
    ASSERT_TRUE(qt_test::start_x_server(why)) << why;
    const long long start = now_ns();
    int status = -1;
    const std::string out = run_probe("", "--startup-probe", status);
    long long exposed = 0;
    int result = 0;
    const std::size_t line = out.find("exposed ");
    ASSERT_NE(line, std::string::npos) << out;
    ASSERT_EQ(std::sscanf(out.c_str() + line, "exposed %lld result %d", &exposed, &result), 2);
    EXPECT_EQ(result, 2);
    EXPECT_EQ(status, 0) << out; // and the process ended cleanly, the toolkit still loaded
    const double ms = static_cast<double>(exposed - start) / 1e6;
    std::printf("start to visible sample dialog: %.0f ms\n", ms);
    EXPECT_GT(ms, 0);
    // Generous: the aim is far lower, but the machine is shared and may run a sanitizer build.
    EXPECT_LT(ms, 3000);
}
