// Archives into the class that their header names, and what has no header into partial records.

#include <algorithm>
#include <memory>
#include <vector>

#include "kalvo/archive/recordtransfer.h"
#include "kalvo/frame/kxtrace.h"
#include "kalvo/image/regionrows.h"
#include "kalvo/streams/archiveheader.h"
#include "kalvo/streams/streambytes.h"
#include "fuzz/require.h"

namespace {

using namespace Zelkor::Kalvo;
using Fuzzing::Require;
using Bytes = std::vector<unsigned char>;

// Writes to the corners of a region: the address sanitizer knows what lies outside.
void TouchCorners(KxGenericROI& region) {
    const RegionRows rows = RowsOf(region);
    if (!rows.first || rows.width == 0 || rows.height == 0) return;
    const std::int64_t bits = rows.firstBit + std::int64_t{rows.width} * region.GetBitsPerPixel();
    for (const int y : {0, rows.height - 1})
        for (const std::int64_t column : {std::int64_t{0}, (bits - 1) / 8}) rows.Row(y)[column] ^= 1;
}

void CheckTree(KxGenericROI& root) {
    KxGenericROI::CheckParentChildrenConsistency(&root);
    for (KxGenericROI* node = &root; node; node = node->GetNextROI(&root)) TouchCorners(*node);
}

Bytes Saved(const KxGenericROI& object) {
    KxMemSerializer writer;
    writer.OpenWriter();
    KxOk();
    object.Save(&writer);
    Require(KxSuccess(), "what was loaded can be saved");
    return writer.GetBuffer();
}

// What one archive of an object says, its next one says too.
void CheckRoundTrip(const KxGenericROI& object, const RegionClass& regionClass) {
    const Bytes archive = Saved(object);
    KxMemSerializer reader;
    reader.OpenReader(archive);
    const std::unique_ptr<KxGenericROI> again(regionClass.make().region);
    again->Load(&reader);
    Require(KxSuccess() && reader.IsEOS(), "what was saved can be loaded");
    Require(Saved(*again) == archive, "loading loses nothing");
}

void CheckArchive(const Bytes& bytes) {
    KxMemSerializer reader;
    reader.OpenReader(bytes);
    const RegionClass* regionClass = FindArchivedClass(reader.GetNextObjectType());
    if (!regionClass) regionClass = FindArchivedClass(KxSerializer::ImageBW8);
    const std::unique_ptr<KxGenericROI> object(regionClass->make().region);
    KxOk();
    object->Load(&reader);
    CheckTree(*object);
    if (BytesLeft(reader) < bytes.size()) return CheckRoundTrip(*object, *regionClass);
    Require(KxFailure(), "a failure has a code");
    Require(!object->GetFirstSubROI() && object->GetWidth() == 0 && object->GetHeight() == 0 &&
                !object->GetAuthor() && object->Void(),
            "what cannot be loaded leaves an empty object");
}

template <class Object>
void CheckPartialRecords(const Bytes& bytes) {
    for (const unsigned align : {0u, 1u, 4u}) {
        KxMemSerializer reader;
        reader.OpenReader(bytes);
        Object object;
        try {
            align ? object.VersionLessPartialSerialize(&reader, align) : object.PartialSerialize(&reader);
        } catch (const Exception& exception) {
            Require(exception.GetError() >= 1000, "a failure has a code");
        }
        CheckTree(object);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t count) {
    KxSetTraceMode(KX_TRACE_MODE_SILENT);
    const Bytes bytes(data, data + count);
    if (count > 0 && bytes[0] == kArchiveSignature) {
        CheckArchive(bytes);
    } else {
        CheckPartialRecords<KxImage<KxBW1>>(bytes);
        CheckPartialRecords<KxImage<KxC24>>(bytes);
        CheckPartialRecords<KxROI<KxBW8>>(bytes);
    }
    return 0;
}
