// One action at a time; every change of regions can be undone.

#include "viewer.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <sstream>

#include "kalvo/measure/kxunit.h"
#include "common/components.h"
#include "common/failure.h"

namespace View {
namespace {

constexpr std::size_t kMostUndone = 200;
constexpr int kPanStep = 60, kFarNudge = 10;
constexpr double kWheelFactor = 1.25;

// The rectangle of whole pixels between two points of the window.
Extent Between(const Transform& transform, int x0, int y0, int x1, int y1) {
    const auto [left, right] = std::minmax({transform.ToImageX(x0), transform.ToImageX(x1)});
    const auto [top, bottom] = std::minmax({transform.ToImageY(y0), transform.ToImageY(y1)});
    const auto whole = [](double value) { return static_cast<int>(std::floor(value)); };
    return {whole(left), whole(top), whole(right) - whole(left) + 1, whole(bottom) - whole(top) + 1};
}

Extent InImage(const KxGenericROI& region) {
    return {region.GetTotalOrgX(), region.GetTotalOrgY(), region.GetWidth(), region.GetHeight()};
}

std::string Numbers(const Extent& extent) {
    char text[64];
    std::snprintf(text, sizeof text, "%d,%d,%d,%d", extent.m_n32OrgX, extent.m_n32OrgY, extent.m_n32Width,
                  extent.m_n32Height);
    return text;
}

}  // namespace

// What the user can press.
struct Viewer::Binding {
    std::vector<std::string> keys;
    const char* help;
    std::function<void(Viewer&, const std::string& key)> act;
};

const std::vector<Viewer::Binding>& Viewer::Bindings() {
    const auto zoom = [](int steps) {
        return [steps](Viewer& v, const std::string&) {
            v.m_transform.Step(v.PaneWidth() / 2, v.m_height / 2, steps);
        };
    };
    const auto open = [](std::size_t files) {
        return [files](Viewer& v, const std::string&) { v.Open(v.m_current + files % v.m_documents.size()); };
    };
    const auto arrows = [](int nudge) {
        return [nudge](Viewer& v, const std::string& key) {
            const std::string name = key.substr(key.find('+') + 1);
            v.Arrow((name == "right") - (name == "left"), (name == "down") - (name == "up"), nudge);
        };
    };
    const auto show = [](auto mode) {
        return [mode](Viewer& v, const std::string&) {
            v.m_look.mode = v.m_look.mode == mode ? Look::Plain : mode;
        };
    };
    static const std::vector<Binding> bindings = {
        {{"0"}, "fit the image into the window", [](Viewer& v, auto&) { v.Fit(); }},
        {{"1"},
         "one pixel of the screen for one of the image",
         [](Viewer& v, auto&) { v.m_transform.ZoomAt(v.PaneWidth() / 2, v.m_height / 2, 1); }},
        {{"+", "="}, "zoom in (or the wheel)", zoom(1)},
        {{"-"}, "zoom out", zoom(-1)},
        {{"left", "right", "up", "down"}, "pan, or move the selected region by 1 pixel", arrows(1)},
        {{"shift+left", "shift+right", "shift+up", "shift+down"}, "the same by 10", arrows(kFarNudge)},
        {{"d"},
         "draw a region with the mouse (or Shift and drag)",
         [](Viewer& v, auto&) { v.m_drawsNext = true, v.Say("drag the mouse over the new region"); }},
        {{"tab"}, "select the next region", [](Viewer& v, auto&) { v.SelectNext(); }},
        {{"return"},
         "type X,Y,WIDTH,HEIGHT of the selected region",
         [](Viewer& v, auto&) { v.m_selected ? void(v.m_typed = "") : v.Say("no region is selected"); }},
        {{"m"}, "mask of the selected region: none, ellipse, ring", [](Viewer& v, auto&) { v.ChangeMask(); }},
        {{"delete", "backspace"}, "remove the selected region", [](Viewer& v, auto&) { v.RemoveSelected(); }},
        {{"escape"},
         "abort what is dragged or typed, then select nothing",
         [](Viewer& v, auto&) { v.Abort(); }},
        {{"u", "ctrl+z"},
         "undo",
         [](Viewer& v, auto&) { v.Exchange(v.m_undo, v.m_redo, "nothing to undo"); }},
        {{"ctrl+y"},
         "undo no more",
         [](Viewer& v, auto&) { v.Exchange(v.m_redo, v.m_undo, "nothing was undone"); }},
        {{"s"},
         "save image and regions to the archive beside the image",
         [](Viewer& v, auto&) { v.Say("saved " + v.Current().Save()); }},
        {{"h"},
         "histogram and profile of the selected region, or of the image",
         [](Viewer& v, auto&) { v.m_look.showsPanel = !v.m_look.showsPanel; }},
        {{"l"},
         "see greys through the next lookup table",
         [](Viewer& v, auto&) { v.m_look.table = (v.m_look.table + 1) % kTables; }},
        {{"t"}, "relief, turned with the mouse", show(Look::Relief)},
        {{"c"}, "cube of colours, turned with the mouse", show(Look::Cube)},
        {{"x"},
         "two images side by side",
         [](Viewer& v, auto&) {
             v.Load(v.NextIndex());
             v.m_look.isSplit = !v.m_look.isSplit;
             v.Fit();
         }},
        {{"n", "pagedown"}, "next file", open(1)},
        {{"p", "pageup"}, "previous file", open(~std::size_t{0})},
        {{"r"}, "read the file again", [](Viewer& v, auto&) { v.Reload(); }},
        {{"f"}, "full screen", [](Viewer& v, auto&) { v.m_isFullScreen = !v.m_isFullScreen; }},
        {{"?"}, "these lines", [](Viewer& v, auto&) { v.m_look.showsHelp = !v.m_look.showsHelp; }},
        {{"q"}, "quit", [](Viewer& v, auto&) { v.m_isDone = true; }},
    };
    return bindings;
}

std::vector<std::pair<std::string, std::string>> Viewer::Help() {
    std::vector<std::pair<std::string, std::string>> lines;
    for (const Binding& binding : Bindings()) {
        std::string keys;
        for (const std::string& key : binding.keys) keys += (keys.empty() ? "" : " ") + key;
        lines.emplace_back(keys.starts_with("shift+") ? "shift+arrow" : keys, binding.help);
    }
    return lines;
}

Viewer::Viewer(std::vector<std::string> files) : m_files(std::move(files)), m_documents(m_files.size()) {
    Load(0);
}

void Viewer::Load(std::size_t index) {
    if (!m_documents[index]) m_documents[index] = std::make_unique<Document>(m_files[index]);
}

void Viewer::Resize(int width, int height) {
    const bool isFirst = m_width == 0;
    m_width = width;
    m_height = height;
    if (isFirst) Fit();
    m_hasChanged = true;
}

void Viewer::Fit() {
    m_transform.Fit(Current().Image().GetWidth(), Current().Image().GetHeight(), PaneWidth(), m_height);
}

void Viewer::Open(std::size_t index) {
    index %= m_documents.size();
    Load(index);
    m_current = index;
    if (m_look.isSplit) Load(NextIndex());
    m_selected = nullptr;
    m_undo.clear();
    m_redo.clear();
    Fit();
    Say(Current().Path());
}

void Viewer::Reload() {
    const Transform transform = m_transform;
    m_documents[m_current] = std::make_unique<Document>(Current().Path());
    Open(m_current);
    m_transform = transform;
}

void Viewer::Say(const std::string& message) { m_message = message; }

void Viewer::Press(int x, int y, Button button) {
    m_startX = m_mouseX = x = InPane(x);
    m_startY = m_mouseY = y;
    m_message.clear();
    m_hasChanged = true;
    m_beforeDrag = Current().GetRegions().Store();
    m_hit = Current().GetRegions().Find(x, y, m_transform, m_selected);
    if (m_look.mode != Look::Plain)
        m_drag = Drag::Turn;
    else if (button == Button::Other)
        m_drag = Drag::Pan;
    else if (button == Button::Shift || std::exchange(m_drawsNext, false))
        StartDrawing(x, y);
    else {
        m_selected = m_hit.region;
        m_drag = m_selected ? Drag::Handle : Drag::Pan;
    }
}

// A child of the region that lies there.
void Viewer::StartDrawing(int x, int y) {
    const KxGenericROI& image = Current().Image();
    const Extent start = Between(m_transform, x, y, x, y);
    if (start.m_n32OrgX < 0 || start.m_n32OrgY < 0 || start.m_n32OrgX >= image.GetWidth() ||
        start.m_n32OrgY >= image.GetHeight())
        return Say("a region starts inside the image");
    m_drag = Drag::Draw;
    m_selected = Current().GetRegions().Add(m_hit.region, {0, 0, 1, 1});
    Current().GetRegions().Place(*m_selected, start);
}

void Viewer::Move(int x, int y) {
    x = InPane(x);
    const int dx = x - m_mouseX, dy = y - m_mouseY;
    m_mouseX = x;
    m_mouseY = y;
    m_hasChanged = true;
    if (m_drag == Drag::Pan) {
        m_transform.panX += dx;
        m_transform.panY += dy;
    } else if (m_drag == Drag::Handle) {
        Current().GetRegions().Drag(m_hit, x, y, m_transform);
    } else if (m_drag == Drag::Draw) {
        Current().GetRegions().Place(*m_selected, Between(m_transform, m_startX, m_startY, x, y));
    } else if (m_drag == Drag::Turn) {
        m_look.angleA += static_cast<float>(dy) / 2;
        m_look.angleB += static_cast<float>(dx) / 2;
    } else {
        m_hit = Current().GetRegions().Find(x, y, m_transform, m_selected);
    }
}

void Viewer::Release() {
    if (m_drag == Drag::Draw && m_mouseX == m_startX && m_mouseY == m_startY) return Abort();
    m_drag = Drag::None;
    if (m_beforeDrag != Current().GetRegions().Store()) Remember(std::move(m_beforeDrag));
    m_hasChanged = true;
}

void Viewer::Wheel(int x, int y, double steps) {
    m_transform.ZoomAt(InPane(x), y, m_transform.zoom * std::pow(kWheelFactor, steps));
    m_hasChanged = true;
}

void Viewer::Key(const std::string& name) {
    m_hasChanged = true;
    m_message.clear();
    if (m_typed && name != "escape") return Type(name);
    for (const Binding& binding : Bindings()) {
        if (std::ranges::find(binding.keys, name) == binding.keys.end()) continue;
        const auto failure = App::Attempt(Current().Path(), [&] { binding.act(*this, name); });
        if (failure) Say(failure->reason);
    }
}

void Viewer::Abort() {
    if (m_typed) return m_typed.reset();
    const bool isDragging = std::exchange(m_drag, Drag::None) != Drag::None;
    if (isDragging) Current().GetRegions().Restore(m_beforeDrag);
    if (!isDragging || (m_selected && !m_selected->GetParent())) m_selected = nullptr;
    m_drawsNext = false;
}

void Viewer::Remember(Regions::State before) {
    m_undo.push_back(std::move(before));
    if (m_undo.size() > kMostUndone) m_undo.erase(m_undo.begin());
    m_redo.clear();
}

void Viewer::Exchange(std::vector<Regions::State>& from, std::vector<Regions::State>& to,
                      const char* nothing) {
    if (from.empty()) return Say(nothing);
    to.push_back(Current().GetRegions().Store());
    Current().GetRegions().Restore(from.back());
    from.pop_back();
    if (m_selected && !m_selected->GetParent()) m_selected = nullptr;
}

void Viewer::SelectNext() {
    KxGenericROI& image = Current().Image();
    KxGenericROI* next = m_selected ? m_selected->GetNextROI(&image) : nullptr;
    m_selected = static_cast<Region*>(next ? next : image.GetFirstSubROI());
}

void Viewer::RemoveSelected() {
    if (!m_selected) return Say("no region is selected");
    Remember(Current().GetRegions().Store());
    Current().GetRegions().Remove(*std::exchange(m_selected, nullptr));
}

void Viewer::ChangeMask() {
    if (!m_selected) return Say("no region is selected");
    Regions& regions = Current().GetRegions();
    Remember(regions.Store());
    const Mask mask = regions.GetMask(*m_selected);
    regions.SetMask(*m_selected, mask == Mask::None      ? Mask::Ellipse
                                 : mask == Mask::Ellipse ? Mask::Ring
                                                         : Mask::None);
}

void Viewer::Arrow(int dx, int dy, int nudge) {
    if (m_selected) {
        Remember(Current().GetRegions().Store());
        Current().GetRegions().Shift(*m_selected, dx * nudge, dy * nudge);
    } else {
        m_transform.panX -= dx * nudge * kPanStep;
        m_transform.panY -= dy * nudge * kPanStep;
    }
}

void Viewer::Type(const std::string& key) {
    if (key == "return") return PlaceAsTyped();
    if (key == "backspace" && !m_typed->empty()) m_typed->pop_back();
    if (key.size() == 1 && std::string_view("0123456789, ").find(key[0]) != std::string_view::npos)
        *m_typed += key;
}

void Viewer::PlaceAsTyped() {
    const std::string typed = *std::exchange(m_typed, std::nullopt);
    Extent extent;
    if (std::sscanf(typed.c_str(), "%9d ,%9d ,%9d ,%9d", &extent.m_n32OrgX, &extent.m_n32OrgY,
                    &extent.m_n32Width, &extent.m_n32Height) != 4)
        return Say("four numbers are needed: X,Y,WIDTH,HEIGHT");
    Remember(Current().GetRegions().Store());
    Current().GetRegions().Place(*m_selected, extent);
    if (InImage(*m_selected) != extent) Say("placed as far as the parent reaches");
}

Cursor Viewer::GetCursor() const {
    if (m_drawsNext || m_drag == Drag::Draw) return Cursor::Cross;
    switch (m_hit.handle) {
    case KX_HANDLE_NONE:
        return Cursor::Arrow;
    case KX_HANDLE_INSIDE:
        return Cursor::Move;
    case KX_HANDLE_NORTH:
    case KX_HANDLE_SOUTH:
        return Cursor::Vertical;
    case KX_HANDLE_EAST:
    case KX_HANDLE_WEST:
        return Cursor::Horizontal;
    case KX_HANDLE_NORTH_WEST:
    case KX_HANDLE_SOUTH_EAST:
        return Cursor::Falling;
    case KX_HANDLE_SOUTH_WEST:
    case KX_HANDLE_NORTH_EAST:
        return Cursor::Rising;
    }
    return Cursor::Arrow;
}

std::string Viewer::Status() const {
    if (m_typed) return "X,Y,WIDTH,HEIGHT: " + *m_typed + "_";
    if (!m_message.empty()) return m_message;
    const KxGenericROI& image = Current().Image();
    const Extent point = Between(m_transform, m_mouseX, m_mouseY, m_mouseX, m_mouseY);
    const int x = point.m_n32OrgX, y = point.m_n32OrgY;
    std::ostringstream text;
    text << std::filesystem::path(Current().Path()).filename().string() << "   " << 100 * m_transform.zoom
         << " %";
    if (x >= 0 && y >= 0 && x < image.GetWidth() && y < image.GetHeight()) {
        text << "   x " << x << "  y " << y << "   value";
        for (const double component : App::Components(image, x, y)) text << ' ' << component;
        float width, height;
        const KxMeasurementUnit* unit;
        image.GetPixelDimensions(width, height, unit);
        text << "   " << width * static_cast<float>(x) << " x " << height * static_cast<float>(y) << ' '
             << unit->GetName();
    }
    if (m_selected) {
        const Extent extent = InImage(*m_selected);
        text << "   region " << Numbers(extent);
        const int column = x - extent.m_n32OrgX, row = y - extent.m_n32OrgY;
        if (column >= 0 && row >= 0 && column < extent.m_n32Width && row < extent.m_n32Height)
            text << "  in it " << column << ',' << row;
    }
    return text.str();
}

std::string Viewer::PrintRegions() const {
    std::string lines;
    const KxGenericROI& image = Current().Image();
    for (auto* region = image.GetFirstSubROI(); region; region = region->GetNextROI(&image)) {
        for (auto* parent = region->GetParent(); parent != &image; parent = parent->GetParent())
            lines += "  ";
        lines += Numbers(InImage(*region)) +
                 (region->GetTitle() ? std::string("  ") + region->GetTitle() : "") + "\n";
    }
    return lines;
}

}  // namespace View
