#include <clocale>
#include <gmock/gmock.h>

// The locale is the environment's, as it is in every program with a QApplication: no test may depend on it.
int main(int argc, char** argv) {
    std::setlocale(LC_ALL, "");
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
