#include "builtins/table.h"

#include <array>

#include "builtins/families.h"

namespace tpu {

const BuiltinTable& all_builtins() {
    using namespace builtins;
    static const std::array kFamilies = {
        movement(), editing(),  search(),    display(),   control(),    testing(),  texts(),
        objects(),  patterns(), input(),     names(),     attributes(), windows(),  buffers(),
        keys(),     learn(),    processes(), clipboard(), journal(),    sections(), toolkit(),
    };
    static const BuiltinTable kTable{kFamilies};
    return kTable;
}

}  // namespace tpu
