// Code of texts that are run again and again without a Stmt to keep it: what keys and
// timers run, what EXECUTE replays.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tpu {

struct StmtCode;

// Text to shared code. Bounded: a full cache is emptied, which changes no result.
class CodeCache {
  public:
    using Shared = std::shared_ptr<const StmtCode>;

    template <class Make>
    Shared get(const std::string& text, Make make) {
        auto found = codes_.find(text);
        if (found != codes_.end()) return found->second;
        Shared code = make();
        if (text.size() > kLongest) return code;
        if (codes_.size() == kMost) codes_.clear();
        codes_.emplace(text, code);
        return code;
    }

  private:
    static constexpr std::size_t kMost = 1024;
    static constexpr std::size_t kLongest = 4096;  // bytes of text

    std::unordered_map<std::string, Shared> codes_;
};

}  // namespace tpu
