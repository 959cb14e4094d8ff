#pragma once
// Objects selected into a device context for a while, and owners of objects and contexts.

#include <memory>

#include "kalvo/gdi/gdi.h"

namespace Zelkor::Kalvo {

// Selects a pen, brush, font or bitmap; at the end of its life the previous one is selected back.
class SelectedObject {
public:
    enum class Owner { Self, Other };

    // A null object selects nothing. With `Owner::Self` the object is deleted at the end.
    SelectedObject(HDC hdc, HGDIOBJ object, Owner owner)
        : m_hdc(hdc),
          m_owned(owner == Owner::Self ? object : nullptr),
          m_previous(object ? SelectObject(hdc, object) : nullptr) {}
    ~SelectedObject() {
        if (m_previous) SelectObject(m_hdc, m_previous);
        if (m_owned) DeleteObject(m_owned);
    }
    SelectedObject(const SelectedObject&) = delete;
    SelectedObject& operator=(const SelectedObject&) = delete;

private:
    HDC m_hdc;
    HGDIOBJ m_owned;
    HGDIOBJ m_previous;
};

struct ObjectDeleter {
    void operator()(HGDIOBJ object) const { DeleteObject(object); }
};
struct ContextDeleter {
    void operator()(HDC context) const { DeleteDC(context); }
};
using OwnedBitmap = std::unique_ptr<HBITMAP__, ObjectDeleter>;
using OwnedPalette = std::unique_ptr<HPALETTE__, ObjectDeleter>;
using OwnedContext = std::unique_ptr<HDC__, ContextDeleter>;

}  // namespace Zelkor::Kalvo
