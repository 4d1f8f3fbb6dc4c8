#include "SceneFileLinker.h"
#include "SceneFileParser.h"

#include <OpenSG/OSGLoader.h>
#include <vector>

namespace osg {

namespace {

/// @return false when there is more than `limit` bytes, or the stream fails.
bool readAll(std::istream& stream, UInt64 limit, std::string& text) {
    std::vector<char> buffer(1U << 16U);
    while (stream) {
        stream.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        const auto count = static_cast<std::size_t>(stream.gcount());
        if (count > limit - text.size())
            return false;
        text.append(buffer.data(), count);
    }
    return !stream.bad();
}

} // namespace

OSGLoader::~OSGLoader() {
    dropScene();
}

void OSGLoader::dropScene() {
    if (!ContainerAccess::isGone(_root) && _root.getRefCount() == 0)
        releaseRefCP(_root);
    _root = NullFC;
}

NodePtr OSGLoader::takeRootNode() {
    const NodePtr root = _root;
    _root = NullFC;
    return root;
}

bool OSGLoader::scanStream(std::istream& stream) {
    dropScene();
    SceneFileLog log;
    log.setFile(_fileName);
    std::string text;
    if (!readAll(stream, _sizeLimit, text)) {
        log.fatal(0, stream.bad() ? "cannot be read"
                                  : "is longer than " + std::to_string(_sizeLimit) + " bytes");
    } else {
        SceneFileContents contents;
        SceneFileParser parser(text, contents, log);
        parser.setDepthLimit(_depthLimit);
        if (parser.parse())
            _root = SceneFileLinker(contents, log).link();
    }
    _messages = log.messages();
    return _root != NullFC;
}

} // namespace osg
