// A plug-in that uses the library, for a host that does not link it.

#include <kalvo/kalvo.h>

#include <cstring>
#include <string>

namespace {

// On a device with a palette, in a font, through a table: what the library keeps for the thread and the
// process.
bool Draw() {
    const HDC hdc = Zelkor::Platform::CreatePaletteDC(40, 20);
    KxImage<KxBW8> image(40, 20);
    image.Draw(hdc, 1, 0);
    const bool drawn = KxSuccess() && TextOutA(hdc, 1, 1, "x", 1);
    DeleteDC(hdc);
    return drawn;
}

}  // namespace

// The first difference between the state of a library just loaded and what a thread of it sees; empty when
// there is none. The state is changed before it returns.
extern "C" KX_API const char* UseLibrary(int bFirstThread) {
    if (KxGetError() != KX_OK) return "an error";
    if (KxGetTraceMode() != KX_TRACE_MODE_MESSAGE) return "a trace mode";
    if (bFirstThread && KxGetRecursiveCopyBehavior() != 1) return "a copy behaviour";
    if (bFirstThread && KxGetAngleUnit() != KX_ANGLE_UNITS_DEGREES) return "an angle unit";
    KxSetTraceMode(KX_TRACE_MODE_SILENT);
    if (!Draw()) return "drawing fails";
    KxSetRecursiveCopyBehavior(0);
    KxSetAngleUnit(KX_ANGLE_UNITS_GRADS);
    KxSetError(KX_ERROR_SIZE_MISMATCH);
    if (!std::strstr(KxGetErrorText(static_cast<KX_ERRORS>(1211)), "1211")) return "a text";
    return "";
}
