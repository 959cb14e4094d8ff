#pragma once
// What the user does, without a window: mouse, keys and commands come in, and change what is seen.

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "document.h"
#include "transform.h"

namespace View {

// The shapes of the mouse pointer.
enum class Cursor { Arrow, Move, Horizontal, Vertical, Falling, Rising, Cross };

// What is drawn over, or instead of, the image.
struct Look {
    bool showsHelp = false;
    bool showsPanel = false;  // histogram and profile
    bool isSplit = false;     // two images side by side
    std::size_t table = 0;    // of the lookup tables for greys, 0 for none
    enum { Plain, Relief, Cube } mode = Plain;
    float angleA = -40, angleB = 15;  // of relief and cube
};

constexpr int kTables = 5;  // in which greys are seen

class Viewer {
public:
    // Loads the first file, and the others when they are looked at. Throws the failure.
    explicit Viewer(std::vector<std::string> files);

    // The size of the window; the first one fits the image into it.
    void Resize(int width, int height);
    int Width() const { return m_width; }
    int Height() const { return m_height; }

    // The mouse. Shift draws a region, the other button pans.
    enum class Button { Plain, Shift, Other };
    void Press(int x, int y, Button button = Button::Plain);
    void Move(int x, int y);
    void Release();
    void Wheel(int x, int y, double steps);
    // A key by its character or, in lower case, its name: "f", "+", "left", "ctrl+z", "shift+left".
    void Key(const std::string& name);

    bool IsDone() const { return m_isDone; }
    bool IsFullScreen() const { return m_isFullScreen; }
    // Whether something has changed since the last call.
    bool TakeChange() { return std::exchange(m_hasChanged, false); }

    Document& Current() const { return *m_documents[m_current]; }
    // What a split window shows on its right side.
    Document& Next() const { return *m_documents[NextIndex()]; }
    const Transform& GetTransform() const { return m_transform; }
    const Look& GetLook() const { return m_look; }
    // Null when no region is selected.
    Region* Selected() const { return m_selected; }
    Cursor GetCursor() const;
    // What is typed, what happened last, or what lies under the mouse.
    std::string Status() const;
    // The regions, a line each, indented by their depth: "x,y,width,height" in pixels of the image, and the
    // title.
    std::string PrintRegions() const;
    // Every key and what it does.
    static std::vector<std::pair<std::string, std::string>> Help();

private:
    struct Binding;
    static const std::vector<Binding>& Bindings();

    int PaneWidth() const { return m_look.isSplit ? m_width / 2 : m_width; }
    // A column of the window in its left or right half.
    int InPane(int x) const { return m_look.isSplit && x >= PaneWidth() ? x - PaneWidth() : x; }
    std::size_t NextIndex() const { return (m_current + 1) % m_documents.size(); }
    void Fit();
    void Load(std::size_t index);
    void Open(std::size_t index);
    void Reload();
    void Say(const std::string& message);

    void StartDrawing(int x, int y);
    void Abort();
    void Remember(Regions::State before);
    void Exchange(std::vector<Regions::State>& from, std::vector<Regions::State>& to, const char* nothing);
    void SelectNext();
    void RemoveSelected();
    void ChangeMask();
    void Arrow(int dx, int dy, int nudge);
    void Type(const std::string& key);
    void PlaceAsTyped();

    std::vector<std::string> m_files;
    std::vector<std::unique_ptr<Document>> m_documents;  // null until looked at
    std::size_t m_current = 0;
    int m_width = 0, m_height = 0;
    int m_mouseX = 0, m_mouseY = 0;
    Transform m_transform;
    Look m_look;
    Region* m_selected = nullptr;

    enum class Drag { None, Pan, Handle, Draw, Turn } m_drag = Drag::None;
    Regions::Hit m_hit;
    int m_startX = 0, m_startY = 0;
    Regions::State m_beforeDrag;
    bool m_drawsNext = false;
    std::vector<Regions::State> m_undo, m_redo;
    std::optional<std::string> m_typed;  // numbers for the selected region
    std::string m_message;
    bool m_isDone = false, m_isFullScreen = false, m_hasChanged = true;
};

}  // namespace View
