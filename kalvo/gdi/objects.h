#pragma once
// What stands behind the handles: pens, brushes, fonts, bitmaps, palettes, regions and contexts, and the
// table of handles.

#include <algorithm>
#include <array>
#include <atomic>
#include <concepts>
#include <memory>
#include <optional>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

#include "kalvo/base/kxmemory.h"
#include "kalvo/frame/boundary.h"
#include "kalvo/gdi/gdi.h"
#include "kalvo/raster/lines.h"

namespace Zelkor::Platform {

enum class ObjectKind : std::uint8_t { Context, Pen, Brush, Font, Bitmap, Palette, Region };

struct GdiObject {
    explicit GdiObject(ObjectKind objectKind) : kind(objectKind) {}
    GdiObject(const GdiObject&) = delete;
    GdiObject& operator=(const GdiObject&) = delete;
    virtual ~GdiObject() = default;

    const ObjectKind kind;
    bool isStock = false;           // not the caller's to delete, and not counted
    std::atomic<int> contexts = 0;  // in how many contexts it is selected
    HANDLE handle = nullptr;        // its own
};

struct Pen final : GdiObject {
    static constexpr ObjectKind kKind = ObjectKind::Pen;
    explicit Pen(const LOGPEN& description) : GdiObject(kKind), logical(description) {}
    bool Draws() const { return logical.lopnStyle != PS_NULL; }
    int Width() const { return logical.lopnWidth.x > 1 ? logical.lopnWidth.x : 1; }

    const LOGPEN logical;
    bool hasContextColor = false;
};

struct Brush final : GdiObject {
    static constexpr ObjectKind kKind = ObjectKind::Brush;
    explicit Brush(const LOGBRUSH& description) : GdiObject(kKind), logical(description) {}
    bool Draws() const { return logical.lbStyle != BS_NULL; }

    const LOGBRUSH logical;
    bool hasContextColor = false;
};

struct Font final : GdiObject {
    static constexpr ObjectKind kKind = ObjectKind::Font;
    explicit Font(const LOGFONTA& description) : GdiObject(kKind), logical(description) {}

    const LOGFONTA logical;
};

struct Bitmap final : GdiObject {
    static constexpr ObjectKind kKind = ObjectKind::Bitmap;
    Bitmap() : GdiObject(kKind) {}

    Surface surface;  // refers to the two below
    Memory memory;
    std::vector<RGBQUAD> colors;
    bool isSection = false;  // its pixels and colours are the caller's, too

    // One of bits that are a text colour and a background colour wherever they are copied to.
    bool IsMonochrome() const { return !isSection && surface.layout == PixelLayout::Bits1; }
};

struct Palette final : GdiObject {
    static constexpr ObjectKind kKind = ObjectKind::Palette;
    explicit Palette(std::vector<PALETTEENTRY> list) : GdiObject(kKind), entries(std::move(list)) {}

    const std::vector<PALETTEENTRY> entries;
};

struct RegionObject final : GdiObject {
    static constexpr ObjectKind kKind = ObjectKind::Region;
    explicit RegionObject(Region region) : GdiObject(kKind), pixels(std::move(region)) {}

    Region pixels;
};

// What a context draws with. Selected objects are never null. The pointers stay valid because selected
// objects can't be deleted.
struct ContextState {
    Pen* pen = nullptr;
    Brush* brush = nullptr;
    Font* font = nullptr;
    Bitmap* bitmap = nullptr;
    Palette* palette = nullptr;
    std::optional<Region> clip;  // pixels of the bitmap
    POINT viewportOrigin{0, 0};
    POINT windowOrigin{0, 0};
    POINT position{0, 0};
    COLORREF textColor = RGB(0, 0, 0);
    COLORREF backgroundColor = RGB(255, 255, 255);
    int backgroundMode = OPAQUE;
    UINT textAlign = TA_LEFT | TA_TOP;
    int stretchMode = BLACKONWHITE;
    int drawingMode = R2_COPYPEN;
    int polygonFillMode = ALTERNATE;
    COLORREF penColor = RGB(0, 0, 0);  // of the stock objects that have the context's own colours
    COLORREF brushColor = RGB(255, 255, 255);
    POINT brushOrigin{0, 0};
    bool isPaletteInBackground = false;
};

struct Context final : GdiObject, ContextState {
    static constexpr ObjectKind kKind = ObjectKind::Context;
    // Takes the bitmap over, registers it and selects it and the other defaults.
    explicit Context(std::unique_ptr<Bitmap> first);
    ~Context() override;

    Bitmap* ownBitmap = nullptr;  // the 1 x 1 one of memory contexts, or the pixels of a palette device
    bool isPaletteDevice = false;
    std::vector<ContextState> saved;  // objects selected in them count as selected

    // The pixels to draw on; what is drawn there is clipped.
    Surface Target() const {
        Surface target = bitmap->surface;
        target.clip = clip ? &*clip : nullptr;
        return target;
    }

    // Where coordinates of the caller begin on the bitmap, and where his points and rectangles are.
    Position Origin() const {
        return {std::int64_t{viewportOrigin.x} - windowOrigin.x,
                std::int64_t{viewportOrigin.y} - windowOrigin.y};
    }
    Position Placed(POINT point) const {
        const Position origin = Origin();
        return {origin.x + point.x, origin.y + point.y};
    }
    // As its corners are given: it may be empty. Or between any two opposite corners.
    Box Placed(const RECT& rect) const {
        const Position a = Placed(POINT{rect.left, rect.top}), b = Placed(POINT{rect.right, rect.bottom});
        return {a.x, a.y, b.x, b.y};
    }
    Box PlacedCorners(const RECT& rect) const {
        const auto [left, right] = std::minmax(rect.left, rect.right);
        const auto [top, bottom] = std::minmax(rect.top, rect.bottom);
        return Placed(RECT{left, top, right, bottom});
    }
};

// The object behind a handle; null when the handle is null or stale.
GdiObject* FindObject(HANDLE handle) noexcept;

// The same, and null when the object is of another kind.
template <std::derived_from<GdiObject> Object>
Object* Find(HANDLE handle) noexcept {
    GdiObject* object = FindObject(handle);
    return object && object->kind == Object::kKind ? static_cast<Object*>(object) : nullptr;
}

// Takes the object over and returns its handle; null, and the object gone, when there is none left.
HANDLE Register(std::unique_ptr<GdiObject> object) noexcept;

// Destroys the object and makes its handle stale.
void Unregister(GdiObject& object) noexcept;

// The edge of the exported functions: without memory they fail as for any other reason, with 0 or null.
using Zelkor::Kalvo::OrNeutral;

// One of the constants of `GetStockObject`; null for any other number.
GdiObject* StockObject(int number);

// The 20 colours that every palette device keeps: the first half of them begins its palette, the other ends
// it.
std::span<const PALETTEENTRY> FixedColors();

// The colours of a device's pixels before any palette is realised: black and white, or the fixed colours with
// black between them. None for direct colours.
std::vector<RGBQUAD> DeviceColors(PixelLayout layout);

}  // namespace Zelkor::Platform
