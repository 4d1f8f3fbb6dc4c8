#include "DecimalComma.h"

#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGMFBaseTypes.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSFBaseTypes.h>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {

std::string written(const osg::Field& field) {
    std::string text = "before";
    return field.getValueByStr(text);
}

struct Row {
    const char* name;
    const char* text; ///< what is read
    const char* back; ///< what is written then
};

template <class FieldT>
void expectRows(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        FieldT field;
        field.pushValueByStr(row.text);
        EXPECT_EQ(row.back, written(field)) << row.text;
    }
}

TEST(FieldText, OfReals) {
    const std::vector<Row> rows = {
        {"plain", "1.5", "1.500000e+00"},      {"after_blanks", " \t-2", "-2.000000e+00"},
        {"plus", "+3", "3.000000e+00"},        {"leading_number_only", "4.5 and more", "4.500000e+00"},
        {"junk", "abc", "0.000000e+00"},       {"empty", "", "0.000000e+00"},
        {"exponent", "25e-1", "2.500000e+00"}, {"hex", "0x10", "1.600000e+01"},
        {"two_signs", "+-1", "0.000000e+00"},  {"too_small", "1e-500", "0.000000e+00"},
        {"too_large", "1e500", "inf"},         {"too_large_negative", "-1e500", "-inf"},
    };
    expectRows<osg::SFReal32>(rows);
    expectRows<osg::SFReal64>(rows);
    expectRows<osg::SFTime>(rows);
}

TEST(FieldText, OfRealsKeepsSevenDigits) {
    osg::SFReal32 field;
    field.setValue(123456789.0F);
    EXPECT_EQ("1.234568e+08", written(field));
}

TEST(FieldText, OfWholeNumbers) {
    expectRows<osg::SFInt32>({{"plain", "12", "12"},
                              {"hex", "0x1F", "31"},
                              {"octal", "017", "15"},
                              {"stops_at_the_first_bad_character", "3.7", "3"},
                              {"negative", "-5", "-5"},
                              {"junk", "x", "0"}});
    expectRows<osg::SFUInt64>({{"largest", "18446744073709551615", "18446744073709551615"}});
    expectRows<osg::SFUInt8>({{"number_and_not_character", "65", "65"}});
    expectRows<osg::SFInt8>({{"negative", "-7", "-7"}});
}

TEST(FieldText, OfBoolsTakesTrueAndFalseInAnyCaseAndNothingElse) {
    struct {
        const char* text;
        bool before;
        bool after;
    } const rows[] = {{"TRUE", false, true}, {"true", false, true},   {"FaLsE", true, false},
                      {"1", false, false},   {" TRUE", false, false}, {"0", true, true},
                      {"", true, true},      {"TRUEST", false, true}, {"FALS", true, true}};
    for (const auto& row : rows) {
        osg::SFBool field{row.before};
        field.pushValueByStr(row.text);
        EXPECT_EQ(row.after, field.getValue()) << row.text;
    }
    EXPECT_EQ("TRUE", written(osg::SFBool{true}));
    EXPECT_EQ("FALSE", written(osg::SFBool{false}));
}

TEST(FieldText, OfVectorsAndPointsJoinsWithTwoBlanks) {
    expectRows<osg::SFVec3f>({
        {"blanks", "1 2 3", "1.000000e+00  2.000000e+00  3.000000e+00"},
        {"tabs_lines_and_commas", "1,\t2\n3", "1.000000e+00  2.000000e+00  3.000000e+00"},
        {"missing_are_zero", "1", "1.000000e+00  0.000000e+00  0.000000e+00"},
        {"empty", "", "0.000000e+00  0.000000e+00  0.000000e+00"},
        {"too_many", "1 2 3 4", "1.000000e+00  2.000000e+00  3.000000e+00"},
        {"brackets_are_no_separators", "[1 2 3]", "0.000000e+00  2.000000e+00  3.000000e+00"},
    });
    expectRows<osg::SFPnt2f>({{"point", "1 2", "1.000000e+00  2.000000e+00"}});
    expectRows<osg::SFVec4f>({{"four", "1 2 3 4", "1.000000e+00  2.000000e+00  3.000000e+00  4.000000e+00"}});
}

TEST(FieldText, OverwritesAllComponents) {
    osg::SFVec3f field{osg::Vec3f(7.0F, 8.0F, 9.0F)};
    field.pushValueByStr("1");
    EXPECT_EQ(osg::Vec3f(1.0F, 0.0F, 0.0F), field.getValue());
}

