#include <algorithm>
#include <kaMotion/Matching.h>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <unordered_map>

namespace ka::motion {

namespace {

using Object = ProjectSummary::Object;
using Places = std::vector<std::size_t>;
constexpr std::size_t none = ProjectSummary::none;

const std::string& nameOf(const Object& object) {
    return object.type == KA_TYPE_CURVE ? object.label : object.name;
}

class Matcher {
  public:
    Matcher(const ProjectSummary& a, const ProjectSummary& b) : _a(a), _b(b) {
        _matching.ofA.assign(a.objects.size(), none);
        _matching.ofB.assign(b.objects.size(), none);
    }

    Matching run() {
        matchSiblings(rootsOf(_a), rootsOf(_b));
        matchBelow();
        matchMoved();
        matchBelow();
        return std::move(_matching);
    }

  private:
    static Places rootsOf(const ProjectSummary& summary) {
        Places roots;
        for (std::size_t i = 0; i < summary.objects.size(); ++i)
            if (summary.objects[i].parent == none)
                roots.push_back(i);
        return roots;
    }

    void pair(std::size_t a, std::size_t b) {
        _matching.ofA[a] = b;
        _matching.ofB[b] = a;
        _pending.emplace_back(a, b);
    }

    void matchSiblings(const Places& a, const Places& b) {
        matchBy(a, b,
                [](const Object& object) { return std::tuple(object.type, nameOf(object), object.id); });
        matchBy(a, b, [](const Object& object) { return std::tuple(object.type, nameOf(object)); });
        matchBy(a, b, [](const Object& object) { return std::tuple(object.type, object.id); });
        matchByDriven(a, b);
    }

    /// What is called otherwise, as clips and blocks of a model are after its file, but drives the same.
    void matchByDriven(const Places& a, const Places& b) {
        std::map<std::pair<unsigned int, std::set<std::string>>, std::pair<Places, std::size_t>> waiting;
        const auto keyOf = [](const ProjectSummary& summary, std::size_t place) {
            return std::pair(summary.objects[place].type, drivenBelow(summary, place));
        };
        for (const std::size_t place : b)
            if (_matching.ofB[place] == none && _b.objects[place].type != KA_TYPE_CURVE)
                waiting[keyOf(_b, place)].first.push_back(place);
        for (const std::size_t place : a) {
            if (waiting.empty() || _matching.ofA[place] != none || _a.objects[place].type == KA_TYPE_CURVE)
                continue;
            const auto key = keyOf(_a, place);
            const auto found = key.second.empty() ? waiting.end() : waiting.find(key);
            if (found != waiting.end() && found->second.second < found->second.first.size())
                pair(place, found->second.first[found->second.second++]);
        }
    }

    /// The labels of the curves at and below an object.
    static std::set<std::string> drivenBelow(const ProjectSummary& summary, std::size_t place) {
        std::set<std::string> labels;
        Places pending{place};
        while (!pending.empty()) {
            const Object& object = summary.objects[pending.back()];
            pending.pop_back();
            if (object.type == KA_TYPE_CURVE)
                labels.insert(object.label);
            pending.insert(pending.end(), object.children.begin(), object.children.end());
        }
        return labels;
    }

    /// Pairs what has equal keys, in order.
    template <class KeyOf>
    void matchBy(const Places& a, const Places& b, KeyOf keyOf) {
        std::map<decltype(keyOf(_a.objects.front())), std::pair<Places, std::size_t>> waiting;
        for (const std::size_t place : b)
            if (_matching.ofB[place] == none)
                waiting[keyOf(_b.objects[place])].first.push_back(place);
        for (const std::size_t place : a) {
            if (waiting.empty() || _matching.ofA[place] != none)
                continue;
            const auto found = waiting.find(keyOf(_a.objects[place]));
            if (found != waiting.end() && found->second.second < found->second.first.size())
                pair(place, found->second.first[found->second.second++]);
        }
    }

    void matchBelow() {
        while (!_pending.empty()) {
            const auto [a, b] = _pending.back();
            _pending.pop_back();
            matchSiblings(_a.objects[a].children, _b.objects[b].children);
        }
    }

    void matchMoved() {
        std::unordered_map<kaUID, std::size_t> ofB;
        for (std::size_t i = 0; i < _b.objects.size(); ++i)
            if (_matching.ofB[i] == none)
                ofB.emplace(_b.objects[i].id, i);
        for (std::size_t i = 0; i < _a.objects.size(); ++i) {
            const auto found = _matching.ofA[i] == none ? ofB.find(_a.objects[i].id) : ofB.end();
            if (found != ofB.end() && _b.objects[found->second].type == _a.objects[i].type)
                pair(i, found->second);
        }
    }

    const ProjectSummary& _a;
    const ProjectSummary& _b;
    Matching _matching;
    std::vector<std::pair<std::size_t, std::size_t>>
        _pending; ///< pairs whose children are still to be matched
};

} // namespace

Matching matchObjects(const ProjectSummary& a, const ProjectSummary& b) {
    return Matcher(a, b).run();
}

Matching matchNodes(const ProjectSummary& a, const ProjectSummary& b) {
    Matching matching{Places(a.nodes.size(), none), Places(b.nodes.size(), none)};
    const auto tops = [](const ProjectSummary& summary) {
        return std::count_if(summary.nodes.begin(), summary.nodes.end(),
                             [](const auto& node) { return node.parent == none; });
    };
    // A single top is called after its file.
    const bool areNamed = tops(a) != 1 || tops(b) != 1;
    const auto nameOf = [areNamed](const ProjectSummary::Node& node) {
        return node.parent == none && !areNamed ? std::string() : node.name;
    };
    // Partner of the parent, name, and how many of that name came before.
    std::map<std::tuple<std::size_t, std::string, std::size_t>, std::size_t> ofB;
    std::map<std::pair<std::size_t, std::string>, std::size_t> seenInA, seenInB;
    for (std::size_t i = 0; i < b.nodes.size(); ++i) {
        const auto& node = b.nodes[i];
        ofB.emplace(std::tuple(node.parent, nameOf(node), seenInB[{node.parent, nameOf(node)}]++), i);
    }
    for (std::size_t i = 0; i < a.nodes.size(); ++i) {
        const auto& node = a.nodes[i];
        const std::size_t order = seenInA[{node.parent, nameOf(node)}]++;
        const std::size_t parent = node.parent == none ? none : matching.ofA[node.parent];
        if (parent == none && node.parent != none)
            continue;
        const auto found = ofB.find(std::tuple(parent, nameOf(node), order));
        if (found == ofB.end())
            continue;
        matching.ofA[i] = found->second;
        matching.ofB[found->second] = i;
    }
    return matching;
}

} // namespace ka::motion
