#include "kplatform_replace.h"

#include <algorithm>
#include <cstdint>

namespace korv::platform {

bool replace_file(const std::string& path, std::string_view content, ReplaceFailure* failure) {
    const auto put_all = [content](FileHandle file) {
        constexpr std::size_t kChunk = std::size_t{1} << 30;
        for (std::size_t done = 0; done < content.size();) {
            const auto want = static_cast<std::uint32_t>(std::min(content.size() - done, kChunk));
            std::uint32_t put = 0;
            if (!write_file(file, content.data() + done, want, put))
                return false;
            done += put;
        }
        return true;
    };
    return replace_file(path, put_all, failure);
}

} // namespace korv::platform
