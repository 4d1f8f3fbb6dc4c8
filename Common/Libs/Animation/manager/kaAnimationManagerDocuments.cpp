#include "kaAnimationManager.h"
#include "kaAnimationUtils.h"
#include "kaAnimationXmlBuilder.h"
#include "kaAnimationXmlNumber.h"
#include "kaAnimationXmlOutput.h"
#include "kaAnimationXmlRecord.h"
#include "kaAnimationXmlWriter.h"
#include "kaFile.h"
#include "kaLoadReport.h"
#include "kaXmlParser.h"

#include <QFile>
#include <QFileDialog>
#include <cstdio>
#include <new>
#include <optional>

namespace {

constexpr unsigned long long DefaultMaximumFileSize = 1ULL << 30;

unsigned long long maximumFileSize = DefaultMaximumFileSize;

QString askWithDialog(QWidget* parent, const QString& title, const QString& filter, bool saving) {
    return saving ? QFileDialog::getSaveFileName(parent, title, QString(), filter)
                  : QFileDialog::getOpenFileName(parent, title, QString(), filter);
}

kaDocumentFault loadFault;

kaAnimationManager::AskFileName askFileName = askWithDialog;

void announceSaving() {
    std::printf("creating animation xml...\n");
}

void noteTakenID(kaUID from, kaUID to) {
    kaAnimationManager::the()->changeAnimAttachmentIDs(from, to);
}

/// Tells how many of a document's elements have begun.
class CountedOutput final : public kaAnimationXmlOutput {
  public:
    CountedOutput(kaAnimationXmlOutput& output, std::size_t total,
                  const kaAnimationManager::DocumentProgress& progress)
        : _output(output), _total(total), _progress(progress) {}

    void beginElement(const char* tag) override {
        if (++_depth == 2) // the root's children
            _progress(++_done, _total);
        _output.beginElement(tag);
    }
    void attribute(const char* name, std::string_view value) override { _output.attribute(name, value); }
    void text(std::string_view text) override { _output.text(text); }
    void endElement() override {
        --_depth;
        _output.endElement();
    }

  private:
    kaAnimationXmlOutput& _output;
    std::size_t _total;
    const kaAnimationManager::DocumentProgress& _progress;
    std::size_t _done = 0;
    int _depth = 0;
};

/// The element that one of the writer's operations describes.
template <class Describe, class Object>
QDomElement domElement(QDomDocument& document, Describe describe, const Object* object) {
    kaAnimationXmlDomOutput output(document);
    kaAnimationXmlWriter writer(output);
    (writer.*describe)(object);
    return output.element();
}

/// What one of the reader's operations makes of the element: null for a null element.
template <class Result>
Result* readElement(const QDomElement& element,
                    Result* (kaAnimationXmlBuilder::*read)(const kaAnimationXmlElement&)) {
    Result* result = nullptr;
    if (element.isNull())
        return result;
    kaAnimationXmlRecord record;
    record.append(element);
    record.forEach([&](const kaAnimationXmlElement& recorded) {
        result = (kaAnimationXmlBuilder(noteTakenID).*read)(recorded);
    });
    return result;
}

/// Counts elements over both passes and tells the host how far loading has come. The host may do anything
/// meanwhile.
class Progress {
  public:
    Progress(kaAnimationManager& manager, unsigned int total) : _manager(manager), _total(total) {}

    void step() {
        ++_count;
        const float percent = static_cast<float>(_count) / (static_cast<float>(_total) / 100.0F);
        _manager.setFileIOProgress(static_cast<unsigned int>(kaAnimationUtils::floatToInt(percent)));
    }

  private:
    kaAnimationManager& _manager;
    unsigned int _total;
    unsigned int _count = 0;
};

/// Number of steps that loading the document takes, 0 when it does not say.
unsigned int announceLoading(const std::string& objects) {
    if (objects.empty())
        return 0;
    std::printf("loading animation elements: %s\n", objects.c_str());
    return 2U * kaAnimationXmlNumber::parse(objects, 0U);
}

/// Everything is made before anything is connected, so that references may name what comes later.
void makeObjects(kaAnimationManager& manager, const kaAnimationXmlRecord& record) {
    kaLoadReport::begin();
    Progress progress(manager, announceLoading(record.objects()));
    kaAnimationXmlBuilder reader(noteTakenID);
    record.forEach([&](const kaAnimationXmlElement& element) {
        reader.create(element);
        progress.step();
    });
    record.forEach([&](const kaAnimationXmlElement& element) {
        reader.connect(element);
        progress.step();
    });
    manager.completeAnimationFieldNodes();
}

} // namespace

// Saving.

QString kaAnimationManager::createAnimationXML() {
    announceSaving();
    QString text;
    try {
        writeAnimations([&text](std::string_view piece) {
            text += QLatin1String(piece.data(), static_cast<int>(piece.size()));
        });
    } catch (const std::bad_alloc&) {
        return QString();
    }
    return text;
}

void kaAnimationManager::writeAnimations(const DocumentSink& sink, const DocumentProgress& progress) const {
    kaAnimationXmlTextOutput text(sink);
    text.documentType("ORVA");
    describeAnimations(text, progress);
}

