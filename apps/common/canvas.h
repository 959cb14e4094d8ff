#pragma once
// A picture in memory to draw on.

#include <string>

#include "kalvo/gdi/gdi.h"
#include "kalvo/image/kximage.h"

namespace App {

struct PictureSize {
    int width = 800;
    int height = 400;
};

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

// Puts a context back as it was.
class SavedContext {
public:
    explicit SavedContext(HDC context) : m_context(context), m_state(SaveDC(context)) {}
    ~SavedContext() { RestoreDC(m_context, m_state); }
    SavedContext(const SavedContext&) = delete;
    SavedContext& operator=(const SavedContext&) = delete;

private:
    HDC m_context;
    int m_state;
};

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
