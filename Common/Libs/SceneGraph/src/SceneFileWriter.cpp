#include "SceneFileWriter.h"

#include "NumberText.h"
#include "SceneFileLexer.h"
#include "SceneFileValues.h"

#include <algorithm>
#include <ostream>

namespace osg {

namespace {

constexpr std::size_t BUFFER = 1U << 16U;

/// Deeper levels are not indented further: the blanks of a very deep tree would outweigh it by far.
constexpr std::size_t DEEPEST_INDENT = 32;

constexpr std::size_t LINE_WIDTH = 60;

} // namespace

void SceneFileWriter::writeHeader() {
    _text += "#OSG V1.0 \n";
}

bool SceneFileWriter::write(const std::vector<FieldContainerPtr>& tops, SceneFilePlan& plan) {
    for (const FieldContainerPtr& top : tops) {
        if (top == NullFC)
            continue;
        _text += '\n';
        plan.writeTop(top);
        open(top, plan);
        while (!_stack.empty())
            step(plan);
        _text += '\n';
    }
    flush();
    _stream.flush();
    return _stream.good();
}

void SceneFileWriter::flush() {
    _stream.write(_text.data(), static_cast<std::streamsize>(_text.size()));
    _text.clear();
}

void SceneFileWriter::startLine(std::size_t level) {
    if (_text.size() > BUFFER)
        flush();
    _text += '\n';
    _text.append(std::min(level, DEEPEST_INDENT) * _indent, ' ');
}

void SceneFileWriter::open(const FieldContainerPtr& container, const SceneFilePlan& plan) {
    const std::string& name = plan.nameOf(container);
    if (!name.empty())
        _text += "DEF " + name + ' ';
    _text += container->getTypeName();
    _text += " {";
    Frame frame;
    frame.container = container;
    _stack.push_back(std::move(frame));
    ++_level;
}

void SceneFileWriter::close() {
    _stack.pop_back();
    --_level;
    startLine(_level);
    _text += '}';
}

void SceneFileWriter::step(SceneFilePlan& plan) {
    Frame& frame = _stack.back();
    if (frame.nextLink < frame.links.size()) {
        if (frame.isInList)
            startLine(_level);
        const SceneFileLink link = frame.links[frame.nextLink++];
        writeLink(link, plan);
        return;
    }
    if (frame.isInList) {
        frame.isInList = false;
        --_level;
        startLine(_level);
        _text += ']';
    }
    const FieldContainerType& type = frame.container->getType();
    if (frame.fieldId == type.getNumFieldDescs()) {
        writeProperties(*frame.container);
        close();
        return;
    }
    const FieldDescription& description = *type.getFieldDescription(++frame.fieldId);
    if (!description.isInternal())
        writeField(description, plan);
}

void SceneFileWriter::writeField(const FieldDescription& description, SceneFilePlan& plan) {
    Frame& frame = _stack.back();
    const Field& field = *description.getField(*frame.container);
    if (!SceneFileValues::isWritable(field))
        return;
    startLine(_level);
    _text += description.getCName();
    _text += ' ';
    if (!isLinkField(field)) {
        writeValues(field);
        return;
    }
    frame.links = linksOf(*frame.container, description);
    frame.nextLink = 0;
    const bool isSingle = field.isPointerField() && field.getCardinality() == FieldType::SINGLE_FIELD;
    if (isSingle) {
        const SceneFileLink link = frame.links[frame.nextLink++];
        writeLink(link, plan);
        return;
    }
    if (frame.links.empty()) {
        _text += "[  ]";
        return;
    }
    _text += '[';
    frame.isInList = true;
    ++_level;
}

void SceneFileWriter::writeLink(const SceneFileLink& link, SceneFilePlan& plan) {
    const Frame& frame = _stack.back();
    const FieldDescription& description = *frame.container->getType().getFieldDescription(frame.fieldId);
    const SceneFilePlan::Form form = plan.formOf(frame.container, description, link);
    if (link.binding != 0)
        _text += std::to_string(link.binding) + ' ';
    switch (form) {
    case SceneFilePlan::Form::Null:
        _text += "NULL";
        break;
    case SceneFilePlan::Form::Use:
        _text += "USE " + plan.nameOf(link.target);
        break;
    case SceneFilePlan::Form::Definition:
        open(link.target, plan);
        break;
    }
}

void SceneFileWriter::writeValues(const Field& field) {
    if (field.getCardinality() == FieldType::SINGLE_FIELD) {
        SceneFileValues::write(field, 0, _text);
        return;
    }
    _text += "[ ";
    std::size_t width = 0;
    std::string value;
    for (UInt32 i = 0; i < field.getSize(); ++i) {
        value.clear();
        SceneFileValues::write(field, i, value);
        if (i > 0) {
            _text += ',';
            if (width + value.size() > LINE_WIDTH) {
                startLine(_level + 1);
                width = 0;
            } else {
                _text += ' ';
            }
        }
        _text += value;
        width += value.size() + 2;
    }
    _text += " ]";
}

void SceneFileWriter::writeProperties(FieldContainer& container) {
    container.visitProperties([this](const Char8* name, std::variant<Real32*, bool*> value) {
        startLine(_level);
        _text += name;
        _text += ' ';
        if (std::holds_alternative<Real32*>(value))
            appendShortest(*std::get<Real32*>(value), _text);
        else
            _text += *std::get<bool*>(value) ? "TRUE" : "FALSE";
    });
}

} // namespace osg
