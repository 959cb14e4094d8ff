#pragma once
// The record of an archived object with everything below it, walked without recursion: an archive may nest a
// thousand levels, and the thread's stack may be small.

#include <cstdint>
#include <cstdio>
#include <deque>
#include <memory>
#include <optional>
#include <tuple>
#include <type_traits>

#include "kalvo/archive/archivedobject.h"
#include "kalvo/image/regionclass.h"
#include "kalvo/pixels/pixeldispatch.h"

namespace Zelkor::Kalvo {

// The object type of KxROI<Pixel> or KxImage<Pixel>; NoObject for the pixel types that have none.
template <class Object>
constexpr KxSerializer::ObjectType ObjectTypeOf() {
    using Pixel = typename Object::PixelType;
    constexpr std::size_t kIndex = IndexOfPixel<Pixel>(std::type_identity<ArchivedPixelTypes>());
    if (kIndex == std::tuple_size_v<ArchivedPixelTypes>) return KxSerializer::NoObject;
    const int first = std::is_same_v<Object, KxImage<Pixel>> ? KxSerializer::ImageBW1 : KxSerializer::ROIBW1;
    return static_cast<KxSerializer::ObjectType>(first + static_cast<int>(kIndex));
}

// The same, throwing KX_ERROR_NEEDS_SPECIALIZATION for the pixel types that have none.
template <class Object>
KxSerializer::ObjectType RequireObjectTypeOf() {
    if constexpr (ObjectTypeOf<Object>() == KxSerializer::NoObject)
        throw Exception(KX_ERROR_NEEDS_SPECIALIZATION);
    return ObjectTypeOf<Object>();
}

// The class of that object type; null when archives hold no such object.
const RegionClass* FindArchivedClass(KxSerializer::ObjectType type);

// Moves one object, its children and their children between memory and a stream.
class RecordTransfer {
public:
    // Deepest nesting of children, read and written.
    static constexpr std::size_t kMaxLevels = 1000;

    // Exchanges the record of `root`, without its header. When reading fails the object is left empty, and
    // the code of the first failure is thrown; KX_ERROR_SERIALIZER_NOT_OPEN when there is no stream.
    // @param rootClass  null when nothing follows the placement
    static void Run(KxSerializer* pStream, KxGenericROI& root, const RegionClass* rootClass,
                    unsigned version);

    explicit RecordTransfer(KxSerializer& stream) : m_stream(stream), m_reading(stream.IsReading()) {}
    RecordTransfer(const RecordTransfer&) = delete;
    RecordTransfer& operator=(const RecordTransfer&) = delete;
    ~RecordTransfer();

private:
    // An object whose record has been begun.
    struct Level {
        Level(KxGenericROI* levelObject, const RegionClass* levelClass)
            : object(levelObject), objectClass(levelClass) {}

        KxGenericROI* object;
        const RegionClass* objectClass;
        unsigned version = 0;
        std::unique_ptr<KxGenericROI> made;  // reading: owns the object until its parent does
        std::uint32_t childrenLeft = 0;
        KxGenericROI* child = nullptr;           // reading: the last child; writing: the next one
        std::optional<StreamRewinder> rewinder;  // none for the root, whose caller rewinds
    };

    void Run(KxGenericROI& root, const RegionClass* rootClass, unsigned version);
    static void MakeEmpty(KxGenericROI& object, const RegionClass* objectClass);
    void Walk();
    void BeginRecord(Level& level);
    void BeginNextChild();
    void EndRecord();
    void TransferFields(const Level& level);
    bool HoldsTopOfRegions(const Level& level) const;
    bool CanAbsorb() const;
    void AbsorbChildFailure(KX_ERRORS failure);
    void ThrowChildFailure() const;

    KxSerializer& m_stream;
    bool m_reading;
    bool m_isTooDeep = false;
    KX_ERRORS m_childFailure = KX_OK;  // of the first child that could not be read
    std::deque<Level> m_levels;
};

}  // namespace Zelkor::Kalvo
