// The table of handles, and the objects that need no context: pens, brushes, fonts, stock objects.

#include "kalvo/gdi/objects.h"

#include <algorithm>
#include <cstring>
#include <mutex>
#include <new>
#include <string_view>

namespace Zelkor::Platform {
namespace {

// A handle is the number of a slot and of the object in that slot, counted from 1: handles are never null,
// and one whose object is gone matches no later one. Looking up takes no lock, since slots never move.
constexpr std::size_t kSlots = 1 << 16;
constexpr unsigned kSlotBits = 16;

struct Slot {
    std::atomic<std::uint32_t> generation = 0;  // of the object it holds or held last
    std::atomic<GdiObject*> object = nullptr;
};

class HandleTable {
public:
    GdiObject* Find(HANDLE handle) const noexcept {
        const auto value = reinterpret_cast<std::uintptr_t>(handle);
        const Slot& slot = m_slots[value % kSlots];
        GdiObject* object = slot.object.load(std::memory_order_acquire);
        return slot.generation.load(std::memory_order_acquire) == value >> kSlotBits ? object : nullptr;
    }

    HANDLE Add(GdiObject* object) noexcept {
        const std::lock_guard lock(m_mutex);
        const std::size_t index = TakeSlot();
        if (index == kSlots) return nullptr;
        Slot& slot = m_slots[index];
        const std::uint32_t generation = slot.generation.load(std::memory_order_relaxed) + 1;
        const std::uint32_t used = generation ? generation : 1;
        object->handle = reinterpret_cast<HANDLE>(std::uintptr_t{used} << kSlotBits | index);
        slot.generation.store(used, std::memory_order_release);
        slot.object.store(object, std::memory_order_release);
        return object->handle;
    }

    void Remove(HANDLE handle) noexcept {
        const std::lock_guard lock(m_mutex);
        const auto index = static_cast<std::uint16_t>(reinterpret_cast<std::uintptr_t>(handle) % kSlots);
        m_slots[index].object.store(nullptr, std::memory_order_release);
        m_free[m_freeCount++] = index;
    }

private:
    // A slot given back, or else one never used; kSlots when there is none.
    std::size_t TakeSlot() noexcept {
        if (m_freeCount) return m_free[--m_freeCount];
        return m_used < kSlots ? m_used++ : kSlots;
    }

    std::mutex m_mutex;
    std::array<Slot, kSlots> m_slots{};
    std::array<std::uint16_t, kSlots> m_free{};
    std::size_t m_freeCount = 0;
    std::size_t m_used = 0;
};

constinit HandleTable table;
constinit std::atomic<int> aliveObjects = 0;

LOGFONTA MakeLogFont(int height, int weight, std::string_view face) {
    LOGFONTA font{};
    font.lfHeight = height;
    font.lfWeight = weight;
    face.copy(font.lfFaceName, sizeof font.lfFaceName - 1);
    return font;
}

// Made on first use and kept until the process ends.
class StockObjects {
public:
    StockObjects() {
        AddBrush(WHITE_BRUSH, BS_SOLID, 255);
        AddBrush(LTGRAY_BRUSH, BS_SOLID, 192);
        AddBrush(GRAY_BRUSH, BS_SOLID, 128);
        AddBrush(DKGRAY_BRUSH, BS_SOLID, 64);
        AddBrush(BLACK_BRUSH, BS_SOLID, 0);
        AddBrush(NULL_BRUSH, BS_NULL, 0);
        AddPen(WHITE_PEN, PS_SOLID, 255);
        AddPen(BLACK_PEN, PS_SOLID, 0);
        AddPen(NULL_PEN, PS_NULL, 0);
        AddBrush(DC_BRUSH, BS_SOLID, 255);
        static_cast<Brush*>(At(DC_BRUSH))->hasContextColor = true;
        AddPen(DC_PEN, PS_SOLID, 0);
        static_cast<Pen*>(At(DC_PEN))->hasContextColor = true;
        AddFont(SYSTEM_FONT, 16, 700, "System");
        AddFont(DEVICE_DEFAULT_FONT, 16, 700, "System");
        AddFont(DEFAULT_GUI_FONT, -11, 400, "sans-serif");
        AddFont(ANSI_VAR_FONT, 12, 400, "sans-serif");
        for (const int fixed : {OEM_FIXED_FONT, ANSI_FIXED_FONT, SYSTEM_FIXED_FONT})
            AddFont(fixed, fixed == SYSTEM_FIXED_FONT ? 15 : 12, 400, "monospace");
        const std::span<const PALETTEENTRY> fixed = FixedColors();
        Add(DEFAULT_PALETTE, new Palette({fixed.begin(), fixed.end()}));
    }

    GdiObject* At(int number) const {
        return number >= 0 && number < static_cast<int>(m_objects.size()) ? m_objects[number] : nullptr;
    }

private:
    void Add(int number, GdiObject* object) {
        object->isStock = true;
        m_objects[number] = object;
        Register(std::unique_ptr<GdiObject>(object));
    }
    void AddBrush(int number, UINT style, BYTE level) {
        Add(number, new Brush({style, RGB(level, level, level), 0}));
    }
    void AddPen(int number, UINT style, BYTE level) {
        Add(number, new Pen({style, {1, 0}, RGB(level, level, level)}));
    }

    void AddFont(int number, int height, int weight, std::string_view face) {
        Add(number, new Font(MakeLogFont(height, weight, face)));
    }

