// The registry file's text: the parser and the writer, in memory.
//
// A text that parses is written out; that text must parse again to the same
// keys and values, and write out to itself.
#include "fuzz_support.h"
#include "kplatform_regfile.h"

namespace regfile = korv::platform::regfile;

namespace {

bool same(const regfile::Registry& a, const regfile::Registry& b) {
    if (a.regedit4 != b.regedit4 || a.keys().size() != b.keys().size())
        return false;
    for (std::size_t i = 0; i < a.keys().size(); ++i) {
        const regfile::Key& x = a.keys()[i];
        const regfile::Key& y = b.keys()[i];
        if (x.path != y.path || x.values.size() != y.values.size())
            return false;
        for (std::size_t v = 0; v < x.values.size(); ++v)
            if (x.values[v].name != y.values[v].name || x.values[v].type != y.values[v].type ||
                x.values[v].data != y.values[v].data)
                return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    regfile::Registry registry;
    unsigned line = 0;
    std::string reason;
    if (!regfile::parse(text, registry, line, reason))
        return 0;

    // Lookups over what was read, as the registry calls make them.
    for (const regfile::Key& key : registry.keys()) {
        FUZZ_CHECK(registry.find(regfile::lower(key.path)) != nullptr, "key not found: %s",
                   key.path.c_str());
        (void)registry.sub_keys(key.path);
    }

    const std::string written = regfile::serialise(registry);
    regfile::Registry reread;
    FUZZ_CHECK(regfile::parse(written, reread, line, reason),
               "written registry does not parse: line %u: %s", line, reason.c_str());
    FUZZ_CHECK(same(registry, reread), "written registry reads back differently");
    FUZZ_CHECK(regfile::serialise(reread) == written, "written registry writes differently");
    return 0;
}
