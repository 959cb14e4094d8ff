#pragma once
// Life of the library, its version, and the settings that hold for the process or for the calling thread.

#include <cstdint>

#include "kalvo/base/kxexport.h"

/// Runs the library's life cycle: `un32Reason` 1 process attach, 2 thread attach, 3 thread detach, 0 process
/// detach. Loading and unloading the shared object, and the end of a thread, do this by themselves.
/// @return always 1
KX_API int KxInternalDllMain(void* hModule, unsigned long un32Reason, void* pReserved);

/// The same under the loader's customary name.
extern "C" KX_API int DllMain(void* hModule, unsigned long un32Reason, void* pReserved);

/// Kept for callers that link against them; they do nothing.
extern "C" KX_API void InternalDLLMain();
extern "C" KX_API void InternalDLLMainExit();

/// The version of the library, "6.7.1.0".
KX_API const char* KxGetVersion();

/// The version of the library in UTF-16.
KX_API const unsigned short* KxGetVersionUnicode();

/// Whether the processor's MMX instructions may be used (process-wide; detected when the library is loaded).
/// Results never depend on it. Any value but 0 means yes.
KX_API void KxSetMMX(int bUse);
KX_API int KxGetMMX();

/// Whether copying a region or an image by construction or assignment copies its children too (process-wide;
/// 1 at first). Set it before other threads use the library.
KX_API void KxSetRecursiveCopyBehavior(int bRecursive);
KX_API int KxGetRecursiveCopyBehavior();

/// Quality of the JPEG files that the calling thread writes, 0 to 100; 50 at first.
KX_API void KxSetJpegQuality(unsigned int un32Quality);

/// Grey value from which a pixel becomes a 1 bit in the bilevel TIFF files that the calling thread writes;
/// 128 at first. The low 8 bits count.
KX_API void KxSetTiffThreshold(unsigned int un32Threshold);

/// Target size in bytes of the strips of the TIFF files that the calling thread writes; 8192 at first,
/// 0 writes the whole image as one strip.
KX_API void KxSetTiffStripSize(unsigned int un32StripSize);

/// Whether files that the calling thread saves (image files, vector files, JPEG fields, archives that it
/// opens by name) replace an old file of that name only when all of them is stored: they are written beside
/// it, and take its name and its permissions when they are closed. When saving fails, or the power does, the
/// old file is still there; so it is when one of the objects of an archive could not be saved. 0 at first:
/// old files are emptied and written in place. What is no regular file always is; links stay, and what they
/// lead to is replaced. The folder must take a new file.
KX_API void KxSetSafeWriting(int bSafe);

/// How many pixels an image may have, and how many bytes the pixels of an image, the elements of a vector or
/// a JPEG field may take, that the calling thread loads from files and archives; 0, as at first, sets no
/// limit. Loading what is larger fails with `KX_ERROR_INSUFFICIENT_ALLOCATION` before memory is taken.
KX_API void KxSetLoadLimits(std::uint64_t un64Pixels, std::uint64_t un64Bytes);

/// Allocates from the library's heap; null on failure. Blocks go back with `Kalvo_Free`.
extern "C" KX_API void* Kalvo_Malloc(unsigned int un32Size);

/// Frees a block from `Kalvo_Malloc`, or one that the library handed over. Null is allowed.
extern "C" KX_API void Kalvo_Free(void* pBlock);

namespace Zelkor::Kalvo {

/// Process-wide set-up; calls after the first do nothing.
KX_API void Initialize();

/// Process-wide clean-up, run when the library is unloaded.
KX_API void Terminate();

/// Twins of the functions above on the same setting.
KX_API void SetRecursiveCopyBehavior(int bRecursive);
KX_API int GetRecursiveCopyBehavior();

}  // namespace Zelkor::Kalvo
