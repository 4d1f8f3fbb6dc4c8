#include <OpenSG/OSGBaseFunctions.h>
#include <clocale>
#include <gmock/gmock.h>

// The locale is the environment's, as it is in every program with a QApplication: no test may depend on it.
// The scene graph runs before the first fixture is made: until then a host can make and look up nothing.
int main(int argc, char** argv) {
    std::setlocale(LC_ALL, "");
    osg::osgInit(argc, argv);
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
