#include "SceneFileParser.h"

#include "NumberText.h"
#include "SceneFilePlan.h"
#include "SceneFileValues.h"

#include <OpenSG/OSGAttachmentMapFields.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <algorithm>
#include <cstdlib>

namespace osg {

namespace {

constexpr UInt32 NONE = SceneFileContents::NONE;

/// The end of a file that a reader was cut off from is not a place where a bracket is missing.
std::string described(const SceneFileLexer::Token& token) {
    switch (token.kind) {
    case SceneFileLexer::Kind::End:
        return "the end of the file";
    case SceneFileLexer::Kind::Unfinished:
        return "a string that does not end";
    case SceneFileLexer::Kind::String:
        return "the string " + quotedForMessage(token.text);
    default:
        return quotedForMessage(token.text);
    }
}

bool isNull(const SceneFileLexer::Token& token) {
    return token.kind == SceneFileLexer::Kind::Id && SceneFileLexer::isWord(token.text, "NULL");
}

bool isConstant(const SceneFileLexer::Token& token) {
    return isNull(token) ||
           (token.kind == SceneFileLexer::Kind::Id &&
            (SceneFileLexer::isWord(token.text, "TRUE") || SceneFileLexer::isWord(token.text, "FALSE")));
}

} // namespace

bool isMadeUpName(std::string_view name, std::string_view typeName) {
    if (name.size() < typeName.size() + 2 || name.substr(0, typeName.size()) != typeName ||
        name[typeName.size()] != ':')
        return false;
    const std::string_view number = name.substr(typeName.size() + 1);
    return std::all_of(number.begin(), number.end(), [](char c) { return c >= '0' && c <= '9'; });
}

SceneFileParser::SceneFileParser(std::string_view text, SceneFileContents& contents, SceneFileLog& log)
    : _lexer(text), _contents(contents), _log(log) {
    checkHeader(text);
}

void SceneFileParser::checkHeader(std::string_view text) {
    constexpr std::string_view HEADER = "#OSG V1.0";
    if (text.substr(0, HEADER.size()) != HEADER)
        _log.warning(1, "the header line \"#OSG V1.0 \" is missing");
}

bool SceneFileParser::parse() {
    _stack.push_back({NONE, nullptr, {}, 1, true, false, _contents.addSlot(NONE, nullptr)});
    while (!_stack.empty()) {
        if (!step())
            return false;
    }
    return true;
}

bool SceneFileParser::step() {
    if (!top().isInList)
        return parseBodyEntry();
    return top().isPassedOver ? parsePassedOverEntry() : parseListEntry();
}

bool SceneFileParser::unexpected(const Token& token, const std::string& where) {
    std::string text = described(token) + " where " + where + " should stand";
    if (_stack.size() > 1)
        text += ", in the " + quotedForMessage(top().typeName) + " of line " + std::to_string(top().line);
    return _log.fatal(token.line, text);
}

bool SceneFileParser::closeFile() {
    _stack.pop_back();
    return true;
}

bool SceneFileParser::parseListEntry() {
    const Token token = _lexer.peek();
    const bool isFile = _stack.size() == 1;
    if (isFile && token.kind == Kind::End)
        return closeFile();
    if (!isFile && token.kind == Kind::CloseBracket) {
        _lexer.next();
        top().isInList = false;
        return true;
    }
    UInt16 binding = 0;
    const FieldDescription* field = _contents.slots[top().slot].field;
    const bool isAttachments = field != nullptr && field->getFieldType() == SFAttachmentMap::getClassType();
    if (isAttachments && token.kind == Kind::Number) {
        if (exactInteger(token.text, binding) != NumberResult::Exact)
            _log.error(token.line, quotedForMessage(token.text) + " cannot be a binding; 0 is taken");
        _lexer.next();
    }
    return parseReference(top().slot, binding);
}

bool SceneFileParser::parsePassedOverEntry() {
    const Token token = _lexer.peek();
    if (token.kind == Kind::CloseBracket) {
        _lexer.next();
        top().isInList = false;
        top().isPassedOver = false;
        return true;
    }
    return passOverValue();
}

bool SceneFileParser::parseBodyEntry() {
    const Token token = _lexer.peek();
    switch (token.kind) {
    case Kind::CloseBrace:
        _lexer.next();
        _stack.pop_back();
        return true;
    case Kind::Id:
        _lexer.next();
        return parseField(token);
    case Kind::Number:
    case Kind::String:
        _log.error(token.line, described(token) + " stands where a field name should; it is passed over");
        _lexer.next();
        return true;
    default:
        return unexpected(token, "a field name or }");
    }
}

bool SceneFileParser::parseField(const Token& name) {
    FieldContainer* container = top().container;
    if (container == nullptr)
        return passOverValue();
    const FieldDescription* description =
        container->getType().findFieldDescription(std::string(name.text).c_str());
    if (description != nullptr && !description->isInternal()) {
        Field* field = description->getField(*container);
        return isLinkField(*field) ? parseReferenceField(*description) : parseValueField(*field, name);
    }
    if (parseProperty(name))
        return true;
    _log.error(name.line, "a " + std::string(container->getTypeName()) + " has no field " +
                              quotedForMessage(name.text) + "; its value is passed over");
    return passOverValue();
}

bool SceneFileParser::parseProperty(const Token& name) {
    bool isRead = false;
    top().container->visitProperties([&](const Char8* known, std::variant<Real32*, bool*> value) {
        if (name.text != known)
            return;
        SFReal32 number;
        SFBool flag;
        const bool isNumber = std::holds_alternative<Real32*>(value);
        Field& read = isNumber ? static_cast<Field&>(number) : flag;
        isRead = SceneFileValues::read(_lexer, read, _log);
        if (isRead && isNumber)
            *std::get<Real32*>(value) = number.getValue();
        else if (isRead)
            *std::get<bool*>(value) = flag.getValue();
    });
    return isRead;
}

bool SceneFileParser::parseReferenceField(const FieldDescription& description) {
    const UInt32 slot = _contents.addSlot(top().item, &description);
    if (_lexer.peek().kind == Kind::OpenBracket) {
        openList(slot, false);
        return true;
    }
    return parseReference(slot, 0);
}

void SceneFileParser::openList(UInt32 slot, bool isPassedOver) {
    _lexer.next();
    top().isInList = true;
    top().isPassedOver = isPassedOver;
    top().slot = slot;
}

bool SceneFileParser::parseValueField(Field& field, const Token& name) {
    SceneFileValues::clear(field);
    if (_lexer.peek().kind == Kind::OpenBracket)
        return parseValueList(field, name);
    if (SceneFileValues::read(_lexer, field, _log))
        return true;
    reportNoValue(name, name.line, "; it is passed over");
    return passOverValue();
}

bool SceneFileParser::parseValueList(Field& field, const Token& name) {
    openList(_contents.addSlot(NONE, nullptr), true);
    while (SceneFileValues::read(_lexer, field, _log)) {
    }
    // Whatever else stands between the brackets is passed over, one by one, as far as the closing one.
    if (_lexer.peek().kind != Kind::CloseBracket)
        reportNoValue(name, _lexer.peek().line, "; the rest of the list is passed over");
    return true;
}

void SceneFileParser::reportNoValue(const Token& name, UInt32 line, const char* consequence) {
    const Token& token = _lexer.peek();
    // Where the text itself breaks off the file is refused next, which is all there is to say.
    if (token.kind == Kind::End || token.kind == Kind::Unfinished)
        return;
    _log.error(line, described(token) + " cannot be a value of " + quotedForMessage(name.text) + consequence);
}

bool SceneFileParser::parseReference(UInt32 slot, UInt16 binding) {
    const Token first = _lexer.peek();
    if (first.kind != Kind::Id)
        return unexpected(first, "a container");
    _lexer.next();
    if (isNull(first)) {
        SceneFileContents::Reference reference;
        reference.line = first.line;
        _contents.addReference(slot, reference);
        return true;
    }
    if (first.text == "USE")
        return parseUse(slot, binding);
    if (first.text != "DEF")
        return openContainer(slot, binding, first, nullptr);
    const Token name = _lexer.next();
    if (name.kind != Kind::Id)
        return unexpected(name, "the name after DEF");
    const Token type = _lexer.next();
    if (type.kind != Kind::Id)
        return unexpected(type, "the type after DEF " + quotedForMessage(name.text));
    return openContainer(slot, binding, type, &name);
}

bool SceneFileParser::parseUse(UInt32 slot, UInt16 binding) {
    const Token name = _lexer.next();
    if (name.kind != Kind::Id)
        return unexpected(name, "the name after USE");
    SceneFileContents::Reference reference;
    reference.line = name.line;
    reference.binding = binding;
    const auto known = _contents.definitions.find(std::string(name.text));
    if (known != _contents.definitions.end()) {
        reference.item = known->second;
    } else {
        reference.name = static_cast<UInt32>(_contents.names.size());
        _contents.names.emplace_back(name.text);
    }
    _contents.addReference(slot, reference);
    return true;
}

bool SceneFileParser::openContainer(UInt32 slot, UInt16 binding, const Token& type, const Token* definition) {
    const Token brace = _lexer.peek();
    if (brace.kind != Kind::OpenBrace)
        return unexpected(brace, "{ after " + quotedForMessage(type.text));
    _lexer.next();
    if (_stack.size() > _depthLimit)
        return _log.fatal(type.line, "containers stand more than " + std::to_string(_depthLimit) +
                                         " levels deep in one another");
    const FieldContainerPtr container = createContainer(type);
    SceneFileContents::Reference reference;
    reference.item = _contents.addItem(container, type.line);
    reference.line = type.line;
    reference.binding = binding;
    reference.isDefinition = true;
    if (definition != nullptr)
        define(*definition, type, reference.item);
    _contents.addReference(slot, reference);
    _stack.push_back({reference.item, container.getCPtr(), type.text, type.line, false, false, NONE});
    return true;
}

FieldContainerPtr SceneFileParser::createContainer(const Token& type) {
    const std::string name(type.text);
    const FieldContainerPtr made = FieldContainerFactory::the()->createFieldContainer(name.c_str());
    if (made == NullFC)
        _log.error(type.line, "the type " + quotedForMessage(type.text) +
                                  " is not known; the container and what stands in it are left out");
    return made;
}

void SceneFileParser::define(const Token& name, const Token& type, UInt32 item) {
    if (!_contents.definitions.emplace(std::string(name.text), item).second)
        _log.warning(name.line, "DEF " + quotedForMessage(name.text) + " comes again; USE means the first");
    if (isMadeUpName(name.text, type.text))
        return;
    setName(AttachmentContainerPtr::dcast(_contents.items[item].container), std::string(name.text));
}

bool SceneFileParser::passOverValue() {
    const Token token = _lexer.peek();
    switch (token.kind) {
    case Kind::Number:
        while (_lexer.peek().kind == Kind::Number)
            _lexer.next();
        return true;
    case Kind::String:
        _lexer.next();
        return true;
    case Kind::OpenBracket:
        if (top().isInList)
            return unexpected(token, "a value or ]");
        openList(_contents.addSlot(NONE, nullptr), true);
        return true;
    case Kind::Id:
        break;
    case Kind::CloseBrace:
        if (!top().isInList)
            return true;
        return unexpected(token, "a value or ]");
    default:
        return unexpected(token, "a value");
    }
    // Containers are read although they count for nothing here: others may USE what is defined in them.
    if (token.text == "USE" || token.text == "DEF")
        return parseReference(_contents.addSlot(NONE, nullptr), 0);
    _lexer.next();
    if (isConstant(token) || _lexer.peek().kind != Kind::OpenBrace)
        return true;
    return openContainer(_contents.addSlot(NONE, nullptr), 0, token, nullptr);
}

} // namespace osg
