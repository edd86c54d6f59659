// From the state of the editor to a picture of its screen.
//
// Drawing is settled in two steps. settle() does all that drawing may change:
// cursors are clamped, windows scrolled, a window made when there is none.
// compose() then only looks.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "buffer/marker.h"
#include "editor/frame.h"
#include "editor/window.h"

namespace tpu {

class TPUEditor;

// What settle() found out for compose().
struct Plan {
    struct View {
        const TPUWindow* window;
        std::uint64_t first_line;  // windows on one buffer share and move its view line
        std::optional<Range> selection;
    };
    std::vector<View> views;  // in drawing order
};

Plan settle(TPUEditor& editor);
Frame compose(const TPUEditor& editor, const Plan& plan);

// Puts a line that is being typed, with its prompt, on the message line of a frame, and
// the cursor before byte `cursor` of it, which is in view.
void compose_prompt(const TPUEditor& editor, std::string_view line, std::size_t cursor,
                    Frame& frame);

}  // namespace tpu
