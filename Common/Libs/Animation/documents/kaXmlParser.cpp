#include "kaXmlParser.h"

#include <QBuffer>
#include <QFile>
#include <QRegularExpression>
#include <QTextCodec>
#include <QXmlDefaultHandler>
#include <QXmlInputSource>
#include <QXmlSimpleReader>
#include <algorithm>
#include <functional>
#include <memory>

// QXmlSimpleReader is what QDomDocument::setContent itself reads with, so both judge alike. Qt would rather
// see QXmlStreamReader used, which refuses what a DOM accepts: attributes that stand twice, control
// characters, entity references that nothing declares.
QT_WARNING_DISABLE_DEPRECATED

namespace {

/// Characters handed to the parser at a time, up to the root element and below it.
constexpr int PrologChunk = 1 << 10;
constexpr int ChunkSize = 1 << 16;

/// Bytes read at most from what has no size of its own.
constexpr unsigned long long LargestPipe = 0x3FFFFFFF;

/// Open brackets in the document type at which reading ends; the parser takes one level of its stack for
/// each.
constexpr int MaximumBrackets = 4096;

/// Gives the text out in chunks. Up to the root element it watches the brackets that are open, which only
/// content models use: they nest without any notice to a handler.
class Source : public QXmlInputSource {
  public:
    using NextChunk = std::function<QString(int size)>;

    /// Decodes the device's bytes as a DOM would.
    explicit Source(QIODevice& device) : QXmlInputSource(&device) {}
    explicit Source(NextChunk next) : _next(std::move(next)) {}

    void rootReached() { _inProlog = false; }
    bool tooManyBrackets() const { return _brackets > MaximumBrackets; }

    void fetchData() override {
        if (_next)
            setData(_next(_inProlog ? PrologChunk : ChunkSize));
        else
            QXmlInputSource::fetchData();
        if (!_inProlog)
            return;
        countBrackets(data());
        if (tooManyBrackets())
            setData(QString());
    }

  private:
    void countBrackets(const QString& chunk) {
        for (const QChar c : chunk) {
            if (c == '(')
                ++_brackets;
            else if (c == ')')
                _brackets = std::max(_brackets - 1, 0);
            if (tooManyBrackets())
                return;
        }
    }

    NextChunk _next;
    int _brackets = 0;
    bool _inProlog = true;
};

/// Passes on what the parser reports and refuses what a DOM could not bear.
class Handler : public QXmlDefaultHandler {
  public:
    Handler(kaXmlParser::Visitor& visitor, Source& source, kaXmlParser::Fault& fault)
        : _visitor(visitor), _source(source), _fault(fault) {}

    void setDocumentLocator(QXmlLocator* locator) override { _locator = locator; }

    bool startElement(const QString& /*uri*/, const QString& /*local*/, const QString& name,
                      const QXmlAttributes& attributes) override {
        _source.rootReached();
        if (++_depth > kaXmlParser::MaximumDepth)
            return refuse("elements are nested too deeply");
        _visitor.beginElement(_depth, _locator ? _locator->lineNumber() : 0, name, attributes);
        return true;
    }

    bool endElement(const QString& /*uri*/, const QString& /*local*/, const QString& /*name*/) override {
        _visitor.endElement(_depth);
        --_depth;
        return true;
    }

    bool characters(const QString& text) override {
        _visitor.text(text);
        return true;
    }

    bool internalEntityDecl(const QString& /*name*/, const QString& /*value*/) override {
        return refuseEntity();
    }
    bool externalEntityDecl(const QString& /*name*/, const QString& /*publicId*/,
                            const QString& /*systemId*/) override {
        return refuseEntity();
    }
    bool unparsedEntityDecl(const QString& /*name*/, const QString& /*publicId*/, const QString& /*systemId*/,
                            const QString& /*notation*/) override {
        return refuseEntity();
    }

    bool fatalError(const QXmlParseException& error) override {
        const char* own = _source.tooManyBrackets() ? "a content model is nested too deeply" : _refusal;
        _fault = {own ? own : error.message().toStdString(), error.lineNumber(), error.columnNumber()};
        return false;
    }

  private:
    bool refuse(const char* reason) {
        _refusal = reason;
        return false;
    }
    bool refuseEntity() { return refuse("the document type declares an entity"); }

    kaXmlParser::Visitor& _visitor;
    Source& _source;
    kaXmlParser::Fault& _fault;
    QXmlLocator* _locator = nullptr;
    const char* _refusal = nullptr;
    int _depth = 0;
};

/// Keeps what readers look at; children of the root are the elements, their children the references.
class Recorder : public kaXmlParser::Visitor {
  public:
    explicit Recorder(kaAnimationXmlRecord& record) : _record(record) {}

    void beginElement(int depth, int /*line*/, const QString& tag,
                      const QXmlAttributes& attributes) override {
        if (depth == 1)
            setObjects(attributes);
        else if (depth == 2)
            beginElement(attributes);
        else if (depth == 3)
            beginChild(tag, attributes);
    }

    void text(const QString& text) override {
        if (_inPlace)
            _text += text;
    }

    void endElement(int depth) override {
        if (depth == 3 && _inPlace)
            _record.childText(_text);
        if (depth == 3)
            _inPlace = false;
        if (depth == 2)
            _record.endElement();
    }

  private:
    void setObjects(const QXmlAttributes& attributes) {
        for (int i = 0; i < attributes.count(); ++i)
            if (kaAnimationXmlRecord::attributeNamed(attributes.qName(i)) == kaXmlAttribute::Objects)
                _record.setObjects(attributes.value(i));
    }

    void beginElement(const QXmlAttributes& attributes) {
        _record.beginElement();
        for (int i = 0; i < attributes.count(); ++i)
            _record.attribute(kaAnimationXmlRecord::attributeNamed(attributes.qName(i)), attributes.value(i));
    }