TEST(FieldText, OfColoursJoinsWithOneBlank) {
    expectRows<osg::SFColor3f>({{"three", "1 0.5 0", "1.000000e+00 5.000000e-01 0.000000e+00"}});
    expectRows<osg::SFColor4f>(
        {{"missing_alpha", "1 1 1", "1.000000e+00 1.000000e+00 1.000000e+00 0.000000e+00"}});
}

TEST(FieldText, OfRotationsIsAxisAndAngle) {
    osg::SFQuaternion field;
    EXPECT_EQ("0.000000e+00 0.000000e+00 1.000000e+00 0.000000e+00", written(field));
    field.pushValueByStr("0 2 0 1.5707963");
    EXPECT_NEAR(std::sqrt(0.5), field.getValue().y(), 1e-6);
    EXPECT_NEAR(std::sqrt(0.5), field.getValue().w(), 1e-6);
    EXPECT_EQ("0.000000e+00 1.000000e+00 0.000000e+00 1.570796e+00", written(field));
}

TEST(FieldText, OfMatricesGoesRowByRow) {
    osg::SFMatrix field;
    field.pushValueByStr("1 0 0 5  0 1 0 6  0 0 1 7  0 0 0 1");
    EXPECT_EQ(osg::Vec4f(5.0F, 6.0F, 7.0F, 1.0F), field.getValue()[3])
        << "the translation is the last column";
    osg::SFMatrix back;
    back.pushValueByStr(written(field).c_str());
    EXPECT_EQ(field.getValue(), back.getValue());
}

TEST(FieldText, OfStringsIsTakenAsItIsAndWrittenBetweenQuotes) {
    expectRows<osg::SFString>({{"plain", "abc", "\"abc\""},
                               {"quotes_are_kept", "\"abc\"", "\"\"abc\"\""},
                               {"blanks_are_kept", "  a b ", "\"  a b \""},
                               {"empty", "", "\"\""}});
}

TEST(FieldText, OfVolumesTakesFourOrSixNumbers) {
    expectRows<osg::SFDynamicVolume>({
        {"sphere", "1 2 3 4", "1.000000e+00 2.000000e+00 3.000000e+00 4.000000e+00"},
        {"box", "1 2 3 4 5 6",
         "1.000000e+00 2.000000e+00 3.000000e+00 4.000000e+00 5.000000e+00 6.000000e+00"},
    });
    osg::SFDynamicVolume field;
    field.pushValueByStr("1 2 3");
    EXPECT_TRUE(field.getValue().isEmpty());
}

TEST(FieldText, OfHandlesCannotBeRead) {
    const osg::NodePtr node = osg::Node::create();
    osg::SFNodePtr field{node};
    testing::internal::CaptureStderr();
    field.pushValueByStr("0x1234");
    EXPECT_NE("", testing::internal::GetCapturedStderr());
    EXPECT_TRUE(field.getValue() == node);
    osg::MFNodePtr list;
    testing::internal::CaptureStderr();
    list.pushValueByStr("0x1234");
    testing::internal::GetCapturedStderr();
    EXPECT_TRUE(list.empty());
    osg::releaseRefCP(node);
}

TEST(FieldText, OfNullIsNoText) {
    osg::SFReal32 real{3.0F};
    real.pushValueByStr(nullptr);
    EXPECT_EQ(0.0F, real.getValue());
    osg::SFString text{"abc"};
    text.pushValueByStr(nullptr);
    EXPECT_EQ("", text.getValue());
    osg::SFVec3f vector{osg::Vec3f(1.0F, 1.0F, 1.0F)};
    vector.pushValueByStr(nullptr);
    EXPECT_EQ(osg::Vec3f(), vector.getValue());
    osg::SFBool flag{true};
    flag.pushValueByStr(nullptr);
    EXPECT_TRUE(flag.getValue());
}

TEST(FieldText, DoesNotDependOnTheLocale) {
    const ka_test::DecimalComma comma;
    osg::SFReal32 field;
    field.pushValueByStr("1.5");
    EXPECT_EQ(1.5F, field.getValue());
    EXPECT_EQ("1.500000e+00", written(field));
}

TEST(SingleField, AnswersTheIndexFormForIndexZeroOnly) {
    const osg::SFInt32 field{5};
    std::string text = "before";
    EXPECT_EQ("before", field.getValueByStr(text, 1));
    EXPECT_EQ("5", field.getValueByStr(text, 0));
}

