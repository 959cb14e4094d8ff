// Walks the tree of an archived object in the order of the stream: texts, children, then everything else.

#include "kalvo/archive/recordtransfer.h"

#include <array>
#include <utility>

#include "kalvo/archive/imagerecord.h"
#include "kalvo/image/regiontree.h"

namespace Zelkor::Kalvo {
namespace {

// What has no header of an object is no child.
KxSerializer::ObjectType PeekChildType(KxSerializer& stream) {
    auto type = KxSerializer::NoObject;
    const KX_ERRORS failure = ErrorOf([&] { type = PeekObjectType(stream); }, KX_ERROR_ARCHIVE_ACCESS);
    if (failure && failure != KX_ERROR_BAD_FILE_FORMAT) throw Exception(failure);
    return type;
}

template <class... Pixels>
constexpr auto MakeClassTable(std::type_identity<std::tuple<Pixels...>>) {
    return std::array{&ClassOf<KxImage<Pixels>>..., &ClassOf<KxROI<Pixels>>...};
}

// In the order of the object types, images first.
constexpr auto kClasses = MakeClassTable(std::type_identity<ArchivedPixelTypes>());

}  // namespace

const RegionClass* FindArchivedClass(KxSerializer::ObjectType type) {
    const std::int64_t index = std::int64_t{type} - KxSerializer::ImageBW1;
    if (index < 0 || index >= std::int64_t{kClasses.size()}) return nullptr;
    return &kClasses[static_cast<std::size_t>(index)]();
}

// Lets go of everything but texts and placement.
void RecordTransfer::MakeEmpty(KxGenericROI& object, const RegionClass* objectClass) {
    const UntypedRegion untyped = objectClass ? objectClass->untyped(object) : UntypedRegion();
    if (untyped.pixels)
        ImageCore::MakeEmpty(*untyped.region, *untyped.pixels);
    else if (untyped.region)
        untyped.region->MakeEmpty();
    else
        RegionTree::ReleaseChildren(object);
}

RecordTransfer::~RecordTransfer() {
    // Innermost first: that is the order in which the saved positions come off the stream's stack.
    while (!m_levels.empty()) m_levels.pop_back();
}

void RecordTransfer::Run(KxSerializer* pStream, KxGenericROI& root, const RegionClass* rootClass,
                         unsigned version) {
    RecordTransfer(RequireStream(pStream)).Run(root, rootClass, version);
}

void RecordTransfer::Run(KxGenericROI& root, const RegionClass* rootClass, unsigned version) {
    const auto empty = [&] {
        MakeEmpty(root, rootClass);
        root.MakeEmpty();
        root.m_n32OrgX = root.m_n32OrgY = root.m_n32Width = root.m_n32Height = 0;
    };
    if (m_reading) empty();
    Level& level = m_levels.emplace_back(&root, rootClass);
    level.version = version;
    KX_ERRORS failure = ErrorOf([&] { BeginRecord(level); }, KX_ERROR_ARCHIVE_ACCESS);
    while (!failure && !m_levels.empty()) {
        failure = ErrorOf([&] { Walk(); }, KX_ERROR_ARCHIVE_ACCESS);
        if (failure && CanAbsorb()) AbsorbChildFailure(std::exchange(failure, KX_OK));
    }
    if (!failure) {
        if (m_childFailure) KxSetError(m_childFailure);
        return;
    }
    if (m_reading) empty();
    throw Exception(m_childFailure && !m_isTooDeep ? m_childFailure : failure);
}

// One step: the next child of the innermost object, or its end.
void RecordTransfer::Walk() {
    if (m_levels.back().childrenLeft > 0)
        BeginNextChild();
    else
        EndRecord();
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
    m_isTooDeep = m_levels.size() > kMaxLevels;
    if (m_isTooDeep) throw Exception(m_reading ? KX_ERROR_BAD_FILE_FORMAT : KX_ERROR_FILE_WRITE);
    Level& parent = m_levels.back();
    --parent.childrenLeft;
    const auto type = m_reading ? PeekChildType(m_stream) : parent.child->GetSerializationType();
    const RegionClass* childClass = FindArchivedClass(type);
    if (!childClass) throw Exception(KX_ERROR_WRONG_OBJECT_TYPE);

    std::unique_ptr<KxGenericROI> made(m_reading ? childClass->make().region : nullptr);
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
    TransferFields(level);
    if (level.rewinder) level.rewinder->Keep();
    std::unique_ptr<KxGenericROI> made = std::move(level.made);
    m_levels.pop_back();
    if (!made) return;
    Level& parent = m_levels.back();
    made->m_eColorSystem = parent.object->m_eColorSystem;
    RegionTree::Append(*parent.object, *made);
    static_cast<void>(made.release());
}

// What follows the placement in the record.
void RecordTransfer::TransferFields(const Level& level) {
    if (!level.objectClass) return;
    const UntypedRegion untyped = level.objectClass->untyped(*level.object);
    untyped.region->SerializeFields(m_stream);
    if (untyped.pixels) TransferImageFields(untyped, m_stream, level.version);
}

// Regions are placed in the image above them, or in the region that is loaded. Sizing an image clips them
// too, but may walk a tree made for it many times: so they are fitted before.
bool RecordTransfer::HoldsTopOfRegions(const Level& level) const {
    return m_levels.size() == 1 || !level.object->IsAnROI();
}

// A child that cannot be read ends its parent's list of children; the parent goes on with its next field. But
// how deep the nesting goes is a matter of the whole tree.
bool RecordTransfer::CanAbsorb() const { return m_reading && m_levels.size() > 1 && !m_isTooDeep; }

// Drops the object that failed, and keeps the code of the first failure.
void RecordTransfer::AbsorbChildFailure(KX_ERRORS failure) {
    if (!m_childFailure) m_childFailure = failure;
    m_levels.pop_back();
    m_levels.back().childrenLeft = 0;
}

// Where a broken child ends is unknown, so what its ancestors read is not theirs. A few fields do no harm,
// but children and pixels that overlap could make a small archive take hours.
void RecordTransfer::ThrowChildFailure() const {
    if (m_childFailure) throw Exception(m_childFailure);
}

}  // namespace Zelkor::Kalvo
