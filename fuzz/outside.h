// Keeps what is fuzzed away from the system.
#pragma once

namespace tpu::fuzz {

// While one lives, no process can be started and no file opened, made or looked for:
// the calls fail as they do on a system that is out of everything.
class NoOutside {
  public:
    NoOutside();
    ~NoOutside();
    NoOutside(const NoOutside&) = delete;
    NoOutside& operator=(const NoOutside&) = delete;
};

// Goes to an empty folder of its own, which is removed again when the process ends,
// so that whatever gets past NoOutside finds nothing and leaves nothing behind.
void enter_scratch_folder();

}  // namespace tpu::fuzz
