// The catalog of status names and their texts.
#pragma once

#include <string>

namespace tpu {

std::string tpu_message_text_for(const std::string& code);

}  // namespace tpu
