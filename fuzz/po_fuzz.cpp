// The .po catalogues: the parser on any text, the catalogue written back in
// plain msgid/msgstr pairs (which must parse to the same table), and the file
// load of Translate_init, whose translations must be the parser's.
#include "fuzz_support.h"
#include "ktranslate.h"
#include "po_catalog.h"

using korv::diag::detail::parse_po;
using korv::diag::detail::PoCatalog;

namespace {

std::string quoted(const std::string& text) {
    std::string out = "\"";
    for (const char c : text) {
        switch (c) {
        case '\\':
            out += "\\\\";
            break;
        case '"':
            out += "\\\"";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        default:
            out += c;
        }
    }
    return out + "\"";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const PoCatalog catalog = parse_po(text);

    std::string written;
    for (const auto& [id, translation] : catalog)
        written += "msgid " + quoted(id) + "\nmsgstr " + quoted(translation) + "\n\n";
    FUZZ_CHECK(parse_po(written) == catalog, "%zu texts do not read back from a plain catalogue",
               catalog.size());

    const std::string folder = korv::fuzz::scratch() + "/po";
    korv::fuzz::write_file(folder + "/locale/xx/fuzz.po", text);
    Translate_init("", folder, "XX", "fuzz");
    for (const auto& [id, translation] : catalog) {
        int found = 0;
        FUZZ_CHECK(Translate(id, 0, &found, "fuzz") == translation && found == 1,
                   "the loaded catalogue differs from the parsed one");
    }
    int found = 1;
    (void)Translate("fuzz: not in any catalogue", 0, &found, "fuzz");
    FUZZ_CHECK(found == 0 || catalog.count("fuzz: not in any catalogue"), "unknown key found");
    return 0;
}
