#include "Properties.h"

#include "Sum.h"
#include "document/PoseDrag.h"
#include "document/Session.h"
#include "timebased/IdSelection.h"

#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGTransform3D.h>
#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSignalBlocker>
#include <kaMotion/Project.h>

namespace ka::studio {

namespace {

QString typeOf(const kaAnimationObject& object) {
    switch (object.getTypeID()) {
    case KA_TYPE_STRIP:
        return Properties::tr("Clip");
    case KA_TYPE_SEQUENCE:
        return Properties::tr("Marker");
    case KA_TYPE_UNIT:
        return Properties::tr("Block");
    default:
        return Properties::tr("Object");
    }
}

QString textOf(const kaAnimationObject& object, Properties::Field field) {
    using Field = Properties::Field;
    if (field == Field::Name)
        return QString::fromLatin1(object.getName().c_str());
    const float value = field == Field::Begin         ? object.getBegin()
                        : field == Field::End         ? object.getEnd()
                        : field == Field::CustomBegin ? object.getCustomBegin()
                                                      : object.getCustomEnd();
    const bool isEmpty =
        (field == Field::Begin || field == Field::End) && !(object.getBegin() <= object.getEnd());
    return isEmpty ? QString() : QString::number(static_cast<double>(value), 'g', 9);
}

} // namespace

Properties::Properties(Session& session, IdSelection& bars, QWidget* parent)
    : QWidget(parent),
      _session(session),
      _bars(bars),
      _form(new QFormLayout(this)),
      _what(new QLabel(this)),
      _node(new QLabel(this)),
      _links(new QListWidget(this)) {
    setObjectName(QStringLiteral("properties"));
    _what->setWordWrap(true);
    _form->addRow(_what);
    const QString sums = tr("A frame, or a change: +=5, -=5, *1.5, /2");
    addField(Field::Name, tr("Name"), tr("Of clips, blocks and markers"));
    addField(Field::Begin, tr("Begin"), sums + tr("; it moves with its keys"));
    addField(Field::End, tr("End"), sums + tr("; it is stretched"));
    addFlag(ObjectFlag::Active, tr("Active"), tr("Whether it moves the scene"));
    addFlag(ObjectFlag::Repeating, tr("Repeating"), tr("Whether it begins again at its end"));
    addFlag(ObjectFlag::MotionBlur, tr("Motion blur"),
            tr("Whether it is sampled between frames for motion blur"));
    addFlag(ObjectFlag::CustomRange, tr("Custom range"), tr("Whether it plays its custom range"));
    addField(Field::CustomBegin, tr("Range from"), sums);
    addField(Field::CustomEnd, tr("Range to"), sums);
    _links->setMaximumHeight(6 * fontMetrics().lineSpacing());
    _links->setToolTip(tr("What its begin and end start and stop; draw a link with Alt in the clips"));
    _form->addRow(tr("Links"), _links);
    _node->setWordWrap(true);
    _node->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    _form->addRow(_node);
    connect(&bars, &IdSelection::changed, this, &Properties::refresh);
    connect(&session.document(), &Document::changed, this, &Properties::refresh);
    connect(&session.document(), &Document::replaced, this, [this] { showNode(0); });
    refresh();
}

void Properties::addField(Field field, const QString& label, const QString& tip) {
    auto* edit = new QLineEdit(this);
    edit->setToolTip(tip);
    _form->addRow(label, edit);
    _fields.emplace(field, edit);
    connect(edit, &QLineEdit::editingFinished, this, [this, field] { apply(field); });
}

void Properties::addFlag(ObjectFlag flag, const QString& label, const QString& tip) {
    auto* box = new QCheckBox(label, this);
    box->setToolTip(tip);
    _form->addRow(QString(), box);
    _flags.emplace(flag, box);
    connect(box, &QCheckBox::clicked, this, [this, flag](bool on) {
        QUndoStack& history = _session.document().history();
        const std::vector<kaUID> ids = _bars.ids();
        if (ids.size() > 1)
            history.beginMacro(_flags.at(flag)->text());
        for (const kaUID id : ids)
            setFlag(_session.document(), id, flag, on);
        if (ids.size() > 1)
            history.endMacro();
        refresh();
    });
}

std::vector<kaAnimationObject*> Properties::selected() const {
    std::vector<kaAnimationObject*> objects;
    for (const kaUID id : _bars.ids())
        if (kaAnimationObject* object = kaAnimationManager::the()->getObject(id))
            objects.push_back(object);
    return objects;
}

void Properties::refresh() {
    const std::vector<kaAnimationObject*> objects = selected();
    _what->setText(objects.empty() ? tr("No clip or block is selected")
                   : objects.size() == 1
                       ? tr("%1, id %2").arg(typeOf(*objects.front())).arg(objects.front()->getId())
                       : tr("%n object(s) selected", nullptr, static_cast<int>(objects.size())));
    for (const auto& [which, edit] : _fields) {
        const QSignalBlocker quiet(edit);
        edit->setEnabled(!objects.empty());
        QString text = objects.empty() ? QString() : textOf(*objects.front(), which);
        for (const kaAnimationObject* object : objects)
            if (textOf(*object, which) != text)
                text.clear();
        edit->setText(text);
        edit->setModified(false);
    }
    for (const auto& [flag, box] : _flags) {
        const QSignalBlocker quiet(box);
        std::size_t on = 0;
        for (const kaAnimationObject* object : objects)
            on += isFlagged(*object, flag) ? 1 : 0;
        box->setEnabled(!objects.empty());
        box->setTristate(on != 0 && on != objects.size());
        box->setCheckState(on == 0                ? Qt::Unchecked
                           : on == objects.size() ? Qt::Checked
                                                  : Qt::PartiallyChecked);
    }
    refreshLinks();
    refreshNode();
}

void Properties::refreshLinks() {
    _links->clear();
    const std::vector<kaAnimationObject*> objects = selected();
    if (objects.size() != 1 || objects.front()->getTriggers().empty())
        return;
    const auto connections = kaAnimationManager::the()->getObjectConnections();
    for (const auto& [trigger, connection] : objects.front()->getTriggers()) {
        const auto link = connections.find(connection);
        if (link == connections.end() || link->second.first == nullptr)
            continue;
        const QString when = trigger == kaAnimationManager::TriggerEnd ? tr("Its end") : tr("Its begin");
        const QString what =
            link->second.second == kaAnimationManager::ActionStop ? tr("stops") : tr("starts");
        _links->addItem(QStringLiteral("%1 %2 %3")
                            .arg(when, what, QString::fromLatin1(link->second.first->getName().c_str())));
    }
}

void Properties::showNode(unsigned int node) {
    _shownNode = node;
    refresh();
}

void Properties::refreshNode() {
    const osg::NodePtr node =
        osg::NodePtr::dcast(osg::FieldContainerFactory::the()->getContainer(_shownNode));
    if (_shownNode == 0 || node == osg::NullFC || !_session.isOpen()) {
        _node->setText(tr("No node is picked"));
        return;
    }
    QStringList path;
    for (osg::NodePtr up = node; up != osg::NullFC; up = up->getParent())
        if (const std::string name = ka::motion::nodeName(up); !name.empty())
            path.prepend(QString::fromStdString(name));
    QStringList lines{tr("Node %1").arg(path.isEmpty() ? QString() : path.last()),
                      tr("Path: %1").arg(path.join(QLatin1Char('/'))), tr("Container: %1").arg(_shownNode)};
    if (const osg::Transform3DPtr core = osg::Transform3DPtr::dcast(node->getCore()); core != osg::NullFC) {
        const auto triple = [](const auto& v) {
            return QStringLiteral("%1, %2, %3")
                .arg(static_cast<double>(v[0]), 0, 'f', 3)
                .arg(static_cast<double>(v[1]), 0, 'f', 3)
                .arg(static_cast<double>(v[2]), 0, 'f', 3);
        };
        lines << tr("Translation: %1").arg(triple(core->getTranslation()))
              << tr("Rotation: %1 degrees").arg(triple(rotationOfNode(_shownNode)));
    }
    lines << tr("Children: %1").arg(node->getNChildren())
          << tr("Blocks: %1, curves: %2")
                 .arg(blocksOfNode(_shownNode).size())
                 .arg(curvesOfNode(_shownNode).size());
    _node->setText(lines.join(QLatin1Char('\n')));
}

bool Properties::change(kaUID id, Field field, const QString& text) {
    Document& document = _session.document();
    const kaAnimationObject* object = kaAnimationManager::the()->getObject(id);
    if (object == nullptr)
        return false;
    if (field == Field::Name)
        return !text.isEmpty() && rename(document, id, text.toLatin1().toStdString());
    const auto changed = [&text](float was) {
        return static_cast<float>(
            applySum(text, static_cast<double>(was)).value_or(static_cast<double>(was)));
    };
    switch (field) {
    case Field::Begin:
        return moveObject(document, id, changed(object->getBegin()) - object->getBegin());
    case Field::End:
        return stretchEnd(document, id, changed(object->getEnd()));
    case Field::CustomBegin:
        return setCustomRange(document, id, changed(object->getCustomBegin()), object->getCustomEnd());
    default:
        return setCustomRange(document, id, object->getCustomBegin(), changed(object->getCustomEnd()));
    }
}

void Properties::apply(Field field) {
    QLineEdit* edit = _fields.at(field);
    if (!edit->isModified())
        return;
    const QString text = edit->text();
    const std::vector<kaUID> ids = _bars.ids();
    if (field != Field::Name && !applySum(text, 1.0).has_value()) {
        emit refused(tr("'%1' is neither a number nor a change like +=5").arg(text));
    } else {
        QUndoStack& history = _session.document().history();
        edit->setModified(false);
        bool isDone = false;
        if (ids.size() > 1)
            history.beginMacro(tr("Properties"));
        for (const kaUID id : ids)
            isDone = change(id, field, text) || isDone;
        if (ids.size() > 1)
            history.endMacro();
        if (!isDone)
            emit refused(tr("Nothing changed: something is there, or it is the same"));
    }
    refresh();
}

} // namespace ka::studio
