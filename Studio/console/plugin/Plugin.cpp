#include "Interpreter.h"

extern "C" __attribute__((visibility("default"))) ka::studio::PythonEngine* kaStudioPythonEngine() {
    static auto* engine = new ka::studio::Interpreter(); // until the process ends
    return engine;
}