void kaAnimationManager::describeAnimations(kaAnimationXmlOutput& output,
                                            const DocumentProgress& progress) const {
    if (!progress)
        return kaAnimationXmlWriter(output).pool();
    CountedOutput counted(output, getObjectCount() + getFieldCount(), progress);
    kaAnimationXmlWriter(counted).pool();
}

bool kaAnimationManager::saveAnimations(const char* path) {
    announceSaving();
    try {
        QFile file(QString::fromLatin1(path));
        if (file.fileName().isEmpty() || !file.open(QIODevice::WriteOnly))
            return false;
        writeAnimations(
            [&file](std::string_view piece) { file.write(piece.data(), static_cast<qint64>(piece.size())); });
        file.close();
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool kaAnimationManager::saveAnimations(QWidget* parent) {
    QString name = askFileName(parent, tr("Save Animations"), "*.xml", true);
    if (name.isEmpty())
        return false;
    if (!name.endsWith(".xml"))
        name += ".xml";
    const QByteArray path = name.toUtf8();
    return kaFile::checkWrite(path.toStdString(), true, false) && saveAnimations(path.constData());
}

QDomElement kaAnimationManager::createFieldDomElement(QDomDocument& document, kaAnimationField* field) {
    return domElement(document, &kaAnimationXmlWriter::field, field);
}

QDomElement kaAnimationManager::createPointDomElement(QDomDocument& document, kaControlPoint2D* point) {
    return domElement(document, &kaAnimationXmlWriter::point, point);
}

QDomElement kaAnimationManager::createCurveDomElement(QDomDocument& document, kaAnimationCurve2D* curve) {
    return domElement(document, &kaAnimationXmlWriter::curve, curve);
}

QDomElement kaAnimationManager::createBlockDomElement(QDomDocument& document, kaAnimationUnit* unit) {
    return domElement(document, &kaAnimationXmlWriter::block, unit);
}

QDomElement kaAnimationManager::createTrackDomElement(QDomDocument& document, kaAnimationStreak* streak) {
    return domElement(document, &kaAnimationXmlWriter::track, streak);
}

QDomElement kaAnimationManager::createClipDomElement(QDomDocument& document, kaAnimationStrip* strip) {
    return domElement(document, &kaAnimationXmlWriter::clip, strip);
}

QDomElement kaAnimationManager::createSequenceDomElement(QDomDocument& document,
                                                         kaAnimationSequence* sequence) {
    return domElement(document, &kaAnimationXmlWriter::sequence, sequence);
}

// Loading.

void kaAnimationManager::setMaximumFileSize(unsigned long long bytes) {
    maximumFileSize = bytes;
}

unsigned long long kaAnimationManager::getMaximumFileSize() {
    return maximumFileSize;
}

void kaAnimationManager::setAskFileNameCB(AskFileName callback) {
    askFileName = callback ? callback : askWithDialog;
}

bool kaAnimationManager::loadAnimations(const QString& source, bool isFile) {
    return load(source, isFile, [] {});
}

bool kaAnimationManager::load(const QString& source, bool isFile, const std::function<void()>& begin) {
    loadFault = {};
    if (source.isEmpty()) {
        loadFault.message = isFile ? "no file is named" : "the text is empty";
        return false;
    }
    const std::optional<kaAnimationXmlRecord> record =
        isFile ? kaXmlParser::readFile(source, maximumFileSize, &loadFault)
               : kaXmlParser::readText(source, &loadFault);
    if (!record)
        return false;
    begin();
    makeObjects(*this, *record);
    loadFault = {}; // whatever a callback loaded meanwhile
    return true;
}

const kaDocumentFault& kaAnimationManager::getLoadFault() {
    return loadFault;
}

bool kaAnimationManager::loadAnimations(QWidget* parent) {
    return loadAnimations(askFileName(parent, tr("Load Animations"), "*.xml", false), true);
}

kaAnimationField* kaAnimationManager::readFieldDomElement(const QDomElement& element) {
    return readElement(element, &kaAnimationXmlBuilder::field);
}

kaControlPoint2D* kaAnimationManager::readPointDomElement(const QDomElement& element) {
    return readElement(element, &kaAnimationXmlBuilder::point);
}

kaAnimationCurve2D* kaAnimationManager::readCurveDomElement(const QDomElement& element) {
    return readElement(element, &kaAnimationXmlBuilder::curve);
}

kaAnimationUnit* kaAnimationManager::readBlockDomElement(const QDomElement& element) {
    return readElement(element, &kaAnimationXmlBuilder::block);
}

kaAnimationStreak* kaAnimationManager::readTrackDomElement(const QDomElement& element) {
    return readElement(element, &kaAnimationXmlBuilder::track);
}

kaAnimationStrip* kaAnimationManager::readClipDomElement(const QDomElement& element) {
    return readElement(element, &kaAnimationXmlBuilder::clip);
}

kaAnimationSequence* kaAnimationManager::readSequenceDomElement(const QDomElement& element) {
    return readElement(element, &kaAnimationXmlBuilder::sequence);
}

void kaAnimationManager::readChildren(const QDomElement& element) {
    kaAnimationXmlRecord record;
    record.append(element);
    record.forEach(
        [](const kaAnimationXmlElement& recorded) { kaAnimationXmlBuilder(noteTakenID).connect(recorded); });
}
