// The lines that assertions leave behind.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace tpu {

// A program may assert without end, so there are as many lines as people may want to read,
// and room of its own for those about failures. What is left out is counted.
class TestReport {
  public:
    enum class Line { passed, failed, heading };

    const std::vector<std::string>& lines() const { return lines_; }
    long long left_out() const { return left_out_; }

    void add(Line kind, std::string line) {
        constexpr std::size_t kMostLines = 100'000, kMostBytes = std::size_t{64} << 20;
        const std::size_t share = kind == Line::failed ? 2 : 1;
        if (lines_.size() >= share * kMostLines || bytes_ + line.size() > share * kMostBytes) {
            ++left_out_;
            return;
        }
        bytes_ += line.size();
        lines_.push_back(std::move(line));
    }

  private:
    std::vector<std::string> lines_;
    std::size_t bytes_ = 0;
    long long left_out_ = 0;
};

}  // namespace tpu
