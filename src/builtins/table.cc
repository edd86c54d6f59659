// All built-ins: the families, and finding a row by its name.
#include <array>
#include <unordered_map>

#include "builtins/families.h"
#include "editor/editor.h"

namespace tpu {

std::span<const std::span<const Builtin>> builtin_families() {
    using namespace builtins;
    static const std::array kFamilies = {
        movement(), editing(),  search(),    display(),   control(),    testing(),  texts(),
        objects(),  patterns(), input(),     names(),     attributes(), windows(),  buffers(),
        keys(),     learn(),    processes(), clipboard(), journal(),    sections(), toolkit(),
    };
    return kFamilies;
}

const Builtin* find_builtin(std::string_view name) {
    static const auto kByName = [] {
        std::unordered_map<std::string_view, const Builtin*> rows;
        for (std::span<const Builtin> family : builtin_families()) {
            for (const Builtin& row : family) rows.emplace(row.name, &row);
        }
        return rows;
    }();
    auto found = kByName.find(name);
    return found == kByName.end() ? nullptr : found->second;
}

Buffer& Call::buffer() const {
    return *editor.current_buffer;
}

}  // namespace tpu
