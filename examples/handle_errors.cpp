// What happens when something fails: the slot of the thread, its texts, and traces that go to the program's
// log.

#include <kalvo/kalvo.h>

#include <cstdio>
#include <cstring>

// Instead of a box on a screen: the first line tells the operation, the second the error.
int WriteLog(const char* text, const char*, unsigned) {
    const char* newLine = std::strchr(text, '\n');
    std::printf("log: %.*s: %s\n", static_cast<int>(newLine - text), text, newLine + 1);
    return Zelkor::Platform::kMessageBoxOk;
}

int main() {
    Zelkor::Platform::SetMessageBoxHandler(WriteLog);
    KxSetTraceMode(KX_TRACE_MODE_MESSAGE);

    KxImage<KxBW8> image(100, 80);
    image.Load("none.bmp");
    if (KxFailure())
        std::printf("code %d, the image is still %d x %d\n", KxGetError(), image.GetWidth(),
                    image.GetHeight());

    KxROI<KxBW8> region(&image, 10, 10, 50, 50);
    KxOk();
    region.SetOrgX(200);
    if (KxGetError() == KX_ERROR_ROI_OUT_OF_PARENT)
        std::printf("it covers %d x %d pixels now\n", region.GetWidth(), region.GetHeight());

    // Only streams and a few classes throw, where their headers say so.
    try {
        KxMemSerializer empty;
        char byte;
        empty.SerializeBytes(&byte, 1, "byte");
    } catch (const Zelkor::Kalvo::Exception& exception) {
        std::printf("thrown: %d\n", exception.GetError());
    }
}

// Prints:
// log: Function: KxROIBW8::Load: File could not be opened - Check file pathname, troubleshoot disk device
// code 1102, the image is still 100 x 80
// log: Function: KxROI::SetWidth: ROI out of parent limits - Resize to fit in image
// it covers 100 x 80 pixels now
// thrown: 1103
