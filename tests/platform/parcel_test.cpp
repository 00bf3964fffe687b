#include <climits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "parcel.h"
#include "string_ex.h"

namespace {
using OHOS::Parcel;

TEST(ParcelTest, ValuesRoundTripAndEveryWriteKeepsFourByteAlignment)
{
    Parcel parcel;
    // Checked right after each write: its size is the sum of the padded sizes so far.
    auto expectWritten = [&parcel](bool written, size_t expectedSize) {
        EXPECT_TRUE(written);
        EXPECT_EQ(parcel.GetDataSize(), expectedSize);
    };
    expectWritten(parcel.WriteInt32(-7), 4);
    expectWritten(parcel.WriteUint32(UINT32_MAX), 8);
    expectWritten(parcel.WriteBuffer("abc", 3), 12); // padded to 4
    expectWritten(parcel.WriteString("abcd"), 24); // length, then "abcd\0" padded to 8
    expectWritten(parcel.WriteString(""), 32); // length, then "\0" padded to 4
    expectWritten(parcel.WriteString16(u"\u00e9t\u00e9"), 44); // length, then 4 units with the terminator
    expectWritten(parcel.WriteString16Vector({u"a", u""}), 64);

    EXPECT_EQ(parcel.ReadInt32(), -7);
    uint32_t unsignedValue = 0;
    EXPECT_TRUE(parcel.ReadUint32(unsignedValue));
    EXPECT_EQ(unsignedValue, UINT32_MAX);
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(parcel.ReadBuffer(3)), 3), "abc");
    EXPECT_EQ(parcel.ReadString(), "abcd");
    std::string empty = "x";
    EXPECT_TRUE(parcel.ReadString(empty));
    EXPECT_EQ(empty, "");
    EXPECT_EQ(parcel.ReadString16(), u"\u00e9t\u00e9");
    std::vector<std::u16string> strings;
    EXPECT_TRUE(parcel.ReadString16Vector(&strings));
    EXPECT_EQ(strings, (std::vector<std::u16string> {u"a", u""}));
    EXPECT_EQ(parcel.GetReadableBytes(), 0u);
}

TEST(ParcelTest, ReadsPastTheEndFailWithoutMoving)
{
    Parcel parcel;
    int32_t value = 5;
    EXPECT_FALSE(parcel.ReadInt32(value));
    EXPECT_EQ(value, 5);
    EXPECT_EQ(parcel.ReadInt32(), 0);
    EXPECT_EQ(parcel.ReadString(), "");
    EXPECT_EQ(parcel.ReadBuffer(1), nullptr);

    ASSERT_TRUE(parcel.WriteInt32(9));
    EXPECT_EQ(parcel.ReadBuffer(5), nullptr);
    EXPECT_EQ(parcel.GetReadPosition(), 0u);
    EXPECT_EQ(parcel.ReadInt32(), 9);
    EXPECT_FALSE(parcel.ReadString16Vector(nullptr));
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
        std::vector<std::u16string> strings = {u"kept"};
        EXPECT_FALSE(parcel.ReadString(text)) << c.name;
        EXPECT_FALSE(parcel.ReadString16(text16)) << c.name;
        EXPECT_FALSE(parcel.ReadString16Vector(&strings)) << c.name;
        EXPECT_EQ(text, "kept") << c.name;
        EXPECT_EQ(text16, u"kept") << c.name;
        EXPECT_EQ(strings, std::vector<std::u16string> {u"kept"}) << c.name;
        EXPECT_EQ(parcel.GetReadPosition(), 0u) << c.name;
    }
}

TEST(ParcelTest, MaxCapacityStopsWritesWithoutPartialData)
{
    Parcel parcel;
    ASSERT_TRUE(parcel.SetMaxCapacity(16));
    ASSERT_TRUE(parcel.WriteBuffer("12345678", 8));
    EXPECT_FALSE(parcel.WriteString("too long to fit")); // the length would fit, the text not
    EXPECT_FALSE(parcel.WriteString16Vector({u"a", u"too long"}));
    EXPECT_EQ(parcel.GetDataSize(), 8u);
    EXPECT_TRUE(parcel.WriteString("ab"));
    EXPECT_FALSE(parcel.WriteInt32(3));
    EXPECT_EQ(parcel.GetDataSize(), 16u);
    EXPECT_FALSE(parcel.SetMaxCapacity(8));
}

TEST(StringExTest, ConvertsUtf8ToUtf16AndGivesAnEmptyStringForMalformedInput)
{
    EXPECT_EQ(OHOS::Str8ToStr16("a\u00e9\u20ac\U0001F600"), u"a\u00e9\u20ac\U0001F600"); // a surrogate pair
    for (const std::string &bad : {std::string("\xC0\xAF"), std::string("\x80"), std::string("ab\xE2\x82"),
             std::string("\xED\xA0\x80"), std::string("\xF4\x90\x80\x80")}) {
        EXPECT_EQ(OHOS::Str8ToStr16(bad), u"") << "bytes: " << bad.size();
    }
}
} // namespace