TEST(MultiField, AppendsOnReadingAndOnWriting) {
    osg::MFUInt64 field;
    field.pushValueByStr("1");
    field.pushValueByStr("2");
    EXPECT_EQ(2U, field.size());
    std::string text = "before ";
    EXPECT_EQ("before 1, 2", field.getValueByStr(text));
    EXPECT_EQ("before 1, 22", field.getValueByStr(text, 1));
    EXPECT_EQ("before 1, 22", field.getValueByStr(text, 2)) << "out of range";
}

TEST(MultiField, HasTheFaceOfAVector) {
    osg::MFInt32 field;
    EXPECT_TRUE(field.empty());
    EXPECT_TRUE(field.isEmpty());
    field.push_back(1);
    field.push_back(3);
    field.insert(field.begin() + 1, 2);
    EXPECT_EQ(2, field[1]);
    EXPECT_EQ(1, field.front());
    EXPECT_EQ(3, field.back());
    EXPECT_EQ(3U, field.getSize());
    EXPECT_EQ(field.begin() + 2, field.find(3));
    EXPECT_EQ(field.end(), field.find(4));
    field.erase(field.begin());
    EXPECT_EQ(2, field.front());
    EXPECT_EQ(3, *field.rbegin());
    std::vector<osg::Int32>& values = field.getValues();
    values.push_back(9);
    EXPECT_EQ(9, field.back());
    field.setValues(std::vector<osg::Int32>{4, 5});
    EXPECT_EQ(2U, field.size());
    field.clear();
    EXPECT_EQ(0U, field.getSize());
}

/// Whatever is done to it, and whenever the vector itself is looked at.
template <class Field>
void editAtRandom(Field field, bool showVector) {
    using T = typename Field::value_type;
    std::mt19937 random(7);
    std::vector<T> expected;
    std::vector<T>* shown = nullptr;
    const auto value = [](std::uint32_t number) {
        if constexpr (std::is_same_v<T, std::string>)
            return std::to_string(number);
        else
            return static_cast<T>(number);
    };
    for (std::uint32_t step = 0; step < 4000; ++step) {
        const auto place = static_cast<std::ptrdiff_t>(expected.empty() ? 0 : random() % expected.size());
        switch (random() % (step / 500 % 2 == 0 ? 6 : 10)) {
        case 0:
            field.insert(field.begin() + place, value(step));
            expected.insert(expected.begin() + place, value(step));
            break;
        case 1:
            field.resize(static_cast<std::size_t>(place), value(step));
            expected.resize(static_cast<std::size_t>(place), value(step));
            break;
        case 2:
        case 3:
        case 4:
        case 5:
            for (std::uint32_t i = 0; i < 5; ++i) {
                field.push_back(value(step + i));
                expected.push_back(value(step + i));
            }
            break;
        case 6:
            if (!expected.empty()) {
                const auto next = field.erase(field.begin() + place);
                EXPECT_EQ(next - field.begin(), place);
                expected.erase(expected.begin() + place);
            }
            break;
        case 7:
            field.erase(field.begin(), field.begin() + place);
            expected.erase(expected.begin(), expected.begin() + place);
            break;
        default:
            if (!expected.empty()) {
                field.erase(field.begin());
                expected.erase(expected.begin());
            }
        }
        if (showVector && step == 2000)
            shown = &field.getValues();
        if (shown) {
            ASSERT_EQ(*shown, expected) << step;
        }
        ASSERT_EQ(std::vector<T>(field.begin(), field.end()), expected) << step;
        ASSERT_EQ(std::vector<T>(field.rbegin(), field.rend()),
                  std::vector<T>(expected.rbegin(), expected.rend()));
        ASSERT_EQ(field.size(), expected.size());
        ASSERT_EQ(field.getSize(), expected.size());
        ASSERT_EQ(field.isEmpty(), expected.empty());
        if (!expected.empty()) {
            ASSERT_EQ(field.front(), expected.front());
            ASSERT_EQ(field.back(), expected.back());
            ASSERT_EQ(field[static_cast<std::size_t>(place) % expected.size()],
                      expected[static_cast<std::size_t>(place) % expected.size()]);
        }
        Field copy = field;
        ASSERT_EQ(copy.getValues(), expected);
        Field assigned;
        assigned.push_back(value(1));
        assigned.setAbstrValue(field);
        ASSERT_EQ(std::as_const(assigned).getValues(), expected);
    }
}

