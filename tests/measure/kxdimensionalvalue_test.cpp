// Dimensional values: conversion, and the three versions of the archive record byte by byte.

#include "tests/support/test.h"

#include "tests/support/archive_builder.h"

namespace Zelkor::Kalvo::Testing {
namespace {

TEST(KxDimensionalValue, ConvertsOnlyWhenAskedTo) {
    KxDimensionalValue value;
    EXPECT_EQ(value.GetValue(), 1.0f);
    EXPECT_STREQ(value.GetUnit()->GetName(), "None");
    value.SetValue(2, &KxUnit_inch);
    const float millimetres = 2.0f * (0.0254f / 0.001f);
    EXPECT_EQ(value.GetValue(&KxUnit_mm), millimetres);
    EXPECT_EQ(value.GetValue(nullptr), 2.0f);
    value.SetUnit(&KxUnit_mm);
    EXPECT_EQ(value.GetValue(), millimetres);
    value.SetUnit(nullptr);
    value.SetValue(3, nullptr);
    value.SetValue(4, value.GetUnit());
    value.SetUnit(value.GetUnit());
    EXPECT_EQ(value.GetValue(), 4.0f);
    EXPECT_STREQ(value.GetUnit()->GetName(), "mm");
    EXPECT_EQ(KxDimensionalValue(5, nullptr).GetUnit()->GetMagnitude(), 0.0f);
}

TEST(KxDimensionalValue, AlwaysWritesTheNewestRecordWithTheWholeName) {
    KxMeasurementUnit unit(4.0f, "pace");
    KxDimensionalValue value(2, &unit);
    const auto record = [&](unsigned version) {
        return Written([&](KxSerializer& stream) { value.Serialize(&stream, version); });
    };
    for (const unsigned version : {0u, 2u, 0xFFFFFFFFu})
        EXPECT_EQ(record(version), Dimension(2, Numbers({0}), 4, "pace")) << version;
    value.GetUnit()->SetNameUnicode(Wide("pa").c_str());
    EXPECT_EQ(record(3), Dimension(2, Numbers({0}), 4, {"p\0a", 3}));
}

TEST(KxDimensionalValue, ReadsEveryVersionOfTheRecordOrKeepsItsUnit) {
    const Bytes shortRecord = Dimension(2, {}, 4, "pace");
    const Bytes record = Dimension(2, Numbers({0}), 4, "pace");
    const Bytes predefined = Dimension(2, Numbers({1}), 4, "pace");
    const std::tuple<unsigned, Bytes, const char*, KX_ERRORS> cases[] = {
        {1, shortRecord, "pace", KX_OK},
        {2, predefined, "pace", KX_OK},
        {3, record, "pace", KX_OK},
        {0xFFFFFFFF, record, "pace", KX_OK},
        {3, Dimension(2, Numbers({0}), 4, "1234567890123456"), "123456789012345", KX_OK},
        {3, predefined, "cm", KX_ERROR_INTERNAL},
        {3, Bytes(record.begin(), record.end() - 1), "cm", KX_ERROR_FILE_READ},
    };
    const TraceRecorder trace;
    for (const auto& [version, bytes, name, error] : cases) {
        KxDimensionalValue value(1, &KxUnit_cm);
        const Stream reader = ReaderOf(bytes);
        KxOk();
        const KX_ERRORS thrown = CodeThrownBy([&] { value.Serialize(reader.get(), version); });
        EXPECT_EQ(KxFailure() ? KxGetError() : thrown, error) << version;
        EXPECT_EQ(value.GetValue(), 2.0f) << version;
        EXPECT_EQ(value.GetUnit()->GetMagnitude(), error == KX_OK ? 4.0f : 0.01f) << version;
        EXPECT_STREQ(value.GetUnit()->GetName(), name) << version;
        EXPECT_EQ(reader->IsEOS(), error == KX_OK) << version;
    }
    EXPECT_EQ(trace.Functions(), Names{"KxDimensionalValue::Serialize"});
}

}  // namespace
}  // namespace Zelkor::Kalvo::Testing
