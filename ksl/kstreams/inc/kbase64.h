// Base64 (RFC 4648 alphabet, '=' padding, no line wrapping, no white space).
//
// Both directions work in place: `target` may be `source`.
//
// The length argument has a second meaning. A length at or above the largest
// positive size (PTRDIFF_MAX) is the bit-inverted length (~n) and asks for no
// terminating NUL; a normal length gets a NUL written behind the result.
#pragma once

#include <cstddef>

namespace korv {

// Encodes the bytes into `target`, which needs KBase64_EncodedSize(length)
// bytes. Returns the number of characters written, without the NUL.
std::size_t KBase64_Encode(char* target, const void* source, std::size_t length);

// Decodes the text into `target`, which needs KBase64_DecodedSize(source, length)
// bytes. Returns the number of bytes written, without the NUL, or -1 with a line
// in the error trace. After a failure the target may hold part of the result.
std::ptrdiff_t KBase64_Decode(void* target, const char* source, std::size_t length);

// The target size that KBase64_Encode needs for `length` (same convention):
// ((n + 2) / 3) * 4, plus 1 for the NUL unless the length is inverted.
std::size_t KBase64_EncodedSize(std::size_t length);

// The target size that KBase64_Decode needs for the text (same convention): the
// decoded bytes, plus 1 for the NUL unless the length is inverted. For a text
// that is no multiple of 4 long, an upper bound.
std::size_t KBase64_DecodedSize(const char* text, std::size_t length);

} // namespace korv
