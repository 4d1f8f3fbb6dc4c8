#include "check/AttributeRules.h"

#include <QXmlAttributes>
#include <algorithm>
#include <filesystem>
#include <kaAnimationManager.h>
#include <kaAnimationXmlNumber.h>
#include <kaControlPoint2D.h>
#include <kaDocumentParser.h>
#include <kaMotion/DocumentReader.h>
#include <kaMotion/Failure.h>
#include <kaMotion/Text.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>

namespace ka::motion {

namespace {

constexpr int rootDepth = 1, elementDepth = 2, childDepth = 3;

/// The tag that the writer gives an element.
const char* tagOf(Kind kind) {
    return kind == Kind::Sequence ? "field" : kindName(kind);
}

/// The tag of an element's references; null for elements without any.
const char* referenceTag(Kind kind) {
    switch (kind) {
    case Kind::Curve:
        return "point";
    case Kind::Block:
        return "block";
    case Kind::Track:
        return "obj";
    case Kind::Clip:
        return "track";
    default:
        return nullptr;
    }
}

enum Place { Position, InTangent, OutTangent, PlaceCount };
constexpr const char* placeTags[PlaceCount] = {"position", "inTangent", "outTangent"};

bool isKnownTag(const QString& tag) {
    for (const char* known : {"field", "point", "curve", "block", "track", "clip"})
        if (tag == QLatin1String(known))
            return true;
    return false;
}

/// Of an attribute that stands twice readers take the last.
QString valueOf(const QXmlAttributes& attributes, const char* name) {
    QString value;
    for (int i = 0; i < attributes.count(); ++i)
        if (attributes.qName(i) == QLatin1String(name))
            value = attributes.value(i);
    return value;
}

/// Tells which attributes of an element stand there twice. It sorts, because a hostile element has tens of
/// thousands of them, and is kept from element to element, so that memory is asked for once.
class Repetitions {
  public:
    void setUp(const QXmlAttributes& attributes) {
        const auto count = static_cast<std::size_t>(attributes.count());
        _order.resize(count);
        _isRepeated.assign(count, false);
        for (std::size_t i = 0; i < count; ++i)
            _order[i] = {attributes.qName(static_cast<int>(i)), i};
        std::sort(_order.begin(), _order.end());
        for (std::size_t i = 1; i < count; ++i)
            _isRepeated[_order[i].second] = _order[i].first == _order[i - 1].first;
    }

    /// Whether one of the same name stands before it.
    bool has(int place) const { return _isRepeated[static_cast<std::size_t>(place)]; }

  private:
    std::vector<std::pair<QString, std::size_t>> _order; ///< by name, then by place
    std::vector<bool> _isRepeated;
};

/// Opening one would wait for somebody to write to it. A pipe without a name ("<(...)") has its partner.
bool isNamedPipe(const std::string& path) {
    struct stat file {};
    struct statfs system {};
    return stat(path.c_str(), &file) == 0 && S_ISFIFO(file.st_mode) && statfs(path.c_str(), &system) == 0 &&
           system.f_type != PIPEFS_MAGIC;
}

class Reader : public kaDocumentParser::Visitor {
  public:
    Reader(DocumentOutline& outline, FindingList& findings) : _outline(outline), _findings(findings) {}

    void beginElement(int depth, int line, const QString& tag, const QXmlAttributes& attributes) override {
        _line = static_cast<std::uint32_t>(line);
        if (depth == rootDepth)
            beginRoot(tag, attributes);
        else if (depth == elementDepth)
            beginEntry(tag, attributes);
        else if (depth == childDepth)
            beginChild(tag, attributes);
        else if (depth == childDepth + 1)
            report("<" + excerpt(tag) + "> is passed over: nothing stands this deep");
    }

    void text(const QString& text) override {
        if (_place != PlaceCount && _text.size() < longestPlace)
            _text += text;
    }

    void endElement(int depth) override {
        if (depth == childDepth && _place != PlaceCount)
            endPlace();
        if (depth == elementDepth)
            endEntry();
        if (depth == rootDepth)
            checkCount();
    }

