#include "Documents.h"
#include "kaXmlParser.h"

#include <QBuffer>
#include <QDomDocument>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <vector>

using namespace ka_test;

namespace {

constexpr unsigned long long NoLimit = 1ULL << 40;

/// What a record holds, one item a line.
std::string textOf(const kaAnimationXmlRecord& record) {
    std::string text = "objects " + record.objects() + '\n';
    record.forEach([&text](const kaAnimationXmlElement& element) {
        text += "element";
        for (std::size_t i = 0; i < element.attributes.size(); ++i)
            if (!element.attributes[i].empty())
                text += ' ' + std::to_string(i) + '=' + std::string(element.attributes[i]);
        for (const auto& child : element.children)
            text += " child " + std::to_string(static_cast<int>(child.tag)) + ' ' + std::string(child.id) +
                    " '" + std::string(child.text) + '\'';
        text += '\n';
    });
    return text;
}

/// The same by way of a whole DOM.
std::string textOf(const QDomDocument& document) {
    kaAnimationXmlRecord record;
    const QDomElement root = document.documentElement();
    record.setObjects(root.attribute("objects"));
    for (QDomElement element = root.firstChildElement(); !element.isNull();
         element = element.nextSiblingElement())
        record.append(element);
    return textOf(record);
}

std::string nested(int depth) {
    std::string text;
    for (int i = 0; i < depth; ++i)
        text += "<a>";
    for (int i = 0; i < depth; ++i)
        text += "</a>";
    return text;
}

std::string contentModel(int depth) {
    const auto count = static_cast<std::size_t>(depth);
    return "<!DOCTYPE a [<!ELEMENT a " + std::string(count, '(') + "b" + std::string(count, ')') + ">]><a/>";
}

bool accepts(const std::string& text) {
    return kaXmlParser::readText(QString::fromLatin1(text.c_str())).has_value();
}

} // namespace

// Agreement with a DOM.

class XmlParserAgrees : public testing::TestWithParam<const char*> {};

