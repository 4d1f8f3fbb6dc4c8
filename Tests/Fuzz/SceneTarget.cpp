#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSceneFileHandler.h>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

namespace {

std::string written(const osg::NodePtr& root) {
    std::ostringstream out;
    osg::SceneFileHandler::the().write(root, out, "osg");
    return out.str();
}

osg::NodePtr readFrom(const std::string& text) {
    std::istringstream in(text);
    osg::NodePtr root = osg::SceneFileHandler::the().read(in, "osg");
    if (root != osg::NullFC)
        osg::addRefCP(root);
    return root;
}

} // namespace

/// Whatever can be read can be written and read again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool started = osg::osgInit();
    (void)started;
    osg::NodePtr first = readFrom(std::string(reinterpret_cast<const char*>(data), size));
    if (first == osg::NullFC)
        return 0;
    const std::string text = written(first);
    osg::subRefCP(first);
    osg::NodePtr second = readFrom(text);
    if (second == osg::NullFC) {
        std::fprintf(stderr, "a written scene cannot be read:\n%s\n", text.c_str());
        std::abort();
    }
    osg::subRefCP(second);
    return 0;
}
