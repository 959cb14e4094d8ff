#pragma once
// A picture in memory to draw on.

#include <string>

#include "kalvo/gdi/gdi.h"
#include "kalvo/image/kximage.h"

namespace App {

// A white picture, and a device context that draws on it. Throws when it can't be made.
class Canvas {
public:
    Canvas(int width, int height);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    HDC Context() const { return m_context; }
    // The picture as an image on the same pixels.
    KxImage<KxC24A>& Image() { return m_image; }

private:
    HDC m_context;
    HBITMAP m_bitmap = nullptr;
    KxImage<KxC24A> m_image;
};

// Saves what was drawn, in the format of the name.
void SavePicture(Canvas& canvas, const std::string& path);

// A pen, selected in a context while this lives.
class SelectedPen {
public:
    SelectedPen(HDC context, int width, COLORREF color)
        : m_context(context), m_previous(SelectObject(context, CreatePen(PS_SOLID, width, color))) {}
    ~SelectedPen() { DeleteObject(SelectObject(m_context, m_previous)); }
    SelectedPen(const SelectedPen&) = delete;
    SelectedPen& operator=(const SelectedPen&) = delete;

private:
    HDC m_context;
    HGDIOBJ m_previous;
};

}  // namespace App
