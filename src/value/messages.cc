#include "value/messages.h"

#include <algorithm>

#include "text/ascii.h"

namespace tpu {

namespace {

constexpr std::string_view kPrefix = "TPU$_";

}  // namespace

const CatalogMessage* tpu_lookup_message(const std::string& name) {
    std::span<const CatalogMessage> rows = message_catalog();
    auto row = std::lower_bound(rows.begin(), rows.end(), name,
                                [](const CatalogMessage& message, const std::string& wanted) {
                                    return message.name < wanted;
                                });
    return row != rows.end() && row->name == name ? &*row : nullptr;
}

std::string tpu_message_text_for(const std::string& code) {
    std::string name = ascii::upper(code);
    if (!name.starts_with(kPrefix)) name.insert(0, kPrefix);
    const CatalogMessage* message = tpu_lookup_message(name);
    return message ? std::string(message->text) : code;
}

}  // namespace tpu
