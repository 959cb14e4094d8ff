// Events come in, the canvas goes out.

#include "window.h"

#include <SDL.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <memory>

#include "common/failure.h"

namespace View {
namespace {

struct Deleter {
    void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
    void operator()(SDL_Cursor* cursor) const { SDL_FreeCursor(cursor); }
    void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
};
template <class Object>
using Owned = std::unique_ptr<Object, Deleter>;

[[noreturn]] void Fail(const char* what) {
    throw App::Failure{std::string(what) + ": " + SDL_GetError(), KX_ERROR_WINDOWS};
}

struct Screen {
    Screen() {
        if (SDL_Init(SDL_INIT_VIDEO)) Fail("no screen");
    }
    ~Screen() { SDL_Quit(); }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
};

// In the order of `Cursor`.
constexpr std::array kCursors = {SDL_SYSTEM_CURSOR_ARROW,    SDL_SYSTEM_CURSOR_SIZEALL,
                                 SDL_SYSTEM_CURSOR_SIZEWE,   SDL_SYSTEM_CURSOR_SIZENS,
                                 SDL_SYSTEM_CURSOR_SIZENWSE, SDL_SYSTEM_CURSOR_SIZENESW,
                                 SDL_SYSTEM_CURSOR_CROSSHAIR};

class Window {
public:
    Window(Viewer& viewer, Scene& scene)
        : m_viewer(viewer),
          m_scene(scene),
          m_window(SDL_CreateWindow("kalvo-view", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED,
                                    viewer.Width(), viewer.Height(), SDL_WINDOW_RESIZABLE)) {
        if (!m_window) Fail("no window");
        for (std::size_t i = 0; i < kCursors.size(); ++i)
            m_cursors[i].reset(SDL_CreateSystemCursor(kCursors[i]));
        SDL_StartTextInput();
    }

    void Run() {
        while (!m_viewer.IsDone()) {
            if (m_viewer.TakeChange()) Show();
            SDL_Event event;
            if (!SDL_WaitEvent(&event)) Fail("no events");
            // All that has happened meanwhile goes into the next picture.
            do Handle(event);
            while (SDL_PollEvent(&event));
        }
    }

private:
    void Show() {
        SDL_SetWindowTitle(m_window.get(),
                           std::filesystem::path(m_viewer.Current().Path()).filename().string().c_str());
        SDL_SetCursor(m_cursors[static_cast<std::size_t>(m_viewer.GetCursor())].get());
        if (std::exchange(m_isFullScreen, m_viewer.IsFullScreen()) != m_viewer.IsFullScreen())
            SDL_SetWindowFullscreen(m_window.get(), m_isFullScreen ? SDL_WINDOW_FULLSCREEN_DESKTOP : 0);
        KxImage<KxC24A>& picture = m_scene.Paint(m_viewer).Image();
        const Owned<SDL_Surface> surface(
            SDL_CreateRGBSurfaceWithFormatFrom(picture.GetImagePtr(), picture.GetWidth(), picture.GetHeight(),
                                               32, picture.GetRowPitch(), SDL_PIXELFORMAT_RGB888));
        if (!surface ||
            SDL_BlitSurface(surface.get(), nullptr, SDL_GetWindowSurface(m_window.get()), nullptr) ||
            SDL_UpdateWindowSurface(m_window.get()))
            Fail("the window cannot be drawn");
    }

    void Handle(const SDL_Event& event) {
        switch (event.type) {
        case SDL_QUIT:
            return m_viewer.Key("q");
        case SDL_WINDOWEVENT:
            int width, height;
            SDL_GetWindowSize(m_window.get(), &width, &height);
            return m_viewer.Resize(width, height);
        case SDL_MOUSEBUTTONDOWN:
            return m_viewer.Press(event.button.x, event.button.y,
                                  event.button.button != SDL_BUTTON_LEFT ? Viewer::Button::Other
                                  : m_modifiers & KMOD_SHIFT             ? Viewer::Button::Shift
                                                                         : Viewer::Button::Plain);
        case SDL_MOUSEMOTION:
            return m_viewer.Move(event.motion.x, event.motion.y);
        case SDL_MOUSEBUTTONUP:
            return m_viewer.Release();
        case SDL_MOUSEWHEEL:
            return m_viewer.Wheel(event.wheel.mouseX, event.wheel.mouseY, event.wheel.preciseY);
        case SDL_TEXTINPUT:
            return Press(event.text.text);
        case SDL_KEYDOWN:
            m_modifiers = event.key.keysym.mod;
            return HandleKey(event.key.keysym);
        case SDL_KEYUP:
            m_modifiers = event.key.keysym.mod;
            return;
        default:
            break;
        }
    }

    // Keys that make no text.
    void HandleKey(const SDL_Keysym& key) {
        std::string name = SDL_GetKeyName(key.sym);
        std::ranges::transform(name, name.begin(),
                               [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        if (key.mod & KMOD_CTRL)
            Press("ctrl+" + name);
        else if (name.size() > 1 && name != "space")
            Press((key.mod & KMOD_SHIFT ? "shift+" : "") + name);
    }

    void Press(const std::string& key) {
        App::Attempt(m_viewer.Current().Path(), [&] { m_viewer.Key(key); });
    }

    Viewer& m_viewer;
    Scene& m_scene;
    Owned<SDL_Window> m_window;
    std::array<Owned<SDL_Cursor>, kCursors.size()> m_cursors;
    int m_modifiers = 0;  // at the time of the event, not at the time it is handled
    bool m_isFullScreen = false;
};

}  // namespace

void RunWindow(Viewer& viewer, Scene& scene) {
    const Screen screen;
    Window(viewer, scene).Run();
}

}  // namespace View
