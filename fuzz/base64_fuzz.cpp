// Base64: the decoder on any text, into a buffer of exactly the size it asks
// for, with and without the terminating NUL; the encoder on any bytes, whose
// text must decode to them again; and the in-place string forms.
#include "fuzz_support.h"
#include "kbase64.h"
#include "stl_utilities.h"

#include <cstring>
#include <memory>

using namespace korv;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const korv::fuzz::ErrTraceScope context;
    const char* text = reinterpret_cast<const char*>(data);

    // Buffers of the exact size asked for, so that the sanitizer sees any byte beyond.
    for (const bool terminated : {true, false}) {
        const std::size_t length = terminated ? size : ~size;
        const std::size_t need = KBase64_DecodedSize(text, length);
        FUZZ_CHECK(need >= (terminated ? 1u : 0u), "decoded size %zu leaves no room", need);
        const auto target = std::make_unique<char[]>(need ? need : 1);
        const std::ptrdiff_t got = KBase64_Decode(target.get(), text, length);
        if (got < 0)
            continue;
        FUZZ_CHECK(static_cast<std::size_t>(got) + (terminated ? 1 : 0) <= need,
                   "decoded %td bytes into %zu", got, need);
        if (terminated)
            FUZZ_CHECK(target[static_cast<std::size_t>(got)] == '\0', "no NUL behind the result");
        // What decodes encodes back to a text that decodes to the same bytes.
        std::string bytes(target.get(), static_cast<std::size_t>(got));
        std::string again = bytes;
        FUZZ_CHECK(stl_encode_base64(again) && stl_decode_base64(again) && again == bytes,
                   "decoded bytes do not survive a round trip");
    }

    for (const bool terminated : {true, false}) {
        const std::size_t length = terminated ? size : ~size;
        const std::size_t need = KBase64_EncodedSize(length);
        FUZZ_CHECK(need == (size + 2) / 3 * 4 + (terminated ? 1 : 0), "encoded size %zu for %zu",
                   need, size);
        const auto target = std::make_unique<char[]>(need ? need : 1);
        const std::size_t written = KBase64_Encode(target.get(), data, length);
        FUZZ_CHECK(written == (size + 2) / 3 * 4, "encoded %zu characters for %zu bytes", written,
                   size);
        const std::size_t decode_need = KBase64_DecodedSize(target.get(), ~written);
        const auto back = std::make_unique<char[]>(decode_need ? decode_need : 1);
        const std::ptrdiff_t got = KBase64_Decode(back.get(), target.get(), ~written);
        FUZZ_CHECK(got == static_cast<std::ptrdiff_t>(size) &&
                       (size == 0 || std::memcmp(back.get(), data, size) == 0),
                   "encoded text decodes to %td other bytes", got);
    }

    // The string forms work in place.
    std::string in_place(text, size);
    (void)stl_decode_base64(in_place);
    std::string original(text, size);
    std::string encoded = original;
    FUZZ_CHECK(stl_encode_base64(encoded), "string does not encode");
    FUZZ_CHECK(stl_decode_base64(encoded) && encoded == original,
               "string does not survive a round trip");
    return 0;
}
