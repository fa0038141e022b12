// KIniData: the content string, the file load and the save, under each
// combination of the behaviour flags (the first input byte).
//
// Besides crashes it checks what callers rely on: a content string that loads
// loads again to itself, a copy equals its original, and a file saved after an
// edit reads back to the same content.
#include "KIniData.h"
#include "fuzz_support.h"

#include <cstdlib>
#include <cstring>

using korv::KIniData;
using korv::fuzz::scratch;

namespace {

// A value the edit sets: printable bytes of the input, so that it stays one line.
std::string printable(std::string_view text) {
    std::string out;
    for (const char c : text.substr(0, 40))
        if (c >= 0x20 && c < 0x7f)
            out += c;
    return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    korv::fuzz::Choices choices(data, size);
    const std::uint32_t flags = choices.byte() & korv::KINI_ALL_FLAGS;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::string path = scratch() + "/data/file.ini";
    korv::fuzz::trim_logs();

    KIniData loaded(flags);
    if (loaded.SetContentString(text)) {
        const std::string content = loaded.GetContentString();
        KIniData again(flags);
        FUZZ_CHECK(again.SetContentString(content), "content string does not load: %s",
                   again.error_text.c_str());
        FUZZ_CHECK(again.GetContentString() == content, "content string changes on reload");
        const KIniData copy(loaded);
        FUZZ_CHECK(copy == loaded, "copy differs from its original");
    }

    // The flat interface stops at the first NUL, as a C caller's text does.
    if (korv::KIniDataHandle handle = korv::KIniData_Create(flags)) {
        const std::string c_text(text.data(), ::strnlen(text.data(), text.size()));
        if (korv::KIniData_SetContentString(handle, c_text.c_str())) {
            char* content = korv::KIniData_GetContentString(handle);
            FUZZ_CHECK(content != nullptr, "no content string after a load");
            std::free(content);
        }
        korv::KIniData_Destroy(handle);
    }

    korv::fuzz::write_file(path, text);
    KIniData file(path, flags);
    if (file.Open(path)) {
        const std::vector<std::string> sections = file.GetSectionNames();
        const std::string section = sections.empty() ? "fuzz" : sections.front();
        const std::string value = printable(text);
        // A relaxed line without '=' is all value: setting it would replace its
        // name too, and the new line could read as a header or a comment.
        const korv::KIniDataSection* before = file.GetSection(section);
        const korv::KIniDataEntry* bare = before ? before->GetEntry("fuzz_key") : nullptr;
        const bool keeps_name = !bare || bare->value_pos > 0;
        const bool set = keeps_name && file.SetStringEntry(section, "fuzz_key", value);
        if (file.Save()) {
            KIniData reread(flags);
            FUZZ_CHECK(reread.Open(path), "saved file does not open: %s",
                       reread.error_text.c_str());
            FUZZ_CHECK(reread.GetContentString() == file.GetContentString(),
                       "saved file reads back differently");
            std::string back;
            if (set)
                FUZZ_CHECK(reread.HasEntry(section, "fuzz_key"), "edited entry lost on save");
            (void)reread.GetStringEntry(section, "fuzz_key", back);
        }
    }
    korv::fuzz::remove_tree(scratch() + "/data");
    return 0;
}
