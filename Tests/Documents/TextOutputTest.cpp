#include "kaAnimationXmlOutput.h"

#include <QDomDocument>
#include <gtest/gtest.h>
#include <random>
#include <string>

namespace {

/// Hands what it is told to both outputs.
class Both {
  public:
    Both()
        : _document("ORVA"), _dom(_document), _text([this](std::string_view piece) { _written += piece; }) {
        _text.documentType("ORVA");
    }

    template <class Describe>
    void tell(Describe&& describe) {
        describe(static_cast<kaAnimationXmlOutput&>(_dom));
        describe(static_cast<kaAnimationXmlOutput&>(_text));
    }

    /// What a DOM writes, in Latin-1.
    std::string expected() {
        _document.appendChild(_dom.element());
        return _document.toString(1).toLatin1().toStdString();
    }
    const std::string& written() const { return _written; }

  private:
    QDomDocument _document;
    kaAnimationXmlDomOutput _dom;
    std::string _written;
    kaAnimationXmlTextOutput _text;
};

void begin(Both& both, const char* tag) {
    both.tell([tag](kaAnimationXmlOutput& output) { output.beginElement(tag); });
}

void end(Both& both) {
    both.tell([](kaAnimationXmlOutput& output) { output.endElement(); });
}

void attribute(Both& both, const std::string& value) {
    both.tell([&value](kaAnimationXmlOutput& output) { output.attribute("name", value); });
}

void text(Both& both, const std::string& value) {
    both.tell([&value](kaAnimationXmlOutput& output) { output.text(value); });
}

std::string randomBytes(std::mt19937& random) {
    static const std::string likely = "]]>\"'<&\r\n\t a";
    std::string bytes;
    for (std::size_t length = 1 + random() % 12; bytes.size() < length;)
        bytes += random() % 2 ? likely[random() % likely.size()] : static_cast<char>(random());
    return bytes;
}

void addTree(Both& both, std::mt19937& random, int depth) {
    begin(both, random() % 2 ? "block" : "point");
    if (random() % 4)
        attribute(both, randomBytes(random));
    if (random() % 3 == 0)
        text(both, randomBytes(random));
    else
        for (unsigned int children = random() % 4; depth < 6 && children > 0; --children)
            addTree(both, random, depth + 1);
    end(both);
}

} // namespace

TEST(TextOutput, AnElementWithoutAnything) {
    Both both;
    begin(both, "AnimationPool");
    end(both);
    EXPECT_EQ(both.written(), "<!DOCTYPE ORVA>\n<AnimationPool/>\n");
    EXPECT_EQ(both.written(), both.expected());
}

TEST(TextOutput, OneBlankOfIndentationPerLevel) {
    Both both;
    begin(both, "a");
    begin(both, "b");
    begin(both, "c");
    text(both, "1 2");
    end(both);
    begin(both, "d");
    end(both);
    end(both);
    end(both);
    EXPECT_EQ(both.written(), "<!DOCTYPE ORVA>\n<a>\n <b>\n  <c>1 2</c>\n  <d/>\n </b>\n</a>\n");
    EXPECT_EQ(both.written(), both.expected());
}

TEST(TextOutput, EveryByteInAnAttributeAndInText) {
    for (int byte = 0; byte < 256; ++byte) {
        const std::string value = std::string("a") + static_cast<char>(byte) + "b";
        Both both;
        begin(both, "a");
        attribute(both, value);
        begin(both, "b");
        text(both, value);
        end(both);
        end(both);
        ASSERT_EQ(both.written(), both.expected()) << "byte " << byte;
    }
}

TEST(TextOutput, AnyTreeIsWrittenAsADomWritesIt) {
    std::mt19937 random(1);
    for (int i = 0; i < 2000; ++i) {
        Both both;
        addTree(both, random, 0);
        ASSERT_EQ(both.written(), both.expected()) << "tree " << i;
    }
}

TEST(TextOutput, AttributesKeepTheirOrder) {
    std::string written;
    kaAnimationXmlTextOutput output([&written](std::string_view piece) { written += piece; });
    output.beginElement("a");
    for (const char* name : {"z", "a", "m"})
        output.attribute(name, "1");
    output.endElement();
    EXPECT_EQ(written, "<a z=\"1\" a=\"1\" m=\"1\"/>\n");
}
