// Windows.
#include "actions/actions.h"

namespace tpu::actions {

void split_window(TPUEditor& editor) {
    editor.split_window_horizontal();
    editor.set_message("Window split");
}

void next_window(TPUEditor& editor) {
    editor.next_window();
    editor.set_message("Next window");
}

}  // namespace tpu::actions
