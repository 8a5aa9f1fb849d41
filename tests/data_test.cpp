// Field values: their text in a card line and their typed read-back.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <iomanip>
#include <limits>
#include <sstream>
#include <string>

#include "core/card.h"

namespace {

std::string print(Data& value, bool noWidth)
{
    char text[9216];
    std::memset(text, 0, sizeof text);
    value.tostring(text, noWidth);
    return text;
}

std::string printDouble(double v, unsigned width, bool noWidth = false)
{
    Double value(v, width);
    return print(value, noWidth);
}

// ------------------------------------------------------------ Double format

struct DoubleCase {
    double value;
    unsigned width;
    const char* expected;
};

// Expected texts checked one by one against printf's "%.14f", "%*s" and
// "%*.*e" by hand.
const DoubleCase kDoubleCases[] = {
    {0.0, 10, "        0."},
    {1.0, 10, "        1."},
    {-1.0, 10, "       -1."},
    {1.5, 10, "       1.5"},
    {100.0, 10, "      100."},
    {-0.5, 10, "      -0.5"},
    {0.1, 10, "       0.1"},
    {0.25, 10, "      0.25"},
    {3.14159265358979, 10, "3.1416e+00"},
    {2.718281828, 10, "2.7183e+00"},
    {123456789.0, 10, "123456789."},
    {1234567890.0, 10, "1.2346e+09"},
    {12345678901.0, 10, "1.2346e+10"},
    {-123456789.0, 10, "-1.2346+08"},
    {-12345678.0, 10, "-12345678."},
    {1e-15, 10, "        0."},
    {-1e-15, 10, "       -0."},
    {1e-300, 10, "        0."},
    {1e15, 10, "1.0000e+15"},
    {1e300, 10, "1.0000+300"},
    {-1e300, 10, "-1.0000+300"},
    {210000.0, 10, "   210000."},
    {7.85e-09, 10, "7.8500e-09"},
    {1.2e-05, 10, "  0.000012"},
    {0.3, 10, "       0.3"},
    {1e-05, 10, "   0.00001"},
    {1.2345e-05, 10, "1.2345e-05"},
    {-1.2345e-05, 10, "-1.2345-05"},
    {-1234.5678901, 10, "-1.2346+03"},
    {123456789012.5, 10, "1.2346e+11"},
    {99999999.9, 10, "1.0000e+08"},
    {999999999.0, 10, "999999999."},
    {9999999999.0, 10, "1.0000e+10"},
    {0.123456789, 10, "1.2346e-01"},
    {-0.123456789, 10, "-1.2346-01"},
    {20.0, 10, "       20."},
    {1e-07, 10, " 0.0000001"},
    {6.02e+23, 10, "6.0200e+23"},
    {-6.02e+23, 10, "-6.0200+23"},
    {1.0, 5, "   1."},
    {12345.0, 12, "      12345."},
    {1.2345e-05, 12, " 0.000012345"},
    {3.14159265358979, 16, "3.14159265358979"},
    {-1234.5678901, 8, "-1.23+03"},
    {1e300, 12, "1.000000+300"},
    {1e-300, 6, "    0."},
    {0.5, 20, "                 0.5"},
    {-2.5e-10, 14, "-0.00000000025"},
    {42.0, 3, "42."},
    {12345.678, 8, "1.23e+04"},
    {-12345.678, 8, "-1.23+04"},
};

TEST(DoubleFormat, MatchesHandCheckedTable)
{
    for (const DoubleCase& c : kDoubleCases)
        EXPECT_EQ(printDouble(c.value, c.width), c.expected) << "value " << c.value << " width " << c.width;
}

// The card number format worked out with streams instead of printf: fixed
// text without trailing zeros if it fits, else exponent text, without its
// "e" if even that is too wide.
std::string referenceCardNumber(double v, unsigned width)
{
    std::ostringstream fixed;
    fixed << std::fixed << std::setprecision(14) << v;
    std::string text = fixed.str();
    while (!text.empty() && text.back() == '0')
        text.pop_back();
    if (text.size() <= width)
        return std::string(width - text.size(), ' ') + text;
    std::ostringstream exponent;
    exponent << std::scientific << std::setprecision(static_cast<int>(width) - 6) << std::setw(static_cast<int>(width))
             << v;
    text = exponent.str();
    if (text.size() > width)
        text.erase(text.rfind('e'), 1);
    return text;
}

TEST(DoubleFormat, AgreesWithStreamReferenceOverManyValues)
{
    const double mantissas[] = {1.0, 1.5, -2.25, 3.14159, -9.87654321, 123.456, 7.0, -0.999999};
    const unsigned widths[] = {8, 10, 12, 15};
    int compared = 0;
    for (double mantissa : mantissas) {
        for (int exponent = -20; exponent <= 20; ++exponent) {
            const double v = mantissa * std::pow(10.0, exponent);
            for (unsigned width : widths) {
                EXPECT_EQ(printDouble(v, width), referenceCardNumber(v, width)) << v << " width " << width;
                ++compared;
            }
        }
    }
    EXPECT_EQ(compared, 8 * 41 * 4);
}

TEST(DoubleFormat, ZeroAtWidthTenIsEightBlanksAZeroAndAPoint)
{
    EXPECT_EQ(printDouble(0.0, 10), "        0.");
}

TEST(DoubleFormat, TooLongInFixedFormFallsBackToExponentForm)
{
    EXPECT_EQ(printDouble(123456789012.5, 10), "1.2346e+11");
}

TEST(DoubleFormat, SmallValueFitsFixedFormWithThreeBlanksOnTheLeft)
{
    EXPECT_EQ(printDouble(0.00001, 10), "   0.00001");
}

TEST(DoubleFormat, ElevenCharactersInFixedFormGoesToExponentForm)
{
    EXPECT_EQ(printDouble(0.000012345, 10), "1.2345e-05");
}

TEST(DoubleFormat, NegativeTooWideInExponentFormGivesUpItsE)
{
    EXPECT_EQ(printDouble(-0.000012345, 10), "-1.2345-05");
    EXPECT_EQ(printDouble(-1234.5678901, 10), "-1.2346+03");
}

TEST(DoubleFormat, TrailingZerosGoButThePointStays)
{
    EXPECT_EQ(printDouble(1.5, 10), "       1.5");
    EXPECT_EQ(printDouble(1.0, 10), "        1.");
    EXPECT_EQ(printDouble(100.0, 10), "      100.");
}

TEST(DoubleFormat, ValuesBelowTheFourteenthDecimalPrintLikeZero)
{
    EXPECT_EQ(printDouble(1e-15, 10), "        0.");
    EXPECT_EQ(printDouble(1e-300, 10), "        0.");
    EXPECT_EQ(printDouble(-1e-15, 10), "       -0.");
}

TEST(DoubleFormat, HugeValuesDoNotOverrunAndUseExponentForm)
{
    EXPECT_EQ(printDouble(1e15, 10), "1.0000e+15");
    EXPECT_EQ(printDouble(1e300, 10), "1.0000+300");
    EXPECT_EQ(printDouble(std::numeric_limits<double>::max(), 10), "1.7977+308");
    EXPECT_EQ(printDouble(-std::numeric_limits<double>::max(), 10), "-1.7977+308");
}

TEST(DoubleFormat, ValueExactlyAtTheWidthStaysFixedAndOneOverGoesToExponent)
{
    EXPECT_EQ(printDouble(123456789.0, 10), "123456789.");
    EXPECT_EQ(printDouble(1234567890.0, 10), "1.2346e+09");
    EXPECT_EQ(printDouble(-12345678.0, 10), "-12345678.");
    EXPECT_EQ(printDouble(-123456789.0, 10), "-1.2346+08");
}

TEST(DoubleFormat, OtherWidthsScaleTheDecimalsOfTheExponentForm)
{
    EXPECT_EQ(printDouble(1e300, 12), "1.000000+300");
    EXPECT_EQ(printDouble(12345.678, 8), "1.23e+04");
    EXPECT_EQ(printDouble(3.14159265358979, 16), "3.14159265358979");
    EXPECT_EQ(printDouble(0.5, 20), "                 0.5");
}

TEST(DoubleFormat, WidthBelowSixUsesAnExponentFormWithoutDecimals)
{
    EXPECT_EQ(printDouble(12345.0, 4), "1+04");
    EXPECT_EQ(printDouble(1.0, 1), "1+00");
    EXPECT_EQ(printDouble(42.0, 3), "42.");
}

TEST(DoubleFormat, WithoutWidthPrintsTheBareFixedText)
{
    EXPECT_EQ(printDouble(1.5, 10, true), "1.5");
    EXPECT_EQ(printDouble(0.0, 10, true), "0.");
    EXPECT_EQ(printDouble(-1234.5678901, 10, true), "-1234.56789010000011");
    EXPECT_EQ(printDouble(-1234.5, 10, true), "-1234.5");
    EXPECT_EQ(printDouble(123456789012.5, 10, true), "123456789012.5");
}

TEST(DoubleFormat, InfinityHasNoEToGiveUp)
{
    EXPECT_EQ(printDouble(std::numeric_limits<double>::infinity(), 10), "       inf");
    EXPECT_EQ(printDouble(-std::numeric_limits<double>::infinity(), 2), "-inf");
}

// ------------------------------------------------------------- other leaves

TEST(LeafText, UIntegerIsRightJustifiedOrBare)
{
    unsigned v = 42;
    UInteger value(v, 5);
    EXPECT_EQ(print(value, false), "   42");
    EXPECT_EQ(print(value, true), "42");
}

TEST(LeafText, IntegerIsRightJustifiedOrBare)
{
    int v = -7;
    Integer value(v, 4);
    EXPECT_EQ(print(value, false), "  -7");
    EXPECT_EQ(print(value, true), "-7");
}

TEST(LeafText, NumbersWiderThanTheirColumnAreNotCut)
{
    int v = 1234567;
    Integer value(v, 3);
    EXPECT_EQ(print(value, false), "1234567");
}

TEST(LeafText, CharArrayIsRightJustifiedOrBare)
{
    CharArray value("ab", 5);
    EXPECT_EQ(print(value, false), "   ab");
    EXPECT_EQ(print(value, true), "ab");
    CharArray longer("abcdefgh", 3);
    EXPECT_EQ(print(longer, false), "abcdefgh");
}

TEST(LeafText, CharArraySetWidthReplacesTheWidth)
{
    CharArray value("ab", 5);
    value.setWidth(3);
    EXPECT_EQ(value.width, 3u);
    EXPECT_EQ(print(value, false), " ab");
}

TEST(LeafText, BlankObjectIsOneBlankLeftJustified)
{
    BlankObject value(4);
    EXPECT_EQ(print(value, false), "    ");
    EXPECT_EQ(print(value, true), " ");
}

TEST(LeafText, BlankObjectWithoutArgumentIsTenWide)
{
    BlankObject value;
    EXPECT_EQ(value.width, 10u);
    EXPECT_EQ(value.type, 8u);
    EXPECT_EQ(print(value, false), std::string(10, ' '));
}

TEST(LeafText, FloatIgnoresItsWidth)
{
    float v = 1.5f;
    Float narrow(v, 5);
    EXPECT_EQ(print(narrow, false), "       1.5");
    EXPECT_EQ(print(narrow, true), "       1.5");
    float big = 123456789.0f;
    Float wide(big, 30);
    EXPECT_EQ(print(wide, false), "1.23457e+08");
}

TEST(LeafText, DoubleArrayLeavesTheBufferUntouched)
{
    double values[] = {1.0, 2.0};
    DoubleArray value(2, values, 10);
    char text[16] = "keep";
    value.tostring(text, false);
    EXPECT_STREQ(text, "keep");
    value.tostring(text, true);
    EXPECT_STREQ(text, "keep");
}

TEST(LeafText, StringOverloadOfALeafLeavesTheTextAsItIs)
{
    unsigned v = 3;
    UInteger value(v, 5);
    std::string out = "before";
    value.tostring(out, false);
    EXPECT_EQ(out, "before");
}

// ------------------------------------------------------------- construction

TEST(LeafConstruction, TagsAndWidthsAreSet)
{
    unsigned u = 1;
    int i = 2;
    double d = 3;
    float f = 4;
    double values[] = {5.0};
    EXPECT_EQ(UInteger(u, 11).type, 0u);
    EXPECT_EQ(UInteger(u, 11).width, 11u);
    EXPECT_EQ(Integer(i, 12).type, 1u);
    EXPECT_EQ(Double(d, 13).type, 2u);
    EXPECT_EQ(Float(f, 14).type, 3u);
    EXPECT_EQ(CharArray("x", 15).type, 5u);
    EXPECT_EQ(DoubleArray(1, values, 16).type, 6u);
    EXPECT_EQ(BlankObject(17).type, 8u);
    EXPECT_EQ(BlankObject(17).width, 17u);
}

TEST(LeafConstruction, TextIsReadWithAtoiAndAtof)
{
    EXPECT_EQ(UInteger("12abc", 10).payload, 12u);
    EXPECT_EQ(UInteger("-1", 10).payload, 4294967295u);
    EXPECT_EQ(Integer("-5", 10).payload, -5);
    EXPECT_EQ(Integer("x", 10).payload, 0);
    EXPECT_DOUBLE_EQ(Double("1.5e3", 10).payload, 1500.0);
    EXPECT_DOUBLE_EQ(Double("abc", 10).payload, 0.0);
    EXPECT_FLOAT_EQ(Float("2.5", 10).payload, 2.5f);
}

TEST(LeafConstruction, CharArrayKeepsItsOwnDuplicate)
{
    char source[] = "text";
    CharArray value(source, 10);
    source[0] = 'X';
    EXPECT_STREQ(value.payload, "text");
    EXPECT_NE(value.payload, source);
}

TEST(LeafConstruction, DoubleArrayCopiesTheValuesItIsGiven)
{
    double values[] = {1.0, 2.5, -3.0};
    DoubleArray value(3, values, 10);
    values[1] = 99.0;
    double* stored = nullptr;
    EXPECT_EQ(value.value(&stored), 3u);
    ASSERT_NE(stored, nullptr);
    EXPECT_NE(stored, values);
    EXPECT_DOUBLE_EQ(stored[1], 2.5);
}

TEST(LeafConstruction, EmptyDoubleArrayOwnsNothing)
{
    DoubleArray value(0, nullptr, 10);
    double* stored = reinterpret_cast<double*>(&value);
    EXPECT_EQ(value.value(&stored), 0u);
    EXPECT_EQ(stored, nullptr);
}

TEST(LeafCopy, CharArrayCopySharesItsBuffer)
{
    CharArray original("shared", 10);
    CharArray* copy = new CharArray(original);
    EXPECT_EQ(copy->payload, original.payload);
    CharArray assigned("other", 3);
    char* ownText = assigned.payload;
    assigned = original;
    EXPECT_EQ(assigned.payload, original.payload);
    EXPECT_EQ(assigned.width, 10u);
    // Only one of the sharers may be destroyed with the buffer.
    std::free(ownText);
    assigned.payload = nullptr;
    copy->payload = nullptr;
    delete copy;
}

TEST(LeafCopy, DoubleArrayCopySharesItsBuffer)
{
    double values[] = {1.0, 2.0};
    DoubleArray original(2, values, 10);
    DoubleArray* copy = new DoubleArray(original);
    EXPECT_EQ(copy->payload, original.payload);
    EXPECT_EQ(copy->count, 2);
    copy->count = 0;
    delete copy;
}

TEST(LeafCopy, DataAssignmentCopiesTypeAndWidth)
{
    unsigned a = 1, b = 2;
    UInteger target(a, 3);
    UInteger source(b, 7);
    source.type = 1;
    target = source;
    EXPECT_EQ(target.type, 1u);
    EXPECT_EQ(target.width, 7u);
    EXPECT_EQ(target.payload, 2u);
}

// -------------------------------------------------------------- value slots

TEST(ValueFallback, OtherTypesReadAsZeroWithoutAMessage)
{
    double d = 2.5;
    Double value(d, 10);
    testing::internal::CaptureStdout();
    int i = 7;
    unsigned u = 7;
    char* text = nullptr;
    value.value(&i);
    value.value(&u);
    value.value(&text);
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_EQ(i, 0);
    EXPECT_EQ(u, 0u);
    ASSERT_NE(text, nullptr);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(printed, "");
}

TEST(ValueFallback, TextAndIntegerFieldsGiveZeroForDouble)
{
    CharArray text("12", 10);
    int n = 5;
    Integer integer(n, 10);
    double a = 1, b = 1;
    text.value(&a);
    integer.value(&b);
    EXPECT_EQ(a, 0.0);
    EXPECT_EQ(b, 0.0);
}

TEST(ValueFallback, BlankObjectHasNoValueOfItsOwn)
{
    BlankObject blank(10);
    char* text = nullptr;
    double d = 1;
    blank.value(&text);
    blank.value(&d);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(d, 0.0);
}

TEST(ValueOwnType, EachLeafGivesItsPayload)
{
    unsigned u = 9;
    int i = -9;
    double d = 9.5;
    float f = 0.25f;
    UInteger uValue(u, 10);
    Integer iValue(i, 10);
    Double dValue(d, 10);
    Float fValue(f, 10);
    CharArray cValue("abc", 10);
    unsigned uOut = 0;
    int iOut = 0;
    double dOut = 0;
    float fOut = 0;
    char* cOut = nullptr;
    uValue.value(&uOut);
    iValue.value(&iOut);
    dValue.value(&dOut);
    fValue.value(&fOut);
    cValue.value(&cOut);
    EXPECT_EQ(uOut, 9u);
    EXPECT_EQ(iOut, -9);
    EXPECT_EQ(dOut, 9.5);
    EXPECT_EQ(fOut, 0.25f);
    EXPECT_EQ(cOut, cValue.payload);
}

// A leaf whose tag was changed behind its back reports on standard output.
template <typename Leaf, typename Out>
std::string wrongTypeMessage(Leaf& leaf, Out* out)
{
    leaf.type = 4;
    testing::internal::CaptureStdout();
    leaf.value(out);
    return testing::internal::GetCapturedStdout();
}

TEST(ValueWrongType, UIntegerReportsAndGivesZero)
{
    unsigned v = 5, out = 1;
    UInteger leaf(v, 10);
    EXPECT_EQ(wrongTypeMessage(leaf, &out), "wrong data type sent to get unsigned int value\n");
    EXPECT_EQ(out, 0u);
}

TEST(ValueWrongType, IntegerReportsAndGivesZero)
{
    int v = 5, out = 1;
    Integer leaf(v, 10);
    EXPECT_EQ(wrongTypeMessage(leaf, &out), "wrong data type sent to get int value\n");
    EXPECT_EQ(out, 0);
}

TEST(ValueWrongType, DoubleReportsAndGivesZero)
{
    double v = 5, out = 1;
    Double leaf(v, 10);
    EXPECT_EQ(wrongTypeMessage(leaf, &out), "wrong data type sent to get double value\n");
    EXPECT_EQ(out, 0.0);
}

TEST(ValueWrongType, FloatReportsAndGivesZero)
{
    float v = 5, out = 1;
    Float leaf(v, 10);
    EXPECT_EQ(wrongTypeMessage(leaf, &out), "wrong data type sent to get float value\n");
    EXPECT_EQ(out, 0.0f);
}

TEST(ValueWrongType, CharArrayReportsAndGivesNull)
{
    CharArray leaf("abc", 10);
    char* out = leaf.payload;
    EXPECT_EQ(wrongTypeMessage(leaf, &out), "wrong data type sent to get char array\n");
    EXPECT_EQ(out, nullptr);
}

TEST(ValueWrongType, DoubleArrayReportsGivesNullAndStillTheCount)
{
    double values[] = {1.0, 2.0, 3.0};
    DoubleArray leaf(3, values, 10);
    leaf.type = 4;
    double* out = values;
    testing::internal::CaptureStdout();
    const unsigned count = leaf.value(&out);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "wrong data type sent to get double array\n");
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(count, 3u);
}

} // namespace
