// The catalog of the language's status names and what each of them means.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tpu {

struct CatalogMessage {
    std::string_view name;  // such as TPU$_STRNOTFOUND
    long long severity;     // 1 informational, 2 warning, 3 error, 4 fatal
    std::string_view text;  // placeholders stand in single quotes, as in 'file-spec'
};

// Every row, in byte order of the names. All text in it is NUL-terminated.
std::span<const CatalogMessage> message_catalog();

// The row of exactly this name, prefix and case included; null when there is none.
const CatalogMessage* tpu_lookup_message(const std::string& name);

// The text for a status name in any case, with or without its prefix TPU$_. A code
// that the catalog does not know comes back as it was given.
std::string tpu_message_text_for(const std::string& code);

}  // namespace tpu