    void beginChild(const QString& name, const QXmlAttributes& attributes) {
        const kaXmlTag tag = kaAnimationXmlRecord::tagNamed(name);
        _record.beginChild(tag);
        for (int i = 0; i < attributes.count(); ++i)
            if (kaAnimationXmlRecord::attributeNamed(attributes.qName(i)) == kaXmlAttribute::Id)
                _record.childID(attributes.value(i));
        _inPlace = tag != kaXmlTag::Other;
        _text.clear();
    }

    kaAnimationXmlRecord& _record;
    QString _text;         ///< of the coordinates that are being read
    bool _inPlace = false; ///< within an element that holds coordinates
};

bool visit(Source& source, kaXmlParser::Visitor& visitor, kaXmlParser::Fault& fault) {
    Handler handler(visitor, source, fault);
    QXmlSimpleReader reader;
    // As QDomDocument::setContent sets them.
    reader.setFeature("http://xml.org/sax/features/namespaces", false);
    reader.setFeature("http://xml.org/sax/features/namespace-prefixes", true);
    reader.setFeature("http://trolltech.com/xml/features/report-whitespace-only-CharData", false);
    reader.setContentHandler(&handler);
    reader.setDeclHandler(&handler);
    reader.setDTDHandler(&handler);
    reader.setErrorHandler(&handler);
    return reader.parse(&source);
}

/// Decodes a device's bytes in chunks.
class Decoder {
  public:
    Decoder(QIODevice& device, const char* encoding)
        : _device(device), _decoder(QTextCodec::codecForName(encoding)->makeDecoder()) {}

    QString next(int size) {
        QString text;
        while (text.isEmpty() && !_device.atEnd())
            text = _decoder->toUnicode(_device.read(size));
        return text;
    }
    bool failed() const { return _decoder->hasFailure(); }
    bool isCutOff() const { return _decoder->needsMoreData(); }

  private:
    QIODevice& _device;
    std::unique_ptr<QTextDecoder> _decoder;
};

/// Bytes at the front of a document among which its declaration is looked for.
constexpr int HeadSize = 1 << 10;

/// Whether the document begins with a declaration that names an encoding. Other processing instructions may
/// begin alike.
bool declaresEncoding(const QByteArray& head) {
    static const QRegularExpression declaration(R"(^<\?xml(\s[^>]*)?\sencoding\s*=\s*["'])");
    return declaration.match(QString::fromLatin1(head)).hasMatch();
}

/// Whether the bytes themselves say how they are encoded: by a byte order mark, by a declaration or by zero
/// bytes, which only wide encodings have so early.
bool saysEncoding(const QByteArray& head) {
    return declaresEncoding(head) || head.startsWith("\xEF\xBB\xBF") || head.startsWith("\xFF\xFE") ||
           head.startsWith("\xFE\xFF") || head.left(4).contains('\0');
}

bool isUtf8(QIODevice& device) {
    device.seek(0);
    Decoder decoder(device, "UTF-8");
    while (!decoder.next(ChunkSize).isEmpty() && !decoder.failed()) {
    }
    return !decoder.failed() && !decoder.isCutOff();
}

bool visitDevice(QIODevice& device, kaXmlParser::Visitor& visitor, kaXmlParser::Fault& fault) {
    if (saysEncoding(device.peek(HeadSize))) {
        Source source(device);
        return visit(source, visitor, fault);
    }
    Decoder decoder(device, isUtf8(device) ? "UTF-8" : "ISO-8859-1");
    device.seek(0);
    Source source([&decoder](int size) { return decoder.next(size); });
    return visit(source, visitor, fault);
}

} // namespace

std::optional<kaAnimationXmlRecord> kaXmlParser::readText(const QString& text, Fault* fault) {
    int at = 0;
    Source source([&text, &at](int size) {
        QString chunk = text.mid(at, size);
        at += chunk.size();
        return chunk;
    });
    Fault ignored;
    kaAnimationXmlRecord record;
    Recorder recorder(record);
    if (!visit(source, recorder, fault ? *fault : ignored))
        return std::nullopt;
    return record;
}

std::optional<kaAnimationXmlRecord> kaXmlParser::readFile(const QString& name, unsigned long long maximumSize,
                                                          Fault* fault) {
    kaAnimationXmlRecord record;
    Recorder recorder(record);
    if (!kaDocumentParser::visitFile(name, maximumSize, recorder, fault))
        return std::nullopt;
    return record;
}

bool kaDocumentParser::visitFile(const QString& name, unsigned long long maximumSize, Visitor& visitor,
                                 kaDocumentFault* fault) {
    kaDocumentFault ignored;
    kaDocumentFault& reason = fault ? *fault : ignored;
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly)) {
        reason = {file.errorString().toStdString(), 0, 0};
        return false;
    }
    if (file.size() > 0) {
        if (static_cast<unsigned long long>(file.size()) <= maximumSize)
            return visitDevice(file, visitor, reason);
    } else {
        // A pipe or a file of the kernel's: no size beforehand, and no way back after the first look.
        const auto limit = static_cast<qint64>(std::min(maximumSize, LargestPipe));
        QByteArray bytes;
        for (QByteArray chunk = file.read(ChunkSize); !chunk.isEmpty() && bytes.size() <= limit;
             chunk = file.read(ChunkSize))
            bytes += chunk;
        if (bytes.size() <= limit) {
            QBuffer buffer(&bytes);
            buffer.open(QIODevice::ReadOnly);
            return visitDevice(buffer, visitor, reason);
        }
    }
    reason = {"the file is larger than the limit of " + std::to_string(maximumSize) + " bytes", 0, 0};
    return false;
}
