# What nearly every file includes is read once for each target, which takes a third off a
# build. Sources include what they use all the same.
set(TPU_COMMON_HEADERS <algorithm> <chrono> <cstdint> <functional> <map> <memory> <optional>
    <span> <string> <string_view> <utility> <vector>)