    std::array<GdiObject*, DC_PEN + 1> m_objects{};
};

// Copies a description out, or tells its size when there is no buffer.
template <class Description>
int Describe(const Description& description, int size, void* buffer) {
    constexpr int needed = sizeof description;
    if (!buffer) return needed;
    if (size < needed) return 0;
    std::memcpy(buffer, &description, needed);
    return needed;
}

BITMAP DescriptionOf(const Bitmap& bitmap) {
    const Surface& surface = bitmap.surface;
    const std::ptrdiff_t pitch = surface.pitchBytes;
    return {.bmType = 0,
            .bmWidth = surface.width,
            .bmHeight = surface.height,
            .bmWidthBytes = static_cast<LONG>(pitch < 0 ? -pitch : pitch),
            .bmPlanes = 1,
            .bmBitsPixel = static_cast<WORD>(BitsPerPixel(surface.layout)),
            .bmBits = bitmap.isSection ? bitmap.memory.get() : nullptr};
}

template <class Handle, class Object, class Description>
Handle Make(const Description& description) {
    return static_cast<Handle>(Register(std::unique_ptr<GdiObject>(new (std::nothrow) Object(description))));
}

}  // namespace

GdiObject* FindObject(HANDLE handle) noexcept { return table.Find(handle); }

HANDLE Register(std::unique_ptr<GdiObject> object) noexcept {
    if (!object || !table.Add(object.get())) return nullptr;
    if (!object->isStock) ++aliveObjects;
    return object.release()->handle;
}

void Unregister(GdiObject& object) noexcept {
    table.Remove(object.handle);
    if (!object.isStock) --aliveObjects;
    delete &object;
}

GdiObject* StockObject(int number) {
    static const StockObjects& stock = *new StockObjects;
    return stock.At(number);
}

int CountGdiObjects() { return aliveObjects; }

}  // namespace Zelkor::Platform

using namespace Zelkor::Platform;

HGDIOBJ GetStockObject(int n32Object) {
    const GdiObject* object = StockObject(n32Object);
    return object ? object->handle : nullptr;
}

BOOL DeleteObject(HGDIOBJ hObject) {
    GdiObject* object = FindObject(hObject);
    if (!object) return 0;
    if (object->kind == ObjectKind::Context) return DeleteDC(static_cast<HDC>(hObject));
    if (object->isStock) return 1;
    if (object->contexts > 0) return 0;
    Unregister(*object);
    return 1;
}

int GetObjectA(HGDIOBJ hObject, int n32Size, void* pBuffer) {
    if (const Pen* pen = Find<Pen>(hObject)) return Describe(pen->logical, n32Size, pBuffer);
    if (const Brush* brush = Find<Brush>(hObject)) return Describe(brush->logical, n32Size, pBuffer);
    if (const Font* font = Find<Font>(hObject)) return Describe(font->logical, n32Size, pBuffer);
    if (const Bitmap* bitmap = Find<Bitmap>(hObject))
        return Describe(DescriptionOf(*bitmap), n32Size, pBuffer);
    return 0;
}

DWORD GetObjectType(HGDIOBJ hObject) {
    const GdiObject* object = FindObject(hObject);
    if (!object) return 0;
    switch (object->kind) {
    case ObjectKind::Context:
        return OBJ_DC;
    case ObjectKind::Pen:
        return OBJ_PEN;
    case ObjectKind::Brush:
        return OBJ_BRUSH;
    case ObjectKind::Font:
        return OBJ_FONT;
    case ObjectKind::Bitmap:
        return OBJ_BITMAP;
    case ObjectKind::Palette:
        return OBJ_PAL;
    case ObjectKind::Region:
        break;
    }
    return OBJ_REGION;
}

HPEN CreatePen(int n32Style, int n32Width, COLORREF color) {
    const bool isKnown = n32Style >= PS_SOLID && n32Style <= PS_INSIDEFRAME;
    const auto style = static_cast<UINT>(isKnown ? n32Style : PS_SOLID);
    return Make<HPEN, Pen>(LOGPEN{style, {std::max(n32Width, 0), 0}, color & 0xFFFFFF});
}

HPEN CreatePenIndirect(const LOGPEN* pPen) {
    if (!pPen) return nullptr;
    return CreatePen(static_cast<int>(pPen->lopnStyle), pPen->lopnWidth.x, pPen->lopnColor);
}

HBRUSH CreateSolidBrush(COLORREF color) {
    return Make<HBRUSH, Brush>(LOGBRUSH{BS_SOLID, color & 0xFFFFFF, 0});
}

HBRUSH CreateHatchBrush(int n32Hatch, COLORREF color) {
    if (n32Hatch < HS_HORIZONTAL || n32Hatch > HS_DIAGCROSS) return nullptr;
    return Make<HBRUSH, Brush>(LOGBRUSH{BS_HATCHED, color & 0xFFFFFF, static_cast<std::uintptr_t>(n32Hatch)});
}

HBRUSH CreateBrushIndirect(const LOGBRUSH* pBrush) {
    if (!pBrush) return nullptr;
    switch (pBrush->lbStyle) {
    case BS_SOLID:
        return CreateSolidBrush(pBrush->lbColor);
    case BS_NULL:
        return Make<HBRUSH, Brush>(LOGBRUSH{BS_NULL, 0, 0});
    case BS_HATCHED:
        return pBrush->lbHatch > HS_DIAGCROSS
                   ? nullptr
                   : CreateHatchBrush(static_cast<int>(pBrush->lbHatch), pBrush->lbColor);
    default:
        return nullptr;
    }
}
