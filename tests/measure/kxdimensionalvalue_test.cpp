// Dimensional values: conversion, and the three versions of the archive record byte by byte.
#include "kalvo/measure/kxdimensionalvalue.h"

#include <initializer_list>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kalvo/frame/kxerror.h"
#include "kalvo/persistence/kxserializer.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/trace_recorder.h"

namespace {

using Zelkor::Kalvo::Testing::Bytes;
using Zelkor::Kalvo::Testing::TraceRecorder;

const Bytes kTwo = {0, 0, 0, 0x40};
const Bytes kFour = {0, 0, 0x80, 0x40};
const Bytes kNotPredefined = {0, 0, 0, 0};
const Bytes kPredefined = {1, 0, 0, 0};

Bytes Name(std::string text) {
    text.resize(16);
    return Bytes(text.begin(), text.end());
}

Bytes Record(std::initializer_list<Bytes> fields) {
    Bytes record;
    for (const Bytes& field : fields) record.insert(record.end(), field.begin(), field.end());
    return record;
}

Bytes WriteRecord(KxDimensionalValue value, unsigned version) {
    KxMemSerializer stream;
    stream.OpenWriter();
    value.Serialize(&stream, version);
    return stream.GetBuffer();
}

TEST(KxDimensionalValue, ConvertsOnlyWhenAskedTo) {
    KxDimensionalValue value;
    EXPECT_EQ(value.GetValue(), 1.0f);
    EXPECT_STREQ(value.GetUnit()->GetName(), "None");
    EXPECT_EQ(value.GetUnit()->IsPredefinedUnit(), 0);
    EXPECT_EQ(value.GetValue(&KxUnit_mm), 1.0f / 0.001f);

    value.SetValue(2, &KxUnit_inch);
    const float millimetres = 2.0f * (0.0254f / 0.001f);
    EXPECT_EQ(value.GetValue(&KxUnit_mm), millimetres);
    EXPECT_EQ(value.GetValue(nullptr), 2.0f);
    value.SetUnit(&KxUnit_mm);
    EXPECT_EQ(value.GetValue(), millimetres);
    EXPECT_STREQ(value.GetUnit()->GetName(), "mm");
    value.SetUnit(nullptr);
    value.SetValue(3, nullptr);
    value.SetValue(4, value.GetUnit());
    value.SetUnit(value.GetUnit());
    EXPECT_EQ(value.GetValue(), 4.0f);
    EXPECT_STREQ(value.GetUnit()->GetName(), "mm");

    const KxDimensionalValue unitless(5, nullptr);
    EXPECT_EQ(unitless.GetUnit()->GetMagnitude(), 0.0f);
    value = unitless;
    EXPECT_EQ(value.GetValue(), 5.0f);
    EXPECT_STREQ(value.GetUnit()->GetName(), "");
}

TEST(KxDimensionalValue, AlwaysWritesTheNewestRecordWithTheWholeName) {
    KxMeasurementUnit unit(4.0f, "pace");
    const Bytes record = Record({kTwo, kNotPredefined, kFour, Name("pace")});
    for (const unsigned version : {0u, 1u, 2u, 3u, 0xFFFFFFFFu})
        EXPECT_EQ(WriteRecord(KxDimensionalValue(2, &unit), version), record) << version;
    const unsigned short wide[] = {'p', 'a', 0};
    KxDimensionalValue value(2, &unit);
    value.GetUnit()->SetNameUnicode(wide);
    EXPECT_EQ(WriteRecord(value, 3), Record({kTwo, kNotPredefined, kFour, Name({'p', 0, 'a', 0})}));
}

TEST(KxDimensionalValue, ReadsEveryVersionOfTheRecord) {
    const Bytes shortRecord = Record({kTwo, kFour, Name("pace")});
    const Bytes longRecord = Record({kTwo, kNotPredefined, kFour, Name("pace")});
    const Bytes predefinedRecord = Record({kTwo, kPredefined, kFour, Name("pace")});
    const struct {
        unsigned version;
        Bytes record;
        const char* name;
    } cases[] = {
        {0, shortRecord, "pace"},
        {1, shortRecord, "pace"},
        {2, longRecord, "pace"},
        {2, predefinedRecord, "pace"},
        {3, longRecord, "pace"},
        {4, longRecord, "pace"},
        {0xFFFFFFFF, longRecord, "pace"},
        {3, Record({kTwo, kNotPredefined, kFour, Name("1234567890123456")}), "123456789012345"},
        {3, Record({kTwo, kNotPredefined, kFour, Name({'p', 0, 'a', 0})}), "p"},
    };
    for (const auto& [version, record, name] : cases) {
        KxMemSerializer stream;
        stream.OpenReader(record);
        KxDimensionalValue value;
        value.Serialize(&stream, version);
        EXPECT_EQ(value.GetValue(), 2.0f) << version;
        EXPECT_EQ(value.GetUnit()->GetMagnitude(), 4.0f) << version;
        EXPECT_STREQ(value.GetUnit()->GetName(), name);
        EXPECT_EQ(stream.IsEOS(), 1) << version;
    }
}

TEST(KxDimensionalValue, RefusesARecordThatClaimsAPredefinedUnit) {
    const TraceRecorder trace;
    KxMemSerializer stream;
    stream.OpenReader(Record({kTwo, kPredefined, kFour, Name("pace")}));
    KxDimensionalValue value(1, &KxUnit_cm);
    KxOk();
    value.Serialize(&stream, 3);
    EXPECT_EQ(KxGetError(), KX_ERROR_INTERNAL);
    EXPECT_EQ(trace.Functions(), std::vector<std::string>{"KxDimensionalValue::Serialize"});
    EXPECT_EQ(value.GetValue(), 2.0f);
    EXPECT_STREQ(value.GetUnit()->GetName(), "cm");
}

TEST(KxDimensionalValue, KeepsItsUnitWhenTheRecordIsCut) {
    Bytes record = Record({kTwo, kNotPredefined, kFour, Name("pace")});
    record.pop_back();
    KxMemSerializer stream;
    stream.OpenReader(record);
    KxDimensionalValue value(1, &KxUnit_cm);
    EXPECT_THROW(value.Serialize(&stream), Zelkor::Kalvo::Exception);
    EXPECT_EQ(value.GetUnit()->GetMagnitude(), 0.01f);
    EXPECT_STREQ(value.GetUnit()->GetName(), "cm");
}

}  // namespace
