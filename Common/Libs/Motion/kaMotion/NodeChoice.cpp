#include <fnmatch.h>
#include <kaMotion/Failure.h>
#include <kaMotion/NodeChoice.h>
#include <kaMotion/Project.h>
#include <kaMotion/Text.h>
#include <set>

namespace ka::motion {

namespace {

bool fits(const std::string& text, const std::string& pattern) {
    return text == pattern || fnmatch(pattern.c_str(), text.c_str(), 0) == 0;
}

/// The last parts of a path, as many as the pattern has.
std::string endOf(const std::string& path, const std::string& pattern) {
    std::size_t at = path.size();
    for (std::size_t slash = pattern.find('/'); slash != pattern.npos; slash = pattern.find('/', slash + 1)) {
        at = at == 0 ? path.npos : path.rfind('/', at - 1);
        if (at == path.npos)
            return path;
    }
    at = at == 0 ? path.npos : path.rfind('/', at - 1);
    return at == path.npos ? path : path.substr(at + 1);
}

bool isMeant(const osg::NodePtr& node, const std::string& text) {
    const std::string name = nodeName(node);
    if (name.empty())
        return false;
    return fits(name, text) || (text.find('/') != text.npos && fits(endOf(nodePath(node), text), text));
}

} // namespace

std::vector<osg::NodePtr> nodesBelow(const osg::NodePtr& root) {
    std::vector<osg::NodePtr> nodes, pending{root};
    std::set<osg::UInt32> seen;
    while (!pending.empty()) {
        osg::NodePtr node = pending.back();
        pending.pop_back();
        if (node == osg::NullFC || !seen.insert(node.getFieldContainerId()).second)
            continue;
        nodes.push_back(node);
        for (osg::UInt32 i = node->getNChildren(); i-- > 0;)
            pending.push_back(node->getChild(i));
    }
    return nodes;
}

std::string nodePath(const osg::NodePtr& node) {
    constexpr int deepest = 1000; // a scene that is its own ancestor still has a path
    std::string path;
    int depth = 0;
    for (osg::NodePtr at = node; at != osg::NullFC && depth < deepest; at = at->getParent(), ++depth) {
        const std::string name = nodeName(at);
        if (!name.empty())
            path = path.empty() ? name : name + "/" + path;
    }
    return path;
}

bool isPattern(const std::string& text) {
    return text.find_first_of("*?[") != text.npos;
}

std::vector<osg::NodePtr> matchingNodes(const osg::NodePtr& root, const std::string& text) {
    std::vector<osg::NodePtr> nodes;
    for (const osg::NodePtr& node : nodesBelow(root))
        if (isMeant(node, text))
            nodes.push_back(node);
    if (nodes.empty())
        throw Failure(ExitCode::Usage, "no node is called '" + oneLine(text) + "'");
    return nodes;
}

osg::NodePtr chosenNode(const osg::NodePtr& root, const std::string& text) {
    const std::vector<osg::NodePtr> nodes = matchingNodes(root, text);
    if (nodes.size() > 1)
        throw Failure(ExitCode::Usage, "'" + oneLine(text) + "' is the name of " +
                                           counted(nodes.size(), "node") + ": " +
                                           oneLine(nodePath(nodes[0])) + ", " + oneLine(nodePath(nodes[1])) +
                                           (nodes.size() > 2 ? ", ..." : ""));
    return nodes.front();
}

} // namespace ka::motion
