// The document docs/attributes.md.
#pragma once

#include <string>

namespace tpu {

// All of it, in Markdown.
std::string attribute_page();

}  // namespace tpu
