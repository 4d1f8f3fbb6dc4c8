#include "KeyFields.h"

#include "Sum.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <optional>

namespace ka::studio {

namespace {

/// What all keys have in common; none where they differ.
template <class Get>
auto common(const std::vector<const kaControlPoint2D*>& keys, Get&& get) {
    using Value = decltype(get(*keys.front()));
    std::optional<Value> value;
    for (const kaControlPoint2D* key : keys) {
        if (value.has_value() && *value != get(*key))
            return std::optional<Value>();
        value = get(*key);
    }
    return value;
}

} // namespace

KeyFields::KeyFields(Document& document, IdSelection& selection, QWidget* parent)
    : QWidget(parent),
      _document(document),
      _selection(selection),
      _type(new QComboBox(this)),
      _length(new QComboBox(this)),
      _count(new QLabel(this)) {
    setObjectName(QStringLiteral("keyFields"));
    auto* form = new QFormLayout(this);
    form->addRow(_count);
    const QString sums = tr("A number, or a change: +=5, -=5, *1.5, /2");
    addField(KeyNumber::Frame, tr("Frame"), sums);
    addField(KeyNumber::Value, tr("Value"), sums);
    using Key = kaControlPoint2D;
    for (const auto& [name, type] :
         {std::pair(tr("Collapsed"), Key::TANGENT_COLLAPSED), std::pair(tr("Broken"), Key::TANGENT_BROKEN),
          std::pair(tr("Flat"), Key::TANGENT_FLAT), std::pair(tr("Smooth"), Key::TANGENT_SMOOTH),
          std::pair(tr("Forward"), Key::TANGENT_FORWARD), std::pair(tr("By hand"), Key::TANGENT_USER)})
        _type->addItem(name, static_cast<unsigned int>(type));
    for (const auto& [name, mode] :
         {std::pair(tr("A third"), Key::LENGTH_THIRD), std::pair(tr("Half"), Key::LENGTH_HALF),
          std::pair(tr("Fixed"), Key::LENGTH_FIXED)})
        _length->addItem(name, static_cast<unsigned int>(mode));
    _type->setToolTip(tr("How the handles are placed"));
    _length->setToolTip(tr("How long the handles are"));
    form->addRow(tr("Tangents"), _type);
    form->addRow(tr("Length"), _length);
    addField(KeyNumber::InFrame, tr("In, frame"), sums);
    addField(KeyNumber::InValue, tr("In, value"), sums);
    addField(KeyNumber::OutFrame, tr("Out, frame"), sums);
    addField(KeyNumber::OutValue, tr("Out, value"), sums);
    connect(_type, QOverload<int>::of(&QComboBox::activated), this, [this] {
        setTangentType(_document, _selection.ids(),
                       static_cast<Key::TangentMode>(_type->currentData().toUInt()));
    });
    connect(_length, QOverload<int>::of(&QComboBox::activated), this, [this] {
        setLengthMode(_document, _selection.ids(),
                      static_cast<Key::TangentLengthMode>(_length->currentData().toUInt()));
    });
    connect(&selection, &IdSelection::changed, this, &KeyFields::refresh);
    connect(&document, &Document::changed, this, &KeyFields::refresh);
    connect(&document, &Document::replaced, this, &KeyFields::refresh);
    refresh();
}

void KeyFields::addField(KeyNumber number, const QString& label, const QString& tip) {
    auto* field = new QLineEdit(this);
    field->setToolTip(tip);
    static_cast<QFormLayout*>(layout())->addRow(label, field);
    _fields.emplace(number, field);
    connect(field, &QLineEdit::editingFinished, this, [this, number] { apply(number); });
}

void KeyFields::refresh() {
    std::vector<const kaControlPoint2D*> keys;
    constexpr std::size_t Enough = 2000; // of more it is not looked at whether they differ
    for (const kaUID id : _selection.ids()) {
        if (keys.size() >= Enough)
            break;
        if (curveOf(id) != nullptr)
            keys.push_back(kaAnimationManager::the()->getPoint2D(id));
    }
    _count->setText(keys.empty() ? tr("No key is selected")
                                 : tr("%n key(s) selected", nullptr, static_cast<int>(_selection.size())));
    for (const auto& [number, field] : _fields) {
        const QSignalBlocker quiet(field);
        field->setEnabled(!keys.empty());
        const KeyNumber which = number;
        const auto value =
            keys.empty() ? std::optional<float>()
                         : common(keys, [which](const kaControlPoint2D& k) { return numberOf(k, which); });
        field->setText(value.has_value() ? QString::number(static_cast<double>(*value), 'g', 9) : QString());
        field->setModified(false);
    }
    const auto choose = [&keys](QComboBox& box, auto&& get) {
        const QSignalBlocker quiet(&box);
        box.setEnabled(!keys.empty());
        const auto value = keys.empty() ? std::optional<unsigned int>() : common(keys, get);
        box.setCurrentIndex(value.has_value() ? box.findData(*value) : -1);
    };
    choose(*_type, [](const kaControlPoint2D& key) { return key.getTangentType(); });
    choose(*_length, [](const kaControlPoint2D& key) { return key.getTangentLengthMode(); });
}

void KeyFields::apply(KeyNumber number) {
    QLineEdit* field = _fields.at(number);
    if (!field->isModified())
        return;
    const QString text = field->text();
    if (!applySum(text, 1.0).has_value()) {
        emit refused(tr("'%1' is neither a number nor a change like +=5").arg(text));
    } else {
        const auto change = [&text](float was) {
            return static_cast<float>(
                applySum(text, static_cast<double>(was)).value_or(static_cast<double>(was)));
        };
        if (!changeNumber(_document, _selection.ids(), number, change))
            emit refused(tr("Nothing changed: the neighbours leave no room, or it is the same"));
    }
    refresh();
}

} // namespace ka::studio