TEST(MultiField, HoldsWhatAVectorHoldsAfterAnyEdits) {
    editAtRandom(osg::MFUInt64(), false);
    editAtRandom(osg::MFUInt64(), true);
    editAtRandom(osg::MFString(), true);
}

TEST(MultiField, KeepsItsValuesWhenItIsSwappedOrCopiedOntoItself) {
    osg::MFInt32 one;
    osg::MFInt32 other;
    for (osg::Int32 i = 0; i < 9; ++i)
        one.push_back(i);
    one.erase(one.begin());
    const std::vector<osg::Int32>& shown = other.getValues();
    one.swap(other);
    EXPECT_TRUE(one.empty());
    EXPECT_EQ(shown, (std::vector<osg::Int32>{1, 2, 3, 4, 5, 6, 7, 8}));
    other.erase(other.begin());
    EXPECT_EQ(shown.size(), 7U);
    other.setValues(other);
    other.setValues(other.getValues());
    EXPECT_EQ(shown, (std::vector<osg::Int32>{2, 3, 4, 5, 6, 7, 8}));
    one.pushValueByStr("5");
    one.pushValueByStr("6");
    one.pushValueByStr("7");
    one.erase(one.begin());
    std::string text;
    EXPECT_EQ(one.getValueByStr(text), "6, 7");
    text.clear();
    EXPECT_EQ(one.getValueByStr(text, 1), "7");
    text.clear();
    EXPECT_EQ(one.getValueByStr(text, 2), "");
}

TEST(Field, KnowsItsTypes) {
    const osg::SFReal32 real;
    const osg::Field& field = real;
    EXPECT_TRUE(field.getType() == osg::SFReal32::getClassType());
    EXPECT_FALSE(field.getType() == osg::SFReal64::getClassType());
    EXPECT_FALSE(field.getType() == osg::MFReal32::getClassType());
    EXPECT_EQ(field.getContentType().getId(), osg::MFReal32::getClassType().getContentType().getId());
    EXPECT_NE(nullptr, dynamic_cast<const osg::SFReal32*>(&field));
    EXPECT_EQ(nullptr, dynamic_cast<const osg::SFReal64*>(&field));
    EXPECT_STREQ("SFReal32", field.getType().getCName());
    EXPECT_STREQ("Real32", field.getContentType().getCName());
    EXPECT_EQ(osg::FieldType::SINGLE_FIELD, field.getCardinality());
    EXPECT_EQ(osg::FieldType::MULTI_FIELD, osg::MFReal32().getCardinality());
    EXPECT_STREQ("bool", osg::SFBool().getContentType().getCName());
    EXPECT_STREQ("SFBool", osg::SFBool().getType().getCName());
    EXPECT_STREQ("string", osg::SFString().getContentType().getCName());
    EXPECT_STREQ("Time", osg::SFTime().getContentType().getCName());
    EXPECT_STREQ("NodePtr", osg::SFNodePtr().getContentType().getCName());
}

TEST(Field, CopiesOnlyFromItsOwnType) {
    osg::SFReal32 target{1.0F};
    target.setAbstrValue(osg::SFReal64{2.0});
    EXPECT_EQ(1.0F, target.getValue());
    target.setAbstrValue(osg::SFReal32{3.0F});
    EXPECT_EQ(3.0F, target.getValue());
}

TEST(PointerField, TakesOnlyHandlesOfItsType) {
    const osg::NodePtr node = osg::Node::create();
    const osg::GroupPtr group = osg::Group::create();
    osg::SFNodePtr field;
    EXPECT_TRUE(field.isPointerField());
    EXPECT_TRUE(field.pushPointer(node));
    EXPECT_FALSE(field.pushPointer(group));
    EXPECT_TRUE(field.getPointer(0) == node);
    EXPECT_TRUE(field.getPointer(1) == osg::NullFC);
    EXPECT_TRUE(field.pushPointer(osg::NullFC));
    EXPECT_TRUE(field.getValue() == osg::NullFC);
    osg::SFReal32 number;
    EXPECT_FALSE(number.isPointerField());
    EXPECT_FALSE(number.pushPointer(node));
    EXPECT_TRUE(number.getPointer(0) == osg::NullFC);
    osg::releaseRefCP(node);
    osg::releaseRefCP(group);
}

} // namespace
