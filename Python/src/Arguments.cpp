#include "Arguments.h"

#include <kaFile.h>
#include <kaMotion/Project.h>

namespace py = pybind11;

namespace ka::python {

std::vector<kaAnimationObject*> objectsOf(const std::vector<ObjectReference>& references) {
    std::vector<kaAnimationObject*> objects;
    objects.reserve(references.size());
    for (const ObjectReference& reference : references)
        objects.push_back(&reference.object());
    return objects;
}

std::vector<kaAnimationObject*> objectsOrPlayable(const SessionPtr& session, const OptionalObjects& objects) {
    return objects ? objectsOf(*objects) : session->project().playable("");
}

std::pair<float, float> rangeOf(const std::vector<kaAnimationObject*>& objects, OptionalFrame begin,
                                OptionalFrame end) {
    const auto [first, last] = motion::frameRange(objects);
    const std::pair range(begin ? frameOf(*begin, "begin") : first, end ? frameOf(*end, "end") : last);
    if (range.first > range.second)
        raise(ErrorKind::Usage, "the begin must not lie behind the end");
    return range;
}

double positive(double number, const char* what) {
    if (!(number > 0.0) || !(number < 1e6))
        throw py::value_error(std::string(what) + " must be above 0 and below a million");
    return number;
}

void writeFile(const Path& path, const std::string& bytes) {
    std::string error, warning;
    if (!kaFile::writeSafely(path.string(), bytes, error, warning))
        raise(ErrorKind::Output, error);
}

} // namespace ka::python
