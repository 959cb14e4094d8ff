// Load and unload hooks, version, settings, and the memory pair.

#include "kalvo/frame/kxlibrary.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

#include "kalvo/base/cpu.h"
#include "kalvo/frame/kxthread.h"
#include "kalvo/frame/thread_slot.h"

namespace {

constinit int recursiveCopyBehavior = 1;
constinit int useMmx = 0;
constinit bool isInitialized = false;

// The build tells it: the project's own version and a fourth number.
constexpr char kVersion[] = KALVO_VERSION;
constexpr auto kVersionUnits = [] {
    std::array<unsigned short, sizeof kVersion> units{};
    std::ranges::copy(kVersion, units.begin());
    return units;
}();

}  // namespace

int KxInternalDllMain(void*, unsigned long un32Reason, void*) {
    using namespace Zelkor::Kalvo;
    switch (un32Reason) {
    case kProcessAttach:
        Initialize();
        OpenThreadSlot();
        break;
    case kThreadDetach:
        CloseThreadLocalStorage();
        break;
    case kProcessDetach:
        Terminate();
        CloseThreadSlot();
        break;
    }
    return 1;
}

int DllMain(void*, unsigned long un32Reason, void*) {
    return KxInternalDllMain(nullptr, un32Reason, nullptr);
}

void InternalDLLMain() {}

void InternalDLLMainExit() {}

const char* KxGetVersion() { return kVersion; }

const unsigned short* KxGetVersionUnicode() { return kVersionUnits.data(); }

void KxSetMMX(int bUse) { useMmx = bUse; }

int KxGetMMX() { return useMmx; }

void KxSetRecursiveCopyBehavior(int bRecursive) { recursiveCopyBehavior = bRecursive; }

int KxGetRecursiveCopyBehavior() { return recursiveCopyBehavior; }

void KxSetJpegQuality(unsigned int un32Quality) {
    if (OzzoTLSStruct* record = KxGetTLSPtr()) record->m_un32JpegQuality = un32Quality;
}

void KxSetTiffThreshold(unsigned int un32Threshold) {
    if (OzzoTLSStruct* record = KxGetTLSPtr())
        record->m_un8TiffThreshold = static_cast<unsigned char>(un32Threshold);
}

void KxSetTiffStripSize(unsigned int un32StripSize) {
    if (OzzoTLSStruct* record = KxGetTLSPtr()) record->m_un32TiffStripSize = un32StripSize;
}

void KxSetSafeWriting(int bSafe) {
    if (OzzoTLSStruct* record = KxGetTLSPtr()) record->m_bSafeWriting = bSafe;
}

void KxSetLoadLimits(std::uint64_t un64Pixels, std::uint64_t un64Bytes) {
    if (OzzoTLSStruct* record = KxGetTLSPtr()) {
        record->m_un64MostPixels = un64Pixels;
        record->m_un64MostBytes = un64Bytes;
    }
}

void* Kalvo_Malloc(unsigned int un32Size) { return std::malloc(un32Size); }

void Kalvo_Free(void* pBlock) { std::free(pBlock); }

namespace Zelkor::Kalvo {

// A program that attaches the library again keeps its settings.
void Initialize() {
    if (!std::exchange(isInitialized, true)) useMmx = Platform::HasMmx();
}

void Terminate() {}

void SetRecursiveCopyBehavior(int bRecursive) { KxSetRecursiveCopyBehavior(bRecursive); }

int GetRecursiveCopyBehavior() { return KxGetRecursiveCopyBehavior(); }

}  // namespace Zelkor::Kalvo
