#include <climits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "parcel.h"
#include "string_ex.h"

namespace {
using OHOS::Parcel;

TEST(ParcelTest, EveryValueRoundTripsAndEveryWriteKeepsFourByteAlignment)
{
    Parcel parcel;
    // Checked right after each write: its size is the sum of the padded sizes so far.
    auto expectWritten = [&parcel](bool written, size_t expectedSize) {
        EXPECT_TRUE(written);
        EXPECT_EQ(parcel.GetDataSize(), expectedSize);
    };
    expectWritten(parcel.WriteBool(true), 4);
    expectWritten(parcel.WriteUint8(0xAB), 8);
    expectWritten(parcel.WriteInt32(-7), 12);
    expectWritten(parcel.WriteInt64(INT64_MIN), 20);
    expectWritten(parcel.WriteUint32(UINT32_MAX), 24);
    expectWritten(parcel.WriteUint64(UINT64_MAX), 32);
    expectWritten(parcel.WriteFloat(1.5f), 36);
    expectWritten(parcel.WriteDouble(-2.25), 44);
    expectWritten(parcel.WriteCString("hi"), 48);            // "hi\0" padded to 4
    expectWritten(parcel.WriteString("abcd"), 60);           // length, then "abcd\0" padded to 8
    expectWritten(parcel.WriteString(""), 68);               // length, then "\0" padded to 4
    expectWritten(parcel.WriteString16(u"\u00e9t\u00e9"), 80); // length, then 4 units with the terminator

    EXPECT_TRUE(parcel.ReadBool());
    EXPECT_EQ(parcel.ReadUint8(), 0xAB);
    EXPECT_EQ(parcel.ReadInt32(), -7);
    EXPECT_EQ(parcel.ReadInt64(), INT64_MIN);
    EXPECT_EQ(parcel.ReadUint32(), UINT32_MAX);
    EXPECT_EQ(parcel.ReadUint64(), UINT64_MAX);
    EXPECT_EQ(parcel.ReadFloat(), 1.5f);
    EXPECT_EQ(parcel.ReadDouble(), -2.25);
    EXPECT_STREQ(parcel.ReadCString(), "hi");
    EXPECT_EQ(parcel.ReadString(), "abcd");
    std::string empty = "x";
    EXPECT_TRUE(parcel.ReadString(empty));
    EXPECT_EQ(empty, "");
    EXPECT_EQ(parcel.ReadString16(), u"\u00e9t\u00e9");
    EXPECT_EQ(parcel.GetReadableBytes(), 0u);
}

TEST(ParcelTest, VectorsRoundTrip)
{
    Parcel parcel;
    const std::vector<int32_t> numbers = {1, -2, INT32_MAX};
    const std::vector<std::string> strings = {"a", "", "longer text"};
    ASSERT_TRUE(parcel.WriteInt32Vector(numbers));
    ASSERT_TRUE(parcel.WriteStringVector(strings));
    ASSERT_TRUE(parcel.WriteInt32Vector({}));

    std::vector<int32_t> readNumbers;
    std::vector<std::string> readStrings;
    std::vector<int32_t> readEmpty = {42};
    EXPECT_TRUE(parcel.ReadInt32Vector(&readNumbers));
    EXPECT_TRUE(parcel.ReadStringVector(&readStrings));
    EXPECT_TRUE(parcel.ReadInt32Vector(&readEmpty));
    EXPECT_EQ(readNumbers, numbers);
    EXPECT_EQ(readStrings, strings);
    EXPECT_TRUE(readEmpty.empty());
    EXPECT_FALSE(parcel.ReadInt32Vector(nullptr));
}

TEST(ParcelTest, ReadsPastTheEndFailWithoutMoving)
{
    Parcel parcel;
    int32_t value = 5;
    EXPECT_FALSE(parcel.ReadInt32(value));
    EXPECT_EQ(value, 5);
    EXPECT_EQ(parcel.ReadInt32(), 0);
    EXPECT_EQ(parcel.ReadString(), "");
    EXPECT_EQ(parcel.ReadCString(), nullptr);
    EXPECT_EQ(parcel.ReadBuffer(1), nullptr);

    ASSERT_TRUE(parcel.WriteInt32(9));
    int64_t wide = 0;
    EXPECT_FALSE(parcel.ReadInt64(wide));
    EXPECT_EQ(parcel.GetReadPosition(), 0u);
    EXPECT_EQ(parcel.ReadInt32(), 9);
    EXPECT_FALSE(parcel.ReadBool());
}

TEST(ParcelTest, BogusLengthsAreRejected)
{
    struct Case {
        const char *name;
        std::vector<uint32_t> words;
    };
    const std::vector<Case> cases = {
        {"longer than the data", {1000, 0x64636261, 0}},
        {"negative", {static_cast<uint32_t>(-1), 0}},
        {"int max", {INT32_MAX, 0}},
        {"missing terminator", {4, 0x64636261, 0x01010101}},
    };
    for (const auto &c : cases) {
        Parcel parcel;
        for (uint32_t word : c.words) {
            ASSERT_TRUE(parcel.WriteUint32(word));
        }
        std::string text = "kept";
        std::u16string text16 = u"kept";
        std::vector<std::string> strings = {"kept"};
        EXPECT_FALSE(parcel.ReadString(text)) << c.name;
        EXPECT_FALSE(parcel.ReadString16(text16)) << c.name;
        EXPECT_FALSE(parcel.ReadStringVector(&strings)) << c.name;
        EXPECT_EQ(text, "kept") << c.name;
        EXPECT_EQ(text16, u"kept") << c.name;
        EXPECT_EQ(strings, std::vector<std::string>{"kept"}) << c.name;
        EXPECT_EQ(parcel.GetReadPosition(), 0u) << c.name;
    }

    Parcel unterminated;
    ASSERT_TRUE(unterminated.WriteBuffer("abcd", 4));
    EXPECT_EQ(unterminated.ReadCString(), nullptr);

    Parcel hugeVector;
    ASSERT_TRUE(hugeVector.WriteInt32(1 << 30));
    ASSERT_TRUE(hugeVector.WriteInt32(1));
    std::vector<int32_t> numbers = {7};
    EXPECT_FALSE(hugeVector.ReadInt32Vector(&numbers));
    EXPECT_EQ(numbers, std::vector<int32_t>{7});
}

TEST(ParcelTest, MaxCapacityStopsWritesWithoutPartialData)
{
    Parcel parcel;
    ASSERT_TRUE(parcel.SetMaxCapacity(16));
    ASSERT_TRUE(parcel.WriteInt64(1));
    EXPECT_FALSE(parcel.WriteString("too long to fit")); // the length would fit, the text not
    EXPECT_EQ(parcel.GetDataSize(), 8u);
    EXPECT_TRUE(parcel.WriteInt64(2));
    EXPECT_FALSE(parcel.WriteInt32(3));
    EXPECT_EQ(parcel.GetDataSize(), 16u);
    EXPECT_FALSE(parcel.SetMaxCapacity(8));
}

TEST(StringExTest, ConvertsUtf8AndUtf16AndGivesEmptyStringsForMalformedInput)
{
    const std::u16string utf16 = u"a\u00e9\u20ac\U0001F600"; // the emoji is a surrogate pair
    EXPECT_EQ(OHOS::Str8ToStr16("a\u00e9\u20ac\U0001F600"), utf16);
    EXPECT_EQ(OHOS::Str16ToStr8(utf16), "a\u00e9\u20ac\U0001F600");
    for (const std::string &bad : {std::string("\xC0\xAF"), std::string("\x80"), std::string("ab\xE2\x82"),
             std::string("\xED\xA0\x80"), std::string("\xF4\x90\x80\x80")}) {
        EXPECT_EQ(OHOS::Str8ToStr16(bad), u"") << "bytes: " << bad.size();
    }
    EXPECT_EQ(OHOS::Str16ToStr8(std::u16string(1, static_cast<char16_t>(0xD800))), "");
    EXPECT_EQ(OHOS::Str16ToStr8(std::u16string{u'a', static_cast<char16_t>(0xDC00), u'b'}), "");
}
} // namespace
