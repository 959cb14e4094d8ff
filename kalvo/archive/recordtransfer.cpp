// Walks the tree of an archived object in the order of the stream: texts, children, then everything else.

#include "kalvo/archive/recordtransfer.h"

#include <array>
#include <utility>

#include "kalvo/image/regiontree.h"

namespace Zelkor::Kalvo {
namespace {

// How deep the nesting goes is a matter of the whole tree, so no parent goes on after it.
struct TooManyLevels {};

// What has no header of an object is no child.
KxSerializer::ObjectType PeekChildType(KxSerializer& stream) {
    try {
        return PeekObjectType(stream);
    } catch (const Exception& exception) {
        if (exception.GetError() == KX_ERROR_BAD_FILE_FORMAT) return KxSerializer::NoObject;
        throw;
    }
}

template <class... Pixels>
constexpr auto MakeClassTable(std::type_identity<std::tuple<Pixels...>>) {
    return std::array{&RecordTransfer::ClassOf<KxImage<Pixels>>...,
                      &RecordTransfer::ClassOf<KxROI<Pixels>>...};
}

// In the order of the object types, images first.
constexpr auto kClasses = MakeClassTable(std::type_identity<ArchivedPixelTypes>());

}  // namespace

const ArchivedClass* FindArchivedClass(KxSerializer::ObjectType type) {
    const std::int64_t index = std::int64_t{type} - KxSerializer::ImageBW1;
    if (index < 0 || index >= std::int64_t{kClasses.size()}) return nullptr;
    return &kClasses[static_cast<std::size_t>(index)]();
}

RecordTransfer::~RecordTransfer() {
    // Innermost first: that is the order in which the saved positions come off the stream's stack.
    while (!m_levels.empty()) m_levels.pop_back();
}

void RecordTransfer::Run(KxGenericROI& root, const ArchivedClass& rootClass, unsigned version) {
    const auto empty = [&] {
        rootClass.makeEmpty(root);
        root.MakeEmpty();
        root.m_n32OrgX = root.m_n32OrgY = root.m_n32Width = root.m_n32Height = 0;
    };
    if (m_reading) empty();
    Level& level = m_levels.emplace_back(&root, &rootClass);
    level.version = version;
    KX_ERRORS failure = KX_OK;
    try {
        BeginRecord(level);
        while (!m_levels.empty()) Walk();
        if (m_childFailure) KxSetError(m_childFailure);
        return;
    } catch (const TooManyLevels&) {
        failure = m_reading ? KX_ERROR_BAD_FILE_FORMAT : KX_ERROR_FILE_WRITE;
    } catch (...) {
        failure = m_childFailure ? m_childFailure : CurrentExceptionError(KX_ERROR_ARCHIVE_ACCESS);
    }
    if (m_reading) empty();
    throw Exception(failure);
}

// One step: the next child of the innermost object, or its end. A child that cannot be read ends its parent's
// list of children; the parent goes on with its next field.
void RecordTransfer::Walk() {
    try {
        if (m_levels.back().childrenLeft > 0)
            BeginNextChild();
        else
            EndRecord();
    } catch (const TooManyLevels&) {
        throw;
    } catch (...) {
        AbsorbChildFailure();
    }
}

void RecordTransfer::BeginRecord(Level& level) {
    KxGenericROI& object = *level.object;
    object.SerializeTexts(m_stream);
    if (!m_reading) {
        level.child = object.m_pFirstSubROI;
        for (const KxGenericROI* child = level.child; child; child = child->m_pSibling) ++level.childrenLeft;
    }
    // A forged count costs nothing: the first child that is not there ends the list.
    TransferValue(m_stream, level.childrenLeft, "numChildren");
}

void RecordTransfer::BeginNextChild() {
    ThrowChildFailure();
    if (m_levels.size() > kMaxLevels) throw TooManyLevels();
    Level& parent = m_levels.back();
    --parent.childrenLeft;
    const auto type = m_reading ? PeekChildType(m_stream) : parent.child->GetSerializationType();
    const ArchivedClass* childClass = FindArchivedClass(type);
    if (!childClass) throw Exception(KX_ERROR_WRONG_OBJECT_TYPE);

    std::unique_ptr<KxGenericROI> made = m_reading ? childClass->create() : nullptr;
    KxGenericROI* object = m_reading ? made.get() : std::exchange(parent.child, parent.child->m_pSibling);
    Level& level = m_levels.emplace_back(object, childClass);
    level.made = std::move(made);
    level.rewinder.emplace(m_stream);
    if (m_reading) {
        object->SetAllocated();
        level.version = ReadHeader(m_stream, *object);
    } else {
        level.version = object->GetCurrentVersion();
        WriteHeader(m_stream, type, level.version);
    }
    BeginRecord(level);
}

void RecordTransfer::EndRecord() {
    Level& level = m_levels.back();
    if (!level.object->IsAnROI()) ThrowChildFailure();
    level.object->SerializePlacement(m_stream);
    if (m_reading && HoldsTopOfRegions(level) && !RegionTree::FitDescendants(*level.object))
        KxSetError(KX_ERROR_ROI_OUT_OF_PARENT);
    level.archivedClass->transferFields(*level.object, m_stream, level.version);
    if (level.rewinder) level.rewinder->Keep();
    std::unique_ptr<KxGenericROI> made = std::move(level.made);
    m_levels.pop_back();
    if (!made) return;
    Level& parent = m_levels.back();
    made->m_eColorSystem = parent.object->m_eColorSystem;
    RegionTree::Append(*parent.object, *made);
    static_cast<void>(made.release());
}

// Regions are placed in the image above them, or in the region that is loaded. Sizing an image clips them
// too, but may walk a tree made for it many times: so they are fitted before.
bool RecordTransfer::HoldsTopOfRegions(const Level& level) const {
    return m_levels.size() == 1 || !level.object->IsAnROI();
}

// Called while an exception is handled: drops the object that failed, keeping the code of the first failure,
// or passes the exception on when that object is the root or is being written.
void RecordTransfer::AbsorbChildFailure() {
    if (!m_reading || m_levels.size() == 1) throw;
    if (!m_childFailure) m_childFailure = CurrentExceptionError(KX_ERROR_ARCHIVE_ACCESS);
    m_levels.pop_back();
    m_levels.back().childrenLeft = 0;
}

// Where a broken child ends is unknown, so what its ancestors read is not theirs. A few fields do no harm,
// but children and pixels that overlap could make a small archive take hours.
void RecordTransfer::ThrowChildFailure() const {
    if (m_childFailure) throw Exception(m_childFailure);
}

}  // namespace Zelkor::Kalvo
