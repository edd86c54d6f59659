#include <gtest/gtest.h>

#include <clocale>

int main(int argc, char** argv) {
    // Widths of characters are the locale's; nothing else may depend on it.
    if (!std::setlocale(LC_CTYPE, "C.UTF-8")) std::setlocale(LC_CTYPE, "en_US.UTF-8");
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
