#include "kbase64.h"
#include "stl_utilities.h"

namespace korv {

bool stl_encode_base64(std::string& text) {
    const std::size_t length = text.size();
    const std::size_t expected = KBase64_EncodedSize(length) - 1;
    // The encoder's NUL lands on the string's own terminator.
    text.resize(expected);
    const std::size_t written = KBase64_Encode(text.data(), text.data(), length);
    if (written != expected) {
        text.clear();
        KERRTRACE("stl_encode_base64(): KBase64_Encode() returned %zd instead of %zu",
                  static_cast<std::ptrdiff_t>(written), expected);
        return false;
    }
    return true;
}

bool stl_decode_base64(std::string& text) {
    std::size_t length = text.size();
    while (length > 0 && text[length - 1] == '\0')
        --length;
    const std::ptrdiff_t written = KBase64_Decode(text.data(), text.data(), length);
    if (written < 0) {
        KERRTRACE("stl_decode_base64(): KBase64_Decode(%zu) failed (%zu)", length,
                  static_cast<std::size_t>(written));
        text.clear();
        return false;
    }
    text.resize(static_cast<std::size_t>(written));
    return true;
}

} // namespace korv