  private:
    /// Longer than any two numbers that a writer makes.
    static constexpr int longestPlace = 1 << 12;
    /// Longer than any id: a hostile one is not kept whole for each of its findings.
    static constexpr int longestId = 200;

    DocumentOutline::Element& current() { return _outline.elements.back(); }

    void report(const std::string& message) { reportAt(_line, message); }
    void reportAt(std::uint32_t line, const std::string& message) {
        Finding finding{line, 0, "", "", message};
        if (_inEntry) {
            finding.element = kindName(current().kind);
            finding.id = _id;
        }
        _findings.push_back(std::move(finding));
    }

    void beginRoot(const QString& tag, const QXmlAttributes& attributes) {
        _rootLine = _line;
        if (tag != QLatin1String("AnimationPool"))
            report("the root is <" + excerpt(tag) + ">, not <AnimationPool>");
        _objects = valueOf(attributes, "objects");
    }

    void beginEntry(const QString& tag, const QXmlAttributes& attributes) {
        _outline.elements.emplace_back();
        _inEntry = true;
        current().line = _line;
        current().firstReference = static_cast<std::uint32_t>(_outline.references.size());
        _id = valueOf(attributes, "id").left(longestId).toStdString();
        _seen.fill(false);
        if (!setKind(tag, attributes))
            return;
        checkAttributes(attributes);
        kaUID id = 0;
        idFault("id", valueOf(attributes, "id"), id);
        current().id = id;
        if (id == 0 && idFault("id", valueOf(attributes, "id"), id).empty())
            report("0 is no id: loading draws one, and no reference reaches it");
        if (current().kind == Kind::Curve)
            idFault("field", valueOf(attributes, "field"), current().field);
        if (current().kind == Kind::Point)
            beginPoint(attributes);
        if (current().kind == Kind::Sequence)
            checkOrder(attributes);
    }

    /// @return whether the element stands for anything.
    bool setKind(const QString& tag, const QXmlAttributes& attributes) {
        const QString typeID = valueOf(attributes, "typeID");
        const std::string named = "<" + excerpt(tag) + ">";
        if (typeID.isEmpty()) {
            reportUnknown(tag);
            const bool isBare = tag == QLatin1String("curve") && attributes.count() == 0;
            report(isBare ? "a curve that had lost its field when it was saved: loading drops it"
                          : named + " without typeID is passed over");
            return false;
        }
        const std::string bytes = typeID.toLatin1().toStdString();
        const int type = kaAnimationXmlNumber::parse(std::string_view(bytes), -1);
        const bool isKind = type == -1 || (type >= 1 && type <= 6);
        if (!isKind || bytes != std::to_string(type))
            report("typeID " + quoted(typeID) +
                   (isKind ? " is read as " + std::to_string(type)
                           : " stands for nothing: the element is passed over"));
        if (!isKind) {
            reportUnknown(tag);
            return false;
        }
        current().kind = static_cast<Kind>(type);
        reportUnknown(tag);
        if (isKnownTag(tag) && tag != QLatin1String(tagOf(current().kind)))
            report("tagged " + named + ", but typeID " + std::to_string(type) + " makes it a " +
                   kindName(current().kind));
        return true;
    }

    void reportUnknown(const QString& tag) {
        if (!isKnownTag(tag))
            report("unknown tag <" + excerpt(tag) + ">");
    }

    void checkAttributes(const QXmlAttributes& attributes) {
        if (valueOf(attributes, "id").isEmpty())
            report("no id: loading draws one, and no reference reaches it");
        _repetitions.setUp(attributes);
        for (int i = 0; i < attributes.count(); ++i) {
            if (_repetitions.has(i))
                report("the attribute " + quoted(attributes.qName(i)) + " stands twice");
            // An empty value is a missing one.
            const std::string fault =
                attributes.value(i).isEmpty()
                    ? std::string()
                    : attributeFault(current().kind, attributes.qName(i), attributes.value(i));
            if (!fault.empty())
                report(fault);
        }
    }

    void checkOrder(const QXmlAttributes& attributes) {
        const auto number = [&](const char* name) {
            const std::string bytes = valueOf(attributes, name).toLatin1().toStdString();
            return kaAnimationXmlNumber::parse(std::string_view(bytes), 0.0F);
        };
        if (number("end") < number("begin"))
            report("ends before it begins");
    }

