#include "CurvePictures.h"
#include "TrackPicture.h"

#include <OpenSG/OSGBaseFunctions.h>
#include <cstdio>
#include <kaMotion/Canvas.h>
#include <string>

namespace {

bool save(const QImage& image, const std::string& path) {
    if (image.save(QString::fromStdString(path)))
        return true;
    std::fprintf(stderr, "cannot write %s\n", path.c_str());
    return false;
}

} // namespace

/// Draws the pictures of the pages into a folder.
int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: ka-docs-pictures FOLDER\n");
        return 2;
    }
    osg::osgInit(argc, argv);
    ka::motion::startDrawing();
    const std::string folder = argv[1];
    const bool saved = save(drawTangentTypes(), folder + "/tangent-types.png") &&
                       save(drawLengthModes(), folder + "/length-modes.png") &&
                       save(drawTracks(), folder + "/track.png");
    return saved ? 0 : 4;
}
