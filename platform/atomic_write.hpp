#pragma once
#include <filesystem>
#include <string_view>

namespace mw {

// Replaces `target` with `bytes` so that readers see the old file or the new
// one, never a mix: an exclusively created temporary beside it (never a link
// followed), written fully and flushed, then renamed over the target with mode
// 0644. Returns false, leaving the target untouched, when any step fails.
// `unflushed` skips the flush to disk: readers still never see a mix, but a
// power cut may lose the new file; for records rewritten all the time.
enum class Flush { toDisk, unflushed };
bool writeFileAtomically(const std::filesystem::path& target, std::string_view bytes, Flush flush = Flush::toDisk);

}  // namespace mw