    void beginPoint(const QXmlAttributes& attributes) {
        current().point = static_cast<std::uint32_t>(_outline.points.size());
        _outline.points.emplace_back();
        _outline.points.back().tangentType =
            smallNumber(valueOf(attributes, "tangentType"), kaControlPoint2D::TANGENT_FLAT);
        _outline.points.back().lengthMode =
            smallNumber(valueOf(attributes, "tangentLengthMode"), kaControlPoint2D::LENGTH_HALF);
    }

    void beginChild(const QString& tag, const QXmlAttributes& attributes) {
        if (!_inEntry || current().kind == Kind::None)
            return;
        if (current().kind == Kind::Point && setPlace(tag))
            return;
        const char* expected = referenceTag(current().kind);
        if (expected == nullptr || tag != QLatin1String(expected))
            report("unknown tag <" + excerpt(tag) + "> in a " + kindName(current().kind));
        const QString text = valueOf(attributes, "id");
        kaUID id = 0;
        const std::string fault =
            text.isEmpty() ? std::string("a reference without an id") : idFault("id", text, id);
        if (!fault.empty())
            return report(fault);
        _outline.references.push_back({id, _line});
        ++current().references;
    }

    bool setPlace(const QString& tag) {
        for (int place = 0; place < PlaceCount; ++place)
            if (tag == QLatin1String(placeTags[place]))
                _place = static_cast<Place>(place);
        _text.clear();
        return _place != PlaceCount;
    }

    void endPlace() {
        DocumentOutline::Point& point = _outline.points[current().point];
        std::array<float, 2>* const places[PlaceCount] = {&point.position, &point.in, &point.out};
        if (_seen[_place])
            report("<" + std::string(placeTags[_place]) + "> stands twice: the last one counts");
        _seen[_place] = true;
        const std::string fault = placeFault(_text, *places[_place]);
        if (!fault.empty())
            report("<" + std::string(placeTags[_place]) + "> " + fault);
        _place = PlaceCount;
    }

    void endEntry() {
        for (int place = 0; current().kind == Kind::Point && place < PlaceCount; ++place)
            if (!_seen[static_cast<std::size_t>(place)])
                reportAt(current().line,
                         "no <" + std::string(placeTags[place]) + ">: loading puts it at 0 0");
        _inEntry = false;
    }

    void checkCount() {
        const std::size_t count = _outline.elements.size();
        const std::string bytes = _objects.toLatin1().toStdString();
        if (_objects.isEmpty())
            reportAt(_rootLine, "no objects count: loading shows no progress");
        else if (kaAnimationXmlNumber::parse(std::string_view(bytes), 0U) != count)
            reportAt(_rootLine, "objects is " + quoted(_objects) + ", but " + counted(count, "element") +
                                    (count == 1 ? " follows" : " follow"));
    }

    DocumentOutline& _outline;
    FindingList& _findings;
    std::uint32_t _line = 0, _rootLine = 0;
    QString _objects, _text;
    Repetitions _repetitions;
    std::string _id; ///< of the element at hand, as it stands
    bool _inEntry = false;
    Place _place = PlaceCount; ///< the one whose text is being read
    std::array<bool, PlaceCount> _seen{};
};

} // namespace

void readOutline(const std::string& path, DocumentOutline& outline, FindingList& findings) {
    if (isNamedPipe(path))
        throw unreadable(path, "not a plain file");
    Reader reader(outline, findings);
    kaDocumentFault fault;
    if (kaDocumentParser::visitFile(QString::fromStdString(path), kaAnimationManager::getMaximumFileSize(),
                                    reader, &fault))
        return;
    if (fault.line == 0)
        throw unreadable(path, oneLine(fault.message));
    std::error_code error;
    if (std::filesystem::is_empty(path, error))
        throw unreadable(path, "the file is empty");
    findings.push_back({static_cast<std::uint32_t>(fault.line), static_cast<std::uint32_t>(fault.column), "",
                        "", "not well-formed: " + oneLine(fault.message)});
}

} // namespace ka::motion