TEST_P(XmlParserAgrees, WithADom) {
    const QByteArray bytes(GetParam());
    const TemporaryFolder folder;
    const std::string file = folder.put("document.xml", bytes.toStdString());
    QDomDocument document;
    QBuffer buffer;
    buffer.setData(bytes);
    const bool accepted = document.setContent(&buffer);
    const auto fromFile = kaXmlParser::readFile(QString::fromStdString(file), NoLimit);
    ASSERT_EQ(fromFile.has_value(), accepted);
    if (accepted) {
        EXPECT_EQ(textOf(*fromFile), textOf(document));
    }

    QDomDocument textDocument;
    const QString text = QString::fromLatin1(bytes);
    const bool textAccepted = textDocument.setContent(text);
    const auto fromText = kaXmlParser::readText(text);
    ASSERT_EQ(fromText.has_value(), textAccepted);
    if (textAccepted) {
        EXPECT_EQ(textOf(*fromText), textOf(textDocument));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Documents, XmlParserAgrees,
    testing::Values(
        "", " ", "text", "<a", "<a>", "<a></b>", "<a/><b/>", "<a/>text", "<a x=1/>", "<a x=\"1/>",
        "<a x='1'/>", "<a x=\"<\"/>", "<a x=\"&\"/>", "<a>&</a>", "<a>&lt;</a>", "<1/>",
        "<a x=\"1\"y=\"2\"/>", "<?xml?><a/>", "<?xml version=\"2.0\"?><a/>", " <?xml version=\"1.0\"?><a/>",
        "<!-- a -- b --><a/>", "<a><!-- c --></a>", "<a><![CDATA[]]]]></a>", "<a>]]></a>", "<!DOCTYPE><a/>",
        "<!DOCTYPE ORVA><a/>", "<!DOCTYPE ORVA []><a/>", "<!DOCTYPE ORVA SYSTEM \"orva.dtd\"><a/>",
        "<!DOCTYPE a [<!ELEMENT a (b|(c,d)*)>]><a/>", "<!DOCTYPE a [<!ATTLIST a id CDATA \"7\">]><p><a/></p>",
        "<a objects=\"1\" objects=\"2\"/>", "<a><b id=\"1\" id=\"2\" typeID=\"3\"/></a>",
        "<a><b id=\"1\" id=\"\"/></a>", "<a><b name=\"x\ty\nz\r\nw\"/></a>",
        "<a><b name=\"&#9;&#10;&#13;&#xe9;\"/></a>", "<a><b name=\"x&unknown;y\"/></a>",
        "<a><b><position>1&unknown;2</position></b></a>", "<a><b name=\"\x01\x1f\x7f\"/></a>",
        "<a><b:c d:id=\"1\" id=\"2\"/></a>", "<a><b><position>1 <!-- x -->2</position></b></a>",
        "<a><b><position> \n </position></b></a>", "<a><b><position><![CDATA[1 ]]>2</position></b></a>",
        "<a><b><position>1<c> 2<d>3</d></c>4</position></b></a>",
        "<a><b><inTangent>1 2</inTangent><inTangent>3 4</inTangent></b></a>",
        "<a><b><c id=\"1\">text</c></b></a>", "<a>text<b id=\"1\"/>text<!-- c --><b id=\"2\"/><?pi pi?></a>",
        "<a><b><c><position>1 2</position></c></b></a>", "<a><b name=\"\xc3\xa9\"/></a>",
        "\xef\xbb\xbf<a><b name=\"\xc3\xa9\"/></a>",
        "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a><b name=\"\xe9\"/></a>",
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a><b name=\"\xc3\xa9\xe9\"/></a>",
        "<?xml version=\"1.0\" encoding=\"ISO-8859-15\"?><a><b name=\"\xa4\"/></a>",
        "<?xml version=\"1.0\" encoding=\"unheard-of\"?><a><b name=\"\xe9\"/></a>",
        "<?xml version=\"1.0\"?><a><b name=\"\xc3\xa9\"/></a>", "<a><b name=\"\xe2\x82\xac\"/></a>"));

TEST(XmlParser, AgreesWithADomOnMutatedDocuments) {
    const std::string original = contentOf(testFile("example.xml"));
    const std::string pieces = "<>/=\"'&;![]()-?# \n\t\x01xid1";
    std::mt19937 random(1);
    int accepted = 0;
    for (int i = 0; i < 20000; ++i) {
        std::string text = original;
        for (unsigned int edits = 1 + random() % 3; edits > 0; --edits) {
            const std::size_t at = random() % text.size();
            const std::size_t length = random() % 3;
            text.replace(at, length, std::string(random() % 3, pieces[random() % pieces.size()]));
        }
        const QString source = QString::fromLatin1(text.c_str());
        QDomDocument document;
        const bool expected = document.setContent(source);
        const auto record = kaXmlParser::readText(source);
        ASSERT_EQ(record.has_value(), expected) << text;
        if (expected) {
            ++accepted;
            ASSERT_EQ(textOf(*record), textOf(document)) << text;
        }
    }
    EXPECT_GT(accepted, 1000) << "too few documents survive to say anything";
}

// Encodings.

TEST(XmlParser, AFileWithoutDeclarationThatIsNotUtf8IsLatin1) {
    const TemporaryFolder folder;
    const std::string file = folder.put("a.xml", "<a><b name=\"caf\xe9 \xc3\xa9\"/></a>");
    const auto record = kaXmlParser::readFile(QString::fromStdString(file), NoLimit);
    ASSERT_TRUE(record);
    record->forEach([](const kaAnimationXmlElement& element) {
        EXPECT_EQ(element[kaXmlAttribute::Name], "caf\xe9 \xc3\xa9");
    });
}

struct UndeclaredRow {
    const char* name;
    const char* prolog;
};

class Undeclared : public testing::TestWithParam<UndeclaredRow> {};

/// What names no encoding leaves it to the bytes.
TEST_P(Undeclared, LatinOneIsReadAsItWasWrittenAndUtf8AsUtf8) {
    const TemporaryFolder folder;
    const auto nameIn = [&](const std::string& bytes) {
        const std::string text = std::string(GetParam().prolog) + "<a><b name=\"" + bytes + "\"/></a>";
        const auto record = kaXmlParser::readFile(QString::fromStdString(folder.put("a.xml", text)), NoLimit);
        std::string name = "not well-formed";
        if (record)
            record->forEach([&name](const kaAnimationXmlElement& element) {
                name = std::string(element[kaXmlAttribute::Name]);
            });
        return name;
    };
    EXPECT_EQ(nameIn("caf\xe9"), "caf\xe9");
    EXPECT_EQ(nameIn("caf\xc3\xa9"), "caf\xe9");
}

INSTANTIATE_TEST_SUITE_P(
    Prologs, Undeclared,
    testing::Values(UndeclaredRow{"none", ""}, UndeclaredRow{"version_alone", "<?xml version=\"1.0\"?>"},
                    UndeclaredRow{"version_and_standalone", "<?xml version='1.0' standalone='yes'?>\n"},
                    UndeclaredRow{"the_word_as_a_value",
                                  "<?xml version=\"1.0\" standalone=\"yes\" ?><!-- encoding=\"UTF-8\" -->"},
                    UndeclaredRow{"an_instruction_that_begins_alike", "<?xml-stylesheet href=\"a.css\"?>"},
                    UndeclaredRow{"an_instruction_with_an_encoding",
                                  "<?xml-stylesheet href=\"a.css\" encoding=\"UTF-8\"?>"},
                    UndeclaredRow{"an_instruction_of_a_longer_name", "<?xmlish encoding=\"UTF-8\"?>"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(XmlParser, ADeclaredEncodingIsFollowedHoweverItIsSpelled) {
    const TemporaryFolder folder;
    for (const char* declaration :
         {"<?xml version=\"1.0\" encoding=\"ISO-8859-15\"?>", "<?xml version='1.0' encoding='iso-8859-15'?>",
          "<?xml\tversion = '1.0'\nencoding\t=\n'ISO-8859-15' ?>",
          "<?xml version=\"1.0\" encoding=\"ISO-8859-15\" standalone=\"no\"?>"}) {
        const std::string text = std::string(declaration) + "<a><b name=\"\xa4\"/></a>";
        const auto record = kaXmlParser::readFile(QString::fromStdString(folder.put("a.xml", text)), NoLimit);
        ASSERT_TRUE(record) << declaration;
        EXPECT_NE(textOf(*record).find("=?"), std::string::npos) << "the euro sign stands outside Latin-1";
    }
}

TEST(XmlParser, AFileWithoutDeclarationThatIsUtf8IsUtf8) {
    const TemporaryFolder folder;
    const std::string file = folder.put("a.xml", "<a><b name=\"caf\xc3\xa9 \xe2\x82\xac\"/></a>");
    const auto record = kaXmlParser::readFile(QString::fromStdString(file), NoLimit);
    ASSERT_TRUE(record);
    record->forEach(
        [](const kaAnimationXmlElement& element) { EXPECT_EQ(element[kaXmlAttribute::Name], "caf\xe9 ?"); });
}

TEST(XmlParser, AnUtf8CharacterMayLieAcrossAChunksEnd) {
    const TemporaryFolder folder;
    for (std::size_t shift = 0; shift < 3; ++shift) {
        const std::string padding((1U << 16) - 20 + shift, ' ');
        const std::string file =
            folder.put("a.xml", padding + "<a><b name=\"\xc3\xa9\xc3\xa9\xc3\xa9\"/></a>");
        const auto record = kaXmlParser::readFile(QString::fromStdString(file), NoLimit);
        ASSERT_TRUE(record);
        EXPECT_NE(textOf(*record).find("\xe9\xe9\xe9"), std::string::npos);
    }
}

TEST(XmlParser, AnUtf8CharacterCutOffAtTheEndMakesItLatin1) {
    const TemporaryFolder folder;
    const std::string file = folder.put("a.xml", "<a><b name=\"\xc3\xa9\"/></a><!-- \xc3");
    kaXmlParser::Fault fault;
    EXPECT_FALSE(kaXmlParser::readFile(QString::fromStdString(file), NoLimit, &fault));
    EXPECT_GT(fault.line, 0);
}

TEST(XmlParser, WideEncodingsAreReadByTheirByteOrderMark) {
    const QString text = "<a><b name=\"wide\"/></a>";
    const TemporaryFolder folder;
    for (const bool bigEndian : {false, true}) {
        std::string bytes = bigEndian ? "\xfe\xff" : "\xff\xfe";
        for (const QChar c : text) {
            const char low = static_cast<char>(c.cell());
            bytes += bigEndian ? std::string{'\0', low} : std::string{low, '\0'};
        }
        const auto record =
            kaXmlParser::readFile(QString::fromStdString(folder.put("a.xml", bytes)), NoLimit);
        ASSERT_TRUE(record);
        EXPECT_NE(textOf(*record).find("=wide"), std::string::npos);
    }
}

// Refusals.

TEST(XmlParser, EntityDeclarationsAreRefused) {
    for (const char* declaration : {"<!ENTITY a \"b\">", "<!ENTITY a SYSTEM \"/etc/passwd\">",
                                    "<!ENTITY % a \"b\">", "<!ENTITY % a SYSTEM \"a.dtd\">",
                                    "<!NOTATION n SYSTEM \"n\"><!ENTITY a SYSTEM \"a.gif\" NDATA n>"}) {
        const std::string text = std::string("<!DOCTYPE a [") + declaration + "]><a/>";
        kaXmlParser::Fault fault;
        EXPECT_FALSE(kaXmlParser::readText(QString::fromStdString(text), &fault)) << text;
        EXPECT_EQ(fault.message, "the document type declares an entity") << text;
    }
}

TEST(XmlParser, ElementsMayBeNested256DeepAndNoDeeper) {
    EXPECT_TRUE(accepts(nested(256)));
    kaXmlParser::Fault fault;
    EXPECT_FALSE(kaXmlParser::readText(QString::fromStdString(nested(257)), &fault));
    EXPECT_EQ(fault.message, "elements are nested too deeply");
    EXPECT_FALSE(accepts(nested(1000000)));
}

TEST(XmlParser, ContentModelsMayNotOverflowTheStack) {
    EXPECT_TRUE(accepts(contentModel(1000)));
    kaXmlParser::Fault fault;
    EXPECT_FALSE(kaXmlParser::readText(QString::fromStdString(contentModel(1000000)), &fault));
    EXPECT_EQ(fault.message, "a content model is nested too deeply");
    const TemporaryFolder folder;
    const std::string declared = folder.put("a.xml", "<?xml version=\"1.0\"?>" + contentModel(1000000));
    EXPECT_FALSE(kaXmlParser::readFile(QString::fromStdString(declared), NoLimit));
}

TEST(XmlParser, BracketsBelowTheRootDoNotCount) {
    EXPECT_TRUE(accepts("<a><b name=\"" + std::string(200000, '(') + "\"/></a>"));
}

TEST(XmlParser, AFileMayBeAsLargeAsTheLimitAndNoLarger) {
    const TemporaryFolder folder;
    const std::string text = "<a/>";
    const QString file = QString::fromStdString(folder.put("a.xml", text));
    EXPECT_TRUE(kaXmlParser::readFile(file, text.size()));
    kaXmlParser::Fault fault;
    EXPECT_FALSE(kaXmlParser::readFile(file, text.size() - 1, &fault));
    EXPECT_EQ(fault.message, "the file is larger than the limit of 3 bytes");
}

TEST(XmlParser, AFaultSaysWhere) {
    kaXmlParser::Fault fault;
    EXPECT_FALSE(kaXmlParser::readText("<a>\n<b>\n</c></a>", &fault));
    EXPECT_EQ(fault.line, 3);
    EXPECT_FALSE(fault.message.empty());
}

TEST(XmlParser, AMissingFileAndAFolderAreRefused) {
    const TemporaryFolder folder;
    kaXmlParser::Fault fault;
    EXPECT_FALSE(kaXmlParser::readFile(QString::fromStdString(folder.at("none.xml")), NoLimit, &fault));
    EXPECT_FALSE(fault.message.empty());
    EXPECT_FALSE(kaXmlParser::readFile(QString::fromStdString(folder.path().string()), NoLimit));
}

TEST(XmlParser, APipeIsReadToItsEndOrToTheLimit) {
    const TemporaryFolder folder;
    const std::string pipe = folder.at("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    std::thread writer([&] { folder.put("pipe", "<a><b name=\"caf\xe9\"/></a>"); });
    const auto record = kaXmlParser::readFile(QString::fromStdString(pipe), NoLimit);
    writer.join();
    ASSERT_TRUE(record);
    EXPECT_NE(textOf(*record).find("caf\xe9"), std::string::npos);
    EXPECT_FALSE(kaXmlParser::readFile("/dev/zero", 1000000));
}

TEST(XmlParser, AnElementLargerThanABlockOfTheRecordIsKeptWhole) {
    const std::string name(1U << 20, 'n');
    const auto record = kaXmlParser::readText(
        QString::fromStdString("<a><b id=\"1\"/><b name=\"" + name + "\"/><b id=\"2\"/></a>"));
    ASSERT_TRUE(record);
    std::vector<std::string> names;
    record->forEach([&names](const kaAnimationXmlElement& element) {
        names.emplace_back(element[kaXmlAttribute::Name]);
    });
    EXPECT_EQ(names, (std::vector<std::string>{"", name, ""}));
}
