#include "cli/Options.h"

namespace ka::tools {

void addModelOptions(Command& command, ProjectFiles& files) {
    command
        .quantity("--fps", files.import.framesPerSecond, {{"source", 0.0}}, 1e6,
                  "frames to a second of the model; source: the rate of its own keys")
        .showsDefault();
    command
        .option("--tolerance", files.import.rotationTolerance,
                "degrees that a converted rotation may be off between keys")
        .aboveZero(360)
        .showsDefault();
    command.option("--take", files.import.take, "the take of a model to import, by name (default: all)")
        .takes("NAME");
    command
        .quantity("--units", files.import.unit,
                  {{"mm", 0.001},
                   {"cm", 0.01},
                   {"dm", 0.1},
                   {"m", 1.0},
                   {"km", 1000.0},
                   {"in", 0.0254},
                   {"ft", 0.3048},
                   {"yd", 0.9144}},
                  1e30, "scene units for a unit of the model, or what the model is in, to become metres")
        .showsDefault();
    command.choice("--up", files.import.isZUp, {{"y", false}, {"z", true}},
                   "the axis of the model that points up; the scene's is y");
    command.option("--reader-memory", files.reader.megabytes, "megabytes that reading a model may take")
        .between(16, 1 << 20)
        .showsDefault();
    command.option("--reader-seconds", files.reader.seconds, "seconds that the reader of a model may take")
        .aboveZero(86400)
        .showsDefault();
    command.flag("--trust", files.reader.unconfined,
                 "read a model even where the system cannot confine its reader");
}

void addProjectOptions(Command& command, ProjectFiles& files) {
    command.option("FILE", files.file, "a model, a scene (.osg) or an animation document (.xml)").needed();
    command.option("--animation", files.animation, "the animation document that goes with a scene")
        .takes("PATH");
    addModelOptions(command, files);
}

void addFormatOption(Command& command, Format& format) {
    command.choice("--format", format, {{"csv", Format::Csv}, {"json", Format::Json}}, "csv or json");
}

void addTextFormatOption(Command& command, TextFormat& format) {
    command.choice("--format", format, {{"text", TextFormat::Text}, {"json", TextFormat::Json}},
                   "text or json");
}

void addObjectOption(Command& command, std::string& object) {
    command
        .option("--object", object, "a clip, track, block or curve by name or id (default: the first clip)")
        .takes("NAME");
}

void addOutputOption(Command& command, std::string& path, const std::string& what) {
    command.option("-o,--output", path, what).takes("PATH").needed();
}

void addSceneOutputs(Command& command, SavedFiles& outputs, const std::string& documentOption) {
    addOutputOption(command, outputs.scene, "the scene to write (.osg)");
    command.option(documentOption, outputs.animation, "the animation document to write (.xml)")
        .takes("PATH")
        .needed();
}

} // namespace ka::tools
