#include <algorithm>
#include <fnmatch.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaAnimationStrip.h>
#include <kaMotion/Failure.h>
#include <kaMotion/MotionSelection.h>
#include <kaMotion/NodeChoice.h>
#include <kaMotion/Project.h>
#include <kaMotion/Text.h>
#include <set>

namespace ka::motion {

namespace {

bool isMatch(const std::string& name, const std::string& pattern) {
    return name == pattern || (isPattern(pattern) && fnmatch(pattern.c_str(), name.c_str(), 0) == 0);
}

std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), lowerCase);
    return text;
}

/// Letters put in, left out or exchanged to come from one to the other.
std::size_t distance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j < row.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t corner = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t exchanged = corner + (a[i - 1] == b[j - 1] ? 0 : 1);
            corner = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, exchanged});
        }
    }
    return row.back();
}

/// Everything that one thing may be called, the name for people first.
using Names = std::vector<std::string>;

Names namesOf(const kaAnimationCurve2D* curve) {
    const kaAnimationField* field = kaAnimationManager::the()->getField(curve->getField());
    Names names{curveLabel(curve), utf8FromLatin1(curve->getName()), std::to_string(curve->getId())};
    if (field != nullptr)
        names.push_back(utf8FromLatin1(field->attribute));
    return names;
}

Names namesOf(const kaAnimationStrip* clip) {
    return {utf8FromLatin1(clip->getName()), std::to_string(clip->getId())};
}

/// The path's end counts from each of its parts on.
Names namesOf(const osg::NodePtr& node) {
    Names names{nodeName(node)};
    const std::string path = nodePath(node);
    for (std::size_t slash = path.rfind('/'); slash != path.npos && slash > 0;) {
        slash = path.rfind('/', slash - 1);
        names.push_back(path.substr(slash == path.npos ? 0 : slash + 1));
        if (slash == path.npos)
            break;
    }
    return names;
}

/// Which of the things the patterns stand for.
std::vector<bool> matching(const std::vector<Names>& things, const std::vector<std::string>& patterns,
                           const std::string& what) {
    std::vector<bool> chosen(things.size(), patterns.empty());
    for (const std::string& pattern : patterns) {
        bool isFound = false;
        for (std::size_t i = 0; i < things.size(); ++i)
            if (std::any_of(things[i].begin(), things[i].end(),
                            [&](const std::string& name) { return !name.empty() && isMatch(name, pattern); }))
                chosen[i] = isFound = true;
        if (isFound)
            continue;
        std::vector<std::string> known;
        for (const Names& names : things)
            known.insert(known.end(), names.begin(), names.end());
        throw Failure(ExitCode::Usage,
                      "no " + what + " is called '" + oneLine(pattern) + "'" + didYouMean(pattern, known));
    }
    return chosen;
}

CurveList filtered(const CurveList& curves, const std::vector<bool>& chosen) {
    CurveList left;
    for (std::size_t i = 0; i < curves.size(); ++i)
        if (chosen[i])
            left.push_back(curves[i]);
    return left;
}

CurveList onNodes(const CurveList& curves, const std::vector<std::string>& patterns) {
    std::vector<Names> names;
    for (const kaAnimationCurve2D* curve : curves) {
        const osg::NodePtr node = curve->getParentOSGNode();
        names.push_back(node == osg::NullFC ? Names{} : namesOf(node));
    }
    return filtered(curves, matching(names, patterns, "animated node"));
}

} // namespace

std::string nearestName(const std::string& text, const std::vector<std::string>& names) {
    const std::string wanted = lowered(text);
    std::string nearest;
    std::size_t least = std::string::npos;
    for (const std::string& name : names) {
        const std::size_t most = std::max(wanted.size(), name.size());
        const std::size_t apart =
            wanted.size() > name.size() ? wanted.size() - name.size() : name.size() - wanted.size();
        if (most > 256 || 3 * apart > most)
            continue;
        const std::size_t far = distance(wanted, lowered(name));
        if (3 * far <= most && far < least) {
            least = far;
            nearest = name;
        }
    }
    return nearest;
}

std::string didYouMean(const std::string& text, const std::vector<std::string>& names) {
    const std::string nearest = nearestName(text, names);
    return nearest.empty() ? "" : " (did you mean '" + oneLine(nearest) + "'?)";
}

std::vector<kaAnimationStrip*> selectedClips(const MotionSelection& selection) {
    std::vector<kaAnimationStrip*> clips = kaAnimationManager::the()->getSceneStrips(), chosen;
    std::vector<Names> names;
    for (const kaAnimationStrip* clip : clips)
        names.push_back(namesOf(clip));
    const std::vector<bool> isChosen = matching(names, selection.clips, "clip");
    for (std::size_t i = 0; i < clips.size(); ++i)
        if (isChosen[i])
            chosen.push_back(clips[i]);
    return chosen;
}

CurveList selectedCurves(const MotionSelection& selection) {
    CurveList curves;
    if (selection.clips.empty()) {
        curves = allCurves();
    } else {
        const std::vector<kaAnimationStrip*> clips = selectedClips(selection);
        curves = curvesBelow({clips.begin(), clips.end()});
    }
    if (!selection.nodes.empty())
        curves = onNodes(curves, selection.nodes);
    if (!selection.curves.empty()) {
        std::vector<Names> names;
        for (const kaAnimationCurve2D* curve : curves)
            names.push_back(namesOf(curve));
        curves = filtered(curves, matching(names, selection.curves, "curve"));
    }
    return curves;
}

} // namespace ka::motion
